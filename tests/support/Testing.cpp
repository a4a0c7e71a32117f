#include "tests/support/Testing.h"

QAbstractButton& ButtonOf(const QDialog& dialog, QDialogButtonBox::StandardButton button) {
  return *Child<QDialogButtonBox>(dialog).button(button);
}

void EnterText(QLineEdit& line, const QString& text, bool isEnded) {
  line.selectAll();
  QTest::keyClicks(&line, text);
  if (isEnded) QTest::keyClick(&line, Qt::Key_Return);
}

void DragMouse(QWidget& widget, QPoint to, Qt::MouseButton button, Qt::KeyboardModifiers keys) {
  const QPointF at(to);
  QMouseEvent move(QEvent::MouseMove, at, widget.mapToGlobal(at), Qt::NoButton, button, keys);
  QCoreApplication::sendEvent(&widget, &move);
}

void StartProgram(QProcess& process, const QString& program, const QStringList& arguments,
                  const QMap<QString, QString>& variables) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
    environment.remove(name);
  }
  environment.insert("BUILD", BuiltFile("."));
  environment.insert("XDG_RUNTIME_DIR", TestFolder());
  // At the end of a program its OpenGL driver is unloaded, and leaks of the driver have no name by
  // which to tell them from our own.
  environment.insert("ASAN_OPTIONS", "detect_leaks=0");
  for (auto it = variables.begin(); it != variables.end(); ++it) {
    environment.insert(it.key(), it.value());
  }
  process.setProcessEnvironment(environment);
  process.setWorkingDirectory(TestFolder());
  process.start(program.startsWith('/') ? program : BuiltFile(program), arguments);
}

TStartedProgram::TStartedProgram(const QString& program, const QStringList& arguments) {
  StartProgram(Process, program, arguments);
  EXPECT_TRUE(QTest::qWaitFor([this] { return Process.canReadLine(); }, 60'000));
  FirstLine = QString::fromLocal8Bit(Process.readLine()).trimmed();
}

TStartedProgram::~TStartedProgram() {
  Process.kill();
  Process.waitForFinished();
}

TRun RunProgram(const QString& program, const QStringList& arguments,
                const QMap<QString, QString>& variables) {
  QProcess process;
  StartProgram(process, program, arguments, variables);
  EXPECT_TRUE(process.waitForFinished(60'000)) << process.errorString().toStdString();
  return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
          QString::fromUtf8(process.readAllStandardOutput()),
          QString::fromUtf8(process.readAllStandardError())};
}

QStringList PublishedNames(const QObject& object, const QString& prefix) {
  QStringList names;
  const QMetaObject& meta = *object.metaObject();
  for (int i = QObject::staticMetaObject.propertyCount(); i < meta.propertyCount(); ++i) {
    const QMetaProperty property = meta.property(i);
    if (!property.isStored()) continue;
    const QString name = prefix + property.name();
    if (const auto* part = property.read(&object).value<QObject*>()) {
      names += PublishedNames(*part, name + '.');
    } else {
      names << name;
    }
  }
  return names;
}
