#pragma once

#include <QByteArray>
#include <QString>

#include "components/links/Propclasses.h"
#include "model/Datetime.h"

/// Settings of a serial line and of the measuring device behind it. They take effect when a port is
/// opened next. A member of its owner; GUI thread only.
class TQLXSettings : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(TQLXBaudRate BaudRate READ GetBaudRate WRITE SetBaudRate)
  Q_PROPERTY(TStopBits StopBits READ GetStopBits WRITE SetStopBits)
  Q_PROPERTY(TDataBits DataBits READ GetDataBits WRITE SetDataBits)
  Q_PROPERTY(TParityBits Parity READ GetParity WRITE SetParity)
  Q_PROPERTY(TDTRFlowControl ControlDTR READ GetControlDTR WRITE SetControlDTR)
  Q_PROPERTY(TRTSFlowControl ControlRTS READ GetControlRTS WRITE SetControlRTS)
  Q_PROPERTY(QString PortNum READ GetPortNum WRITE SetPortNum)
  Q_PROPERTY(int InBufSize READ GetInBufSize WRITE SetInBufSize)
  Q_PROPERTY(int OutBufSize READ GetOutBufSize WRITE SetOutBufSize)
  Q_PROPERTY(TQLXResolution Resolution READ GetResolution WRITE SetResolution)
  Q_PROPERTY(TQLXFlowControl ControlQLX READ GetControlQLX WRITE SetControlQLX)
  Q_PROPERTY(double QLXSampleRate READ GetQLXSampleRate WRITE SetQLXSampleRate)

 public:
  /// Speed of the line in baud.
  enum TQLXBaudRate : int { brs9600, brs19200, brs38400, brs57600, brs115200 };
  Q_ENUM(TQLXBaudRate)
  enum TStopBits : int { sbOneStopBit, sbOne5StopBits, sbTwoStopBits };
  Q_ENUM(TStopBits)
  enum TDataBits : int { dbFive, dbSix, dbSeven, dbEight };
  Q_ENUM(TDataBits)
  enum TParityBits : int { prNone, prOdd, prEven, prMark, prSpace };
  Q_ENUM(TParityBits)
  /// What drives the DTR line: nothing, a constant level, or the receive queue.
  enum TDTRFlowControl : int { dtrDisable, dtrEnable, dtrHandshake };
  Q_ENUM(TDTRFlowControl)
  /// What drives the RTS line; rtsToggle raises it while bytes wait to be sent.
  enum TRTSFlowControl : int { rtsDisable, rtsEnable, rtsHandshake, rtsToggle };
  Q_ENUM(TRTSFlowControl)
  /// Bits of a sample; rs16bitsOld is the request of older devices.
  enum TQLXResolution : int { rs16bits, rs24bits, rs16bitsOld };
  Q_ENUM(TQLXResolution)
  /// The device streams (sfcHardware) or is polled (sfcSoftware).
  enum TQLXFlowControl : int { sfcHardware, sfcSoftware };
  Q_ENUM(TQLXFlowControl)

  using TPersistent::TPersistent;

  TQLXBaudRate GetBaudRate() const { return baudRate_; }
  TStopBits GetStopBits() const { return stopBits_; }
  TDataBits GetDataBits() const { return dataBits_; }
  TParityBits GetParity() const { return parity_; }
  TDTRFlowControl GetControlDTR() const { return controlDTR_; }
  TRTSFlowControl GetControlRTS() const { return controlRTS_; }
  TQLXFlowControl GetControlQLX() const { return controlQLX_; }
  /// "COM1" to "COM16".
  const QString& GetPortNum() const { return portNum_; }
  /// Bytes.
  int GetInBufSize() const { return inBufSize_; }
  int GetOutBufSize() const { return outBufSize_; }
  TQLXResolution GetResolution() const { return resolution_; }
  /// Samples per second.
  double GetQLXSampleRate() const { return sampleRate_; }

  /// A number that is none of the enumeration's is ignored, here and in its siblings.
  void SetBaudRate(TQLXBaudRate rate) { StoreChoice(baudRate_, rate, brs115200); }
  void SetStopBits(TStopBits bits) { StoreChoice(stopBits_, bits, sbTwoStopBits); }
  void SetDataBits(TDataBits bits) { StoreChoice(dataBits_, bits, dbEight); }
  void SetParity(TParityBits parity) { StoreChoice(parity_, parity, prSpace); }
  void SetControlDTR(TDTRFlowControl control) { StoreChoice(controlDTR_, control, dtrHandshake); }
  void SetControlRTS(TRTSFlowControl control) { StoreChoice(controlRTS_, control, rtsToggle); }
  void SetControlQLX(TQLXFlowControl mode) { StoreChoice(controlQLX_, mode, sfcSoftware); }
  /// Stores the canonical name, see ComString.
  virtual void SetPortNum(const QString& name) { Store(portNum_, ComString(name)); }
  /// A negative size is ignored.
  void SetInBufSize(int bytes);
  void SetOutBufSize(int bytes);
  /// Ignored while connected.
  void SetResolution(TQLXResolution resolution);
  /// Ignored unless 40 <= rate <= 800.
  void SetQLXSampleRate(double rate);

  /// Whether a device is open with these settings.
  virtual bool GetConnected() const { return false; }
  /// Tries other settings out and says in one sentence what came of it; empty if it cannot.
  virtual QString TryDevice(const TQLXSettings& settings) const {
    Q_UNUSED(settings)
    return {};
  }

  /// What the resolution means on the line.
  int BytesPerSample() const { return resolution_ == rs24bits ? 3 : 2; }
  /// Three bytes: two letters and a carriage return.
  QByteArray DataRequest() const;
  /// Days from one streamed sample to the next.
  double TimeIncrement() const { return 1.0 / (kSecondsPerDay * sampleRate_); }

  /// The canonical name of a port: "COM" and its number, whether the text has a "COM" before the
  /// number or not. Anything but a number from 1 to 16 counts as 1.
  static QString ComString(const QString& name);

  void AssignTo(TPersistent* destination) const override;
  /// All published settings are equal, whatever else the two objects are.
  bool SameAs(const TPersistent* other) const override;

 private:
  template <class T>
  void StoreChoice(T& field, T value, T last) {
    if (value >= 0 && value <= last) Store(field, value);
  }

  TQLXBaudRate baudRate_ = brs38400;
  TStopBits stopBits_ = sbOneStopBit;
  TDataBits dataBits_ = dbEight;
  TParityBits parity_ = prNone;
  TDTRFlowControl controlDTR_ = dtrDisable;
  TRTSFlowControl controlRTS_ = rtsEnable;
  TQLXFlowControl controlQLX_ = sfcHardware;
  QString portNum_ = QStringLiteral("COM1");
  int inBufSize_ = 1200;
  int outBufSize_ = 1200;
  TQLXResolution resolution_ = rs24bits;
  double sampleRate_ = 100.0;
};

/// Every speed that a serial line may have.
enum TBaudRate : int {
  br110,
  br300,
  br600,
  br1200,
  br2400,
  br4800,
  br9600,
  br14400,
  br19200,
  br38400,
  br56000,
  br57600,
  br115200,
  br128000,
  br256000
};

// The numbers that a serial driver takes for the enumerations.

/// In baud; 0 for a number that is none of the enumeration's.
int BaudRateToInt(TBaudRate rate);
int QLXBaudRateToInt(TQLXSettings::TQLXBaudRate rate);
/// 0 to 4: none, odd, even, mark, space.
quint8 ParityBitsToByte(TQLXSettings::TParityBits parity);
/// 0 to 2: 1, 1.5, 2 stop bits.
quint8 StopBitsToByte(TQLXSettings::TStopBits bits);
/// 5 to 8.
quint8 DataBitsToByte(TQLXSettings::TDataBits bits);
/// 0 to 2: low, high, handshake.
int DTRControlToInt(TQLXSettings::TDTRFlowControl control);
/// 0 to 3: low, high, handshake, toggle.
int RTSControlToInt(TQLXSettings::TRTSFlowControl control);
