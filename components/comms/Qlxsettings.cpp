#include "components/comms/Qlxsettings.h"

#include <array>

namespace {

template <std::size_t N>
int Lookup(const std::array<int, N>& table, int index) {
  return index >= 0 && index < static_cast<int>(N) ? table[static_cast<std::size_t>(index)] : 0;
}

}  // namespace

void TQLXSettings::SetInBufSize(int bytes) {
  if (bytes >= 0) Store(inBufSize_, bytes);
}

void TQLXSettings::SetOutBufSize(int bytes) {
  if (bytes >= 0) Store(outBufSize_, bytes);
}

void TQLXSettings::SetResolution(TQLXResolution resolution) {
  if (!GetConnected()) StoreChoice(resolution_, resolution, rs16bitsOld);
}

void TQLXSettings::SetQLXSampleRate(double rate) {
  if (rate >= 40.0 && rate <= 800.0) Store(sampleRate_, rate);
}

QByteArray TQLXSettings::DataRequest() const {
  switch (resolution_) {
    case rs16bits:
      return QByteArrayLiteral("cr\r");
    case rs24bits:
      return QByteArrayLiteral("mr\r");
    case rs16bitsOld:
      break;
  }
  return QByteArrayLiteral("sr\r");
}

QString TQLXSettings::ComString(const QString& name) {
  constexpr int kPorts = 16;
  const bool hasPrefix = name.left(3).toUpper() == QStringLiteral("COM");
  bool isNumber = false;
  const int number = (hasPrefix ? name.mid(3) : name).toInt(&isNumber);
  const bool exists = isNumber && number >= 1 && number <= kPorts;
  return QStringLiteral("COM%1").arg(exists ? number : 1);
}

/// The number of the port goes last: an open port opens anew with it, and with all the others.
void TQLXSettings::AssignTo(TPersistent* destination) const {
  const QPointer<TQLXSettings> settings(qobject_cast<TQLXSettings*>(destination));
  if (!settings) return;
  TQLXSettings others;
  TPersistent::AssignTo(&others);
  const QString portNum = portNum_;  // a listener may destroy this object
  others.SetPortNum(settings->GetPortNum());
  others.TPersistent::AssignTo(settings);
  if (settings) settings->SetPortNum(portNum);
}

bool TQLXSettings::SameAs(const TPersistent* other) const {
  if (!qobject_cast<const TQLXSettings*>(other)) return false;
  TQLXSettings mine, theirs;  // of one class, whatever the two are
  TPersistent::AssignTo(&mine);
  other->TPersistent::AssignTo(&theirs);
  return mine.TPersistent::SameAs(&theirs);
}

int BaudRateToInt(TBaudRate rate) {
  static constexpr std::array kBaud = {110,   300,   600,   1200,  2400,   4800,   9600,  14400,
                                       19200, 38400, 56000, 57600, 115200, 128000, 256000};
  return Lookup(kBaud, rate);
}

int QLXBaudRateToInt(TQLXSettings::TQLXBaudRate rate) {
  static constexpr std::array kBaud = {9600, 19200, 38400, 57600, 115200};
  return Lookup(kBaud, rate);
}

quint8 ParityBitsToByte(TQLXSettings::TParityBits parity) { return static_cast<quint8>(parity); }

quint8 StopBitsToByte(TQLXSettings::TStopBits bits) { return static_cast<quint8>(bits); }

quint8 DataBitsToByte(TQLXSettings::TDataBits bits) { return static_cast<quint8>(bits + 5); }

int DTRControlToInt(TQLXSettings::TDTRFlowControl control) { return control; }

int RTSControlToInt(TQLXSettings::TRTSFlowControl control) { return control; }
