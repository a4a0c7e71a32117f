#include "model/Reading.h"

#include <algorithm>
#include <new>

#include "model/Largememory.h"

namespace {

constexpr std::size_t kTellEvery = 1 << 20;
constexpr std::size_t kCharactersPerNode = 32;  ///< of the same work

/// How far a try to read one record came: the ID and each value count one.
int ReadNumbers(TTextScanner& scanner, int valueCount, TNodeRecord& record, bool* outOfRange) {
  scanner.SkipWhiteSpace();
  record.Position = scanner.Position();
  if (!scanner.ReadInt(record.ID, outOfRange)) return 0;
  int count = 0;
  while (count < valueCount && scanner.ReadReal(record.Values[static_cast<std::size_t>(count)])) {
    ++count;
  }
  return 1 + count;
}

/// Notes what the end of the records loses: a record of which only a part could be read, or whole
/// records behind a line that is neither record nor header.
void NoteEnd(TReading& reading, int valueCount, const TNodeRecord& record, int count) {
  const TTextScanner& scanner = reading.Scanner;
  if (count > 0) {
    reading.Report.AddAt(scanner, record.Position, [&] {
      return QStringLiteral(
                 "the record of node %1 is not complete; the records from there on were dropped")
          .arg(record.ID);
    });
    return;
  }
  if (scanner.AtEnd() || scanner.Text()[scanner.Position()] == '[') return;
  constexpr std::size_t kLongestLine = 1000;
  const std::string_view rest = scanner.Text().substr(scanner.Position(), kLongestLine);
  const std::size_t lineEnd = rest.find('\n');
  if (lineEnd == std::string_view::npos) return;
  TTextScanner behind = scanner;
  behind.SetPosition(scanner.Position() + lineEnd + 1);
  TNodeRecord next;
  if (ReadNumbers(behind, valueCount, next, nullptr) <= valueCount) return;
  reading.Report.AddAt(scanner, record.Position, [] {
    return QStringLiteral(
        "text that is no number ends the nodes; the records behind it were dropped");
  });
}

}  // namespace

bool TReading::Advance(std::size_t characters, std::size_t nodes) {
  const std::size_t work = characters + nodes * kCharactersPerNode;
  WeighMemory(work);
  done_ += characters;
  unreported_ += work;
  if (unreported_ < kTellEvery || !progress_) return !Report.Cancelled();
  unreported_ = 0;
  const double part = static_cast<double>(done_) / static_cast<double>(Scanner.Text().size());
  if (!progress_(std::min(part, 1.0))) Report.Cancel();
  return !Report.Cancelled();
}

void TReading::WeighMemory(std::size_t work) {
  constexpr std::size_t kWeighEvery = std::size_t{4} << 20;
  unweighed_ += work;
  if (unweighed_ < kWeighEvery) return;
  unweighed_ = 0;
  if (AvailableMemory() == 0) throw std::bad_alloc();
}

bool TReading::Search(std::string_view text) {
  return SearchString(Scanner, text, [this] {
    const double part = static_cast<double>(done_) / static_cast<double>(Scanner.Text().size());
    if (progress_ && !progress_(std::min(part, 1.0))) Report.Cancel();
    return !Report.Cancelled();
  });
}

void NoteDecimalComma(TReading& reading, std::size_t position) {
  reading.Report.AddAt(reading.Scanner, position, [] {
    return QStringLiteral("numbers have a decimal point; the digits behind the comma were dropped");
  });
}

bool ReadNodeRecord(TReading& reading, int valueCount, TNodeRecord& record) {
  bool outOfRange = false;
  const int count = ReadNumbers(reading.Scanner, valueCount, record, &outOfRange);
  if (outOfRange) {
    reading.Report.AddAt(reading.Scanner, record.Position, [] {
      return QStringLiteral(
          "a node number does not fit into 32 bits and was cut to the nearest that does");
    });
  }
  if (count == 1 + valueCount) return true;
  NoteEnd(reading, valueCount, record, count);
  return false;
}
