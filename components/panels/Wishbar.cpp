#include "components/panels/Wishbar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <algorithm>

#include "model/Oneline.h"

namespace {

constexpr int kMostShownLines = 5;

/// The wishes, a line each; those that find no room scroll.
QPlainTextEdit* MakeList(const TWishes& wishes, QWidget* parent) {
  QStringList lines;
  for (const TWish& wish : wishes) lines << QStringLiteral("\u2022 ") + wish.Text;
  auto* list = new QPlainTextEdit(lines.join('\n'), parent);
  list->setReadOnly(true);
  list->setTabChangesFocus(true);
  list->setAccessibleName(TWishBar::tr("What the panel wants"));
  list->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  const auto shown = std::min<qsizetype>(lines.size(), kMostShownLines);
  const int frame = list->height() - list->viewport()->height();
  const double margins = 2.0 * (list->document()->documentMargin() + list->frameWidth());
  // A line may be higher than the font says: the bullet is of another one.
  const int line = list->fontMetrics().lineSpacing();
  list->setFixedHeight(static_cast<int>(shown) * line + line / 2 +
                       std::max(frame, qRound(margins)));
  return list;
}

}  // namespace

TWishBar::TWishBar(const TWishes& wishes, const QString& folder, const QString& unsafeFolder,
                   QWidget* parent)
    : QFrame(parent) {
  setFrameShape(QFrame::StyledPanel);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::AlternateBase);
  auto* column = new QVBoxLayout(this);
  auto* heading = new QLabel(
      tr("This panel is at rest: its file is new here, or was changed elsewhere. It wants to"),
      this);
  heading->setTextFormat(Qt::PlainText);
  heading->setWordWrap(true);
  column->addWidget(heading);
  column->addWidget(MakeList(wishes, this));
  auto* row = new QHBoxLayout;
  column->addLayout(row);
  const auto add = [&](const QString& text, const QString& tip, TAnswer answer) {
    auto* button = new QPushButton(text, this);
    button->setToolTip(QStringLiteral("<p>%1</p>").arg(tip.toHtmlEscaped()));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, answer] { emit OnAnswer(answer); });
    row->addWidget(button);
    return button;
  };
  add(tr("Start"), tr("Let it do this until it is closed."), TAnswer::Start);
  add(tr("Always for this file"), tr("Start it, and do not ask again until the file is changed."),
      TAnswer::AlwaysFile);
  const bool isSafe = unsafeFolder.isEmpty();
  add(tr("Always in this folder"),
      isSafe ? tr("Start every panel in %1 and the folders below it, whatever it wants.")
                   .arg(ShownName(folder))
             : tr("Not offered: %1.").arg(unsafeFolder),
      TAnswer::AlwaysFolder)
      ->setEnabled(isSafe);
  add(tr("Leave off"), tr("Keep it at rest. The menu \"Panel\" asks again."), TAnswer::LeaveOff);
  row->addStretch();
}
