#include <QMessageBox>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "components/panels/Panelwindow.h"
#include "model/Ending.h"
#include "model/Message.h"
#include "viewer/Animatorabout.h"
#include "viewer/Viewwnd.h"
#include "viewer/window/Commandline.h"
#include "viewer/window/Platform.h"
#include "viewer/window/Rendering.h"

namespace {

TCommandLine ReadCommandLine(int argc, char** argv) {
  // Knows the arguments in the system's own encoding.
  const QCoreApplication scout(argc, argv);
  return ParseCommandLine(QCoreApplication::arguments());
}

void ShowMessageBox(const QString& text) {
  QMessageBox box(QMessageBox::Warning, QLatin1String(kProgramTitle), text, QMessageBox::Ok,
                  QApplication::activeWindow());
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

int Render(const TCommandLine& line) {
  TSettings settings = SettingsOf(line, QCoreApplication::applicationFilePath());
  NameFiles(line, settings);
  return RenderFrames(settings, line.RenderFile, line.Frames, line.Size) ? EXIT_SUCCESS
                                                                         : EXIT_FAILURE;
}

int ShowPanel(const TCommandLine& line) {
  SetMessageSink(ShowMessageBox);
  auto panel = OpenPanel(line.PanelFile, line.PanelIsTrusted);
  if (!panel) return EXIT_FAILURE;
  TPanelWindow window(std::move(panel), line.PanelIsTrusted);
  window.show();
  return QApplication::exec();
}

int RunPanel(const TCommandLine& line) {
  TPanelRun run{line.PanelSeconds,   line.RenderFile,   line.PanelSaveFile, {},
                line.PanelIsTrusted, line.PanelIsForced};
  if (line.HasSize) run.Size = line.Size;
  return RunPanel(line.PanelFile, run) ? EXIT_SUCCESS : EXIT_FAILURE;
}

int ShowWindow(const TCommandLine& line) {
  const QString executable = QCoreApplication::applicationFilePath();
  QStringList early;  // to be shown over the window
  SetMessageSink([&early](const QString& text) { early << text; });
  TViewWnd window(SettingsFileOf(line, executable), SettingsOf(line, executable), line.ModelFile,
                  line.DataFile);
  SetMessageSink(ShowMessageBox);
  window.show();
  const auto showEarly = [&early] { std::for_each(early.begin(), early.end(), ShowMessage); };
  QMetaObject::invokeMethod(&window, showEarly, Qt::QueuedConnection);
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  const TCommandLine line = ReadCommandLine(argc, argv);
  if (!line.Answer.isEmpty()) {
    std::fputs(qPrintable(line.Answer), stdout);
    return EXIT_SUCCESS;
  }
  if (!line.Fault.isEmpty()) {
    ShowMessage(line.Fault);
    return EXIT_FAILURE;
  }
  const bool window = line.RenderFile.isEmpty() && line.PanelSaveFile.isEmpty();
  const auto application = MakeApplication(argc, argv, window);
  TEnding::Instance().TakeSignals();
  if (!line.PanelFile.isEmpty()) return window ? ShowPanel(line) : RunPanel(line);
  return window ? ShowWindow(line) : Render(line);
}
