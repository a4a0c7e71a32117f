#pragma once

#include <QStringList>
#include <memory>
#include <vector>

#include "components/controls/Compbase.h"
#include "components/links/Objlists.h"
#include "components/links/Propclasses.h"
#include "components/sources/Rowsampler.h"

/// A table of measured rows: the time and one column per data control. It takes a row whenever the
/// last of its controls notifies, keeps the newest MaxRows of them, and is stored with its form. A
/// data sheet shows it. GUI thread only.
class TDataTable : public TIconControl {
  Q_OBJECT
  Q_PROPERTY(TKorvalCompList* Controls READ GetControls WRITE SetControls)
  /// Rows kept, 1 to 65536; further ones push the oldest out.
  Q_PROPERTY(int MaxRows READ GetMaxRows WRITE SetMaxRows)
  /// Whether values of the controls become rows.
  Q_PROPERTY(bool Recording READ GetRecording WRITE SetRecording)
  Q_PROPERTY(TClick* Reset READ GetReset)
  Q_PROPERTY(QString DataValues READ GetDataValues WRITE SetDataValues DESIGNABLE false)

 public:
  explicit TDataTable(QWidget* parent = nullptr);

  TKorvalCompList* GetControls() { return sampler_.Controls(); }
  /// Other controls, or the same in another order, make another table: the rows go.
  void SetControls(const TKorvalCompList* list) { sampler_.Controls()->Assign(list); }
  int GetMaxRows() const { return maxRows_; }
  void SetMaxRows(int rows);
  bool GetRecording() const { return recording_; }
  void SetRecording(bool recording);
  TClick* GetReset() { return &reset_; }

  int RowCount() const { return rows_->Count(); }
  int ColCount() const { return rows_->ColCount(); }
  /// "Time", then the names of the controls.
  QString ColName(int column) const;
  /// 0.0 outside the table. Column 0 holds times in days since 30 December 1899.
  double GetValue(int row, int column) const { return rows_->GetValues(row, column); }
  /// Nothing happens outside the table.
  void SetValue(int row, int column, double value);
  /// Adds a row of zeros at `row`, 0 to RowCount(), unless the table is full.
  void InsertRow(int row);
  void DeleteRows(int first, int count);
  void Clear();

  /// The rows as text, see TDataList::WriteProperties. A damaged text changes nothing; while the
  /// form is being read it waits for the controls.
  QString GetDataValues() const;
  void SetDataValues(const QString& text);

  void Loaded() override;

 signals:
  /// The newest row was added; if the table was full, the oldest went.
  void OnRowAdded(QObject* sender);
  /// Anything else about the table has changed.
  void OnChange(QObject* sender);

 private:
  void ControlsChanged();
  void TakeRow(double time, std::span<const double> values);

  TRowSampler sampler_{this};
  TClick reset_{this};
  std::unique_ptr<TDataList> rows_;
  std::vector<const QObject*> columns_;  ///< the controls that they are of, for comparing only
  QString pending_;                      ///< rows of a form that is being read
  int maxRows_ = 1000;
  bool recording_ = true;
};
