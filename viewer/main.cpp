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
#include "viewer/window/Comparing.h"
#include "viewer/window/Converting.h"
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
  QString report;
  const bool good = RenderFrames(settings, line.RenderFile, line.Frames, line.Size,
                                 line.Report ? &report : nullptr);
  if (line.Report) std::fputs(report.toLocal8Bit().constData(), stdout);
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Tells what was in the files, and writes it if that is wanted.
int Convert(const TCommandLine& line) {
  bool good = true;
  const QString report = ConvertFiles(line, good);
  if (line.Report) std::fputs(report.toLocal8Bit().constData(), stdout);
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

int Compare(const TCommandLine& line) {
  bool good = true;
  std::fputs(CompareFiles(line, good).toLocal8Bit().constData(), stdout);
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// A panel beside the animator.
void OpenPanelWindow(const QString& fileName) {
  auto panel = OpenPanel(fileName, false);
  if (!panel) return;
  auto* window = new TPanelWindow(std::move(panel));
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->show();
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
  TViewWnd window(SettingsFileOf(line, executable), SettingsOf(line, executable), line.Files);
  window.OpenForm = OpenPanelWindow;
  SetMessageSink(ShowMessageBox);
  window.show();
  for (const QString& form : line.Forms) OpenPanelWindow(form);
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
  const bool convert = !line.ConvertFile.isEmpty() || (line.Report && line.RenderFile.isEmpty());
  const bool window =
      line.RenderFile.isEmpty() && line.PanelSaveFile.isEmpty() && !convert && !line.Compares();
  const auto application = MakeApplication(argc, argv, window);
  TEnding::Instance().TakeSignals();
  if (!line.PanelFile.isEmpty()) return window ? ShowPanel(line) : RunPanel(line);
  if (line.Compares()) return Compare(line);
  if (convert) return Convert(line);
  return window ? ShowWindow(line) : Render(line);
}
