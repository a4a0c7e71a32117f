#pragma once

#include "model/Animmodel.h"

/// Sets the lights as the program does, by plain OpenGL calls.
void SetReferenceLights();

/// Draws a list with plain OpenGL and GLU calls, one solid after the other and nothing left out:
/// what the program's pictures are held against.
void DrawReference(const TDataNodeList& list);
