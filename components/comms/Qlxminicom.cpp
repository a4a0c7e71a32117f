#include "components/comms/Qlxminicom.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include "components/comms/Qlxport.h"

namespace {

constexpr int kHexColumns = 16;
constexpr int kTextColumns = 72;

bool IsPrintable(char byte) { return byte >= ' ' && byte <= '~'; }

QString HexLine(const QByteArray& bytes) {
  const QString numbers = QString::fromLatin1(bytes.toHex(' ').toUpper());
  QString characters;
  for (const char byte : bytes) characters += QLatin1Char(IsPrintable(byte) ? byte : '.');
  return numbers.leftJustified(3 * kHexColumns + 1) + characters;
}

QString TextLine(const QByteArray& bytes) {
  QString text;
  for (const char byte : bytes) {
    text += IsPrintable(byte) ? QString(QLatin1Char(byte))
                              : QStringLiteral("<%1>")
                                    .arg(static_cast<quint8>(byte), 2, 16, QLatin1Char('0'))
                                    .toUpper();
  }
  return text;
}

}  // namespace

QString TTrafficText::Take(QByteArrayView bytes, bool sent) {
  QString lines = sent == sent_ ? QString() : Finish();
  sent_ = sent;
  for (const char byte : bytes) {
    if (TakeByte(byte)) lines += Finish();
  }
  return lines;
}

bool TTrafficText::TakeByte(char byte) {
  line_ += byte;
  if (hex_) return line_.size() >= kHexColumns;
  columns_ += IsPrintable(byte) ? 1 : 4;
  return byte == '\n' || byte == '\r' || columns_ >= kTextColumns;
}

QString TTrafficText::Finish() {
  if (line_.isEmpty()) return {};
  const QString line = hex_ ? HexLine(line_) : TextLine(line_);
  line_.clear();
  columns_ = 0;
  return (sent_ ? QStringLiteral("> ") : QStringLiteral("  ")) + line + QLatin1Char('\n');
}

TQLXMiniCom::TQLXMiniCom(TQLXPort& port, QWidget* parent) : QDialog(parent), port_(&port) {
  constexpr int kMostLines = 5000;
  setWindowTitle(tr("Serial console"));
  text_ = new QPlainTextEdit;
  text_->setObjectName(QStringLiteral("Traffic"));
  text_->setReadOnly(true);
  text_->setUndoRedoEnabled(false);
  text_->setMaximumBlockCount(kMostLines);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->setMinimumSize(text_->fontMetrics().averageCharWidth() * 75,
                        text_->fontMetrics().lineSpacing() * 16);

  auto* all = new QVBoxLayout(this);
  all->addLayout(SwitchRow());
  all->addWidget(text_, 1);
  all->addLayout(CommandRow());

  connect(&port, &TQLXPort::OnTraffic, this, &TQLXMiniCom::TakeTraffic);
  connect(&port, &TQLXPort::OnOpen, this, &TQLXMiniCom::ShowState);
  connect(&port, &TQLXPort::OnClose, this, &TQLXMiniCom::ShowState);
  connect(&port, &TQLXPort::OnChange, this, &TQLXMiniCom::ShowState);
  connect(&port, &QObject::destroyed, this, &TQLXMiniCom::ShowState, Qt::QueuedConnection);
  refresh_.SetInterval(10);
  refresh_.SetOnTimer(TNotifyEvent(this, &TQLXMiniCom::ShowTraffic));
  refresh_.SetEnabled(true);
  command_->setFocus();
  ShowState();
}

