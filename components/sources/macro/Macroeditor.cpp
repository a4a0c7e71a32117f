#include "components/sources/macro/Macroeditor.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>
#include <QVBoxLayout>

#include "components/sources/macro/Macrofunctions.h"

namespace {

constexpr int kTextRole = Qt::UserRole;        ///< what an entry of a list writes
constexpr int kCursorRole = Qt::UserRole + 1;  ///< where it leaves the cursor in that

void AddEntry(QListWidget& list, const QString& shown, const QString& text, qsizetype cursor) {
  auto* item = new QListWidgetItem(shown, &list);
  item->setData(kTextRole, text);
  item->setData(kCursorRole, static_cast<int>(cursor));
}

const QColor kErrorColor(176, 0, 32);

/// "", "(a)" or "(a;b)".
QString Arguments(const TMacroName& name) {
  switch (static_cast<TMacroItem::TType>(name.data.index() + 1)) {
    case TMacroItem::miFunction1:
      return QStringLiteral("(a)");
    case TMacroItem::miFunction2:
      return QStringLiteral("(a;b)");
    default:
      return {};
  }
}

}  // namespace

TMacroEditor::TMacroEditor(const QString& text, const TKorvalCompList& variables, QWidget* parent)
    : QDialog(parent),
      list_(&variables),
      text_(new QPlainTextEdit),
      error_(new QLabel),
      value_(new QLabel),
      variables_(new QListWidget),
      functions_(new QListWidget) {
  setWindowTitle(tr("Macro"));
  compiler_.SetVariables(&variables);

  auto* columns = new QHBoxLayout;
  columns->addLayout(MakeText(), 3);
  columns->addLayout(MakeLists(), 2);
  auto* all = new QVBoxLayout(this);
  all->addLayout(columns, 1);
  all->addWidget(MakeButtons());
  resize(720, 400);

  ListVariables();
  ListFunctions();
  text_->setPlainText(text);
  connect(text_, &QPlainTextEdit::textChanged, this, &TMacroEditor::Check);
  connect(&variables, &TPersistent::OnChange, this, [this] {
    ListVariables();
    Check();
  });
  Check();
  text_->moveCursor(QTextCursor::End);
  GoToError();
}

QLayout* TMacroEditor::MakeText() {
  text_->setObjectName(QStringLiteral("Text"));
  text_->setTabChangesFocus(true);
  QFont font(QStringLiteral("monospace"));
  font.setStyleHint(QFont::TypeWriter);
  text_->setFont(font);
  error_->setObjectName(QStringLiteral("Error"));
  error_->setTextFormat(Qt::PlainText);  // it quotes the macro
  value_->setObjectName(QStringLiteral("Value"));
  value_->setAlignment(Qt::AlignRight);

  auto* line = new QHBoxLayout;
  line->addWidget(error_);
  line->addWidget(value_, 1);
  auto* layout = new QVBoxLayout;
  layout->addWidget(text_, 1);
  layout->addLayout(line);
  return layout;
}

QLayout* TMacroEditor::MakeLists() {
  variables_->setObjectName(QStringLiteral("Variables"));
  functions_->setObjectName(QStringLiteral("Functions"));
  auto* layout = new QVBoxLayout;
  layout->addWidget(new QLabel(tr("Variables")));
  layout->addWidget(variables_, 1);
  layout->addWidget(new QLabel(tr("Functions")));
  layout->addWidget(functions_, 2);
  for (QListWidget* list : {variables_, functions_}) {
    connect(list, &QListWidget::itemActivated, this,
            [this](const QListWidgetItem* item) { Write(*item); });
  }
  return layout;
}

QDialogButtonBox* TMacroEditor::MakeButtons() {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                       QDialogButtonBox::Apply);
  connect(buttons, &QDialogButtonBox::accepted, this, &TMacroEditor::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &TMacroEditor::reject);
  connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
          &TMacroEditor::Apply);
  return buttons;
}

