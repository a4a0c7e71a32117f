// Shows one graph of each kind. With --render OUT.png it draws them into a file instead, without a
// window or a display.

#include <QApplication>
#include <QCommandLineParser>
#include <algorithm>

#include "examples/Rendering.h"
#include "examples/gallery/Gallery.h"
#include "model/Ending.h"

int main(int argc, char** argv) {
  RenderWithoutDisplay(argc, argv);
  QApplication application(argc, argv);

  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral("One graph of each kind."));
  parser.addHelpOption();
  const QCommandLineOption render(QStringLiteral("render"), QStringLiteral("Draw into a PNG file."),
                                  QStringLiteral("file"));
  const QCommandLineOption ratio(QStringLiteral("ratio"),
                                 QStringLiteral("Device pixels to a logical one, 1 to 4."),
                                 QStringLiteral("number"), QStringLiteral("1"));
  parser.addOptions({render, ratio});
  parser.process(application);

  TEnding::Instance().TakeSignals();
  TGallery gallery;
  if (!parser.isSet(render)) {
    gallery.show();
    return application.exec();
  }
  const double scale = std::clamp(parser.value(ratio).toDouble(), 1.0, 4.0);
  return WritePicture(gallery.Render(scale), parser.value(render));
}
