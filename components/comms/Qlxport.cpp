#include "components/comms/Qlxport.h"

#include <array>

#include "components/comms/Portdialog.h"
#include "components/links/Outside.h"
#include "model/Datetime.h"

namespace {

constexpr int kAnswerMs = 100;
constexpr int kBlock = 1024;

// Commands of the device.
const QByteArray kStop = QByteArrayLiteral("\a\r");
const QByteArray kLoopReadOff = QByteArrayLiteral("lroff\r");
const QByteArray kLoopReadOn = QByteArrayLiteral("lron\r");
const QByteArray kStreamingLoop = QByteArrayLiteral("sloop0\r");
const QByteArray kPolledLoop = QByteArrayLiteral("sloop1\r");

}  // namespace

TQLXPort::TQLXPort(QObject* owner, TDriverFactory makeDriver, TTimeSource time)
    : TQLXSettings(owner), makeDriver_(std::move(makeDriver)), clock_(std::move(time)) {
  readTimer_.SetInterval(1);
  readTimer_.SetOnTimer(TNotifyEvent(this, &TQLXPort::ReadTick));
  requestTimer_.SetInterval(1);
  requestTimer_.SetOnTimer(TNotifyEvent(this, &TQLXPort::RequestTick));
}

TQLXPort::~TQLXPort() {
  blockSignals(true);
  if (autoRun_) StopDevice();
}

void TQLXPort::SetConnected(bool connected) {
  if (connected) {
    Open();
  } else {
    Close();
  }
}

void TQLXPort::Open() {
  if (connected_) return;
  lineName_ = GetPortNum();
  if (const QString why = RestRefusal(this); !why.isEmpty()) {
    return FailToOpen(QStringLiteral("Cannot open %1: %2").arg(lineName_, why));
  }
  driver_ = makeDriver_();
  connected_ = driver_->Open(lineName_);
  if (!connected_ || !SetupComPort()) return FailToOpen(driver_->ErrorText());
  errorText_.clear();
  ForgetBytes();
  decoder_.ResetSkipped();
  noise_ = {};
  const QPointer<TQLXPort> self(this);
  emit OnOpen(this);
  if (self && connected_) readTimer_.SetEnabled(true);
}

bool TQLXPort::SetupComPort() {
  if (!ApplyDCB()) return false;
  ApplyTimeouts();
  ApplyBuffer();
  return true;
}

void TQLXPort::FailToOpen(const QString& reason) {
  errorText_ = reason;
  driver_.reset();
  connected_ = autoRun_ = false;
  readTimer_.SetEnabled(false);
  requestTimer_.SetEnabled(false);
  emit OnClose(this);
}

void TQLXPort::Close() {
  if (!connected_) return;
  readTimer_.SetEnabled(false);
  requestTimer_.SetEnabled(false);
  driver_->Purge(true, true);
  driver_.reset();
  connected_ = false;
  if (!starting_) autoRun_ = false;
  ForgetBytes();
  emit OnClose(this);
}

void TQLXPort::SetPortNum(const QString& name) {
  if (ComString(name) == GetPortNum()) return;
  const QPointer<TQLXPort> self(this);
  TQLXSettings::SetPortNum(name);
  if (!self || !connected_) return;
  const bool running = autoRun_;
  if (running) {
    SetAutoRun(false);
  } else {
    Close();
  }
  if (!self) return;
  if (running) {
    SetAutoRun(true);
  } else {
    Open();
  }
}

bool TQLXPort::ApplyDCB() {
  if (!connected_) return true;
  TLineSettings line;
  line.baudRate = QLXBaudRateToInt(GetBaudRate());
  line.dataBits = DataBitsToByte(GetDataBits());
  line.stopBits = StopBitsToByte(GetStopBits());
  line.parity = ParityBitsToByte(GetParity());
  line.controlDTR = DTRControlToInt(GetControlDTR());
  line.controlRTS = RTSControlToInt(GetControlRTS());
  return driver_->SetLine(line);
}

void TQLXPort::ApplyBuffer() {
  if (connected_) driver_->SetQueueSizes(GetInBufSize(), GetOutBufSize());
}

int TQLXPort::SendQLXCommand(const QByteArray& command) {
  if (!connected_) return 0;
  const int sent = driver_->Write({command.constData(), static_cast<std::size_t>(command.size())});
  if (sent > 0) emit OnTraffic(QByteArrayView(command).first(sent), true);
  return sent;
}

