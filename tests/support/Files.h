#pragma once

#include <QFile>
#include <QString>

/// A file as it is on the disk; empty if it cannot be read.
inline QByteArray Contents(const QString& name) {
  QFile file(name);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
