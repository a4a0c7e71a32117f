#include "components/links/Compclasses.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>
#include <algorithm>
#include <set>

#include "model/Message.h"

// TValueLink

TValueLink::~TValueLink() {
  for (TLinkableControl* control : controls_) control->Forget(this);
}

// TLinkableControl

TLinkableControl::TRun::TCascade TLinkableControl::TRun::cascade_;
std::uint64_t TLinkableControl::TRun::spreads_ = 0;

TLinkableControl::TRun::TRun(TLinkableControl& control, TMethod& method)
    : control_(&control), method_(method), outer_(control.innermost_) {
  control.innermost_ = this;
  // To ask for the level of event loops takes as long as the rest of a run, so it is asked for now
  // and then. From the first time on that it differs, each value that comes in the inner loop asks
  // again.
  constexpr int kRunsBetween = 256;
  if (cascade_.runs % kRunsBetween == 0) BeginCascade();
  ++cascade_.depth;
  ++cascade_.runs;
  inCircle_ = ++method.running > 1;
  cascade_.circles += inCircle_;
  spreadBefore_ = cascade_.spread;
  passingBefore_ = cascade_.passing;
  if (!passingBefore_) BeginSpread();
  const std::uint64_t since = cascade_.circles > 0 ? cascade_.firstSpread : cascade_.spread;
  cascade_.repeats += method.spread >= since;
  if (method.running > kMaxRunning) goesRound_ = method.spread == cascade_.spread;
  method.spread = cascade_.spread;
}

/// Unless this run belongs to the present one.
void TLinkableControl::TRun::BeginCascade() {
  const int loopLevel = control_->thread()->loopLevel();
  if (cascade_.depth > 0 && cascade_.loopLevel == loopLevel) return;
  if (cascade_.depth > 0) outerCascade_ = cascade_;
  const TRun* outermost = outerCascade_ ? cascade_.outermost : this;
  cascade_ = {
      .outermost = outermost, .first = this, .loopLevel = loopLevel, .firstSpread = spreads_ + 1};
}

void TLinkableControl::TRun::BeginSpread() {
  cascade_.spread = ++spreads_;
  cascade_.passing = true;
  if (cascade_.circles > 0) return;
  beginsSpread_ = true;
  repeatsBefore_ = std::exchange(cascade_.repeats, 0);
}

TLinkableControl::TRun::~TRun() {
  cascade_.spread = spreadBefore_;
  cascade_.passing = passingBefore_;
  cascade_.circles -= inCircle_;
  if (beginsSpread_) cascade_.repeats = repeatsBefore_;
  if (--cascade_.depth == 0) cascade_.runs = 0;
  if (outerCascade_) cascade_ = *outerCascade_;
  if (IsGone()) return;
  --method_.running;
  control_->innermost_ = outer_;
}

bool TLinkableControl::TRun::HasToBeCut(bool isNew) const {
  if (!isNew && method_.running > kMaxRunning) return true;
  if (!goesRound_ && !IsTooMuch()) return false;
  Report();
  return true;
}

bool TLinkableControl::TRun::IsTooMuch() const {
  const auto place = [](const TRun* run) { return reinterpret_cast<std::uintptr_t>(run); };
  const std::uintptr_t stack = place(cascade_.outermost) - place(this);  // it grows downwards
  return cascade_.repeats > kMaxRepeats || stack > kMaxStack || cascade_.runs > kMaxRuns;
}

/// When all is over: the user's answer would hold the cascade up.
void TLinkableControl::TRun::Report() const {
  TLinkableControl* first = cascade_.first->control_;
  if (!first || std::exchange(first->cutIsReported_, true)) return;
  const QString text =
      QStringLiteral(
          "The values of '%1' run in a circle, or on more roads than can be followed: "
          "some were not passed on.")
          .arg(first->objectName());
  QMetaObject::invokeMethod(
      QCoreApplication::instance(), [text] { ShowMessage(text); }, Qt::QueuedConnection);
}

TLinkableControl::TRun::TAlone::TAlone() {
  cascade_.circles = 0;
  cascade_.repeats = 0;
  cascade_.passing = false;
  cascade_.firstSpread = spreads_ + 1;
}