QLayout* TQLXMiniCom::SwitchRow() {
  open_ = new QPushButton(tr("Open"));
  open_->setObjectName(QStringLiteral("Open"));
  autoRun_ = new QPushButton(tr("Auto run"));
  autoRun_->setObjectName(QStringLiteral("AutoRun"));
  for (QPushButton* button : {open_, autoRun_}) {
    button->setCheckable(true);
    button->setAutoDefault(false);
  }
  hex_ = new QCheckBox(tr("Hexadecimal"));
  hex_->setObjectName(QStringLiteral("Hex"));
  auto* clear = new QPushButton(tr("Clear"));
  clear->setAutoDefault(false);
  state_ = new QLabel;
  state_->setObjectName(QStringLiteral("State"));
  state_->setTextFormat(Qt::PlainText);

  connect(open_, &QPushButton::clicked, this, [this](bool on) {
    if (port_) port_->SetConnected(on);
    ShowState();
  });
  connect(autoRun_, &QPushButton::clicked, this, [this](bool on) {
    if (port_) port_->SetAutoRun(on);
    ShowState();
  });
  connect(hex_, &QCheckBox::toggled, this, [this](bool on) {
    pending_ += lines_.Finish();
    lines_.SetHex(on);
  });
  connect(clear, &QPushButton::clicked, text_, &QPlainTextEdit::clear);

  auto* row = new QHBoxLayout;
  row->addWidget(open_);
  row->addWidget(autoRun_);
  row->addWidget(state_, 1);
  row->addWidget(hex_);
  row->addWidget(clear);
  return row;
}

QLayout* TQLXMiniCom::CommandRow() {
  command_ = new QLineEdit;
  command_->setObjectName(QStringLiteral("Command"));
  command_->setPlaceholderText(tr("Command, sent with a carriage return"));
  command_->setMaxLength(256);
  send_ = new QPushButton(tr("Send"));
  send_->setObjectName(QStringLiteral("Send"));
  send_->setAutoDefault(false);
  connect(command_, &QLineEdit::returnPressed, this, &TQLXMiniCom::Send);
  connect(send_, &QPushButton::clicked, this, &TQLXMiniCom::Send);
  auto* row = new QHBoxLayout;
  row->addWidget(command_, 1);
  row->addWidget(send_);
  return row;
}

void TQLXMiniCom::TakeTraffic(QByteArrayView bytes, bool sent) {
  constexpr qsizetype kMostPending = 1 << 16;
  isQuiet_ = false;
  if (pending_.size() < kMostPending) {
    pending_ += lines_.Take(bytes, sent);
  } else {
    skipped_ += bytes.size();
  }
}

void TQLXMiniCom::ShowTraffic(QObject*) {
  if (isQuiet_) pending_ += lines_.Finish();
  isQuiet_ = true;
  if (skipped_ > 0) pending_ += tr("  (%1 more bytes)").arg(skipped_) + QLatin1Char('\n');
  skipped_ = 0;
  if (pending_.isEmpty()) return;
  pending_.chop(1);  // a paragraph brings its own line feed
  QScrollBar& bar = *text_->verticalScrollBar();
  const bool follows = bar.value() >= bar.maximum() - bar.pageStep();
  text_->appendPlainText(pending_);
  if (follows) bar.setValue(bar.maximum());
  pending_.clear();
}

void TQLXMiniCom::Send() {
  if (!port_ || !port_->GetConnected()) return;
  const bool sent = port_->SendQLXCommand(command_->text().toLatin1() + '\r') > 0;
  if (sent) {
    command_->clear();
  } else {
    state_->setText(tr("Not sent"));
  }
}

void TQLXMiniCom::ShowState() {
  const bool connected = port_ && port_->GetConnected();
  open_->setEnabled(port_);
  open_->setChecked(connected);
  autoRun_->setEnabled(port_);
  autoRun_->setChecked(port_ && port_->GetAutoRun());
  send_->setEnabled(connected);
  if (!port_) {
    state_->setText(tr("There is no port any more"));
  } else if (connected) {
    state_->setText(tr("%1 is open").arg(port_->GetLineName()));
  } else {
    state_->setText(port_->GetErrorText().isEmpty() ? tr("%1 is closed").arg(port_->GetPortNum())
                                                    : port_->GetErrorText());
  }
}

TQLXMiniCom* ShowMiniCom(TQLXPort& port, QWidget* parent) {
  auto* console = new TQLXMiniCom(port, parent);
  console->setAttribute(Qt::WA_DeleteOnClose);
  console->show();
  return console;
}
