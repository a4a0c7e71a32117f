#include "components/comms/Qlxclient.h"

#include <QFile>
#include <QPainter>
#include <QPointer>

#include "components/channels/Channelset.h"
#include "components/controls/Iconimages.h"
#include "components/links/Outside.h"
#include "model/Filesync.h"
#include "model/Ordinaryfile.h"

namespace {

const QColor kInk(38, 50, 72);
const QColor kPaper(250, 251, 253);
const QColor kBlue(32, 96, 200);

QPen Ink(double width, const QColor& color = kInk) {
  return {color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

/// The rows at the bottom, and an arrow from `top` that brings them.
void DrawRowsFrom(QPainter& painter, double top) {
  painter.setPen(Ink(1.4, kBlue));
  for (const double row : {16.5, 19.5, 22.5}) {
    painter.drawLine(QPointF(3.0, row), QPointF(21.0, row));
  }
  painter.setPen(Ink(1.8, kBlue));
  painter.drawLine(QPointF(12.0, top), QPointF(12.0, 14.0));
  painter.drawPolyline(QPolygonF({{9.5, 11.5}, {12.0, 14.0}, {14.5, 11.5}}));
}

/// A globe, for a server on the net.
void DrawXmlClient(QPainter& painter) {
  painter.setPen(Ink(1.2));
  painter.setBrush(kPaper);
  painter.drawEllipse(QRectF(6.0, 1.0, 12.0, 9.0));
  painter.setBrush(Qt::NoBrush);
  painter.drawEllipse(QRectF(9.6, 1.0, 4.8, 9.0));
  painter.drawLine(QPointF(6.0, 5.5), QPointF(18.0, 5.5));
  DrawRowsFrom(painter, 10.5);
}

/// A sheet with its corner folded.
void DrawFileClient(QPainter& painter) {
  painter.setPen(Ink(1.2));
  painter.setBrush(kPaper);
  painter.drawPolygon(QPolygonF({{7.0, 1.0}, {14.0, 1.0}, {17.0, 4.0}, {17.0, 9.5}, {7.0, 9.5}}));
  painter.setBrush(Qt::NoBrush);
  painter.drawPolyline(QPolygonF({{14.0, 1.0}, {14.0, 4.0}, {17.0, 4.0}}));
  painter.drawLine(QPointF(9.0, 6.8), QPointF(15.0, 6.8));
  DrawRowsFrom(painter, 10.5);
}

/// The plug of a serial line, with five pins over four.
void DrawMasterClient(QPainter& painter) {
  painter.setPen(Ink(1.2));
  painter.setBrush(kPaper);
  painter.drawPolygon(QPolygonF({{4.0, 1.5}, {20.0, 1.5}, {17.5, 9.5}, {6.5, 9.5}}));
  painter.setPen(Qt::NoPen);
  painter.setBrush(kInk);
  for (int pin = 0; pin < 5; ++pin) painter.drawEllipse(QPointF(7.4 + 2.3 * pin, 4.2), 0.7, 0.7);
  for (int pin = 0; pin < 4; ++pin) painter.drawEllipse(QPointF(8.55 + 2.3 * pin, 7.0), 0.7, 0.7);
  painter.setBrush(Qt::NoBrush);
  DrawRowsFrom(painter, 10.5);
}

[[maybe_unused]] const bool kRegistered = [] {
  RegisterIconImage(QStringLiteral("TQLXXMLClient"), DrawXmlClient);
  RegisterIconImage(QStringLiteral("TXMLFileClient"), DrawFileClient);
  RegisterIconImage(QStringLiteral("TQLXMasterClient"), DrawMasterClient);
  return true;
}();

}  // namespace

TQLXClient::TQLXClient(QWidget* parent)
    : TIconControl(parent), source_(this, &TChannelSource::staticMetaObject) {
  constexpr quint32 kReconnectTicks = 20;  // 200 ms
  reconnect_.SetInterval(kReconnectTicks);
  reconnect_.SetOnTimer({this, &TQLXClient::Reconnect});
  connect(&source_, &TKorvalCompList::OnChange, this, [this] { SourceChanged(); });
}

TQLXClient::~TQLXClient() = default;

void TQLXClient::SetAutoConnect(bool autoConnect) {
  autoConnect_ = autoConnect;
  UpdateReconnect();
}

void TQLXClient::UpdateReconnect() {
  if (!IsWaiting()) reconnect_.SetEnabled(autoConnect_ && !GetActive());
}

void TQLXClient::Reconnect(QObject* sender) {
  Q_UNUSED(sender)
  if (GetActive() || !Reconnects()) return;
  const QPointer<TQLXClient> self(this);
  reconnecting_ = true;
  SetActive(true);
  if (self) reconnecting_ = false;
}

void TQLXClient::SetActive(bool active) {
  if (IsWaiting()) {
    activeWhenLoaded_ = active;
  } else if (!active) {
    Close();
  } else if (!GetActive()) {
    Open();
  }
}

void TQLXClient::ReportActive() {
  if (GetActive() == reportedActive_) return;
  reportedActive_ = !reportedActive_;
  emit OnActiveChanged(this);
}

void TQLXClient::SetStatus(const QString& text) {
  status_ = text;
  const QPointer<TQLXClient> self(this);
  emit OnStatusText(status_);
  if (self) emit OnStatusChanged(this);
}

TChannelSource* TQLXClient::GetChannelSource() const {
  return source_.Empty() ? nullptr : source_.Get<TChannelSource>(0);
}

void TQLXClient::SetChannelSource(TChannelSource* source) {
  if (source == GetChannelSource()) return;
  source_.Clear();
  if (source) source_.Add(source);
}

void TQLXClient::SetChannelSourceName(const QString& name) {
  if (name == GetChannelSourceName()) return;
  source_.SetNames(name.isEmpty() ? QStringList() : QStringList(name));
}

TChannelSets* TQLXClient::GetSets() const {
  TChannelSource* source = GetChannelSource();
  return source ? source->GetSets() : nullptr;
}

void TQLXClient::SetLogging(bool logging) {
  if (IsWaiting()) {
    loggingWhenLoaded_ = logging;
    return;
  }
  log_.reset();
  if (logging) OpenLog(QIODevice::Truncate);
}

void TQLXClient::OpenLog(QIODevice::OpenMode mode) {
  if (logFile_.isEmpty()) return;
  const QString path = FormPath(this, logFile_);
  TWishes wishes;
  AddWriteWish(wishes, this, logFile_);
  if (const QString why = WriteRefusal(this, wishes, path); !why.isEmpty()) return CannotLog(why);
  if (!MayLogInto(path)) return CannotLog(QStringLiteral("it is being read"));
  auto log = std::make_unique<TOrdinaryFile>(path);
  // Without a buffer nothing is lost in a crash, and a full disk shows at once.
  QString why;
  if (!log->Open(QIODevice::WriteOnly | QIODevice::Unbuffered | mode, &why)) {
    return CannotLog(why);
  }
  log_ = std::move(log);
}

bool TQLXClient::MayLogInto(const QString& fileName) const {
  Q_UNUSED(fileName)
  return true;
}

void TQLXClient::CannotLog(const QString& reason) {
  SetStatus(QStringLiteral("Cannot write %1: %2").arg(logFile_, reason));
}

void TQLXClient::Log(QByteArrayView text) {
  if (!log_) return;
  if (log_->write(text.data(), text.size()) == text.size()) {
    TFileSync::Instance().Grown(log_->fileName());
    return;
  }
  const QString reason = log_->errorString();
  log_.reset();
  CannotLog(reason);
}

void TQLXClient::Received(QByteArrayView text) {
  const QPointer<TQLXClient> self(this);
  Log(text);
  if (self) emit OnReceived(this, QByteArray::fromRawData(text.data(), text.size()));
}

void TQLXClient::Loaded() {
  source_.GetComponentsByNames();
  TIconControl::Loaded();
  Started();
}

void TQLXClient::AddWishes(TWishes& wishes) const { AddWriteWish(wishes, this, logFile_); }

void TQLXClient::Started() {
  if (IsWaiting()) return;
  const QPointer<TQLXClient> self(this);
  if (std::exchange(loggingWhenLoaded_, false)) OpenLog(QIODevice::Append);
  if (self && std::exchange(activeWhenLoaded_, false)) SetActive(true);
  if (self) UpdateReconnect();
}