TLinkableControl::TRun::TAlone::~TAlone() {
  const int runs = std::exchange(cascade_, before_).runs;
  if (cascade_.depth > 0) cascade_.runs = runs;
}

TLinkableControl::~TLinkableControl() {
  for (TRun* run = innermost_; run; run = run->outer_) run->control_ = nullptr;
  for (TValueLink* link : links_) {
    if (link) std::erase(link->controls_, this);
  }
}

void TLinkableControl::NotifyClients() {
  constexpr double kNoValue = 0.0;
  CallLinks(kNoValue);
}

void TLinkableControl::AddLink(TValueLink* link, bool notifyNow) {
  Q_UNUSED(notifyNow)
  if (!link || HasLink(link)) return;
  links_.push_back(link);
  link->controls_.push_back(this);
}

void TLinkableControl::DeleteLink(TValueLink* link) {
  if (!HasLink(link)) return;
  std::erase(link->controls_, this);
  Forget(link);
}

int TLinkableControl::LinkCount() const {
  return static_cast<int>(links_.size() - std::ranges::count(links_, nullptr));
}

/// A subscription is in few controls, while a control may have many subscribers.
bool TLinkableControl::HasLink(const TValueLink* link) const {
  return link && std::ranges::find(link->controls_, this) != link->controls_.end();
}

void TLinkableControl::Forget(const TValueLink* link) {
  const auto found = std::ranges::find(links_, link);
  if (notifying_.running > 0) {
    *found = nullptr;
  } else {
    links_.erase(found);
  }
}

void TLinkableControl::CallLinks(const double& value, bool isNew) {
  TRun run(*this, notifying_);
  if (run.IsCut(isNew)) return;
  const std::size_t count = links_.size();
  for (std::size_t i = 0; i < count; ++i) {
    const TValueLink* link = links_[i];
    if (!link || !link->OnValue) continue;
    TRun::cascade_.passing = false;
    link->OnValue(value);
    if (run.IsGone()) return;
  }
  if (notifying_.running == 1) std::erase(links_, nullptr);
  TRun::cascade_.passing = false;
  Notified();
}

// TDataControl

void TDataControl::SetValue(double value) {
  HoldValue(value);
  if (CanNotify()) NotifyClients();
}

void TDataControl::SetTimeAndValue(double time, double value) {
  time_ = time;
  SetValue(value);
}

void TDataControl::SetInterval(int interval) {
  if (interval == interval_ || interval < 1) return;
  interval_ = interval;
  counter_ = 0;
}

bool TDataControl::CanNotify() {
  if (++counter_ < interval_) return false;
  counter_ = 0;
  return true;
}

void TDataControl::NotifyClients() { CallLinks(value_, std::exchange(isNew_, false)); }

void TDataControl::AddLink(TValueLink* link, bool notifyNow) {
  TLinkableControl::AddLink(link, notifyNow);
  if (link && link->OnValue && notifyNow) link->OnValue(value_);
}

// TServerDataControl

TServerDataControl::TServerDataControl(QWidget* parent) : TDataControl(parent) {
  clients_.OnBeforeChange = [this](QObject* item, TListAction action, bool& allow) {
    ClientsChanged(item, action, allow);
  };
  slider_.ReadValue = [this] { return GetValue(); };
  slider_.WriteValue = [this](double value) { SetValue(value); };
}

TServerDataControl::~TServerDataControl() { destroying_ = true; }

void TServerDataControl::SetValue(double value) { static_cast<void>(TakeValue(value)); }

bool TServerDataControl::TakeValue(double value) {
  TRun run(*this, taking_);
  const bool isNew = IsNew(value);
  TDataControl::SetValue(value);
  if (run.IsGone()) return false;
  if (!run.IsCut(isNew)) GiveToClients(value, run);
  if (run.IsGone()) return false;
  if (slider_.IsAttached()) slider_.SetSliderPos(value);
  return !run.IsGone();
}

