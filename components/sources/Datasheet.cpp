#include "components/sources/Datasheet.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "components/graphing/Datetimeformat.h"
#include "model/Message.h"

namespace {

constexpr int kTimeColumn = 0;

/// As exact as a double is, with a full stop whatever the locale.
QString ExactText(double value) {
  return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

/// A value as it is edited.
QString CellText(int column, double value) {
  const QString time = column == kTimeColumn ? TypedTime(TDateTime(value)) : QString();
  return time.isEmpty() ? ExactText(value) : time;
}

/// A number, in the locale's way if it is none in the plain one, or a date and time in their
/// column.
std::optional<double> CellValue(int column, const QString& text) {
  const QString& separator = FormatSettings().decimalSeparator;
  bool isNumber = false;
  double value = text.trimmed().toDouble(&isNumber);
  if (!isNumber && !text.contains('.')) {
    value = text.trimmed().replace(separator, QLatin1String(".")).toDouble(&isNumber);
  }
  if (isNumber) return value;
  const auto time = column == kTimeColumn ? ScanTypedTime(text) : std::nullopt;
  return time ? std::optional(time->Days()) : std::nullopt;
}

using TRows = std::vector<std::vector<double>>;

/// The values of a text whose first one goes to `column`; nothing, and why, if one is no value.
std::optional<TRows> ScanRows(QString text, int column, QString* error) {
  TRows rows;
  if (text.endsWith('\n')) text.chop(1);
  for (const QString& line : text.split('\n')) {
    rows.emplace_back();
    for (const QString& cell : line.split('\t')) {
      const auto value = CellValue(column + static_cast<int>(rows.back().size()), cell);
      if (!value) {
        *error = QStringLiteral("Cannot paste \"%1\" in line %2: it is not a number.")
                     .arg(cell.trimmed().left(100))
                     .arg(rows.size());
        return {};
      }
      rows.back().push_back(*value);
    }
  }
  return rows;
}

}  // namespace

/// The rows of the sheet's table for the view.
class TDataSheetModel : public QAbstractTableModel {
 public:
  explicit TDataSheetModel(TDataSheet* sheet) : QAbstractTableModel(sheet), sheet_(*sheet) {}

  /// The counts that the view knows; they follow the table with Update alone.
  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : rows_;
  }
  int columnCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : columns_;
  }

  QVariant data(const QModelIndex& index, int role) const override {
    const TDataTable* table = sheet_.GetTable();
    if (!table || !index.isValid()) return {};
    const double value = table->GetValue(index.row(), index.column());
    if (role == Qt::EditRole) return CellText(index.column(), value);
    if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole) return {};
    const TNumberFormat& format = index.column() == 0 ? sheet_.timeFormat_ : sheet_.valueFormat_;
    return format.FormatedValue(value);
  }

  bool setData(const QModelIndex& index, const QVariant& value, int role) override {
    TDataTable* table = sheet_.GetTable();
    if (!table || role != Qt::EditRole) return false;
    const QString text = value.toString();
    // A time that was only looked at is not rounded.
    if (text == data(index, role)) return true;
    const std::optional<double> number = CellValue(index.column(), text);
    if (number) table->SetValue(index.row(), index.column(), *number);
    return number.has_value();
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (role != Qt::DisplayRole) return {};
    if (orientation == Qt::Vertical) return section + 1;
    const TDataTable* table = sheet_.GetTable();
    return table ? table->ColName(section) : QString();
  }

  Qt::ItemFlags flags(const QModelIndex& index) const override {
    const Qt::ItemFlags base = QAbstractTableModel::flags(index);
    return sheet_.GetReadOnly() ? base : base | Qt::ItemIsEditable;
  }

  /// Of the rows that the view knows, those go first that had to make room for `added` new ones.
  /// If anything else has changed, all of them are looked at again. What is being edited stays so
  /// as long as it is there.
  void Update(int added, bool changed) {
    const TDataTable* table = sheet_.GetTable();
    const int rows = table ? table->RowCount() : 0;
    const int columns = table ? table->ColCount() : 0;
    if (columns != columns_) {
      beginResetModel();
      rows_ = rows;
      columns_ = columns;
      endResetModel();
      return;
    }
    const int gone = changed ? 0 : std::clamp(rows_ + added - rows, 0, rows_);
    if (gone > 0) {
      beginRemoveRows({}, 0, gone - 1);
      rows_ -= gone;
      endRemoveRows();
    }
    if (rows > rows_) {
      beginInsertRows({}, rows_, rows - 1);
      rows_ = rows;
      endInsertRows();
    } else if (rows < rows_) {
      beginRemoveRows({}, rows, rows_ - 1);
      rows_ = rows;
      endRemoveRows();
    }
    if (!changed) return;
    if (rows_ > 0 && columns_ > 0) emit dataChanged(index(0, 0), index(rows_ - 1, columns_ - 1));
    emit headerDataChanged(Qt::Horizontal, 0, columns_ - 1);
  }

 private:
  const TDataSheet& sheet_;
  int rows_ = 0;
  int columns_ = 0;
};

