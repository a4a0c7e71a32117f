#pragma once

#include <QFile>
#include <QString>

/// A file that somebody else has named. GUI thread or any other, one at a time.
class TOrdinaryFile : public QFile {
 public:
  explicit TOrdinaryFile(const QString& name = {}) : QFile(name), name_(name) {}

  /// Opens it if it is an ordinary file: opening never waits, as it would for a pipe or a device,
  /// and what is open is what was looked at, whoever changes the folder meanwhile. A file to write
  /// is made if there is none, and emptied only with Truncate. Otherwise false, and why.
  [[nodiscard]] bool Open(OpenMode mode, QString* why);

  /// The toolkit forgets the name of a file that is opened by a handle.
  QString fileName() const override { return name_; }
  void SetName(const QString& name);

 private:
  using QFile::open;
  using QFile::setFileName;

  QString name_;
};
