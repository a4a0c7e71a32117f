#pragma once

/// Whether this program can have windows with OpenGL in them. Asks the window system once. A
/// widget that draws with OpenGL must not be made without it: Qt crashes when it shows the window.
bool PlatformHasOpenGl();
