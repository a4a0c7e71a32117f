#include "components/channels/Channellinks.h"

#include <QThread>
#include <utility>

#include "components/graphing/Utilclasses.h"

QString TextOfPicked(const TStatisticsOptions& options, const TNumberFormat& format, double value) {
  if (options.GetValueType() != svTime) return format.FormatedValue(value);
  TNumberFormat time;
  time.SetTimeFormatStr(format.GetTimeFormatStr());
  time.SetIsTimeFormat(true);
  return time.FormatedValue(value);
}

bool TShownChannel::ChangesTo(const TChannel* channel) {
  if (!channel) return false;
  const bool another = channel_ && *channel_ != channel;
  channel_ = channel;
  return another;
}

// TChannelEnd

TChannelEnd::TChannelEnd(TCustomChannelLink& link)
    : client_([&link](TChannelSet*) { link.BlockComplete(); }) {
  ChannelSet.Caption = QStringLiteral("ChannelSource not defined!");
  Channel.Caption = QStringLiteral("ChannelSet not defined!");
  connect(&ChannelSet, &TPersistent::OnChange, this, &TChannelEnd::SetChosen);
  connect(&Channel, &TPersistent::OnChange, this, &TChannelEnd::ChannelChosen);
  connect(&Options, &TPersistent::OnChange, this, &TChannelEnd::OptionsChanged);
}

void TChannelEnd::SetChosen() {
  TChannelSet* chosen = sets_ ? sets_->GetItem(ChannelSet.GetIndex()) : nullptr;
  if (chosen != set_) SelectedChannelSetChanged(chosen);
}

void TChannelEnd::ChannelChosen() {
  TChannel* chosen = set_ ? set_->GetChannels()->GetItem(Channel.GetIndex()) : nullptr;
  if (chosen != channel_) SelectedChannelChanged(chosen);
}

void TChannelEnd::Clear() {
  disconnect(setsChanged_);
  sets_ = nullptr;
  const QPointer<TChannelEnd> alive(this);
  ChannelSet.Clear();
  // Whoever was notified may have destroyed the link or chosen another source.
  if (alive && !sets_) Channel.Clear();
  if (alive && !sets_ && set_) SelectedChannelSetChanged(nullptr);
}

void TChannelEnd::SetSource(TChannelSource* source) {
  if (!source) return;
  const QPointer<TChannelSets> sets = sets_ = source->GetSets();
  setsChanged_ = connect(sets, &TPersistent::OnChange, this, &TChannelEnd::SetsChanged);
  ChannelSet.SetCollection([sets] { return sets ? sets->Labels() : QStringList(); });
}

void TChannelEnd::SelectedChannelSetChanged(TChannelSet* set) {
  disconnect(channelsChanged_);
  set_ = set;
  const QPointer<TChannelEnd> alive(this);
  // Whoever is notified may destroy the link or choose another set.
  const auto stays = [&] { return alive && set_ == set; };
  Channel.Clear();
  if (stays() && channel_) SelectedChannelChanged(nullptr);
  if (!stays()) return;
  if (set) {
    const QPointer<TChannels> channels = set->GetChannels();
    channelsChanged_ =
        connect(channels, &TPersistent::OnChange, this, &TChannelEnd::ChannelsChanged);
    Channel.SetCollection([channels] { return channels ? channels->Labels() : QStringList(); });
  }
  emit OnChannelSetChanged(this);
}

void TChannelEnd::SelectedChannelChanged(TChannel* channel) {
  channel_ = channel;
  hasData_ = false;
  emit OnChannelChanged(this);
}

void TChannelEnd::OptionsChanged() {
  if (std::exchange(interval_, Options.GetSelInterval()) != interval_) hasData_ = false;
}

/// The chosen set may have another label or place, or may be gone.
void TChannelEnd::SetsChanged() {
  if (!sets_) return;
  if (set_ && sets_->GetItem(set_->Index()) == set_) {
    if (ChannelSet.GetIndex() != set_->Index()) ChannelSet.SetIndex(set_->Index());
    return;
  }
  const QString channel = Channel.GetItem();
  const QPointer<TChannelEnd> alive(this);
  SetChosen();
  if (alive) Channel.SetItem(channel);
}

