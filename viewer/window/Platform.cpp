// The only file that asks which system it is built for.

#include "viewer/window/Platform.h"

#include <cstdio>
#include <cstdlib>

namespace {

#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)

/// The displays that the environment offers, in the toolkit's form "one;other".
QByteArray Displays() {
  QByteArrayList displays;
  if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) displays << "wayland";
  if (!qEnvironmentVariableIsEmpty("DISPLAY")) displays << "xcb";
  return displays.join(';');
}

void ChoosePlatform(bool needsDisplay) {
  if (needsDisplay || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) return;
  const QByteArray displays = Displays();
  qputenv("QT_QPA_PLATFORM", displays.isEmpty() ? "offscreen" : displays + ";offscreen");
}

#else

void ChoosePlatform(bool) {}

#endif

/// Keeps the toolkit's own words back while it looks for a display, and has the last word itself.
void TakeStartMessage(QtMsgType type, const QMessageLogContext&, const QString&) {
  if (type != QtFatalMsg) return;
  std::fputs("Cannot open a window: there is no display; --render writes pictures without one.\n",
             stderr);
  std::fflush(stderr);
  std::_Exit(EXIT_FAILURE);
}

}  // namespace

std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv, bool needsDisplay) {
  ChoosePlatform(needsDisplay);
  const QtMessageHandler before = qInstallMessageHandler(TakeStartMessage);
  auto application = std::make_unique<QApplication>(argc, argv);
  qInstallMessageHandler(before);
  return application;
}
