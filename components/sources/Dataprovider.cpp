#include "components/sources/Dataprovider.h"

#include <QPointer>
#include <chrono>
#include <exception>
#include <system_error>
#include <utility>

#include "components/links/Compclasses.h"
#include "components/sources/Datathread.h"

// TCustomDataProvider

TCustomDataProvider::TCustomDataProvider(QWidget* parent)
    : TStateControl(parent), clients_(this, &TDataControl::staticMetaObject) {}

void TCustomDataProvider::SetReadMode(TReadMode mode) {
  if (mode == readMode_ || mode < rmUntilEnd || mode > rmUntilFileListEnd) return;
  readMode_ = mode;
  if (mode == rmReadPage) pageCount_ = 0;
}

void TCustomDataProvider::SetClientControls(const TKorvalCompList* list) {
  if (!list) return;
  WhileInactive([this, list] {
    const QPointer<TCustomDataProvider> self(this);
    clients_.Assign(list);
    if (self) Reset();
  });
}

void TCustomDataProvider::SetPageSize(int size) {
  if (size >= 1) pageSize_ = size;
}

void TCustomDataProvider::SetActive(bool active) {
  if (IsWaiting()) {
    startWhenLoaded_ = active;
  } else {
    TStateControl::SetActive(active);
  }
}

void TCustomDataProvider::Stop() {
  if (GetActive()) SetActive(false);
}

void TCustomDataProvider::Reset() { clientIndex_ = -1; }

void TCustomDataProvider::Loaded() {
  clients_.GetComponentsByNames();
  TStateControl::Loaded();
  Started();
}

void TCustomDataProvider::Started() {
  if (!IsWaiting() && std::exchange(startWhenLoaded_, false)) SetActive(true);
}

TDataControl* TCustomDataProvider::NextControl() {
  if (clients_.Empty()) return nullptr;
  clientIndex_ = clientIndex_ + 1 < clients_.Count() ? clientIndex_ + 1 : 0;
  return clients_.Get<TDataControl>(clientIndex_);
}

void TCustomDataProvider::UpdateData() {
  if (readMode_ != rmReadPage || ++pageCount_ < pageSize_) return;
  pageCount_ = 0;
  Stop();
}

// TThreadProvider

TThreadProvider::TThreadProvider(std::unique_ptr<TDataThread> thread, QWidget* parent)
    : TCustomDataProvider(parent), thread_(std::move(thread)) {
  thread_->OnValues = [this] { return TakeValues(); };
}

TThreadProvider::~TThreadProvider() { thread_->Terminate(); }

void TThreadProvider::SetActive(bool active) {
  const QPointer<TThreadProvider> self(this);
  if (active && !GetActive()) errorText_.clear();
  TCustomDataProvider::SetActive(active);
  if (!self) return;
  // Whoever was notified of the switch may have thrown it back.
  if (!GetActive()) {
    thread_->Suspend();
    return;
  }
  try {
    thread_->Resume();
  } catch (const std::system_error& error) {
    Fail(QStringLiteral("Cannot start a thread: %1").arg(QString::fromLocal8Bit(error.what())));
  }
}

void TThreadProvider::Report(const QString& error) {
  errorText_ = error;
  emit OnError(this, error);
}

void TThreadProvider::Fail(const QString& error) {
  const QPointer<TThreadProvider> self(this);
  errorText_ = error;
  Stop();
  if (self) Report(error);
}

void TThreadProvider::UpdateData() {
  const double value = thread_->GetLast().value;
  const QPointer<TDataControl> control(NextControl());
  // The value that completes a page is delivered when the provider is inactive already. It may even
  // be gone.
  TCustomDataProvider::UpdateData();
  if (control) control->SetValue(value);
}

/// An exception of whom the values reach stops the provider.
TThreadProvider::TAnswer TThreadProvider::TakeValues() {
  const QPointer<TThreadProvider> self(this);
  try {
    return DeliverValues();
  } catch (const std::exception& error) {
    if (self) Fail(QString::fromLocal8Bit(error.what()));
  }
  return TAnswer::Done;
}

TThreadProvider::TAnswer TThreadProvider::DeliverValues() {
  using TClock = std::chrono::steady_clock;
  constexpr auto kTurn = std::chrono::milliseconds(4);
  const QPointer<TThreadProvider> self(this);
  const auto end = TClock::now() + kTurn;
  while (GetActive()) {
    if (!MayDeliver()) return TAnswer::Later;
    if (!thread_->TakeValue()) break;
    ValueTaken();
    UpdateData();
    if (self) ValueDelivered();
    if (!self) return TAnswer::Done;
    if (TClock::now() >= end) return TAnswer::Again;
  }
  if (!GetActive()) return TAnswer::Done;
  if (!thread_->GetFailure().empty()) {
    Fail(QString::fromStdString(thread_->GetFailure()));
    return TAnswer::Done;
  }
  return NextWork();
}
