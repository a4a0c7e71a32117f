#pragma once

#include <QString>

#include "viewer/window/Commandline.h"

/// Reads the files of the command line, writes what they hold to ConvertFile, if there is one, and
/// returns what was found in them; without a window. Every fault passes ShowMessage and makes
/// `good` false.
QString ConvertFiles(const TCommandLine& line, bool& good);