void TChannelEnd::ChannelsChanged() {
  if (!set_) return;
  if (channel_ && set_->GetChannels()->GetItem(channel_->Index()) == channel_) {
    if (Channel.GetIndex() != channel_->Index()) Channel.SetIndex(channel_->Index());
    return;
  }
  ChannelChosen();
}

void TChannelEnd::Refresh() {
  hasData_ = false;
  if (!channel_) return;
  const TChannelStatistics* stats = channel_->GetStats();
  const int index = Ordinal(Options.GetSelInterval()) - Ordinal(stats->GetMinInterval());
  hasData_ = stats->GetCurrent(index, Data) && Data != TStatSet();
}

// TCustomChannelLink

TCustomChannelLink::TCustomChannelLink(bool withTimer, QObject* owner)
    : TPersistent(owner), source_(owner) {
  connect(&source_, &TPersistent::OnChange, this, &TCustomChannelLink::SourceChanged);
  if (!withTimer) return;
  timer_ = std::make_unique<TTimerClient>();
  timer_->SetInterval(10);
  timer_->SetOnTimer({this, &TCustomChannelLink::DoOnData});
}

TCustomChannelLink::~TCustomChannelLink() {
  SetEnabled(false);
  // No signal of an end may reach a link that is half gone.
  for (const auto& end : ends_) end->Listen(false);
  ends_.clear();
}

TChannelEnd& TCustomChannelLink::AddEnd() {
  ends_.push_back(std::make_unique<TChannelEnd>(*this));
  TChannelEnd& end = *ends_.back();
  connect(&end, &TChannelEnd::OnChannelSetChanged, this, &TCustomChannelLink::Listen);
  connect(&end.Options, &TPersistent::OnChange, this, [this] { emit OnChange(this); });
  return end;
}

void TCustomChannelLink::SetInterval(int milliseconds) {
  if (!timer_ || milliseconds < 1 || milliseconds == intervalMs_) return;
  constexpr int kTickMs = 10;
  intervalMs_ = milliseconds;
  timer_->SetInterval(static_cast<quint32>((milliseconds - 1) / kTickMs + 1));
  emit OnChange(this);
}

void TCustomChannelLink::SetEnabled(bool enabled) {
  if (timer_) timer_->SetEnabled(enabled);
}

TChannelSource* TCustomChannelLink::GetChannelSource() const { return source_.Get(); }

void TCustomChannelLink::SetChannelSource(TChannelSource* source) {
  if (source == GetChannelSource()) return;
  {
    const QSignalBlocker once(&source_);
    source_.Set(source);
  }
  SourceChanged();
}

void TCustomChannelLink::Loaded() {
  struct TNames {
    QString set;
    QString channel;
  };
  std::vector<TNames> names;
  for (const auto& end : ends_) {
    names.push_back({end->ChannelSet.GetItem(), end->Channel.GetItem()});
  }
  const QPointer<TCustomChannelLink> alive(this);
  source_.Loaded();
  for (std::size_t i = 0; alive && i < ends_.size(); ++i) {
    ends_[i]->ChannelSet.SetItem(names[i].set);
    if (alive) ends_[i]->Channel.SetItem(names[i].channel);
  }
}

void TCustomChannelLink::SourceChanged() {
  // A name that waits for its form is no source yet, and takes no selection away.
  TChannelSource* source = GetChannelSource();
  if (!source && !source_.GetName().isEmpty()) return;
  const QPointer<TCustomChannelLink> alive(this);
  for (std::size_t i = 0; alive && i < ends_.size(); ++i) ends_[i]->Clear();
  // Whoever was notified may have chosen another one.
  if (!alive || GetChannelSource() != source) return;
  for (const auto& end : ends_) end->SetSource(source);
  emit OnSourceChanged(this);
}

