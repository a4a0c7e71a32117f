#include "components/channels/Statset.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <string>

#include "model/Datetime.h"
#include "model/Textscanner.h"

namespace {

struct TIntervalRow {
  int length;
  const char* text;
};
constexpr std::array<TIntervalRow, kStatIntervals> kIntervals = {{{60, "Last minute"},
                                                                  {60, "Last hour"},
                                                                  {24, "Last 24 hours"},
                                                                  {30, "Last month"},
                                                                  {12, "Last year"},
                                                                  {200, "All years"}}};

/// Days of 1 January of the year 1 and of the end of the year 9999.
constexpr double kFirstDay = -693593.0;
constexpr double kEndDay = 2958466.0;

/// What printf makes of "%0.<digits>lf" or "%0.<digits>E" in the "C" locale.
void Append(std::string& text, double value, std::chars_format format, int digits) {
  char buffer[400];
  const auto end = std::to_chars(std::begin(buffer), std::end(buffer), value, format, digits);
  std::replace(std::begin(buffer), end.ptr, 'e', 'E');
  if (!text.empty()) text += ' ';
  text.append(buffer, end.ptr);
}

}  // namespace

int Ordinal(TStatInterval interval) {
  const auto bits = static_cast<unsigned>(interval);
  if (!std::has_single_bit(bits) || bits > static_cast<unsigned>(si1_Year)) return -1;
  return std::countr_zero(bits);
}

TStatInterval IntervalAt(int ordinal) { return static_cast<TStatInterval>(1 << ordinal); }

int HistoryLength(TStatInterval interval) {
  const int ordinal = Ordinal(interval);
  return ordinal < 0 ? 60 : kIntervals[static_cast<std::size_t>(ordinal)].length;
}

QString IntervalText(TStatInterval interval) {
  const int ordinal = Ordinal(interval);
  if (ordinal < 0) return {};
  return QString::fromLatin1(kIntervals[static_cast<std::size_t>(ordinal)].text);
}

bool IsHistoryTime(double time) { return time >= kFirstDay && time < kEndDay; }

namespace {

constexpr double kTolerance = 0.0005 / kSecondsPerDay;

}  // namespace

bool ReachesEnd(double time, double end) { return time >= end - kTolerance; }

bool PassesEnd(double time, double end) { return time > end + kTolerance; }

bool TStatSet::Merge(const TStatSet& other) {
  if (other.Count == 0.0) return true;
  const double count = Count + other.Count;
  const double sum = Sum + other.Sum;
  const double sqSum = SqSum + other.SqSum;
  // Each of them times zero is zero, or else not a number.
  const double zero = 0.0 * count + 0.0 * sum + 0.0 * sqSum + 0.0 * other.Max + 0.0 * other.Min;
  if (zero != 0.0 || !(other.Count >= 1.0)) return false;
  Max = Count > 0.0 ? std::max(Max, other.Max) : other.Max;
  Min = Count > 0.0 ? std::min(Min, other.Min) : other.Min;
  Count = count;
  Sum = sum;
  SqSum = sqSum;
  return true;
}

void TStatSet::ComputeMoments() {
  Mean = Count > 0.0 ? Sum / Count : 0.0;
  const double variance = Count > 1.0 ? (Count * SqSum - Sum * Sum) / ((Count - 1.0) * Count) : 0.0;
  StDev = variance > 0.0 && std::isfinite(variance) ? std::sqrt(variance) : 0.0;
}

void TStatSet::RescaleData(const TCalibration& from, const TCalibration& to) {
  // The values go through a straight line: a x value + b.
  const double a = to.ScaleFactor / from.ScaleFactor;
  const double b = Rescale(0.0, from, to);
  TStatSet result = *this;
  result.Sum = a * Sum + b * Count;
  result.SqSum = a * a * SqSum + 2.0 * a * b * Sum + b * b * Count;
  result.Max = Rescale(Max, from, to);
  result.Min = Rescale(Min, from, to);
  if (a < 0.0) std::swap(result.Max, result.Min);
  result.Mean = Rescale(Mean, from, to);
  result.StDev = std::abs(a) * StDev;
  *this = result.IsValid() ? result : TStatSet{.Time = Time};
}

double TStatSet::Value(TStatValue value) const {
  switch (value) {
    case svMax:
      return Max;
    case svMin:
      return Min;
    case svStDev:
      return StDev;
    case svTime:
      return Time;
    default:
      return Mean;
  }
}

double TStatSet::ShownValue(TStatValue value) const {
  TStatSet shown = *this;
  if (shown.Count > 0.0) shown.ComputeMoments();
  return shown.Value(value);
}

bool TStatSet::IsValid() const {
  // Each of them times zero is zero, or else not a number.
  const double zero =
      0.0 * Count + 0.0 * Sum + 0.0 * SqSum + 0.0 * Max + 0.0 * Min + 0.0 * Mean + 0.0 * StDev;
  return zero == 0.0 && (Count == 0.0 || Count >= 1.0) && IsHistoryTime(Time);
}

QString TStatSet::GetAsText() const {
  std::string text;
  Append(text, Time, std::chars_format::fixed, 8);
  for (const double value : {Mean, Max, Min, StDev}) {
    Append(text, value, std::chars_format::scientific, 5);
  }
  Append(text, Count, std::chars_format::fixed, 0);
  for (const double value : {Sum, SqSum}) Append(text, value, std::chars_format::scientific, 6);
  return QString::fromLatin1(text.c_str());
}

QString TStatSet::GetStatSetHeader() {
  return QStringLiteral("Time Mean Max Min StDev Count Sum Sum2");
}

bool TStatSet::ScanFromText(QStringView text) {
  const QByteArray bytes = text.toLatin1();
  TTextScanner scanner({bytes.constData(), static_cast<std::size_t>(bytes.size())});
  TStatSet read;
  scanner.SkipWhiteSpace();
  const std::size_t start = scanner.Position();
  if (!scanner.ReadReal(read.Time)) {
    const std::size_t end = scanner.Text().find_first_of(" \t\r\n", start);
    if (end == std::string_view::npos) return false;
    scanner.SetPosition(end);
    if (!scanner.ReadReal(read.Time)) return false;
  }
  for (double* value :
       {&read.Mean, &read.Max, &read.Min, &read.StDev, &read.Count, &read.Sum, &read.SqSum}) {
    if (!scanner.ReadReal(*value)) return false;
  }
  scanner.SkipWhiteSpace();
  if (!scanner.AtEnd() || !read.IsValid()) return false;
  *this = read;
  return true;
}