int TQLXPort::SendQLXCommand(const QByteArray& command, int delayMs) {
  const QPointer<TQLXPort> self(this);
  const int sent = SendQLXCommand(command);
  if (sent > 0 && self && connected_) driver_->Wait(delayMs);
  return sent;
}

QByteArray TQLXPort::GetAnswerToQLXCommand(const QByteArray& command, int delayMs) {
  constexpr std::size_t kLongest = 128;
  const QPointer<TQLXPort> self(this);
  ClearBuffer(true, true);
  if (SendQLXCommand(command, delayMs) == 0 || !self || !connected_) return {};
  QByteArray answer(static_cast<qsizetype>(kLongest), Qt::Uninitialized);
  std::size_t count = 0;
  for (int more = 1; more > 0 && count < kLongest; count += static_cast<std::size_t>(more)) {
    more = driver_->Read({answer.data() + count, kLongest - count});
  }
  answer.truncate(static_cast<qsizetype>(count));
  if (!answer.isEmpty()) emit OnTraffic(answer, false);
  return answer;
}

void TQLXPort::ClearBuffer(bool input, bool output) {
  if (connected_) driver_->Purge(input, output);
}

void TQLXPort::ClearPort() {
  ForgetBytes();
  SendQLXCommand(kStop);
}

void TQLXPort::ForgetBytes() {
  decoder_.Clear();
  ++session_;
}

void TQLXPort::SetAutoRun(bool on) {
  if (on == autoRun_) return;
  if (on) {
    StartAutoRun();
    return;
  }
  const QPointer<TQLXPort> self(this);
  autoRun_ = false;
  requestTimer_.SetEnabled(false);
  StopDevice();
  if (self) Close();
}

void TQLXPort::StartAutoRun() {
  const QPointer<TQLXPort> self(this);
  autoRun_ = starting_ = true;
  runMode_ = GetControlQLX();
  InitAutoRunParameters();
  if (!self) return;
  starting_ = false;
  if (autoRun_) Open();
  if (!self || !autoRun_) return;
  clock_.Start();
  if (Streams()) return RequestData();
  polling_ = {};
  requestTimer_.SetEnabled(true);
}

void TQLXPort::StopDevice() {
  const QPointer<TQLXPort> self(this);
  ClearBuffer(true, true);
  for (const QByteArray& command : {kStop, kLoopReadOff, kPolledLoop}) {
    SendQLXCommand(command, kAnswerMs);
    if (!self) return;
  }
  ClearBuffer(true, true);
}

void TQLXPort::InitAutoRunParameters() {
  const QPointer<TQLXPort> self(this);
  readTimer_.SetOnTimer({});
  Open();
  if (self) ProbeDevice();
  if (self) Close();
  if (self) readTimer_.SetOnTimer(TNotifyEvent(this, &TQLXPort::ReadTick));
}

void TQLXPort::ProbeDevice() {
  const QPointer<TQLXPort> self(this);
  AskPacketLength();
  for (const QByteArray& command :
       {Streams() ? kStreamingLoop : kPolledLoop, Streams() ? kLoopReadOn : kLoopReadOff}) {
    if (!self) return;
    SendQLXCommand(command, kAnswerMs);
  }
  if (self) ClearBuffer(true, true);
}

void TQLXPort::AskPacketLength() {
  const QPointer<TQLXPort> self(this);
  QByteArray answer;
  for (const QByteArray& command : {kLoopReadOff, kStop, DataRequest()}) {
    answer = GetAnswerToQLXCommand(command, kAnswerMs);
    if (!self) return;
  }
  const auto length = PacketLengthOf({reinterpret_cast<const std::uint8_t*>(answer.constData()),
                                      static_cast<std::size_t>(answer.size())});
  if (!length) return;
  decoder_.SetPacketLength(*length);
  valueCount_ = *length / BytesPerSample() + 1;
}

void TQLXPort::AskForData() {
  if (polling_.Tick()) RequestData();
}

void TQLXPort::RequestData() {
  decoder_.SetMarkerTime(clock_.Now());
  SendQLXCommand(DataRequest());
}

