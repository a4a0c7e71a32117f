#include "components/panels/Trust.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>
#include <QUrl>
#include <algorithm>

#include "model/Oneline.h"
#include "model/Wholefile.h"

namespace {

constexpr qsizetype kMaxLines = 2000;
constexpr qint64 kMaxSize = 4 << 20;

const QByteArray kFile = QByteArrayLiteral("file");
const QByteArray kFolder = QByteArrayLiteral("folder");

/// A name in one word.
QByteArray Word(const QString& path) { return QUrl::toPercentEncoding(path, "/"); }

QByteArrayList ReadLines() {
  QFile file(TrustFileName());
  if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) return {};
  QByteArrayList lines = file.read(kMaxSize).split('\n');
  lines.removeAll(QByteArray());
  return lines;
}

/// Puts a line at the end, in place of those that begin as it does.
QString Remember(const QByteArray& line, const QByteArray& instead) {
  const QString name = TrustFileName();
  QDir().mkpath(QFileInfo(name).path());
  QLockFile lock(name + ".lock");
  (void)lock.tryLock(1000);  // two windows at once lose a line at worst
  QByteArrayList lines = ReadLines();
  lines.removeIf([&](const QByteArray& one) { return one.startsWith(instead); });
  lines.append(line);
  lines = lines.mid(std::max<qsizetype>(0, lines.size() - kMaxLines));
  const QString why = WriteWholeFile(name, lines.join('\n') + '\n');
  return why.isEmpty() ? why : QStringLiteral("Cannot write %1: %2").arg(name, why);
}

/// "file PATH ", the begin of the line of a file.
QByteArray BeginOf(const QString& fileName) { return kFile + ' ' + Word(RealPath(fileName)) + ' '; }

/// Somebody else than the user and the administrator.
bool OthersWrite(const QString& path) {
  constexpr uint kAdministrator = 0;
  const QFileInfo info(path);
  const uint owner = info.ownerId();
  return info.permissions().testFlag(QFile::WriteOther) ||
         (owner != kAdministrator && owner != QFileInfo(QDir::homePath()).ownerId());
}

/// An allowed folder counts only for files that nobody else can have put there.
bool IsInTrustedFolder(const QString& fileName, const QByteArrayList& lines) {
  QString path = RealPath(fileName);
  const auto goUp = [&path] { path.truncate(path.lastIndexOf('/')); };
  if (OthersWrite(path)) return false;
  for (goUp(); !path.isEmpty() && !OthersWrite(path); goUp()) {
    if (lines.contains(kFolder + ' ' + Word(path))) return true;
  }
  return false;
}

}  // namespace

QString TrustFileName() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QStringLiteral("/velmora-animator/allowed-panels");
}

QByteArray ContentHash(QByteArrayView bytes) {
  return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

QByteArray WishesHash(const TWishes& wishes) {
  QStringList texts;
  for (const TWish& wish : wishes) texts << wish.Text << wish.Target << wish.Place;
  texts.sort();
  return ContentHash(texts.join(QChar(0)).toUtf8());
}

bool IsKnownPanel(const QString& fileName, const QByteArray& content) {
  const QByteArrayList lines = ReadLines();
  const QByteArray begin = BeginOf(fileName) + content + ' ';
  return std::ranges::any_of(lines,
                             [&](const QByteArray& line) { return line.startsWith(begin); }) ||
         IsInTrustedFolder(fileName, lines);
}

bool IsTrusted(const TPanelMark& mark) {
  const QByteArrayList lines = ReadLines();
  return lines.contains(BeginOf(mark.FileName) + mark.Content + ' ' + mark.Wishes) ||
         IsInTrustedFolder(mark.FileName, lines);
}

QString TrustFile(const TPanelMark& mark) {
  const QByteArray begin = BeginOf(mark.FileName);
  return Remember(begin + mark.Content + ' ' + mark.Wishes, begin);
}

QString TrustFolder(const QString& folder) {
  const QByteArray line = kFolder + ' ' + Word(RealPath(folder));
  return Remember(line, line);
}

QString UnsafeFolder(const QString& folder) {
  const QString path = RealPath(folder);
  if (IsBelow(RealPath(QDir::homePath()), path)) {
    return QStringLiteral("all your own files lie below %1").arg(ShownName(path));
  }
  if (OthersWrite(path)) return QStringLiteral("everybody may write into %1").arg(ShownName(path));
  return {};
}
