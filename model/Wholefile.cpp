#include "model/Wholefile.h"

#include <QSaveFile>

QString WriteWholeFile(const QString& fileName, const QByteArray& bytes) {
  QSaveFile file(fileName);
  // A commit does not notice that its own flush fails on a full disk.
  if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() &&
      file.commit()) {
    return {};
  }
  return file.errorString();
}
