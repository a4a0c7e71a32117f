#include "examples/monitor/Valuecard.h"

#include <QVBoxLayout>

#include "components/controls/Linkedcontrols.h"
#include "examples/monitor/Monitoredsets.h"
#include "examples/monitor/Statuscolors.h"

TValueCard::TValueCard(TChannelSource& source, const QString& set, const QString& channel,
                       QWidget* parent)
    : QFrame(parent) {
  caption_ = new QLabel;
  value_ = new TLinkedLabel;
  value_->SetShowLabel(false);
  QFont large = value_->font();
  large.setPointSizeF(1.4 * large.pointSizeF());
  large.setBold(true);
  value_->setFont(large);
  // Figures that come and go do not move the window.
  value_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  value_->setMinimumWidth(QFontMetrics(large).horizontalAdvance(QStringLiteral("<0.000 m/s2>")));
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(10, 6, 10, 6);
  all->setSpacing(2);
  all->addWidget(caption_);
  all->addWidget(value_);

  TOneChannelLink& link = *value_->GetChannelLink();
  connect(&link, &TOneChannelLink::OnChannelChanged, this, &TValueCard::ChannelChanged);
  link.SetInterval(200);
  link.SetChannelSource(&source);
  link.GetChannelSet()->SetItem(set);
  link.GetChannel()->SetItem(channel);
  ShowStatus(false);
}

TChannelSet* TValueCard::Set() const { return value_->GetChannelLink()->SelectedChannelSet(); }

void TValueCard::ChannelChanged() {
  TChannel* channel = value_->GetChannelLink()->SelectedChannel();
  caption_->setText(channel ? QStringLiteral("%1: %2").arg(Set()->GetLabel(), channel->GetLabel())
                            : QString());
  setToolTip(channel ? LimitsText(*channel) : QString());
}

void TValueCard::ShowStatus(bool live) {
  TOneChannelLink& link = *value_->GetChannelLink();
  const TChannel* channel = link.SelectedChannel();
  link.SetEnabled(channel && live);
  const TStatusLook look = StatusLook(channel && live ? channel->GetStats()->GetStatus() : ssNone);
  const QString sheet =
      QStringLiteral(
          "TValueCard { background: %1; border: 1px solid %2; border-radius: 4px; } "
          "QLabel { color: %3; }")
          .arg(look.Ground.name(), look.Ground.darker(112).name(), look.Ink.name());
  if (sheet != styleSheet()) setStyleSheet(sheet);
}
