#pragma once

/// Whether this program can have windows with OpenGL in them. Asks the window system once. A
/// widget that draws with OpenGL must not be made without it: Qt crashes when it shows the window.
bool PlatformHasOpenGl();

/// Lets the process keep the memory that a software OpenGL takes and frees in every frame. Giving
/// it back and having it cleared anew costs a fifth of a frame of 10,000 nodes.
void KeepFreedMemory();