void TMacroEditor::ListVariables() {
  variables_->clear();
  for (int i = 0; list_ && i < list_->Count(); ++i) {
    const QObject* variable = list_->Get(i);
    if (!variable) continue;
    const QString text = '[' + variable->objectName() + ']';
    AddEntry(*variables_, variable->objectName(), text, text.size());
  }
}

void TMacroEditor::ListFunctions() {
  for (const TMacroName& name : MacroNames()) {
    const QString word = name.name.toString();
    const QString arguments = Arguments(name);
    // The names of the arguments are left to be filled in, the first one first.
    const QString text = word + QString(arguments).remove('a').remove('b');
    AddEntry(*functions_, word + arguments + QStringLiteral(": ") + tr(name.meaning), text,
             word.size() + (arguments.isEmpty() ? 0 : 1));
  }
  functions_->setMinimumWidth(functions_->sizeHintForColumn(0) + 2 * functions_->frameWidth() +
                              functions_->verticalScrollBar()->sizeHint().width());
}

void TMacroEditor::Write(const QListWidgetItem& item) {
  QTextCursor cursor = text_->textCursor();
  const int start = cursor.selectionStart();
  cursor.insertText(item.data(kTextRole).toString());
  cursor.setPosition(start + item.data(kCursorRole).toInt());
  text_->setTextCursor(cursor);
  text_->setFocus();
}

// The error

void TMacroEditor::Check() {
  const std::unique_ptr<TMacroItem> root = compiler_.Compile(text_->toPlainText());
  error_->setText(compiler_.ErrorMessage());
  error_->setStyleSheet(compiler_.Ok() ? QString() : "color: " + kErrorColor.name());
  value_->setText(root ? QStringLiteral("= %1").arg(root->Evaluate()) : QString());
  Mark();
}

/// Position of the character that the compiler could not take, from 0 on; -1 without an error.
int TMacroEditor::ErrorIndex() const {
  const bool movedBack = compiler_.ErrorCode() == TMacroCompiler::mcIncorrectFormat ||
                         compiler_.ErrorCode() == TMacroCompiler::mcIllegalFunction;
  return compiler_.Position() - (movedBack ? 0 : 1);
}

/// Underlines the character at the error, the last one of the text if that ends too early, or the
/// end of the name that is wrong.
void TMacroEditor::Mark() {
  QList<QTextEdit::ExtraSelection> marks;
  if (!compiler_.Ok()) {
    const QTextDocument& document = *text_->document();
    const int index = ErrorIndex();
    const bool behindName = compiler_.ErrorCode() == TMacroCompiler::mcIncorrectVariable ||
                            (compiler_.ErrorCode() == TMacroCompiler::mcIllegalFunction &&
                             document.characterAt(index - 1).isUpper());
    const int last = std::max(0, document.characterCount() - 2);
    QTextEdit::ExtraSelection mark;
    mark.cursor = text_->textCursor();
    mark.cursor.setPosition(std::min(behindName ? index - 1 : index, last));
    mark.cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
    mark.format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    mark.format.setUnderlineColor(kErrorColor);
    mark.format.setBackground(QColor(255, 221, 225));
    marks << mark;
  }
  text_->setExtraSelections(marks);
}

void TMacroEditor::GoToError() {
  text_->setFocus();
  if (compiler_.Ok()) return;
  QTextCursor cursor = text_->textCursor();
  cursor.setPosition(std::min(ErrorIndex(), text_->document()->characterCount() - 1));
  text_->setTextCursor(cursor);
}

/// The lines, and so the place of the cursor, are known once the window has its size.
void TMacroEditor::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  QMetaObject::invokeMethod(text_, &QPlainTextEdit::ensureCursorVisible, Qt::QueuedConnection);
}

// Buttons

void TMacroEditor::Apply() {
  GoToError();
  emit OnApply(text_->toPlainText());
}

void TMacroEditor::accept() {
  if (!compiler_.Ok()) {
    GoToError();
    return;
  }
  Apply();
  QDialog::accept();
}
