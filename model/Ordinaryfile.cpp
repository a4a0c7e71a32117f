// The only system calls for files: Qt has no way to open one without waiting.
#include "model/Ordinaryfile.h"

#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace {

bool Refuse(QString* why, const QString& text) {
  if (why) *why = text;
  return false;
}

bool RefuseKind(QString* why, bool isFolder) {
  return Refuse(why, isFolder ? QStringLiteral("it is a folder") : QStringLiteral("it is no file"));
}

#ifdef Q_OS_UNIX

bool Open(QFile& file, QIODevice::OpenMode mode, QString* why) {
  const bool writes = mode & QIODevice::WriteOnly;
  const int flags =
      (writes ? ((mode & QIODevice::ReadOnly) ? O_RDWR : O_WRONLY) | O_CREAT : O_RDONLY) |
      ((mode & QIODevice::Append) ? O_APPEND : 0) | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const int handle = ::open(QFile::encodeName(file.fileName()).constData(), flags, 0666);
  if (handle < 0) {
    const int error = errno;
    // A pipe that nobody reads, a socket.
    if (error == ENXIO) return RefuseKind(why, false);
    if (error == EISDIR) return RefuseKind(why, true);
    return Refuse(why, qt_error_string(error));
  }
  struct stat status = {};
  if (::fstat(handle, &status) != 0 || !S_ISREG(status.st_mode)) {
    ::close(handle);
    return RefuseKind(why, S_ISDIR(status.st_mode));
  }
  if (!file.open(handle, mode, QFileDevice::AutoCloseHandle)) {
    ::close(handle);
    return Refuse(why, file.errorString());
  }
  return !(mode & QIODevice::Truncate) || file.resize(0) || Refuse(why, file.errorString());
}

#else

bool Open(QFile& file, QIODevice::OpenMode mode, QString* why) {
  if (!file.open(mode)) return Refuse(why, file.errorString());
  if (!file.isSequential()) return true;
  file.close();
  return RefuseKind(why, false);
}

#endif

}  // namespace

bool OpenOrdinaryFile(QFile& file, QIODevice::OpenMode mode, QString* why) {
  const QFileInfo info(file.fileName());
  // Even looking at some devices by opening them has an effect.
  if (info.exists() && !info.isFile()) return RefuseKind(why, info.isDir());
  return Open(file, mode, why);
}
