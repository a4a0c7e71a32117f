#include "components/comms/Qlxpackage.h"

#include <QAnyStringView>
#include <QIODevice>
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <chrono>
#include <cstring>

#include "components/channels/Channelset.h"
#include "model/Datetime.h"
#include "model/Textscanner.h"

namespace {

constexpr std::size_t kStampLength = 19;  ///< a time stamp and the separator behind it

/// Whether a byte means something in a body; all others are text of its lines.
constexpr bool IsSpecial(char c) { return c == '\r' || c == '\n' || c == '<'; }

/// Which of eight bytes are `wanted`: the lowest bit that is set says the first one.
constexpr std::uint64_t Matches(std::uint64_t bytes, char wanted) {
  constexpr std::uint64_t kEach = 0x0101010101010101;
  const std::uint64_t others = bytes ^ kEach * static_cast<unsigned char>(wanted);
  return (others - kEach) & ~others & 0x80 * kEach;
}

/// Compares eight bytes at a time.
const char* FindSpecial(const char* next, const char* end) {
  for (; std::endian::native == std::endian::little && end - next >= 8; next += 8) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, next, sizeof bytes);
    const auto found = Matches(bytes, '\r') | Matches(bytes, '\n') | Matches(bytes, '<');
    if (found) return next + std::countr_zero(found) / 8;
  }
  return std::find_if(next, end, IsSpecial);
}

const char* Find(const char* next, const char* end, char wanted) {
  const void* found = std::memchr(next, wanted, static_cast<std::size_t>(end - next));
  return found ? static_cast<const char*>(found) : end;
}

constexpr bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }

/// Moves to the next number of a line that ends at `stop`; false if the line ends before.
bool SkipBlanks(TTextScanner& scanner, std::size_t stop) {
  const std::string_view text = scanner.Text();
  std::size_t position = scanner.Position();
  while (position < stop && IsBlank(text[position])) ++position;
  scanner.SetPosition(position);
  return position < stop && text[position] != '\r';
}

/// A number of at most `width` digits at `position`; nothing if there is no digit.
std::optional<unsigned> Digits(std::string_view text, std::size_t position, std::size_t width) {
  if (position >= text.size()) return {};
  const char* const first = text.data() + position;
  unsigned value = 0;
  const auto read = std::from_chars(first, first + std::min(width, text.size() - position), value);
  if (read.ec != std::errc()) return {};
  return value;
}

}  // namespace

/// One run of ExtractPackage. It lies on the stack and learns there that the parser has gone on
/// without it.
struct TQLXPackage::TExtraction {
  TExtraction(TQLXPackage& package, TChannelSet& set, bool data)
      : parser(&package), channels(&set), isData(data), outer(package.extraction_) {
    package.extraction_ = this;
    std::string stamp;
    package.ScanFlag(stamp, " time=\"");
    tagTime = ExtractTime(stamp);
    body.swap(package.body_);
  }
  /// Gives the room of the body back to the parser.
  ~TExtraction() {
    if (!parser) return;
    parser->extraction_ = outer;
    body.clear();
    body.swap(parser->body_);
  }

  bool Runs() const { return parser && channels; }
  TDateTime RowTime(TDateTime packageTime);
  bool WriteRow(TTextScanner& scanner, std::string_view line);

  TQLXPackage* parser;  ///< null once it was reset or destroyed
  QPointer<TChannelSet> channels;
  bool isData;
  std::string body;
  TDateTime tagTime;
  std::optional<TDateTime> localTime;  ///< for rows without a time, if rows are moved
  TExtraction* outer;
};

TDateTime TQLXPackage::TExtraction::RowTime(TDateTime packageTime) {
  if (!parser->UseLocalTime) return packageTime;
  if (packageTime != TDateTime()) return parser->MovedTime(packageTime);
  if (!localTime) localTime = TDateTime::Now();
  return *localTime;
}

TQLXPackage::TQLXPackage(TChannelSets* sets) : sets_(sets) {}

