#include "model/Growingfile.h"

#include "model/Filesync.h"

bool AppendLines(QFile& file, const QByteArray& lines, QString& reason) {
  const qint64 size = file.size();
  const bool isCut = size > 0 && file.seek(size - 1) && file.read(1) != "\n";
  const QByteArray text = isCut ? '\n' + lines : lines;
  for (qint64 written = 0; written < text.size();) {
    const qint64 more = file.write(text.constData() + written, text.size() - written);
    if (more <= 0) {
      reason = file.errorString();
      file.resize(size);
      return false;
    }
    written += more;
  }
  TFileSync::Instance().Grown(file.fileName());
  return true;
}