void TServerDataControl::GiveToClients(double value, const TRun& run) {
  for (int i = 0; i < clients_.Count(); ++i) {
    // One that is being destroyed is in the list for a while yet, but no data control any more.
    if (auto* client = clients_.Get<TDataControl>(i)) client->SetValue(value);
    if (run.IsGone()) return;
  }
}

/// Each control is visited once, so that lists which share clients cost no more than their length.
bool TServerDataControl::PointsTo(const TServerDataControl* target) const {
  std::set<const TServerDataControl*> seen{this};
  std::vector<const TServerDataControl*> open{this};
  while (!open.empty()) {
    const TServerDataControl* control = open.back();
    open.pop_back();
    for (int i = 0; i < control->clients_.Count(); ++i) {
      const auto* client = control->clients_.Get<TServerDataControl>(i);
      if (!client) continue;
      if (client == target) return true;
      if (seen.insert(client).second) open.push_back(client);
    }
  }
  return false;
}

void TServerDataControl::ClientsChanged(QObject* item, TListAction action, bool& allow) {
  if (destroying_ || IsLoading() || action != laAdded) return;
  const auto* server = qobject_cast<const TServerDataControl*>(item);
  if (!server) return;
  allow = !server->PointsTo(this);
  if (allow) return;
  ShowMessage(QStringLiteral("Can't add component '%1' to the '%2.ClientControls'.\n"
                             "Circular references not allowed!")
                  .arg(item->objectName(), objectName()));
}

void TServerDataControl::Loaded() {
  clients_.GetComponentsByNames();
  slider_.Loaded();
  TDataControl::Loaded();
}

// Ports

namespace {

/// A subscriber to the new value may destroy the two.
template <class TPort>
void CopyPort(const TPort& source, TPersistent* destination) {
  const QPointer<TPort> port = qobject_cast<TPort*>(destination);
  if (!port || port == &source) return;
  const QPointer<const TPort> alive(&source);
  port->SetValue(source.GetValue());
  if (port && alive) port->SetDataControl(source.GetDataControl());
}

}  // namespace

// TInputData

TInputData::TInputData(QObject* owner, double value)
    : TPersistent(owner), value_(value), control_(owner) {
  connect(&control_, &TKorvalCompList::OnItemChanged, this,
          [this](QObject*, QObject* item, TListAction action) {
            // A control in its destruction is none any more, and has left the link by itself.
            auto* control = qobject_cast<TServerDataControl*>(item);
            if (control && action == laRemoved) control->DeleteLink(&link_);
          });
}

void TInputData::SetValue(double value) {
  if (OnValidate) {
    const QPointer<TInputData> self(this);
    if (!OnValidate(value) || !self) return;
  }
  value_ = value;
  emit OnChange(this);
}

void TInputData::SetDataControl(TServerDataControl* control) {
  if (control == GetDataControl()) return;
  control_.Set(control);
  Listen();
}

void TInputData::Loaded() {
  control_.Loaded();
  Listen();
}

/// Last in its callers: whoever gets the value may destroy the port.
void TInputData::Listen() {
  TServerDataControl* control = GetDataControl();
  if (control && !control->HasLink(&link_)) control->AddLink(&link_, true);
}

void TInputData::AssignTo(TPersistent* destination) const { CopyPort(*this, destination); }

bool TInputData::SameAs(const TPersistent* other) const {
  const auto* port = qobject_cast<const TInputData*>(other);
  return port && value_ == port->value_ && control_.SameAs(&port->control_);
}

// TOutputData

TOutputData::TOutputData(QObject* owner) : TPersistent(owner), control_(owner) {}

void TOutputData::SetValue(double value) {
  value_ = value;
  TDataControl* control = GetDataControl();
  if (control && !IsLoading(Owner())) control->SetValue(value_);
}

void TOutputData::SetDataControl(TDataControl* control) {
  if (control == GetDataControl()) return;
  control_.Set(control);
  if (control && !IsLoading(Owner())) control->SetValue(value_);
}

void TOutputData::AssignTo(TPersistent* destination) const { CopyPort(*this, destination); }

bool TOutputData::SameAs(const TPersistent* other) const {
  const auto* port = qobject_cast<const TOutputData*>(other);
  return port && value_ == port->value_ && control_.SameAs(&port->control_);
}