TDataSheet::TDataSheet(QWidget* parent) : QTableView(parent), model_(new TDataSheetModel(this)) {
  setModel(model_);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  timeFormat_.SetTimeFormatStr(QStringLiteral("yyyy-mm-dd hh:nn:ss.zzz"));
  timeFormat_.SetIsTimeFormat(true);
  horizontalHeader()->setDefaultSectionSize(WidthOf(QStringLiteral("-1.2345E+300")));
  connect(model_, &QAbstractItemModel::modelReset, this, [this] {
    setColumnWidth(kTimeColumn, WidthOf(timeFormat_.FormatedValue(TDateTime::Now().Days())));
  });
  refresh_.setSingleShot(true);
  refresh_.setInterval(0);
  connect(&refresh_, &QTimer::timeout, this, &TDataSheet::Refresh);
  connect(&table_, &TPersistent::OnChange, this, &TDataSheet::TableChanged);
  for (TNumberFormat* format : {&valueFormat_, &timeFormat_}) {
    connect(format, &TPersistent::OnChange, viewport(), qOverload<>(&QWidget::update));
  }
}

int TDataSheet::WidthOf(const QString& text) const {
  constexpr int kMargins = 12;
  return fontMetrics().horizontalAdvance(text) + kMargins;
}

TDataSheet::~TDataSheet() { setModel(nullptr); }

void TDataSheet::SetTable(TDataTable* table) {
  if (table != GetTable()) table_.Set(table);
}

void TDataSheet::TableChanged() {
  if (TDataTable* table = GetTable()) {
    connect(table, &TDataTable::OnRowAdded, this, &TDataSheet::RowAdded, Qt::UniqueConnection);
    connect(table, &TDataTable::OnChange, this, &TDataSheet::RowsChanged, Qt::UniqueConnection);
  }
  changed_ = true;
  Refresh();
}

void TDataSheet::RowAdded() {
  ++added_;
  refresh_.start();
}

void TDataSheet::RowsChanged() {
  changed_ = true;
  refresh_.start();
}

void TDataSheet::Refresh() {
  const QScrollBar* bar = verticalScrollBar();
  const bool follow = bar->value() == bar->maximum();
  model_->Update(std::exchange(added_, 0), std::exchange(changed_, false));
  if (follow) scrollToBottom();
}

std::set<int> TDataSheet::SelectedRows() const {
  std::set<int> rows;
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row) rows.insert(row);
  }
  return rows;
}

void TDataSheet::Copy() {
  const TDataTable* table = GetTable();
  const QItemSelection selection = selectionModel()->selection();
  if (selection.isEmpty() || !table) return;
  std::set<int> columns;
  for (const QItemSelectionRange& range : selection) {
    for (int column = range.left(); column <= range.right(); ++column) columns.insert(column);
  }
  QString text;
  for (const int row : SelectedRows()) {
    QStringList line;
    for (const int column : columns) {
      const bool selected = selection.contains(model_->index(row, column));
      line.append(selected ? ExactText(table->GetValue(row, column)) : QString());
    }
    text += line.join('\t') + '\n';
  }
  QApplication::clipboard()->setText(text);
}

