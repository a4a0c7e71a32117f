#include "model/Readfile.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <new>

namespace {

constexpr qint64 kLargestFile = qint64{4} << 30;

TLoadProgress Part(const TLoadProgress& progress, double from, double to) {
  if (!progress) return {};
  return [&progress, from, to](double done) { return progress(from + (to - from) * done); };
}

/// Makes room for a file's text; notes if there is none.
bool MakeRoom(TFileText& text, qint64 size, TLoadReport& report) {
  try {
    text.resize(static_cast<std::size_t>(size));
    return true;
  } catch (const std::bad_alloc&) {
    report.Fail(QStringLiteral("not enough memory"));
    return false;
  }
}

}  // namespace

QString WhyNotReadable(const QString& fileName) {
  const QFileInfo info(fileName);
  if (!info.exists()) return QStringLiteral("there is no such file");
  if (info.isDir()) return QStringLiteral("it is a folder");
  // Opening a pipe or a device could wait for ever.
  if (!info.isFile()) return QStringLiteral("it is not a regular file");
  if (info.size() > kLargestFile) return QStringLiteral("it is larger than 4 GiB");
  if (static_cast<std::size_t>(info.size()) > AvailableMemory()) {
    return QStringLiteral("it is larger than the memory that is left");
  }
  return {};
}

bool ReadFile(const QString& fileName, TFileText& text, TLoadReport& report,
              const TLoadProgress& progress) {
  if (const QString why = WhyNotReadable(fileName); !why.isEmpty()) {
    report.Fail(why);
    return false;
  }
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
    report.Fail(file.errorString());
    return false;
  }
  constexpr qint64 kPiece = qint64{4} << 20;
  const qint64 size = file.size();
  if (!MakeRoom(text, size, report)) return false;
  // A file that grows meanwhile is read as far as it reached at first; one that shrinks ends early.
  for (qint64 done = 0; done < size;) {
    const qint64 got = file.read(text.data() + done, std::min(kPiece, size - done));
    if (got < 0) {
      report.Fail(file.errorString());
      return false;
    }
    if (got == 0) {
      text.resize(static_cast<std::size_t>(done));
      break;
    }
    done += got;
    if (progress && !progress(static_cast<double>(done) / static_cast<double>(size))) {
      report.Cancel();
      return false;
    }
  }
  return true;
}

void ReadAndParse(const QString& fileName, TLoadReport& report, const TLoadProgress& progress,
                  const std::function<void(std::string_view, const TLoadProgress&)>& parse) {
  constexpr double kReadingShare = 0.2;
  TFileText text;
  if (!ReadFile(fileName, text, report, Part(progress, 0.0, kReadingShare))) return;
  parse(View(text), Part(progress, kReadingShare, 1.0));
}
