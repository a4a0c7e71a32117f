#include "examples/monitor/Sourcewatch.h"

#include <cmath>

namespace {

constexpr qint64 kQuietMs = 3000;  ///< without a row, after which a source is silent
constexpr qint64 kRateMs = 3000;   ///< over which the rate is measured

/// Whether a status text says why there is no connection, and not merely how far it is.
bool IsReason(const QString& status) {
  for (const char* step : {"Connecting to ", "Connected to ", "Disconnected from "}) {
    if (status.startsWith(QLatin1String(step))) return false;
  }
  return !status.isEmpty();
}

QString Seconds(qint64 ms) { return QString::number(ms / 1000); }

}  // namespace

TSourceWatch::TSourceWatch(TQLXClient& client, const QString& name, QObject* parent)
    : QObject(parent), client_(client), name_(name) {
  clock_.start();
  connect(&client, &TQLXClient::OnActiveChanged, this, &TSourceWatch::ActiveChanged);
  connect(&client, &TQLXClient::OnStatusChanged, this, &TSourceWatch::StatusChanged);
}

void TSourceWatch::Follow(TChannelSet& set) {
  clients_.push_back(
      std::make_unique<TDataClient>([this](TChannelSet* from) { rows_ += from->GetRows(); }));
  clients_.back()->SetChannelSet(&set);
}

void TSourceWatch::ActiveChanged() {
  if (client_.GetActive()) {
    state_ = kConnected;
    reason_.clear();
    since_ = QTime::currentTime();
    connectedMs_ = clock_.elapsed();
    rows_ = rowsSeen_ = 0;
    marks_.clear();
    if (!reopening_) emit OnEvent(tr("connected"));
    return;
  }
  TakeRows();
  state_ = kNotConnected;
  if (reopening_) return;
  emit OnEvent(IsWanted() ? tr("connection lost after %1 rows, trying again").arg(rows_)
                          : tr("disconnected"));
}

void TSourceWatch::StatusChanged() {
  if (IsReason(client_.GetStatus())) SetReason(client_.GetStatus());
}

void TSourceWatch::SetReason(const QString& reason) {
  if (reason == reason_) return;
  reason_ = reason;
  if (!reason.isEmpty()) emit OnEvent(reason);
}

void TSourceWatch::SetWanted(bool wanted) {
  client_.SetAutoConnect(wanted);
  reopening_ = false;
  if (!wanted) reason_.clear();
  client_.SetActive(wanted);
}

void TSourceWatch::Reopen() {
  reopening_ = true;
  client_.SetActive(false);
}

qint64 TSourceWatch::SilentMs() const { return clock_.elapsed() - std::max(connectedMs_, rowMs_); }

void TSourceWatch::Look() {
  TakeRows();
  if (state_ == kNotConnected) return;
  MeasureRate();
  const bool noisy = client_.IsNoisy();
  if (state_ == kReceiving && (noisy || SilentMs() > kQuietMs)) {
    state_ = kConnected;
    emit OnEvent(noisy ? tr("connected, but only noise comes any more")
                       : tr("connected, but nothing comes any more"));
  }
}

void TSourceWatch::TakeRows() {
  if (state_ == kNotConnected || rows_ == rowsSeen_) return;
  const qint64 now = clock_.elapsed();
  rowsSeen_ = rows_;
  if (client_.IsNoisy()) return;
  if (state_ != kReceiving) {
    state_ = kReceiving;
    emit OnEvent(rowMs_ < 0
                     ? tr("receiving rows")
                     : tr("receiving rows again, after %1 s without").arg(Seconds(now - rowMs_)));
  }
  reopening_ = false;
  rowMs_ = now;
}

void TSourceWatch::MeasureRate() {
  const qint64 now = clock_.elapsed();
  marks_.push_back({now, rows_});
  while (marks_.size() > 2 && marks_[1].ms <= now - kRateMs) marks_.pop_front();
  const qint64 ms = now - marks_.front().ms;
  if (ms > 0) rate_ = 1000.0 * static_cast<double>(rows_ - marks_.front().rows) / ms;
}

QString TSourceWatch::StateText() const {
  if (state_ == kNotConnected) return tr("Not connected");
  if (state_ == kConnected) return client_.IsNoisy() ? tr("Only noise comes") : tr("Connected");
  return tr("Receiving %1 rows/s").arg(std::lround(rate_));
}

QString TSourceWatch::RowsText() const {
  if (state_ == kReceiving) {
    return tr("%1 rows since %2").arg(rows_).arg(since_.toString(QStringLiteral("HH:mm:ss")));
  }
  if (rowMs_ < 0) return tr("No rows yet");
  return tr("No rows for %1 s").arg(Seconds(clock_.elapsed() - rowMs_));
}

QString TSourceWatch::DetailText() const {
  if (state_ != kNotConnected) {
    const QString skipped = client_.GetSkippedText();
    return skipped.isEmpty() ? RowsText() : RowsText() + QStringLiteral(", ") + skipped;
  }
  if (!IsWanted()) return tr("Disconnected by hand");
  return reason_.isEmpty() ? tr("Connecting ...") : tr("%1. Trying again ...").arg(reason_);
}
