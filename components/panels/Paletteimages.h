#pragma once

/// Registers the pictures of those classes that bring none of their own, see
/// controls/Iconimages.h. GUI thread only.
void RegisterPaletteImages();
