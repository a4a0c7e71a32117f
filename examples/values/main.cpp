// Plays the record of a pump, or another file of that form, through the measurement components.
// With --render OUT.png it reads the file to its end and draws the window into a picture instead,
// without a display.

#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>

#include "examples/Rendering.h"
#include "examples/values/Valuespanel.h"
#include "model/Ending.h"

int main(int argc, char** argv) {
  RenderWithoutDisplay(argc, argv);
  QApplication application(argc, argv);

  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Plays a file of numbers in two columns through channels, an expression, a "
                     "spectrum and a histogram."));
  parser.addHelpOption();
  const TRenderOptions options;
  parser.addOptions({options.Render, options.Ratio});
  parser.addPositionalArgument(QStringLiteral("file"),
                               QStringLiteral("The record; initially that of the pump."),
                               QStringLiteral("[file]"));
  parser.process(application);
  const QString record = parser.positionalArguments().value(
      0, QCoreApplication::applicationDirPath() + QStringLiteral("/pump.txt"));

  TEnding::Instance().TakeSignals();
  TValuesPanel panel(record);
  if (!parser.isSet(options.Render)) {
    panel.show();
    return application.exec();
  }
  panel.SetSpeed(TValuesPanel::spUnlimited);
  QObject::connect(&panel, &TValuesPanel::OnFinished, &application, &QCoreApplication::quit,
                   Qt::QueuedConnection);
  panel.Start();
  if (panel.IsReading()) application.exec();
  if (TEnding::IsAsked()) return 1;  // no picture of half a record
  if (!panel.GetError().isEmpty()) {
    std::fprintf(stderr, "%s\n", qPrintable(panel.GetError()));
    return 1;
  }
  const double scale = options.RatioOf(parser);
  return WritePicture(Picture(panel, scale), parser.value(options.Render));
}
