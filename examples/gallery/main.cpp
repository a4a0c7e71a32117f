// Shows one graph of each kind. With --render OUT.png it draws them into a file instead, without a
// window or a display.

#include <QApplication>
#include <QCommandLineParser>

#include "examples/Rendering.h"
#include "examples/gallery/Gallery.h"
#include "model/Ending.h"

int main(int argc, char** argv) {
  RenderWithoutDisplay(argc, argv);
  QApplication application(argc, argv);

  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral("One graph of each kind."));
  parser.addHelpOption();
  const TRenderOptions options;
  parser.addOptions({options.Render, options.Ratio});
  parser.process(application);

  TEnding::Instance().TakeSignals();
  TGallery gallery;
  if (!parser.isSet(options.Render)) {
    gallery.show();
    return application.exec();
  }
  const double scale = options.RatioOf(parser);
  return WritePicture(gallery.Render(scale), parser.value(options.Render));
}