void TQLXPort::FollowClock() {
  const double change = clock_.Follow();
  if (change == 0.0) return;
  decoder_.SetMarkerTime(decoder_.MarkerTime() + change);
  emit OnClockJump(this, change * kSecondsPerDay);
}

void TQLXPort::ReadPort() {
  if (!connected_ || reading_) return;
  const QPointer<TQLXPort> self(this);
  reading_ = true;
  FollowClock();
  if (self) ReadBlocks();
  if (!self) return;
  reading_ = false;
  age_ = 0.0;
  if (!connected_ || !driver_->IsLost()) return;
  errorText_ = driver_->ErrorText();
  Close();
}

void TQLXPort::ReadBlocks() {
  constexpr int kMostBytes = 65536;  // far more than a line carries in a tick
  const QPointer<TQLXPort> self(this);
  std::array<char, kBlock> block;
  for (int taken = 0, count = 0; taken < kMostBytes && connected_; taken += count) {
    count = driver_->Read(block);
    if (count == 0) return;
    const TSerialDriver::TArrival arrival = driver_->LastArrival();
    age_ = static_cast<double>(arrival.Age) / (1e9 * kSecondsPerDay);
    if (arrival.LostBefore > 0) ResumeBehind(arrival.LostBefore);
    emit OnTraffic(QByteArrayView(block.data(), count), false);
    if (self) ReadSignal(block.data(), count);
    if (!self) return;
  }
}

/// The stream is taken up again where it has come to.
void TQLXPort::ResumeBehind(std::int64_t lostBytes) {
  decoder_.Break(static_cast<std::uint64_t>(lostBytes));
  if (Streams()) decoder_.SetMarkerTime(ReceiveTime());
}

void TQLXPort::ReadSignal(const char* data, int count) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(data);
  std::span rest(bytes, static_cast<std::size_t>(std::max(count, 0)));
  const std::size_t size = rest.size();
  const std::uint64_t skippedBefore = decoder_.Skipped().Bytes;
  do {
    rest = rest.subspan(decoder_.Append(rest));
    if (!Decode(!rest.empty())) return;
  } while (!rest.empty());
  noise_.Take(size, decoder_.Skipped().Bytes - skippedBefore);
}

bool TQLXPort::Decode(bool needsRoom) {
  const QPointer<TQLXPort> self(this);
  const unsigned session = session_;
  const bool streaming = Streams();
  decoder_.SetBytesPerSample(BytesPerSample());
  decoder_.SetTimeIncrement(streaming ? TimeIncrement() : 0.0);
  for (;;) {
    const TQLXDecoder::TItem item = decoder_.Next();
    if (item == TQLXDecoder::TItem::Nothing) return true;
    const bool isMarker = item == TQLXDecoder::TItem::Marker;
    if (isMarker && streaming) decoder_.SetMarkerTime(ReceiveTime());
    // A copy, because the event may replace itself or destroy this port.
    if (const auto onData = onData_; onData && !isMarker) {
      (*onData)(this, decoder_.Values(), valueCount_);
      if (!self || session_ != session) return false;
    }
    if (!streaming) polling_.TakeAnswer();
    if (isMarker && !(needsRoom && decoder_.IsCrowded())) return true;
  }
}

void TQLXPort::SetOnData(TDataEvent event) {
  onData_ = event ? std::make_shared<const TDataEvent>(std::move(event)) : nullptr;
}

void TQLXPort::ShowSetupDialog(QWidget* parent) { RunPortSetupDialog(*this, parent); }

QString TQLXPort::TryDevice(const TQLXSettings& settings) const {
  if (const QString why = RestRefusal(this); !why.isEmpty()) {
    return QStringLiteral("Cannot open %1: %2.").arg(settings.GetPortNum(), why);
  }
  TQLXPort trial(nullptr, makeDriver_);
  trial.Assign(&settings);
  trial.Open();
  if (!trial.GetConnected()) return trial.GetErrorText() + '.';
  trial.AskPacketLength();
  trial.StopDevice();
  const QString name = trial.GetPortNum();
  if (trial.GetPacketLength() == 0) {
    return QStringLiteral("%1 is open, but no device answers.").arg(name);
  }
  return QStringLiteral("The device on %1 sends packets of %2 bytes: %3 inputs.")
      .arg(name)
      .arg(trial.GetPacketLength())
      .arg(trial.GetValueCount() - 1);
}
