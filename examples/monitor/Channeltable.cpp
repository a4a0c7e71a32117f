#include "examples/monitor/Channeltable.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include "examples/monitor/Monitoredsets.h"
#include "examples/monitor/Statuscolors.h"

namespace {

const QColor kInk(30, 35, 45);
constexpr int kSpace = 10;  ///< pixels beside a text

/// Shows a status in its colours in the selected row, too.
class TStatusDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    option->state &= ~QStyle::State_Selected;
  }
};

}  // namespace

TChannelTable::TChannelTable(TChannelSource& source, QWidget* parent) : QTableWidget(parent) {
  setColumnCount(kColumns);
  setHorizontalHeaderLabels({tr("Set"), tr("Channel"), tr("Value"), tr("Minimum"), tr("Maximum"),
                             tr("Average"), tr("Status")});
  setEditTriggers(NoEditTriggers);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setHorizontalScrollMode(ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 7);
  setItemDelegateForColumn(kStatus, new TStatusDelegate(this));
  horizontalHeader()->setStretchLastSection(true);
  horizontalHeader()->setHighlightSections(false);
  QPalette colors = palette();
  colors.setColor(QPalette::Base, Qt::white);
  colors.setColor(QPalette::Text, kInk);
  colors.setColor(QPalette::Highlight, QColor(205, 223, 247));
  colors.setColor(QPalette::HighlightedText, kInk);
  setPalette(colors);

  for (int i = 0; i < source.GetSets()->Count(); ++i) {
    TChannelSet* set = source.GetSets()->GetItem(i);
    for (int k = 0; k < set->GetCount(); ++k) AddRow({set, set->GetChannels()->GetItem(k)});
  }
  ShowValues(si1_Second, [](const TChannelSet&) { return false; });
  connect(this, &QTableWidget::itemSelectionChanged, this, &TChannelTable::OnSelected);
}

void TChannelTable::AddRow(const TRow& row) {
  const int index = rowCount();
  rows_.push_back(row);
  insertRow(index);
  for (int column = 0; column < kColumns; ++column) {
    auto* cell = new QTableWidgetItem;
    const bool isNumber = column >= kValue && column <= kAverage;
    cell->setTextAlignment(Qt::AlignVCenter | (isNumber ? Qt::AlignRight : Qt::AlignLeft));
    setItem(index, column, cell);
  }
  // Room for the usual values from the start.
  const int usual = fontMetrics().horizontalAdvance(ValueText(*row.channel, -88.88));
  for (int column = kValue; column <= kAverage; ++column) {
    int& width = widths_[static_cast<std::size_t>(column)];
    width = std::max(width, usual + kSpace);
  }
  SetText(index, kSet, row.set->GetLabel());
  SetText(index, kChannel, row.channel->GetLabel());
  item(index, kStatus)->setToolTip(LimitsText(*row.channel));
}

void TChannelTable::ShowValues(TStatInterval interval,
                               const std::function<bool(const TChannelSet& set)>& isLive) {
  for (int row = 0; row < rowCount(); ++row) {
    const TRow& shown = rows_[static_cast<std::size_t>(row)];
    setRowHidden(row, shown.set->GetActive() && !shown.channel->GetActive());
    ShowRow(row, interval, isLive(*shown.set));
  }
  if (outgrown_) Widen();
}

void TChannelTable::ShowRow(int row, TStatInterval interval, bool live) {
  const TRow& shown = rows_[static_cast<std::size_t>(row)];
  const QString none = QStringLiteral("\u2013");
  const auto text = [&](bool known, double value) {
    return known ? ValueText(*shown.channel, value) : none;
  };
  const TStatSet all = Summary(*shown.channel->GetStats(), interval);
  SetText(row, kValue, text(shown.channel->GetActive(), LatestValue(*shown.set, *shown.channel)));
  SetText(row, kMin, text(all.Count > 0.0, all.Min));
  SetText(row, kMax, text(all.Count > 0.0, all.Max));
  SetText(row, kAverage, text(all.Count > 0.0, all.Mean));

  const TStatusLook look = StatusLook(live ? shown.channel->GetStats()->GetStatus() : ssNone);
  SetText(row, kStatus, look.Text);
  item(row, kStatus)->setBackground(look.Ground);
  item(row, kStatus)->setForeground(look.Ink);
  for (int column = kSet; column < kStatus; ++column) {
    item(row, column)->setForeground(live ? kInk : look.Ink);
  }
}

void TChannelTable::SetText(int row, int column, const QString& text) {
  QTableWidgetItem& cell = *item(row, column);
  if (cell.text() == text) return;
  cell.setText(text);
  qsizetype& longest = longest_[static_cast<std::size_t>(column)];
  if (text.size() <= longest) return;
  longest = text.size();
  outgrown_ = true;
}

/// Columns only grow: a table whose columns breathe with their numbers cannot be read.
void TChannelTable::Widen() {
  outgrown_ = false;
  int all = 2 * frameWidth() + verticalScrollBar()->sizeHint().width();
  for (int column = 0; column < kColumns; ++column) {
    int& width = widths_[static_cast<std::size_t>(column)];
    width = std::max(
        {width, sizeHintForColumn(column) + kSpace, horizontalHeader()->sectionSizeHint(column)});
    setColumnWidth(column, width);
    all += width;
  }
  setMinimumWidth(all);
}

TChannel* TChannelTable::SelectedChannel() const {
  const int row = currentRow();
  return row < 0 ? nullptr : rows_[static_cast<std::size_t>(row)].channel;
}

TChannelSet* TChannelTable::SelectedSet() const {
  const int row = currentRow();
  return row < 0 ? nullptr : rows_[static_cast<std::size_t>(row)].set;
}

void TChannelTable::Select(const TChannel* channel) {
  for (int row = 0; row < rowCount(); ++row) {
    if (rows_[static_cast<std::size_t>(row)].channel == channel) return selectRow(row);
  }
}
