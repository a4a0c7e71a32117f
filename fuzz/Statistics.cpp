// Stored statistics: histories in both forms, the texts of channel sets, and statistics files. What
// is taken writes back to the same; what is refused changes nothing.

#include "components/channels/Statsfile.h"

#include <QCoreApplication>
#include <cstdint>
#include <cstdlib>

#include "components/channels/Channelset.h"

namespace {

void Check(bool right) {
  if (!right) std::abort();
}

void Histories(const QByteArray& data) {
  TChannelStatistics statistics;
  const QByteArray empty = statistics.WriteBinaryData();
  if (statistics.ReadBinaryData(data)) {
    TChannelStatistics again;
    Check(again.ReadBinaryData(statistics.WriteBinaryData()));
    Check(again.WriteBinaryData() == statistics.WriteBinaryData());
    statistics.RescaleData({}, {.ScaleFactor = 1e200, .Offset = -1e300});
    Check(again.ReadBinaryData(statistics.WriteBinaryData()));
  } else {
    Check(statistics.WriteBinaryData() == empty);
  }
  TChannelStatistics text;
  if (text.ReadData(QString::fromLatin1(data))) {
    TChannelStatistics again;
    Check(again.ReadData(text.WriteData()));
    Check(again.WriteData() == text.WriteData());
  } else {
    Check(text.WriteBinaryData() == empty);
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
      for (const TStatsBlock& block : ParseStats(bytes).Blocks) Check(block.Layout >= 0);
  }
  return 0;
}
