#pragma once

#include <QPointer>
#include <QTableView>
#include <QTimer>
#include <set>

#include "components/graphing/Utilclasses.h"
#include "components/links/Componentref.h"
#include "components/sources/Tables.h"

class TDataSheetModel;

/// A grid that shows a data table and edits it, also while rows come in. Cells are copied to and
/// pasted from spreadsheets: rows on lines, values separated by tabs, with a full stop as decimal
/// point; a pasted number may have that of the locale. It follows the newest row while it shows the
/// last one. GUI thread only.
class TDataSheet : public QTableView {
  Q_OBJECT
  Q_PROPERTY(QString Table READ GetTableName WRITE SetTableName)
  Q_PROPERTY(TNumberFormat* ValueFormat READ GetValueFormat WRITE SetValueFormat)
  Q_PROPERTY(TNumberFormat* TimeFormat READ GetTimeFormat WRITE SetTimeFormat)
  Q_PROPERTY(bool ReadOnly READ GetReadOnly WRITE SetReadOnly)

 public:
  explicit TDataSheet(QWidget* parent = nullptr);
  ~TDataSheet() override;

  /// Null for none. Not owned, may go first.
  TDataTable* GetTable() const { return table_.Get(); }
  void SetTable(TDataTable* table);
  /// The table's object name, as forms keep it; resolved by Loaded.
  QString GetTableName() const { return table_.GetName(); }
  void SetTableName(const QString& name) { table_.SetName(name); }

  TNumberFormat* GetValueFormat() { return &valueFormat_; }
  void SetValueFormat(const TNumberFormat* format) { valueFormat_.Assign(format); }
  /// Of the first column, which holds times.
  TNumberFormat* GetTimeFormat() { return &timeFormat_; }
  void SetTimeFormat(const TNumberFormat* format) { timeFormat_.Assign(format); }
  bool GetReadOnly() const { return readOnly_; }
  void SetReadOnly(bool readOnly) { readOnly_ = readOnly; }

  /// To be called once the form is complete.
  void Loaded() { table_.Loaded(); }

 public slots:
  /// The selected cells, as text, to the clipboard.
  void Copy();
  /// Text of the clipboard into the cells from the current one on, with new rows as they are
  /// needed. Text that holds anything but numbers, or dates and times for the first column, and
  /// text that the table has no room for, changes nothing, and is said.
  void Paste();
  /// A row of zeros at the present time, above the current one or at the end.
  void InsertRow();
  void DeleteSelectedRows();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  friend class TDataSheetModel;
  void TableChanged();
  void RowAdded();
  void RowsChanged();
  void Refresh();
  bool MayEdit() const { return GetTable() && !readOnly_; }
  std::set<int> SelectedRows() const;
  int WidthOf(const QString& text) const;

  TComponentRef<TDataTable> table_{this};
  TNumberFormat valueFormat_{this};
  TNumberFormat timeFormat_{this};
  TDataSheetModel* model_;  ///< a child
  QTimer refresh_;          ///< many rows are shown at once
  int added_ = 0;           ///< rows since the last time
  bool changed_ = false;    ///< other rows are not what they were
  bool readOnly_ = false;
};
