// The file of the unit that asks which system it is built for.

#include <QFile>
#include <QFileInfo>

#include "model/Filesync.h"

#ifdef Q_OS_UNIX

#include <fcntl.h>
#include <unistd.h>

namespace {

void SyncPath(const QString& path) {
  // What has come in the place of a file may be a pipe.
  const int file = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return;
#if defined(Q_OS_MACOS)
  fcntl(file, F_FULLFSYNC);
#else
  fsync(file);
#endif
  close(file);
}

}  // namespace

void SyncFile(const QString& fileName) {
  SyncPath(fileName);
  SyncPath(QFileInfo(fileName).path());
}

#else

#include <windows.h>

void SyncFile(const QString& fileName) {
  const auto* const path = reinterpret_cast<const wchar_t*>(fileName.utf16());
  const HANDLE file = CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  FlushFileBuffers(file);
  CloseHandle(file);
}

#endif
