#include "components/comms/Qlxwebdebug.h"
#include "components/controls/Plaintip.h"

#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

TQLXWebDebug::TQLXWebDebug(TQLXClient& client, TSend send, TSummary summary, QWidget* parent)
    : QDialog(parent), client_(&client), send_(std::move(send)), summary_(std::move(summary)) {
  setWindowTitle(client.objectName().isEmpty()
                     ? QStringLiteral("Web debug console")
                     : QStringLiteral("Web debug console - ") + client.objectName());
  BuildWidgets();
  connect(&client, &TQLXClient::OnReceived, this,
          [this](QObject*, const QByteArray& text) { Receive(text); });
  connect(&client, &TQLXClient::OnStatusChanged, this, &TQLXWebDebug::ShowState);
  connect(&client, &TQLXClient::OnActiveChanged, this, &TQLXWebDebug::ShowState);
  constexpr quint32 kRefreshTicks = 10;
  refresh_.SetInterval(kRefreshTicks);
  refresh_.SetOnTimer({this, &TQLXWebDebug::Refresh});
  refresh_.SetEnabled(true);
  ShowState();
}

void TQLXWebDebug::BuildWidgets() {
  status_ = new QLabel;
  status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  status_->setTextFormat(Qt::PlainText);
  status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  connect_ = new QPushButton;
  connect_->setAutoDefault(false);
  connect(connect_, &QPushButton::clicked, this, &TQLXWebDebug::ToggleActive);

  text_ = new QPlainTextEdit;
  text_->setReadOnly(true);
  text_->setUndoRedoEnabled(false);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setMaximumBlockCount(kMaxLines);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

  line_ = new QLineEdit;
  line_->setPlaceholderText(QStringLiteral("Command to the server"));
  sendButton_ = new QPushButton(QStringLiteral("Send"));
  sendButton_->setDefault(true);
  connect(sendButton_, &QPushButton::clicked, this, &TQLXWebDebug::SendLine);
  counts_ = new QLabel;
  auto* clear = new QPushButton(QStringLiteral("Clear"));
  clear->setAutoDefault(false);
  connect(clear, &QPushButton::clicked, text_, &QPlainTextEdit::clear);

  auto* top = new QHBoxLayout;
  top->addWidget(status_, 1);
  top->addWidget(connect_);
  auto* command = new QHBoxLayout;
  command->addWidget(line_, 1);
  command->addWidget(sendButton_);
  auto* bottom = new QHBoxLayout;
  bottom->addWidget(counts_, 1);
  bottom->addWidget(clear);
  auto* all = new QVBoxLayout(this);
  all->addLayout(top);
  all->addWidget(text_, 1);
  all->addLayout(command);
  all->addLayout(bottom);
  resize(640, 420);
}

/// Keeps the end of what comes between two refreshes.
void TQLXWebDebug::Receive(const QByteArray& text) {
  received_ += text.size();
  if (!isVisible()) return;
  const qsizetype over = pending_.size() + text.size() - kMaxPending;
  if (over > 0) {
    skipped_ += over;
    pending_.remove(0, over);
  }
  pending_.append(text.last(std::min(text.size(), kMaxPending)));
}

void TQLXWebDebug::SendLine() {
  if (line_->text().isEmpty()) return;
  if (send_(line_->text().toUtf8())) {
    line_->clear();
  } else {
    status_->setText(QStringLiteral("Cannot send: not connected"));
  }
}

void TQLXWebDebug::ToggleActive() {
  if (client_) client_->SetActive(!client_->GetActive());
}

void TQLXWebDebug::ShowState() {
  if (!client_) return;
  const bool active = client_->GetActive();
  status_->setText(client_->GetStatus());
  status_->setToolTip(PlainTip(client_->GetStatus()));
  connect_->setText(active ? QStringLiteral("Disconnect") : QStringLiteral("Connect"));
  sendButton_->setEnabled(active);
}

void TQLXWebDebug::Refresh(QObject* sender) {
  Q_UNUSED(sender)
  if (!isVisible()) return;
  if (skipped_ > 0) {
    Append(QStringLiteral("\n... %1 bytes not shown ...\n").arg(skipped_));
    skipped_ = 0;
  }
  if (!pending_.isEmpty()) {
    Append(decode_(pending_));
    pending_.clear();
  }
  QString counts = QStringLiteral("%1 bytes").arg(received_);
  if (summary_ && client_) counts += QStringLiteral(", ") + summary_();
  counts_->setText(counts);
}

/// Follows the text while its end is in view, and leaves alone who has scrolled back.
void TQLXWebDebug::Append(const QString& text) {
  constexpr int kNearLines = 3;  // a scroll bar that comes below the text hides some
  QScrollBar* bar = text_->verticalScrollBar();
  const bool follows = bar->maximum() - bar->value() <= kNearLines;
  QTextCursor cursor(text_->document());
  cursor.movePosition(QTextCursor::End);
  cursor.insertText(Broken(text));
  if (follows) bar->setValue(bar->maximum());
}

/// The text with no line longer than kMaxColumns, and without control characters.
QString TQLXWebDebug::Broken(const QString& text) {
  QString lines;
  lines.reserve(text.size() + text.size() / kMaxColumns);
  for (const QChar c : text) {
    if (c == u'\r') continue;
    if (c != u'\n' && column_ == kMaxColumns) {
      lines += u'\n';
      column_ = 0;
    }
    column_ = c == u'\n' ? 0 : column_ + 1;
    const bool visible = c == u'\n' || c == u'\t' || (c >= u' ' && c != u'\u007f');
    lines += visible ? c : QChar(QChar::ReplacementCharacter);
  }
  return lines;
}