TQLXPackage::~TQLXPackage() {
  for (TExtraction* run = extraction_; run; run = run->outer) run->parser = nullptr;
}

void TQLXPackage::SetChannelSets(TChannelSets* sets) { sets_ = sets; }

void TQLXPackage::Reset() {
  for (TExtraction* run = extraction_; run; run = run->outer) run->parser = nullptr;
  extraction_ = nullptr;
  tag_.clear();
  name_.clear();
  body_.clear();
  bracket_ = overflow_ = false;
  state_ = TState::Between;
}

void TQLXPackage::EndRecord() {
  Reset();
  move_.reset();
}

TDateTime TQLXPackage::MovedTime(TDateTime packageTime) {
  if (!move_) move_ = TDateTime::Now().Days() - packageTime.Days();
  return TDateTime(packageTime.Days() + *move_);
}

void TQLXPackage::Parse(std::string_view text) {
  const char* next = text.data();
  const char* const end = next + text.size();
  while (next != end) {
    bool complete = false;
    switch (state_) {
      case TState::OpeningTag:
        next = ReadOpeningTag(next, end);
        break;
      case TState::Body:
        next = ReadBody(next, end);
        break;
      case TState::ClosingTag:
        next = ReadClosingTag(next, end, complete);
        if (complete && !ClosePackage()) return;
        break;
      case TState::Between:
        next = SkipToTag(next, end);
        break;
    }
  }
}

void TQLXPackage::Parse(QIODevice& stream) {
  if (!stream.isSequential()) stream.seek(0);
  std::array<char, 65536> piece;
  for (qint64 size; (size = stream.read(piece.data(), piece.size())) > 0;) {
    Parse({piece.data(), static_cast<std::size_t>(size)});
  }
}

const char* TQLXPackage::ReadOpeningTag(const char* next, const char* end) {
  const char* const stop = Find(next, end, '>');
  const std::size_t room = kMaxTag - tag_.size();
  tag_.append(next, std::min(room, static_cast<std::size_t>(stop - next)));
  if (stop == end) return end;
  state_ = TState::Body;
  return stop + 1;
}

/// Takes the text up to the next byte that means something, or that byte.
const char* TQLXPackage::ReadBody(const char* next, const char* end) {
  if (bracket_) {
    bracket_ = false;
    if (*next == '/') state_ = TState::ClosingTag;
    return next + 1;  // "<" and another byte: both are dropped
  }
  const char* const stop = FindSpecial(next, end);
  Keep({next, stop});
  if (stop == end) return end;
  if (*stop == '\n') EndLine();
  if (*stop == '<') bracket_ = true;
  return stop + 1;
}

/// Empty lines are dropped.
void TQLXPackage::EndLine() {
  if (!body_.empty() && body_.back() != '\n') Keep("\r\n");
}

/// A body without end is not kept; its package is read on to its closing tag and dropped.
void TQLXPackage::Keep(std::string_view text) {
  overflow_ = overflow_ || text.size() > kMaxBody - body_.size();
  if (overflow_) {
    body_.clear();
  } else {
    body_.append(text);
  }
}

const char* TQLXPackage::ReadClosingTag(const char* next, const char* end, bool& complete) {
  const char* const stop = Find(next, end, '>');
  const std::size_t room = kMaxName - name_.size();
  if (static_cast<std::size_t>(stop - next) > room) {
    ++counts_.Abandoned;
    Reset();
    return next + room + 1;
  }
  name_.append(next, stop);
  complete = stop != end;
  return complete ? stop + 1 : end;
}

const char* TQLXPackage::SkipToTag(const char* next, const char* end) {
  const char* const stop = Find(next, end, '<');
  if (stop == end) return end;
  state_ = TState::OpeningTag;
  return stop + 1;
}

/// False if somebody whom a row called has reset or destroyed the parser.
bool TQLXPackage::ClosePackage() {
  if (overflow_) {
    ++counts_.Abandoned;
  } else if (!body_.empty()) {
    if (TChannelSet* set = GetValidSet()) {
      ++counts_.Packages;
      if (!ExtractPackage(*set, name_ == "data")) return false;
    } else {
      ++counts_.Unmatched;
    }
  }
  Reset();
  return true;
}