/// Without a timer each chosen set is listened to, once.
void TCustomChannelLink::Listen() {
  if (timer_) return;
  for (std::size_t i = 0; i < ends_.size(); ++i) {
    bool first = true;
    for (std::size_t k = 0; k < i; ++k) {
      first = first && ends_[k]->SelectedSet() != ends_[i]->SelectedSet();
    }
    ends_[i]->Listen(first);
  }
}

void TCustomChannelLink::BlockComplete() {
  if (QThread::currentThread() == thread()) {
    DoOnData(this);
  } else if (!posted_.exchange(true)) {
    QMetaObject::invokeMethod(
        this,
        [this] {
          posted_ = false;
          DoOnData(this);
        },
        Qt::QueuedConnection);
  }
}

void TCustomChannelLink::DoOnData(QObject* sender) {
  Q_UNUSED(sender)
  for (const auto& end : ends_) end->Refresh();
  emit OnData(GetChannelSource());
}

namespace {

/// Makes the same selection: by its place, as several may have one label, or by a label that is not
/// resolved yet.
void Select(TSelectedCollItem& item, const TSelectedCollItem& wanted) {
  if (wanted.GetIndex() >= 0) {
    item.SetIndex(wanted.GetIndex());
  } else {
    item.SetItem(wanted.GetItem());
  }
}

}  // namespace

void TCustomChannelLink::AssignTo(TPersistent* destination) const {
  auto* link = qobject_cast<TCustomChannelLink*>(destination);
  if (!link || link == this || link->metaObject() != metaObject()) return;
  const QPointer<const TCustomChannelLink> self(this);
  const QPointer<TCustomChannelLink> other(link);
  CopyInSteps(
      link, [&] { link->SetInterval(intervalMs_); }, [&] { link->source_.Assign(&source_); });
  for (std::size_t i = 0; self && other && i < ends_.size(); ++i) {
    const TChannelEnd& from = *ends_[i];
    TChannelEnd& to = *link->ends_[i];
    CopyInSteps(
        link, [&] { Select(to.ChannelSet, from.ChannelSet); },
        [&] { Select(to.Channel, from.Channel); }, [&] { to.Options.Assign(&from.Options); });
  }
}

bool TCustomChannelLink::SameAs(const TPersistent* other) const {
  const auto* link = qobject_cast<const TCustomChannelLink*>(other);
  if (!link || link->metaObject() != metaObject() || link->GetInterval() != GetInterval() ||
      !link->source_.SameAs(&source_)) {
    return false;
  }
  for (std::size_t i = 0; i < ends_.size(); ++i) {
    const TChannelEnd& a = *ends_[i];
    const TChannelEnd& b = *link->ends_[i];
    if (!a.ChannelSet.SameAs(&b.ChannelSet) || !a.Channel.SameAs(&b.Channel) ||
        !a.Options.SameAs(&b.Options)) {
      return false;
    }
  }
  return true;
}

// One end and two

TOneChannelLink::TOneChannelLink(bool withTimer, QObject* owner)
    : TCustomChannelLink(withTimer, owner), end_(AddEnd()) {
  connect(&end_, &TChannelEnd::OnChannelSetChanged, this,
          [this] { emit OnChannelSetChanged(this); });
  connect(&end_, &TChannelEnd::OnChannelChanged, this, [this] { emit OnChannelChanged(this); });
}

TTwoChannelLink::TTwoChannelLink(bool withTimer, QObject* owner)
    : TCustomChannelLink(withTimer, owner), end1_(AddEnd()), end2_(AddEnd()) {
  connect(&end1_, &TChannelEnd::OnChannelSetChanged, this,
          [this] { emit OnChannelSetChanged1(this); });
  connect(&end1_, &TChannelEnd::OnChannelChanged, this, [this] { emit OnChannelChanged1(this); });
  connect(&end2_, &TChannelEnd::OnChannelSetChanged, this,
          [this] { emit OnChannelSetChanged2(this); });
  connect(&end2_, &TChannelEnd::OnChannelChanged, this, [this] { emit OnChannelChanged2(this); });
}
