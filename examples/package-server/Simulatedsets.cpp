#include "examples/package-server/Simulatedsets.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "model/Datetime.h"
#include "model/Timer.h"

namespace {

/// A number between -1 and 1 that looks drawn by chance, made of its place alone.
double Noise(std::uint64_t row, std::uint64_t channel) {
  std::uint64_t bits = (row + 1) * 0x9E3779B97F4A7C15u ^ (channel + 1) * 0xD1B54A32D192ED03u;
  bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9u;
  bits = (bits ^ bits >> 27) * 0x94D049BB133111EBu;
  return static_cast<double>(bits >> 11) / static_cast<double>(std::uint64_t{1} << 52) - 1.0;
}

}  // namespace

double TSimulatedSet::Value(std::int64_t row, std::size_t channel) const {
  const TSimulatedChannel& c = Channels[channel];
  const double seconds = static_cast<double>(row) / RateHz;
  const double angle = 2.0 * std::numbers::pi * c.FrequencyHz * seconds;
  return c.Level + c.Swing * std::sin(angle + static_cast<double>(channel)) +
         c.Noise * Noise(static_cast<std::uint64_t>(row), channel);
}

TDateTime TSimulatedSet::RowTime(TDateTime start, std::int64_t row) const {
  return TDateTime(start.Days() + static_cast<double>(row) / RateHz / kSecondsPerDay);
}

QByteArray TSimulatedSet::Package(TDateTime start, std::int64_t first) const {
  const bool stamped = Tag == "data";
  const auto stamp = [&](std::int64_t row) {
    return TStopWatch::MakeDateTimeStr(RowTime(start, row)).toLatin1();
  };
  QByteArray text = "<" + Tag + " id=\"" + Id + "\"";
  if (!stamped) text += " time=\"" + stamp(first) + "\"";
  text += ">\r\n";
  for (std::int64_t row = first; row < first + RowsPerPackage; ++row) {
    if (stamped) text += stamp(row) + ' ';
    for (std::size_t channel = 0; channel < Channels.size(); ++channel) {
      if (channel > 0) text += ' ';
      text += QByteArray::number(Value(row, channel), 'f', Channels[channel].Decimals);
    }
    text += "\r\n";
  }
  return text + "</" + Tag + ">\r\n";
}

std::vector<TSimulatedSet> MastAndWeather() {
  return {{"data",
           "mast",
           100.0,
           10,
           {{0.0, 0.80, 0.35, 0.02, 4},
            {0.0, 0.55, 0.37, 0.02, 4},
            {0.0, 0.30, 1.90, 0.05, 4},
            {1.0, 0.02, 2.10, 0.01, 4}}},
          {"wind",
           "tower",
           1.0,
           1,
           {{8.5, 2.5, 0.05, 1.2, 2}, {231.0, 12.0, 0.02, 6.0, 1}, {11.3, 0.4, 0.001, 0.1, 2}}}};
}

QByteArray Recording(const std::vector<TSimulatedSet>& sets, TDateTime start, double seconds) {
  struct TDue {
    double seconds;
    const TSimulatedSet* set;
    std::int64_t first;
  };
  std::vector<TDue> packages;
  for (const TSimulatedSet& set : sets) {
    for (std::int64_t first = 0;; first += set.RowsPerPackage) {
      const double due = static_cast<double>(first + set.RowsPerPackage - 1) / set.RateHz;
      if (!(due < seconds)) break;
      packages.push_back({due, &set, first});
    }
  }
  std::ranges::stable_sort(packages, {}, &TDue::seconds);
  QByteArray text;
  for (const TDue& package : packages) text += package.set->Package(start, package.first);
  return text;
}
