#pragma once

#include <QString>

#include "viewer/window/Commandline.h"

/// Reads the files of the command line and returns the tables that it asks for; without a window.
/// The last file is compared with the others if those have a model and data without it; else the
/// data sets are compared with themselves. Every fault passes ShowMessage and makes `good` false.
QString CompareFiles(const TCommandLine& line, bool& good);