void TDataSheet::Paste() {
  const QString text = QApplication::clipboard()->text();
  if (!MayEdit() || text.isEmpty()) return;
  TDataTable& table = *GetTable();
  const QModelIndex at = currentIndex();
  const int firstRow = at.isValid() ? at.row() : table.RowCount();
  const int firstColumn = at.isValid() ? at.column() : 0;
  QString error;
  const std::optional<TRows> rows = ScanRows(text, firstColumn, &error);
  if (!rows) return ShowMessage(error);
  const auto roomDown = static_cast<std::size_t>(table.GetMaxRows() - firstRow);
  const auto roomRight = static_cast<std::size_t>(table.ColCount() - firstColumn);
  const std::size_t widest = std::ranges::max(*rows, {}, &TRows::value_type::size).size();
  if (rows->size() > roomDown || widest > roomRight) {
    return ShowMessage(
        QStringLiteral("Cannot paste %1 rows of %2 values: there is room for %3 rows of %4.")
            .arg(rows->size())
            .arg(widest)
            .arg(roomDown)
            .arg(roomRight));
  }
  for (std::size_t row = 0; row < rows->size(); ++row) {
    if (GetTable() != &table) return;  // a listener has destroyed it
    const int target = firstRow + static_cast<int>(row);
    if (target >= table.RowCount()) table.InsertRow(table.RowCount());
    for (std::size_t column = 0; column < (*rows)[row].size(); ++column) {
      table.SetValue(target, firstColumn + static_cast<int>(column), (*rows)[row][column]);
    }
  }
}

void TDataSheet::InsertRow() {
  if (!MayEdit()) return;
  TDataTable& table = *GetTable();
  const int row = currentIndex().isValid() ? currentIndex().row() : table.RowCount();
  if (table.RowCount() >= table.GetMaxRows()) {
    return ShowMessage(QStringLiteral("Cannot insert a row: the table is full."));
  }
  table.InsertRow(row);
  table.SetValue(row, kTimeColumn, TDateTime::Now().Days());
}

void TDataSheet::DeleteSelectedRows() {
  if (!MayEdit()) return;
  const std::set<int> rows = SelectedRows();
  for (auto last = rows.rbegin(); last != rows.rend();) {
    auto first = last;
    while (std::next(first) != rows.rend() && *std::next(first) == *first - 1) ++first;
    GetTable()->DeleteRows(*first, *last - *first + 1);
    last = std::next(first);
  }
}

void TDataSheet::keyPressEvent(QKeyEvent* event) {
  if (event == QKeySequence::Copy) {
    Copy();
  } else if (event == QKeySequence::Paste) {
    Paste();
  } else if (event->key() == Qt::Key_Insert) {
    InsertRow();
  } else if (event->key() == Qt::Key_Delete) {
    DeleteSelectedRows();
  } else {
    QTableView::keyPressEvent(event);
  }
}

void TDataSheet::contextMenuEvent(QContextMenuEvent* event) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  QAction* copy = menu->addAction(tr("&Copy"), QKeySequence::Copy, this, &TDataSheet::Copy);
  QAction* paste = menu->addAction(tr("&Paste"), QKeySequence::Paste, this, &TDataSheet::Paste);
  menu->addSeparator();
  QAction* insert = menu->addAction(tr("&Insert row"), QKeySequence(Qt::Key_Insert), this,
                                    &TDataSheet::InsertRow);
  QAction* remove = menu->addAction(tr("&Delete rows"), QKeySequence::Delete, this,
                                    &TDataSheet::DeleteSelectedRows);
  menu->addSeparator();
  menu->addAction(tr("Select &all"), QKeySequence::SelectAll, this, &TDataSheet::selectAll);
  copy->setEnabled(selectionModel()->hasSelection());
  paste->setEnabled(MayEdit());
  insert->setEnabled(MayEdit());
  remove->setEnabled(MayEdit() && selectionModel()->hasSelection());
  menu->popup(event->globalPos());
}
