#include "components/controls/Linkedlabel.h"

#include <QMenu>
#include <QMouseEvent>

namespace {

/// Lets the user choose a channel of the link's source.
void ChooseChannel(TOneChannelLink& link, QPoint at) {
  const TChannelSource* source = link.GetChannelSource();
  QMenu menu;
  const QStringList sets = link.GetChannelSet()->Items();
  for (qsizetype i = 0; source && i < sets.size(); ++i) {
    QMenu* channels = menu.addMenu(sets[i]);
    const TChannelSet* set = source->GetSets()->GetItem(static_cast<int>(i));
    if (!set) continue;
    const QStringList labels = set->GetChannels()->Labels();
    for (qsizetype k = 0; k < labels.size(); ++k) {
      QObject::connect(channels->addAction(labels[k]), &QAction::triggered, &link, [&link, i, k] {
        link.GetChannelSet()->SetIndex(static_cast<int>(i));
        link.GetChannel()->SetIndex(static_cast<int>(k));
      });
    }
  }
  if (menu.isEmpty()) {
    menu.addAction(QObject::tr("There is no channel source to choose from"))->setEnabled(false);
  }
  menu.exec(at);
}

}  // namespace

TLinkedLabel::TLinkedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  connect(&format_, &TPersistent::OnChange, this, &TLinkedLabel::InvalidateLabel);
  connect(&link_, &TOneChannelLink::OnChannelChanged, this, &TLinkedLabel::SelectedChannelChanged);
  connect(&link_, &TCustomChannelLink::OnData, this, &TLinkedLabel::UpdateValue);
  connect(link_.GetOptions(), &TPersistent::OnChange, this, &TLinkedLabel::InvalidateLabel);
  InvalidateLabel();
}

void TLinkedLabel::SelectedChannelChanged() {
  TChannel* channel = link_.SelectedChannel();
  valid_ = false;
  link_.SetEnabled(channel);
  if (channel) {
    label_ = channel->GetLabel();
    units_ = channel->GetUnits();
    format_.Assign(channel->GetNumFormat());
  }
  InvalidateLabel();
}

void TLinkedLabel::UpdateValue() {
  valid_ = link_.SelectedChannel();
  value_ = link_.GetData().ShownValue(link_.GetOptions()->GetValueType());
  InvalidateLabel();
}

void TLinkedLabel::InvalidateLabel() {
  QString text;
  if (!valid_) text += '<';
  if (showLabel_) text += label_;
  if (showValue_) {
    if (showLabel_ && !label_.isEmpty()) text += QStringLiteral(" : ");
    text += format_.FormatedValue(value_);
  }
  if (showUnits_ && !units_.isEmpty()) text += ' ' + units_;
  if (showDescription_) {
    text += QStringLiteral(" (%1)").arg(link_.GetOptions()->GetDescription());
  }
  if (!valid_) text += '>';
  setText(text);
}

void TLinkedLabel::mouseReleaseEvent(QMouseEvent* event) {
  QLabel::mouseReleaseEvent(event);
  if (event->button() == Qt::LeftButton && rect().contains(event->pos())) emit OnClick(this);
}

void TLinkedLabel::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) ChooseChannel(link_, event->globalPosition().toPoint());
}
