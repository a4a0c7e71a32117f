#include "components/controls/Linkedlabel.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace {

/// A label's own `&` is no mark for a key.
QString MenuText(QString label) { return label.replace('&', QStringLiteral("&&")); }

/// The channels of one set, of which one is chosen.
void AddChannels(QMenu& menu, TChannelSet& set, TOneChannelLink& link) {
  for (int i = 0; i < set.GetChannels()->Count(); ++i) {
    const TChannel* channel = set.GetChannels()->GetItem(i);
    QAction* action = menu.addAction(MenuText(channel->GetLabel()));
    action->setCheckable(true);
    action->setChecked(channel == link.SelectedChannel());
    QObject::connect(action, &QAction::triggered, &link, [&link, set = set.Index(), i] {
      link.GetChannelSet()->SetIndex(set);
      link.GetChannel()->SetIndex(i);
    });
  }
}

}  // namespace

TLinkedLabel::TLinkedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  connect(&format_, &TPersistent::OnChange, this, &TLinkedLabel::InvalidateLabel);
  connect(&link_, &TOneChannelLink::OnChannelChanged, this, &TLinkedLabel::SelectedChannelChanged);
  connect(&link_, &TCustomChannelLink::OnData, this, &TLinkedLabel::UpdateValue);
  connect(link_.GetOptions(), &TPersistent::OnChange, this, &TLinkedLabel::OptionsChanged);
  InvalidateLabel();
}

void TLinkedLabel::SelectedChannelChanged() {
  TChannel* channel = link_.SelectedChannel();
  disconnect(channel_);
  valid_ = false;
  link_.SetEnabled(channel);
  if (channel) {
    if (shown_.ChangesTo(channel)) value_ = 0.0;
    channel_ = connect(channel, &TPersistent::OnChange, this, &TLinkedLabel::TakeNames);
    format_.Assign(channel->GetNumFormat());
    TakeNames();
  }
  InvalidateLabel();
}

void TLinkedLabel::TakeNames() {
  const TChannel* channel = link_.SelectedChannel();
  if (!channel) return;
  label_ = channel->GetLabel();
  units_ = channel->GetUnits();
  InvalidateLabel();
}

/// The value that was shown is not the one that is wanted now.
void TLinkedLabel::OptionsChanged() {
  value_ = 0.0;
  UpdateValue();
}

/// The link ticks whether there are data or not.
void TLinkedLabel::UpdateValue() {
  valid_ = link_.HasData();
  if (valid_) value_ = link_.GetData().ShownValue(link_.GetOptions()->GetValueType());
  InvalidateLabel();
}

void TLinkedLabel::InvalidateLabel() {
  QString text;
  if (!valid_) text += '<';
  if (showLabel_) text += label_;
  if (showValue_) {
    if (showLabel_ && !label_.isEmpty()) text += QStringLiteral(" : ");
    text += TextOfPicked(*link_.GetOptions(), format_, value_);
  }
  const bool isTime = showValue_ && link_.GetOptions()->GetValueType() == svTime;
  if (showUnits_ && !units_.isEmpty() && !isTime) text += ' ' + units_;
  if (showDescription_) {
    text += QStringLiteral(" (%1)").arg(link_.GetOptions()->GetDescription());
  }
  if (!valid_) text += '>';
  setText(text);
}

bool TLinkedLabel::IsCut() const {
  return !wordWrap() && QLabel::minimumSizeHint().width() > width();
}

bool TLinkedLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip || !IsCut() || !toolTip().isEmpty()) {
    return QLabel::event(event);
  }
  const QString whole = QStringLiteral("<p>%1</p>").arg(text().toHtmlEscaped());
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), whole, this);
  return true;
}

/// Digits that are cut off would make another number of a value.
void TLinkedLabel::paintEvent(QPaintEvent* event) {
  if (!IsCut()) return QLabel::paintEvent(event);
  QPainter painter(this);
  drawFrame(&painter);
  const QRect room = contentsRect().adjusted(margin(), margin(), -margin(), -margin());
  const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, room.width());
  const int flags = static_cast<int>(QStyle::visualAlignment(layoutDirection(), alignment()) |
                                     Qt::TextSingleLine);
  style()->drawItemText(&painter, room, flags, palette(), isEnabled(), shown, foregroundRole());
}

void TLinkedLabel::mouseReleaseEvent(QMouseEvent* event) {
  QLabel::mouseReleaseEvent(event);
  if (event->button() == Qt::LeftButton && rect().contains(event->pos())) emit OnClick(this);
}

void TLinkedLabel::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) ChooseChannel(event->globalPosition().toPoint());
}

void TLinkedLabel::contextMenuEvent(QContextMenuEvent* event) { ChooseChannel(event->globalPos()); }

void TLinkedLabel::ChooseChannel(QPoint at) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const TChannelSource* source = link_.GetChannelSource();
  for (int i = 0; source && i < source->GetSets()->Count(); ++i) {
    TChannelSet& set = *source->GetSets()->GetItem(i);
    AddChannels(*menu->addMenu(MenuText(set.GetLabel())), set, link_);
  }
  if (menu->isEmpty()) {
    menu->addAction(tr("There is no channel source to choose from"))->setEnabled(false);
  }
  menu->popup(at);
}
