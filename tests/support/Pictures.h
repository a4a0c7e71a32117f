#pragma once

#include <QImage>
#include <string>

/// Compares two pictures of one scene that were drawn in different ways: at most `perMille` pixels
/// in 1000 may be off by more than 16 levels, since an edge that passes close to a pixel's centre
/// may fall on either side. A failure writes the actual and the expected picture and their
/// difference into the build folder, under `name`; so does every comparison if
/// VELMORA_KEEP_PICTURES is set.
void ExpectSamePicture(const QImage& actual, const QImage& expected, const std::string& name,
                       int perMille = 1);

/// How many pixels are not of this colour.
int CountOther(const QImage& image, const QColor& color);
