#pragma once

#include <QByteArrayView>
#include <functional>
#include <memory>

#include "components/comms/Polling.h"
#include "components/comms/Qlxdriver.h"
#include "components/comms/Qlxpacket.h"
#include "components/comms/Qlxsettings.h"
#include "components/comms/Stampclock.h"
#include "model/Timer.h"

class QWidget;

/// A serial measuring device: opens its port, sends it commands, and lets it stream packets or
/// polls it for one after another. Each packet goes to the data event. A published member of its
/// owner; GUI thread only.
///
/// Any of its events may close the port, change it or destroy it.
class TQLXPort : public TQLXSettings {
  Q_OBJECT

 public:
  /// Takes a packet: values[0] is its time in days since 30 December 1899, the inputs follow; they
  /// are valid during the call. `count` includes the time.
  using TDataEvent = std::function<void(QObject* sender, const double* values, int count)>;

  /// `makeDriver` is asked for a driver each time the port opens; the rows are stamped by `time`.
  explicit TQLXPort(QObject* owner = nullptr, TDriverFactory makeDriver = MakeSystemDriver,
                    TTimeSource time = {});
  /// Switches AutoRun off and closes the port, without an event.
  ~TQLXPort() override;

  bool GetConnected() const override { return connected_; }
  /// Opens or closes the port.
  void SetConnected(bool connected);
  /// Opens the port and starts to read. A port that cannot be opened is closed, and fires OnClose.
  void Open();
  /// Also switches AutoRun off, but leaves the device as it is. A port whose device has gone closes
  /// itself.
  void Close();
  /// The port that is open, or was last: PortNum may have changed since.
  const QString& GetLineName() const { return lineName_; }
  /// Why the port could not be opened, or was lost; empty while it is open and after Close.
  const QString& GetErrorText() const { return errorText_; }

  /// Opens a connected port anew, and starts AutoRun on it again.
  void SetPortNum(const QString& name) override;

  // Each hands its settings to the driver; nothing happens while the port is closed.
  /// False if the device refuses; Open then fails.
  bool ApplyDCB();
  void ApplyBuffer();
  /// Reads return at once with what is there, as they do with every driver: nothing is to be set.
  void ApplyTimeouts() {}

  /// Returns the count of bytes sent, 0 on failure.
  int SendQLXCommand(const QByteArray& command);
  /// Waits after a command that was sent. The thread is blocked meanwhile.
  int SendQLXCommand(const QByteArray& command, int delayMs);
  /// Empties both queues, sends a command, waits and returns at most 128 bytes of what came.
  QByteArray GetAnswerToQLXCommand(const QByteArray& command, int delayMs);
  /// Drops what waits in the driver's queues.
  void ClearBuffer(bool input, bool output);
  /// Bytes that wait in the driver's queues.
  int GetInputCount() { return connected_ ? driver_->InputCount() : 0; }
  int GetOutputCount() { return connected_ ? driver_->OutputCount() : 0; }
  /// Clears the device, and drops a packet of which a part has come.
  void ClearPort();

  bool GetAutoRun() const { return autoRun_; }
  /// On: asks the device how long its packets are, and starts it; a port that cannot be opened
  /// leaves AutoRun off. Off: the device is left in its polled loop with loop-read off, and the
  /// port closed. Blocks for 100 ms per command.
  void SetAutoRun(bool on);
  /// AutoRun is being switched on: the port opens and closes once, to try the device.
  bool IsStarting() const { return starting_ && autoRun_; }
  /// Asks the device how long its packets are and selects its loop. Opens the port and closes it.
  void InitAutoRunParameters();
  /// A tick of polling: requests a packet unless two requests are unanswered; a lost answer is
  /// given up after 21 ticks.
  void AskForData();
  /// Takes what the driver has received, 64 KiB at most: more is left for the next tick. Sees first
  /// whether the wall clock has jumped.
  void ReadPort();
  /// Decodes received bytes and fires the data event for each packet. Ends after a marker packet:
  /// what follows it waits for the next call, unless there is no room for it.
  void ReadSignal(const char* data, int count);

  /// Bytes of a packet behind its length byte; 0 while that is not known.
  int GetPacketLength() const { return decoder_.PacketLength(); }
  /// Values of a packet, its time among them.
  int GetValueCount() const { return valueCount_; }
  /// What was no packet since the port was opened.
  const TQLXDecoder::TSkipped& GetSkipped() const { return decoder_.Skipped(); }
  /// What has come lately is mostly no packet. If packets are found in it, that is by chance.
  bool IsNoisy() const { return noise_.IsNoisy(); }

  /// Lets the user edit the settings.
  void ShowSetupDialog(QWidget* parent = nullptr);
  /// Tries other settings out on a port of their own and says in one sentence what came of it.
  QString TryDevice(const TQLXSettings& settings) const override;

  void SetOnData(TDataEvent event);

 signals:
  void OnOpen(QObject* sender);
  /// Also after a port could not be opened.
  void OnClose(QObject* sender);
  /// The wall clock has jumped by so many seconds, and the stamps with it.
  void OnClockJump(QObject* sender, double seconds);
  /// Bytes have been received, or sent. They are valid during the call.
  void OnTraffic(QByteArrayView bytes, bool sent);

 private:
  bool SetupComPort();
  void FailToOpen(const QString& reason);
  void ForgetBytes();
  /// The device streams; a mode that is set during AutoRun counts from the next one on.
  bool Streams() const { return (autoRun_ ? runMode_ : GetControlQLX()) == sfcHardware; }
  void StartAutoRun();
  void StopDevice();
  void ProbeDevice();
  void AskPacketLength();
  void RequestData();
  void FollowClock();
  void ReadBlocks();
  void ResumeBehind(std::int64_t lostBytes);
  /// False if an event made the bytes that follow worthless, or destroyed the port.
  bool Decode(bool needsRoom);
  /// When the bytes came that are being decoded.
  double ReceiveTime() const { return clock_.Now() - age_; }
  void ReadTick(QObject*) { ReadPort(); }
  void RequestTick(QObject*) { AskForData(); }

  TDriverFactory makeDriver_;
  std::unique_ptr<TSerialDriver> driver_;  ///< null while closed
  bool connected_ = false;
  bool autoRun_ = false;
  bool starting_ = false;                  ///< AutoRun is: the port opens and closes on the way
  TQLXFlowControl runMode_ = sfcHardware;  ///< what AutoRun was started with
  bool reading_ = false;
  QString lineName_;
  QString errorText_;

  TQLXDecoder decoder_;
  unsigned session_ = 0;  ///< counts how often undecoded bytes were dropped
  int valueCount_ = 0;
  std::shared_ptr<const TDataEvent> onData_;  ///< shared, since the event may replace itself
  TNoiseMeter noise_;

  TStampClock clock_;
  double age_ = 0.0;  ///< days since the bytes came that are being decoded

  TTimerClient readTimer_;
  TTimerClient requestTimer_;
  TPolling polling_;
};
