#include "viewer/Filekind.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>

bool IsModelFile(const QString& fileName) {
  constexpr qint64 kFirstPart = 1 << 20;
  QFile file(fileName);
  if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) return false;
  const QByteArray text = file.read(kFirstPart);
  const char* const headers[] = {"[Nodes]", "[Elements]", "[Options]"};
  return std::ranges::any_of(headers, [&](const char* header) { return text.contains(header); });
}
