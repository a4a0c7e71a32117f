#pragma once

#include <QSize>
#include <QString>

#include "viewer/window/Settings.h"

/// Draws what the settings say into picture files, without a window: the same loading, frames and
/// drawing as in the window. One frame gets the name itself, several get it with "-001" and on.
/// Every fault passes ShowMessage. Returns whether there was none; what was dropped from a file is
/// a fault, but its picture is made. `report`, if given, gets what was found in the files.
bool RenderFrames(const TSettings& settings, const QString& fileName, int frames, QSize size,
                  QString* report = nullptr);