void TQLXPackage::ScanFlag(std::string& out, std::string_view key) const {
  out.clear();
  const std::string_view tag = tag_;
  const std::size_t found = tag.find(key);
  if (found == std::string_view::npos) return;
  const std::size_t first = found + key.size();
  const std::size_t quote = tag.find('"', first);
  if (quote != std::string_view::npos) out = tag.substr(first, quote - first);
}

TChannelSet* TQLXPackage::GetValidSet() const {
  if (!sets_) return nullptr;
  std::string id;
  ScanFlag(id, " id=\"");
  const auto same = [](const QString& text, const std::string& bytes) {
    return QAnyStringView(text) == QUtf8StringView(bytes);
  };
  for (int i = 0; i < sets_->Count(); ++i) {
    TChannelSet* set = sets_->GetItem(i);
    if (set && same(set->GetXMLTag(), name_) && same(set->GetSetID(), id)) return set;
  }
  return nullptr;
}

TDateTime TQLXPackage::ExtractTime(std::string_view text) {
  namespace ch = std::chrono;
  const auto year = Digits(text, 0, 4), month = Digits(text, 4, 2), day = Digits(text, 6, 2);
  if (!year || !month || !day) return TDateTime();
  const ch::year_month_day date{ch::year(static_cast<int>(*year)), ch::month(*month),
                                ch::day(*day)};
  const auto hour = Digits(text, 9, 2), minute = Digits(text, 11, 2), second = Digits(text, 13, 2);
  if (!hour || !minute || !second) return TDateTime();
  // A leap second is the start of the next minute.
  if (*year < 1 || !date.ok() || *hour > 23 || *minute > 59 || *second > 60) return TDateTime();

  constexpr ch::sys_days kEpoch = ch::year(1899) / 12 / 30;
  const auto days = static_cast<double>((ch::sys_days(date) - kEpoch).count());
  const unsigned seconds = (*hour * 60 + *minute) * 60 + *second;
  const unsigned milliseconds = seconds * 1000 + Digits(text, 15, 3).value_or(0);
  return TDateTime(days + milliseconds / (1e3 * kSecondsPerDay));
}

bool TQLXPackage::ExtractPackage(TChannelSet& set, bool isData) {
  TExtraction run(*this, set, isData);
  TTextScanner scanner(run.body);
  set.WriteBegin();
  const char* const body = run.body.data();
  const char* const end = body + run.body.size();
  for (const char* next = body; next != end && run.Runs();) {
    const char* const stop = Find(next, end, '\n');
    scanner.SetPosition(static_cast<std::size_t>(next - body));
    if (!run.WriteRow(scanner, {next, stop})) break;
    next = stop == end ? end : stop + 1;
  }
  if (run.channels) run.channels->WriteEnd();
  return run.parser;
}

/// False if the row has too many values. A line without a number is no row.
bool TQLXPackage::TExtraction::WriteRow(TTextScanner& scanner, std::string_view line) {
  const std::size_t stop = scanner.Position() + line.size();
  TDateTime time = tagTime;
  if (isData) {
    time = ExtractTime(line);
    scanner.SetPosition(scanner.Position() + std::min(kStampLength, line.size()));
  }
  std::array<double, 1 + kMaxValues> row;
  const auto channelCount = static_cast<std::size_t>(std::max(channels->GetCount(), 0));
  std::size_t count = 0;
  while (count < channelCount && SkipBlanks(scanner, stop)) {
    double value = 0.0;
    if (!scanner.ReadReal(value)) break;
    if (count == kMaxValues) {
      ++parser->counts_.Abandoned;
      return false;
    }
    row[++count] = value;
  }
  if (count == 0) return true;
  row[0] = RowTime(time).Days();
  ++parser->counts_.Rows;
  channels->SetRow(row.data(), 0, static_cast<int>(count) + 1);
  return true;
}
