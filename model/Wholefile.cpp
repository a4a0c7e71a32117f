#include "model/Wholefile.h"

#include <QSaveFile>

namespace {

/// A disk that becomes full takes a part of what it is given, and says why only when asked again.
bool WriteAll(QSaveFile& file, QByteArrayView bytes) {
  while (!bytes.isEmpty()) {
    const qint64 written = file.write(bytes.data(), bytes.size());
    if (written <= 0) return false;
    bytes = bytes.sliced(written);
  }
  return file.flush() || file.flush();
}

}  // namespace

QString WriteWholeFile(const QString& fileName, const QByteArray& bytes) {
  QSaveFile file(fileName);
  // A commit does not notice that its own flush fails on a full disk.
  if (file.open(QIODevice::WriteOnly) && WriteAll(file, bytes) && file.commit()) return {};
  return file.errorString();
}
