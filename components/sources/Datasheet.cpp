#include "components/sources/Datasheet.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <set>
#include <vector>

#include "model/Message.h"

namespace {

/// As exact as a double is, with a full stop whatever the locale.
QString ExactText(double value) {
  return QString::number(value, 'g', QLocale::FloatingPointShortest);
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
    if (role == Qt::EditRole) return ExactText(value);
    if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole) return {};
    const TNumberFormat& format = index.column() == 0 ? sheet_.timeFormat_ : sheet_.valueFormat_;
    return format.FormatedValue(value);
  }

  bool setData(const QModelIndex& index, const QVariant& value, int role) override {
    TDataTable* table = sheet_.GetTable();
    bool isNumber = false;
    const double number = value.toString().trimmed().toDouble(&isNumber);
    if (!table || role != Qt::EditRole || !isNumber) return false;
    table->SetValue(index.row(), index.column(), number);
    return true;
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

  void Update() {
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
    if (rows > rows_) {
      beginInsertRows({}, rows_, rows - 1);
      rows_ = rows;
      endInsertRows();
    } else if (rows < rows_) {
      beginRemoveRows({}, rows, rows_ - 1);
      rows_ = rows;
      endRemoveRows();
    }
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
  horizontalHeader()->setDefaultSectionSize(
      fontMetrics().horizontalAdvance(QStringLiteral("2026-01-01 00:00:00.000")) + 12);
  refresh_.setSingleShot(true);
  refresh_.setInterval(0);
  connect(&refresh_, &QTimer::timeout, this, &TDataSheet::Refresh);
  connect(&table_, &TPersistent::OnChange, this, &TDataSheet::TableChanged);
  for (TNumberFormat* format : {&valueFormat_, &timeFormat_}) {
    connect(format, &TPersistent::OnChange, viewport(), qOverload<>(&QWidget::update));
  }
}

TDataSheet::~TDataSheet() { setModel(nullptr); }

TDataTable* TDataSheet::GetTable() const {
  return table_.Empty() ? nullptr : table_.Get<TDataTable>(0);
}

void TDataSheet::SetTable(TDataTable* table) {
  if (table == GetTable()) return;
  table_.Clear();
  if (table) table_.Add(table);
}

void TDataSheet::SetTableName(const QString& name) {
  if (name != GetTableName()) table_.SetNames(name.isEmpty() ? QStringList() : QStringList(name));
}

void TDataSheet::TableChanged() {
  if (TDataTable* table = GetTable()) {
    connect(table, &TDataTable::OnRowAdded, this, &TDataSheet::RefreshLater, Qt::UniqueConnection);
    connect(table, &TDataTable::OnChange, this, &TDataSheet::RefreshLater, Qt::UniqueConnection);
  }
  Refresh();
}

void TDataSheet::Refresh() {
  const QScrollBar* bar = verticalScrollBar();
  const bool follow = bar->value() == bar->maximum();
  model_->Update();
  if (follow) scrollToBottom();
}

void TDataSheet::Copy() {
  const QModelIndexList selected = selectionModel()->selectedIndexes();
  const TDataTable* table = GetTable();
  if (selected.isEmpty() || !table) return;
  std::set<int> rows;
  std::set<int> columns;
  std::set<std::pair<int, int>> cells;
  for (const QModelIndex& index : selected) {
    rows.insert(index.row());
    columns.insert(index.column());
    cells.emplace(index.row(), index.column());
  }
  QString text;
  for (const int row : rows) {
    QStringList line;
    for (const int column : columns) {
      line.append(cells.contains({row, column}) ? ExactText(table->GetValue(row, column))
                                                : QString());
    }
    text += line.join('\t') + '\n';
  }
  QApplication::clipboard()->setText(text);
}

void TDataSheet::Paste() {
  TDataTable* table = GetTable();
  if (!table || readOnly_) return;
  std::vector<std::vector<double>> rows;
  QString text = QApplication::clipboard()->text();
  if (text.endsWith('\n')) text.chop(1);
  for (const QString& line : text.split('\n')) {
    rows.emplace_back();
    for (const QString& cell : line.split('\t')) {
      bool isNumber = false;
      rows.back().push_back(cell.trimmed().toDouble(&isNumber));
      if (isNumber) continue;
      return ShowMessage(QStringLiteral("Cannot paste \"%1\" in line %2: it is not a number.")
                             .arg(cell.trimmed().left(100))
                             .arg(rows.size()));
    }
  }
  const QModelIndex at = currentIndex();
  const int firstRow = at.isValid() ? at.row() : table->RowCount();
  const int firstColumn = at.isValid() ? at.column() : 0;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const int target = firstRow + static_cast<int>(row);
    if (target >= table->RowCount()) table->InsertRow(table->RowCount());
    for (std::size_t column = 0; column < rows[row].size(); ++column) {
      table->SetValue(target, firstColumn + static_cast<int>(column), rows[row][column]);
    }
  }
}

void TDataSheet::DeleteSelectedRows() {
  TDataTable* table = GetTable();
  if (!table || readOnly_) return;
  std::set<int, std::greater<>> rows;
  for (const QModelIndex& index : selectionModel()->selectedIndexes()) rows.insert(index.row());
  for (const int row : rows) table->DeleteRows(row, 1);
}

void TDataSheet::keyPressEvent(QKeyEvent* event) {
  if (event == QKeySequence::Copy) {
    Copy();
  } else if (event == QKeySequence::Paste) {
    Paste();
  } else if (event->key() == Qt::Key_Delete) {
    DeleteSelectedRows();
  } else {
    QTableView::keyPressEvent(event);
  }
}

void TDataSheet::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  menu.addAction(tr("&Copy"), QKeySequence::Copy, this, &TDataSheet::Copy);
  QAction* paste = menu.addAction(tr("&Paste"), QKeySequence::Paste, this, &TDataSheet::Paste);
  QAction* remove = menu.addAction(tr("&Delete rows"), QKeySequence::Delete, this,
                                   &TDataSheet::DeleteSelectedRows);
  paste->setEnabled(!readOnly_);
  remove->setEnabled(!readOnly_);
  menu.exec(event->globalPos());
}
