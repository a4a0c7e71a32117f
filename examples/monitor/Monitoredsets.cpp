#include "examples/monitor/Monitoredsets.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double kNoLimit = std::numeric_limits<double>::infinity();

struct TChannelRow {
  QString Label;
  QString Units;
  int Digits;
  double Min = -kNoLimit;
  double Max = kNoLimit;
  double WarningLevel = 0.0;
};

void SetUpLimits(TLimitLevels& limits, const TChannelRow& row) {
  limits.SetLimitMin(row.Min);
  limits.SetLimitMax(row.Max);
  limits.SetCheckMin(std::isfinite(row.Min));
  limits.SetCheckMax(std::isfinite(row.Max));
  limits.SetWarningLevel(row.WarningLevel);
}

TChannelSet& AddSet(TChannelSource& source, const QString& label, int rows,
                    const std::vector<TChannelRow>& channels) {
  TChannelSet& set = *source.GetSets()->Add();
  set.SetLabel(label);
  set.SetRows(rows);
  set.SetCount(static_cast<int>(channels.size()));
  for (int i = 0; i < set.GetCount(); ++i) {
    const TChannelRow& row = channels[static_cast<std::size_t>(i)];
    TChannel& channel = *set.GetChannels()->GetItem(i);
    channel.SetLabel(row.Label);
    channel.SetUnits(row.Units);
    channel.GetNumFormat()->SetFormat(TNumberFormat::ffFixed);
    channel.GetNumFormat()->SetDigits(row.Digits);
    channel.GetStats()->SetIntervals(si1_Second, si1_Year);
    SetUpLimits(*channel.GetStats()->GetLimits(), row);
  }
  return set;
}

void AddMachine(TChannelSource& source, double rate) {
  constexpr int kInputs = 16;
  constexpr double kLeastSample = -8388600.0;  // as the decoder gives it
  constexpr double kVoltsPerStep = 10.0 / 8388608.0;
  std::vector<TChannelRow> rows = {{QStringLiteral("Packets"), {}, 0}};
  for (int input = 2; input <= kInputs; ++input) {
    rows.push_back({QStringLiteral("Input %1").arg(input), QStringLiteral("V"), 3, -8.0, 8.0, 1.0});
  }
  const int blockRows = static_cast<int>(std::lround(rate / 10.0));  // a tenth of a second
  TChannelSet& set = AddSet(source, QStringLiteral("Machine"), blockRows, rows);
  set.GetChannels()->GetItem(0)->SetOffset(-kLeastSample);
  for (int i = 1; i < kInputs; ++i) set.GetChannels()->GetItem(i)->SetScaleFactor(kVoltsPerStep);
}

void AddMast(TChannelSource& source) {
  const QString unit = QStringLiteral("m/s\u00b2");
  TChannelSet& set = AddSet(source, QStringLiteral("Mast"), 10,
                            {{QStringLiteral("Top, along"), unit, 3, -0.85, 0.85, 0.15},
                             {QStringLiteral("Top, across"), unit, 3, -0.85, 0.85, 0.15},
                             {QStringLiteral("Middle, along"), unit, 3, -0.345, 0.345, 0.05},
                             {QStringLiteral("Foot, vertical"), unit, 3}});
  set.SetXMLTag(QStringLiteral("data"));
  set.SetSetID(QStringLiteral("mast"));
}

void AddWeather(TChannelSource& source) {
  TChannelSet& set =
      AddSet(source, QStringLiteral("Weather"), 1,
             {{QStringLiteral("Wind speed"), QStringLiteral("m/s"), 1, -kNoLimit, 11.5, 1.5},
              {QStringLiteral("Wind direction"), QStringLiteral("\u00b0"), 0},
              {QStringLiteral("Temperature"), QStringLiteral("\u00b0C"), 1, 0.0, 35.0, 2.0}});
  set.SetXMLTag(QStringLiteral("wind"));
  set.SetSetID(QStringLiteral("tower"));
}

}  // namespace

void AddMonitoredSets(TChannelSource& source, double deviceRate) {
  AddMast(source);
  AddWeather(source);
  AddMachine(source, deviceRate);
}

TStatSet Summary(const TChannelStatistics& statistics, TStatInterval interval) {
  TStatSet all;
  for (int i = 0; i < statistics.Count(); ++i) {
    const TStatHistory& history = *statistics.Get(i);
    const bool isLast = history.Interval() >= interval;
    const int records = isLast ? history.Count() : history.Pending();
    all.Merge(history.Current());
    if (!isLast) all.Merge(history.MadeRoom());
    for (int record = 0; record < records; ++record) all.Merge(history.Get(record));
    if (isLast) break;
  }
  all.ComputeMoments();
  return all;
}

double LatestValue(const TChannelSet& set, const TChannel& channel) {
  const int row = set.GetCurrentRow();
  return set.GetData().At((row > 0 ? row : set.GetRows()) - 1, channel.Column());
}

QString ValueText(TChannel& channel, double value) {
  constexpr double kLongest = 1e8;
  const QString number = std::abs(value) < kLongest ? channel.GetNumFormat()->FormatedValue(value)
                                                    : QString::number(value, 'g', 6);
  const QString& units = channel.GetUnits();
  return units.isEmpty() ? number : number + ' ' + units;
}

QString LimitsText(TChannel& channel) {
  const TLimits& limits = channel.GetStats()->GetLimits()->Values();
  QStringList sides;
  const auto add = [&](bool checked, const QString& word, double limit, double warning) {
    if (!checked) return;
    sides << QStringLiteral("alarm %1 %2, warning from %3 on")
                 .arg(word, ValueText(channel, limit), ValueText(channel, warning));
  };
  add(limits.CheckMax, QStringLiteral("above"), limits.Max, limits.Max - limits.WarningLevel);
  add(limits.CheckMin, QStringLiteral("below"), limits.Min, limits.Min + limits.WarningLevel);
  QString text = sides.join(QStringLiteral("\n"));
  if (!text.isEmpty()) text[0] = text[0].toUpper();
  return text;
}
