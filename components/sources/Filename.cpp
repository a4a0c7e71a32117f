#include "components/sources/Filename.h"

#include <QFile>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

TNameHolder WhoHasName(const QFile& file, const QString& name) {
#ifdef Q_OS_UNIX
  struct stat open = {};
  struct stat named = {};
  if (stat(QFile::encodeName(name).constData(), &named) != 0) return TNameHolder::Nobody;
  const bool same = fstat(file.handle(), &open) == 0 && open.st_dev == named.st_dev &&
                    open.st_ino == named.st_ino;
  return same ? TNameHolder::Itself : TNameHolder::Another;
#else
  Q_UNUSED(file)
  return QFile::exists(name) ? TNameHolder::Itself : TNameHolder::Nobody;
#endif
}
