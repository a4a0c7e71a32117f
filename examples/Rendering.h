#pragma once

#include <QCommandLineParser>
#include <QImage>
#include <QWidget>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "model/Writepicture.h"

/// To be called before the application is made: a program that is called with --render, or only
/// asked for --help, needs no display.
inline void RenderWithoutDisplay(int argc, char** argv) {
  const bool hidden = std::any_of(argv + 1, argv + argc, [](const char* argument) {
    return std::strncmp(argument, "--render", 8) == 0 || std::strncmp(argument, "--help", 6) == 0 ||
           std::strcmp(argument, "-h") == 0;
  });
  if (hidden && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
}

/// The options of a program that can draw itself into a file.
struct TRenderOptions {
  QCommandLineOption Render{"render", "Draw into a PNG file.", "file"};
  QCommandLineOption Ratio{"ratio", "Device pixels to a logical one, 1 to 4.", "number", "1"};

  double RatioOf(const QCommandLineParser& parser) const {
    return std::clamp(parser.value(Ratio).toDouble(), 1.0, 4.0);
  }
};

/// Writes a picture as a PNG file, whole or not at all. The exit status of the program, which says
/// on the standard error stream what went wrong.
inline int WritePicture(const QImage& picture, const QString& fileName) {
  const QString why = WritePictureFile(picture, fileName, "png");
  if (why.isEmpty()) return EXIT_SUCCESS;
  std::fprintf(stderr, "Cannot write %s: %s\n", qPrintable(fileName), qPrintable(why));
  return EXIT_FAILURE;
}

/// The whole panel as a picture, `ratio` device pixels to a logical one.
inline QImage Picture(QWidget& panel, double ratio) {
  QImage picture((QSizeF(panel.size()) * ratio).toSize(), QImage::Format_RGB32);
  picture.setDevicePixelRatio(ratio);
  panel.render(&picture);
  return picture;
}
