#pragma once

#include <QString>

#include "viewer/window/Commandline.h"

/// Reads the files of the command line, writes what they hold to ConvertFile, if there is one, and
/// returns what was found in them; without a window. Every fault passes ShowMessage and makes
/// `good` false, so does what was dropped from files of our own. That there is something to know
/// passes it, too, where no report is wanted.
QString ConvertFiles(const TCommandLine& line, bool& good);
