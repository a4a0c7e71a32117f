#include "exchange/Universalreading.h"

#include <new>

#include "model/Largememory.h"
#include "model/Oneline.h"

namespace {

/// Text that nobody reads to its end costs no memory.
constexpr std::size_t kLongestLine = 1000;

}  // namespace

TUniversalReading::TUniversalReading(std::string_view text, TJob& job, TFindings& findings,
                                     const TLoadProgress& progress)
    : Job(job),
      lines_(text),
      findings_(findings),
      progress_(progress),
      file_(std::max(static_cast<int>(findings.Files().size()) - 1, 0)),
      takenBefore_(Taken()) {}

bool TUniversalReading::BeginSet() {
  if (state_ == TState::Cancelled) return false;
  bool marked = false;
  const bool behindSet = state_ == TState::Ended;
  for (bool first = true; Tick() && lines_.Next(); first = false) {
    if (IsMark(Line())) {
      marked = true;
      continue;
    }
    const std::string_view type = TypeOn(Line());
    const bool lostMark = !marked && first && behindSet && !type.empty();
    if (!marked && !lostMark) continue;
    begin_ = lines_.Number();
    type_ = FromBytes(type.empty() ? Trimmed(Line()).substr(0, kLongestLine) : type).toLower();
    state_ = TState::Inside;
    if (lostMark) Warn(QStringLiteral("the line -1 that ends the data set before it is missing"));
    return true;
  }
  return false;
}

void TUniversalReading::EndSet() {
  while (Next()) {
  }
  if (state_ != TState::Cut) return;
  findings_.Warn(type_, begin_, QStringLiteral("the end of the file cuts the data set"));
}

bool TUniversalReading::Next() {
  if (state_ != TState::Inside || !Tick()) return false;
  if (!lines_.Next()) {
    state_ = TState::Cut;
  } else if (IsMark(Line())) {
    state_ = TState::Ended;
  }
  return state_ == TState::Inside;
}

void TUniversalReading::Back() {
  if (state_ == TState::Inside) lines_.Back();
}

/// Tells the progress, and throws before the memory of the system runs out; false once the user has
/// cancelled.
bool TUniversalReading::Tick() {
  constexpr std::size_t kTellEvery = std::size_t{1} << 20;
  const std::size_t position = lines_.Behind();
  if (position - ticked_ < kTellEvery) return true;
  ticked_ = position;
  if (AvailableMemory() == 0) throw std::bad_alloc();
  const double part = static_cast<double>(position) / static_cast<double>(lines_.Text().size());
  if (!progress_ || progress_(part)) return true;
  findings_.Cancel();
  state_ = TState::Cancelled;
  return false;
}

/// Memory of the job besides the nodes and their values.
std::size_t TUniversalReading::Taken() const {
  return Job.Elements.size() * sizeof(TJobElement) + Job.Corners.size() * sizeof(std::int32_t) +
         Job.Shapes.size() * sizeof(TJobShape) + Job.Functions.size() * sizeof(TMeasuredFunction);
}

QString TUniversalReading::ReadText() {
  return Next() ? FromBytes(Trimmed(Line()).substr(0, kLongestLine)) : QString();
}

int TUniversalReading::ReadInts(std::span<std::int32_t> ints) {
  if (!Next()) return 0;
  return ReadColumns(Line(), {.Ints = static_cast<int>(ints.size())}, ints.data(), nullptr);
}

int TUniversalReading::ReadReals(std::span<double> reals, int perLine, int width) {
  int count = 0;
  const int all = static_cast<int>(reals.size());
  const bool anyWidth = width == kAnyWidth;
  while (count < all && Next()) {
    // How many a line of any width holds is not known, but reals have a point, what follows has
    // not.
    if (anyWidth && count > 0 && Line().find('.') == std::string_view::npos) {
      Back();
      break;
    }
    const int wanted = std::min(perLine, all - count);
    const int found =
        ReadColumns(Line(), {.Reals = wanted, .RealWidth = width}, nullptr, reals.data() + count);
    if (found == 0) Back();
    count += found;
    if (found < wanted && (!anyWidth || found == 0)) break;
  }
  return count;
}

void TUniversalReading::LeaveOutStray(const QString& expected) {
  if (Trimmed(Line()).empty()) return;
  LeaveOutLine(QStringLiteral("the line holds no whole %1").arg(expected));
}

bool IsMark(std::string_view line) {
  constexpr std::string_view kMark = "    -1";
  return line.substr(0, kMark.size()) == kMark && Trimmed(line.substr(kMark.size())).empty();
}

std::string_view TypeOn(std::string_view line) {
  constexpr std::size_t kLongestNumber = 5;
  line = Trimmed(line);
  const std::size_t digits = std::min(line.find_first_not_of("0123456789"), line.size());
  if (digits == 0 || digits > kLongestNumber) return {};
  const bool binary = line.substr(digits, 1) == "b" || line.substr(digits, 1) == "B";
  const std::string_view type = line.substr(0, digits + (binary ? 1 : 0));
  const std::string_view behind = line.substr(type.size());
  // Binary sets say on the same line how long they are.
  return behind.empty() || (binary && behind.front() == ' ') ? type : std::string_view();
}
