// The only system calls that open files: Qt has no way to open one without waiting.
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

/// The handle of an ordinary file, or -1 and why.
int OpenHandle(const QString& name, QIODevice::OpenMode mode, QString* why) {
  const bool writes = mode & QIODevice::WriteOnly;
  const int flags =
      (writes ? ((mode & QIODevice::ReadOnly) ? O_RDWR : O_WRONLY) | O_CREAT : O_RDONLY) |
      ((mode & QIODevice::Append) ? O_APPEND : 0) | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const int handle = ::open(QFile::encodeName(name).constData(), flags, 0666);
  if (handle < 0) {
    const int error = errno;
    // ENXIO is a pipe that nobody reads, or a socket.
    const bool isKind = error == ENXIO || error == EISDIR;
    (void)(isKind ? RefuseKind(why, error == EISDIR) : Refuse(why, qt_error_string(error)));
    return -1;
  }
  struct stat status = {};
  if (::fstat(handle, &status) == 0 && S_ISREG(status.st_mode)) return handle;
  ::close(handle);
  (void)RefuseKind(why, S_ISDIR(status.st_mode));
  return -1;
}

#endif

}  // namespace

void TOrdinaryFile::SetName(const QString& name) {
  name_ = name;
  setFileName(name);
}

bool TOrdinaryFile::Open(OpenMode mode, QString* why) {
  const QFileInfo info(name_);
  // Even looking at some devices by opening them has an effect.
  if (info.exists() && !info.isFile()) return RefuseKind(why, info.isDir());
#ifdef Q_OS_UNIX
  const int handle = OpenHandle(name_, mode, why);
  if (handle < 0) return false;
  if (!open(handle, mode, AutoCloseHandle)) {
    ::close(handle);
    return Refuse(why, errorString());
  }
  return !(mode & Truncate) || resize(0) || Refuse(why, errorString());
#else
  if (!open(mode)) return Refuse(why, errorString());
  if (!isSequential()) return true;
  close();
  return RefuseKind(why, false);
#endif
}
