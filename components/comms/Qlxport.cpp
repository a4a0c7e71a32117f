#include "components/comms/Qlxport.h"

#include <array>

#include "components/comms/Portdialog.h"
#include "components/links/Outside.h"

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

TQLXPort::TQLXPort(QObject* owner, TDriverFactory makeDriver)
    : TQLXSettings(owner), makeDriver_(std::move(makeDriver)) {
  readTimer_.SetInterval(1);
  readTimer_.SetOnTimer(TNotifyEvent(this, &TQLXPort::ReadTick));
  requestTimer_.SetInterval(1);
  requestTimer_.SetOnTimer(TNotifyEvent(this, &TQLXPort::RequestTick));
  StartStopWatch();
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
  if (const QString why = RestRefusal(this); !why.isEmpty()) {
    return FailToOpen(QStringLiteral("Cannot open %1: %2").arg(GetPortNum(), why));
  }
  driver_ = makeDriver_();
  connected_ = driver_->Open(GetPortNum());
  if (!connected_ || !SetupComPort()) return FailToOpen(driver_->ErrorText());
  errorText_.clear();
  ForgetBytes();
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
  constexpr int kLongest = 128;
  const QPointer<TQLXPort> self(this);
  ClearBuffer(true, true);
  if (SendQLXCommand(command, delayMs) == 0 || !self || !connected_) return {};
  QByteArray answer(kLongest, Qt::Uninitialized);
  answer.truncate(driver_->Read({answer.data(), kLongest}));
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
  StartStopWatch();
  if (Streams()) return RequestData();
  outstandingRequests_ = 0;
  skippedTicks_ = 0;
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
  if (answer.isEmpty()) return;
  // A marker packet before the answer is not the answer.
  qsizetype first = 0;
  while (answer.size() > first + 4 && answer.sliced(first).startsWith("\3T")) first += 4;
  const auto length = static_cast<quint8>(answer[first]);
  decoder_.SetPacketLength(length);
  valueCount_ = length / BytesPerSample() + 1;
}

void TQLXPort::AskForData() {
  constexpr int kMostRequests = 2;
  constexpr int kMostSkipped = 21;
  if (outstandingRequests_ >= kMostRequests && skippedTicks_ < kMostSkipped) {
    ++skippedTicks_;
    return;
  }
  const QPointer<TQLXPort> self(this);
  RequestData();
  if (!self) return;
  ++outstandingRequests_;
  skippedTicks_ = 0;
}

void TQLXPort::RequestData() {
  decoder_.SetMarkerTime(StopWatchTime());
  SendQLXCommand(DataRequest());
}

void TQLXPort::ReadPort() {
  constexpr int kMostBlocks = 64;  // far more than a line carries in a tick
  if (!connected_ || reading_) return;
  const QPointer<TQLXPort> self(this);
  reading_ = true;
  std::array<char, kBlock> block;
  int count = kBlock;
  for (int i = 0; i < kMostBlocks && count == kBlock && connected_; ++i) {
    count = driver_->Read(block);
    if (count == 0) break;
    emit OnTraffic(QByteArrayView(block.data(), count), false);
    if (self) ReadSignal(block.data(), count);
    if (!self) return;
  }
  reading_ = false;
  if (!connected_ || !driver_->IsLost()) return;
  errorText_ = driver_->ErrorText();
  Close();
}

void TQLXPort::ReadSignal(const char* data, int count) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(data);
  std::span rest(bytes, static_cast<std::size_t>(std::max(count, 0)));
  do {
    rest = rest.subspan(decoder_.Append(rest));
  } while (Decode(!rest.empty()) && !rest.empty());
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
    if (isMarker && streaming) decoder_.SetMarkerTime(StopWatchTime());
    // A copy, because the event may replace itself or destroy this port.
    if (const auto onData = onData_; onData && !isMarker) {
      (*onData)(this, decoder_.Values(), valueCount_);
      if (!self || session_ != session) return false;
    }
    if (!streaming && outstandingRequests_ > 0) --outstandingRequests_;
    if (isMarker && !(needsRoom && decoder_.IsCrowded())) return true;
  }
}

void TQLXPort::SetOnData(TDataEvent event) {
  onData_ = event ? std::make_shared<const TDataEvent>(std::move(event)) : nullptr;
}

void TQLXPort::StartStopWatch() {
  startTime_ = TDateTime::Now();
  stopWatch_.start();
}

double TQLXPort::StopWatchTime() const {
  constexpr double kNanosecondsPerDay = 86400e9;
  return startTime_.Days() + static_cast<double>(stopWatch_.nsecsElapsed()) / kNanosecondsPerDay;
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
