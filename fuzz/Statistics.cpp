// Stored statistics: histories in both forms, the texts of channel sets, and statistics files. What
// is taken writes back to the same and takes more blocks; what is refused changes nothing.

#include "components/channels/Statsfile.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "components/channels/Channelset.h"

namespace {

void Check(bool right) {
  if (!right) std::abort();
}

/// Both forms of what a channel holds can be read again.
void CheckReadable(const TChannelStatistics& statistics) {
  TChannelStatistics again;
  Check(again.ReadBinaryData(statistics.WriteBinaryData()));
  Check(again.WriteBinaryData() == statistics.WriteBinaryData());
  Check(again.ReadData(statistics.WriteData()));
  Check(again.WriteData() == statistics.WriteData());
}

/// Blocks that go on from the time at which the stored ones end, and one before it.
void AddBlocks(TChannelStatistics& statistics) {
  TMatrix block;
  Check(block.Resize(5, 2));
  double time = 45000.0;
  for (int i = 0; i < statistics.Count(); ++i) {
    time = std::max(time, statistics.Get(i)->Current().Time);
  }
  for (const double days : {0.0, 1e-5, 1e-3, 0.1, 2.0, 40.0, 400.0, -1.0, 0.0}) {
    for (int row = 0; row < 5; ++row) block.At(row, 1) = row + 1.0;
    statistics.UpdateStatistics(1, block, time + days);
  }
}

void Histories(const QByteArray& data) {
  TChannelStatistics statistics;
  const QByteArray empty = statistics.WriteBinaryData();
  if (statistics.ReadBinaryData(data)) {
    TChannelStatistics again;
    Check(again.ReadBinaryData(statistics.WriteBinaryData()));
    Check(again.WriteBinaryData() == statistics.WriteBinaryData());
    AddBlocks(statistics);
    CheckReadable(statistics);
    statistics.RescaleData({}, {.ScaleFactor = 1e200, .Offset = -1e300});
    CheckReadable(statistics);
  } else {
    Check(statistics.WriteBinaryData() == empty);
  }
  TChannelStatistics text;
  if (text.ReadData(QString::fromLatin1(data))) {
    TChannelStatistics again;
    Check(again.ReadData(text.WriteData()));
    Check(again.WriteData() == text.WriteData());
    AddBlocks(text);
    CheckReadable(text);
  } else {
    Check(text.WriteBinaryData() == empty);
  }
}

void StatisticsFile(const QByteArray& text) {
  const TStatsContent content = ParseStats(text);
  for (const TStatsBlock& block : content.Blocks) {
    Check(block.Layout >= 0);
    const auto& layout = content.Layouts[static_cast<std::size_t>(block.Layout)];
    Check(block.Channels.size() == layout.size());
    const QByteArray written = StatsHeader(layout) + StatsLine(block.Time, block.Channels, true);
    const TStatsContent again = ParseStats(written);
    Check(again.Blocks.size() == 1 && again.Skipped == 0);
    Check(StatsHeader(again.Layouts[0]) == StatsHeader(layout));
    Check(StatsLine(block.Time, again.Blocks[0].Channels, true) ==
          StatsLine(block.Time, block.Channels, true));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const QByteArray bytes(reinterpret_cast<const char*>(data) + 1, static_cast<qsizetype>(size - 1));
  switch (data[0] % 3) {
    case 0:
      Histories(bytes);
      break;
    case 1: {
      TChannelSets sets;
      const QString before = sets.WriteProperties();
      const bool taken = sets.ReadProperties(QString::fromUtf8(bytes));
      Check(taken || sets.WriteProperties() == before);
      break;
    }
    default:
      StatisticsFile(bytes);
  }
  return 0;
}
