#include "examples/monitor/Sourcebox.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "components/links/Propclasses.h"
#include "examples/monitor/Fittinglabel.h"
#include "examples/monitor/Sourcewatch.h"

namespace {

QString LampColor(TSourceWatch::TState state) {
  switch (state) {
    case TSourceWatch::kReceiving:
      return QStringLiteral("#2e9e4f");
    case TSourceWatch::kConnected:
      return QStringLiteral("#d79a00");
    default:
      return QStringLiteral("#c0392b");
  }
}

}  // namespace

TSourceBox::TSourceBox(const QString& title, TSourceWatch& watch, TClick& console, QWidget* parent)
    : QGroupBox(title, parent), watch_(watch) {
  constexpr int kLamp = 12;
  lamp_ = new QLabel;
  lamp_->setFixedSize(kLamp, kLamp);
  state_ = new QLabel;
  state_->setObjectName(QStringLiteral("state"));
  QFont bold = state_->font();
  bold.setBold(true);
  state_->setFont(bold);
  auto* where = new TFittingLabel(1);
  where->SetText(watch.Name());
  detail_ = new TFittingLabel(2);
  detail_->setObjectName(QStringLiteral("detail"));

  connect_ = new QPushButton;
  connect_->setObjectName(QStringLiteral("connect"));
  connect(connect_, &QPushButton::clicked, this, [this] {
    watch_.SetWanted(!watch_.IsWanted());
    ShowState();
  });
  auto* open = new QPushButton(tr("Console..."));
  open->setObjectName(QStringLiteral("console"));
  connect(open, &QPushButton::clicked, &console, &TClick::Click);

  auto* top = new QHBoxLayout;
  top->addWidget(lamp_);
  top->addWidget(state_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(connect_);
  buttons->addWidget(open);
  auto* all = new QVBoxLayout(this);
  all->addLayout(top);
  all->addWidget(where);
  all->addWidget(detail_);
  all->addLayout(buttons);
  ShowState();
}

void TSourceBox::ShowState() {
  const QString lamp = QStringLiteral("background: %1; border-radius: %2px;")
                           .arg(LampColor(watch_.GetState()))
                           .arg(lamp_->width() / 2);
  if (lamp != lamp_->styleSheet()) lamp_->setStyleSheet(lamp);
  state_->setText(watch_.StateText());
  detail_->SetText(watch_.DetailText());
  connect_->setText(watch_.IsWanted() ? tr("Disconnect") : tr("Connect"));
}
