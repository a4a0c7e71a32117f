#include "model/Timer.h"

#include <QPointer>
#include <algorithm>
#include <utility>

#include "model/Message.h"

TTimerClient::TTimerClient(QObject* parent) : QObject(parent) { TTimerServer::Join(this); }

TTimerClient::~TTimerClient() { TTimerServer::Leave(this); }

void TTimerClient::SetInterval(quint32 ticks) {
  if (ticks == interval_) return;
  interval_ = ticks;
  counter_ = 0;
}

void TTimerClient::SetEnabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  counter_ = 0;
  TTimerServer::Instance()->Count(enabled ? 1 : -1);
}

void TTimerClient::SetOnTimer(TNotifyEvent event) {
  if (event == onTimer_) return;
  onTimer_ = std::move(event);
  counter_ = 0;
}

void TTimerClient::DoTick() {
  if (!enabled_) return;
  if (++counter_ < interval_) return;
  counter_ = 0;
  // A copy, because the event may destroy this client.
  if (const TNotifyEvent event = onTimer_) event(this);
}

namespace {

TTimerServer*& Running() {
  static TTimerServer* server = nullptr;
  return server;
}

}  // namespace

TTimerServer* TTimerServer::Instance() { return Running(); }

void TTimerServer::Count(int change) {
  constexpr int kTickMilliseconds = 10;
  enabled_ += change;
  if (enabled_ == 0 && timer_ != 0) killTimer(std::exchange(timer_, 0));
  if (enabled_ != 1 || change < 0) return;
  timer_ = startTimer(kTickMilliseconds, Qt::PreciseTimer);
  if (timer_ == 0) ShowMessage("Can't create timer!");
}

void TTimerServer::Join(TTimerClient* client) {
  if (!Running()) Running() = new TTimerServer;
  Running()->clients_.push_back(client);
}

void TTimerServer::Leave(TTimerClient* client) {
  TTimerServer* const server = Running();
  const auto place = std::find(server->clients_.begin(), server->clients_.end(), client);
  const auto index = static_cast<std::size_t>(place - server->clients_.begin());
  server->clients_.erase(place);
  if (index < server->next_) --server->next_;
  if (client->GetEnabled()) server->Count(-1);
  if (!server->clients_.empty()) return;
  Running() = nullptr;
  delete server;
}

void TTimerServer::Timer() {
  if (serving_) return;
  const QPointer<TTimerServer> self(this);
  serving_ = true;
  try {
    for (next_ = 0; self && next_ < clients_.size();) clients_[next_++]->DoTick();
  } catch (...) {
    ShowMessage("Timer server error!");
  }
  if (self) serving_ = false;
}

void TTimerServer::timerEvent(QTimerEvent*) { Timer(); }

void TStopWatch::Start() { clock_.start(); }

QString TStopWatch::GetTimeStr() const { return MakeTimeStr(clock_.elapsed()); }

QString TStopWatch::MakeTimeStr(std::int64_t milliseconds) {
  const auto ms = static_cast<long long>(std::max<std::int64_t>(milliseconds, 0));
  return QString::asprintf("%02lld%02lld%02lld%03lld", ms / 3'600'000, ms / 60'000 % 60,
                           ms / 1000 % 60, ms % 1000);
}

QString TStopWatch::GetDateTimeStr() const { return MakeDateTimeStr(TDateTime::Now()); }

QString TStopWatch::MakeDateTimeStr(TDateTime time) {
  const QDateTime t = time.ToQDateTime();
  if (!t.isValid()) return {};
  return QString::asprintf("%04d%02d%02d %02d%02d%02d%03d", t.date().year(), t.date().month(),
                           t.date().day(), t.time().hour(), t.time().minute(), t.time().second(),
                           t.time().msec());
}
