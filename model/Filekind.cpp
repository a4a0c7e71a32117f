#include "model/Filekind.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "model/Datareader.h"
#include "model/Readfile.h"
#include "model/Reading.h"

namespace {

constexpr qint64 kFirstPart = 1 << 20;

bool IsBinary(std::string_view text) { return text.find('\0') != text.npos; }

bool HasModelHeader(std::string_view text) {
  const std::string_view headers[] = {"[Nodes]", "[Elements]", "[Options]"};
  return std::ranges::any_of(
      headers, [&](std::string_view header) { return text.find(header) != text.npos; });
}

/// Whether one of the records that follow is whole and satisfies `wanted`.
template <class TWanted>
bool AnyRecord(TReading& reading, TWanted wanted) {
  const int valueCount = HasAngleData(reading.Scanner) ? 6 : 3;
  TNodeRecord record;
  while (ReadNodeRecord(reading, valueCount, record)) {
    if (wanted(record)) return true;
  }
  return false;
}

bool HoldsNodes(std::string_view text) {
  TLoadReport report;
  TReading reading(text, report, {});
  return reading.Search("[Nodes]") &&
         AnyRecord(reading, [](const TNodeRecord& record) { return record.IsUsable(); });
}

bool HoldsDataSet(std::string_view text) {
  TLoadReport report;
  TReading reading(text, report, {});
  std::size_t open = text.find('[');
  while (open != text.npos) {
    const std::size_t close = text.find(']', open + 1);
    if (close == text.npos) break;
    TTextScanner name(text.substr(open + 1, close - open - 1));
    if (NamedFrequency(name)) return true;
    reading.Scanner.SetPosition(close + 1);
    if (AnyRecord(reading, [](const TNodeRecord&) { return true; })) return true;
    open = text.find('[', close + 1);
  }
  return false;
}

}  // namespace

std::string StartOf(const QString& fileName) {
  QFile file(fileName);
  if (!WhyNotReadable(fileName).isEmpty() || !file.open(QIODevice::ReadOnly)) return {};
  // No more than it has by its size: a file of the kernel, which has 0, may wait for what is to
  // come.
  return file.read(std::min(kFirstPart, file.size())).toStdString();
}

bool IsModelText(std::string_view start) { return !IsBinary(start) && HasModelHeader(start); }

bool IsDataText(std::string_view start) { return !IsBinary(start) && HoldsDataSet(start); }

QString ObjectionTo(TFileKind kind, std::string_view text) {
  const bool isModel = HasModelHeader(text);
  if (kind == TFileKind::Model) {
    if (HoldsNodes(text)) return {};
    return isModel || !HoldsDataSet(text) ? QStringLiteral("it holds no nodes")
                                          : QStringLiteral("it is a data file, not a model file");
  }
  if (isModel) return QStringLiteral("it is a model file, not a data file");
  return HoldsDataSet(text) ? QString() : QStringLiteral("it holds no data sets");
}

bool IsModelFile(const QString& fileName) { return IsModelText(StartOf(fileName)); }

bool AreSameFile(const QString& a, const QString& b) {
  const QString path = QFileInfo(a).canonicalFilePath();
  return !path.isEmpty() && path == QFileInfo(b).canonicalFilePath();
}

TLoadReport LoadFileOf(
    TFileKind kind, const QString& fileName, const TLoadProgress& progress,
    const std::function<TLoadReport(std::string_view, const TLoadProgress&)>& load) {
  TLoadReport report;
  if (IsBinary(StartOf(fileName))) {  // known before all of it is in memory
    report.Fail(QStringLiteral("it is not a text file"));
    return report;
  }
  ReadAndParse(fileName, report, progress, [&](std::string_view text, const TLoadProgress& rest) {
    const QString why = ObjectionTo(kind, text);
    if (why.isEmpty()) {
      report = load(text, rest);
    } else {
      report.Fail(why);
    }
  });
  return report;
}
