#include "components/channels/Channelvalue.h"

#include <algorithm>

TChannelValue::TChannelValue(QWidget* parent) : TCustomVariable(parent) {
  SetIconImage(QStringLiteral("TChannelValue"));
  connect(&link_, &TCustomChannelLink::OnData, this, &TChannelValue::BlockCame);
  connect(&link_, &TOneChannelLink::OnChannelChanged, this, &TChannelValue::ChannelChosen);
  connect(link_.GetOptions(), &TPersistent::OnChange, this, &TChannelValue::OptionsChanged);
}

void TChannelValue::SetContent(TContent content) {
  if (content == content_ || content < ctBlock || content > ctStatus) return;
  content_ = content;
  SetCaption();
}

void TChannelValue::ChannelChosen() {
  if (!shown_.ChangesTo(link_.SelectedChannel())) return;
  HoldValue(0.0);
  SetCaption();
}

/// The value of another interval would pass for one of this.
void TChannelValue::OptionsChanged() {
  if (content_ == ctHistory && link_.SelectedChannel() && !link_.HasData()) HoldValue(0.0);
  SetCaption();
}

QString TChannelValue::ValueText() const {
  if (content_ != ctHistory) return TCustomVariable::ValueText();
  return TextOfPicked(*link_.GetOptions(), ValueFormat(), GetValue());
}

void TChannelValue::BlockCame() {
  const TChannel* channel = link_.SelectedChannel();
  if (!channel) return;
  if (const std::optional<double> value = Present(*channel)) SetValue(*value);
}

/// Nothing if the block has no statistics, or none of this channel.
std::optional<double> TChannelValue::Present(const TChannel& channel) {
  if (content_ == ctStatus) {
    const TChannelStatistics& stats = *channel.GetStats();
    const TStatInterval interval = link_.GetOptions()->GetSelInterval();
    return static_cast<double>(stats.GetStatus(std::max(interval, stats.GetMinInterval())));
  }
  if (content_ == ctHistory) {
    if (!link_.HasData()) return {};
    return link_.GetData().ShownValue(link_.GetOptions()->GetValueType());
  }
  const auto index = static_cast<std::size_t>(channel.Index());
  if (!link_.SelectedChannelSet()->CopyBlockStats(block_) || index >= block_.size()) return {};
  const TStatSet& block = block_[index];
  return block.Count > 0.0 ? std::optional(block.Sum / block.Count) : std::nullopt;
}

void TChannelValue::Loaded() {
  link_.Loaded();
  TCustomVariable::Loaded();
}
