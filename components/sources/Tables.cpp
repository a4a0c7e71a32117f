#include "components/sources/Tables.h"

#include <algorithm>

TDataTable::TDataTable(QWidget* parent)
    : TIconControl(parent), rows_(std::make_unique<TDataList>(1, this)) {
  SetIconImage(QStringLiteral("TDataTable"));
  rows_->SetMaxCount(maxRows_);
  sampler_.OnRow = [this](double time, std::span<const double> values) { TakeRow(time, values); };
  connect(sampler_.Controls(), &TPersistent::OnChange, this, &TDataTable::ControlsChanged);
  connect(&reset_, &TClick::OnClick, this, &TDataTable::Clear);
}

void TDataTable::SetMaxRows(int rows) {
  if (rows == maxRows_ || rows < 1 || rows > TDataList::kLimit) return;
  maxRows_ = rows;
  rows_->KeepNewest(rows);
  emit OnChange(this);
}

void TDataTable::SetRecording(bool recording) {
  if (recording == recording_) return;
  recording_ = recording;
  emit OnChange(this);
}

void TDataTable::ControlsChanged() {
  std::vector<const QObject*> columns(static_cast<std::size_t>(sampler_.Controls()->Count()));
  for (int i = 0; const QObject*& column : columns) column = sampler_.Controls()->Get(i++);
  if (columns != columns_) {
    columns_ = columns;
    rows_ = std::make_unique<TDataList>(1 + static_cast<int>(columns.size()), this);
    rows_->SetMaxCount(maxRows_);
  }
  emit OnChange(this);
}

QString TDataTable::ColName(int column) const {
  if (column == 0) return QStringLiteral("Time");
  if (column < 0 || column >= ColCount()) return {};
  const QObject* control = sampler_.Controls()->Get(column - 1);
  return control ? control->objectName() : QString();
}

void TDataTable::TakeRow(double time, std::span<const double> values) {
  if (!recording_ || static_cast<int>(values.size()) + 1 != ColCount()) return;
  double* row = rows_->PushBackRow();
  if (!row) return;
  row[0] = time;
  std::ranges::copy(values, row + 1);
  emit OnRowAdded(this);
}

void TDataTable::SetValue(int row, int column, double value) {
  if (row < 0 || row >= RowCount() || column < 0 || column >= ColCount()) return;
  rows_->PutValues(row, column, value);
  emit OnChange(this);
}

void TDataTable::InsertRow(int row) {
  if (row < 0 || row > RowCount() || RowCount() >= maxRows_) return;
  rows_->InsertRow(row);
  emit OnChange(this);
}

void TDataTable::DeleteRows(int first, int count) {
  if (first < 0 || count < 1 || first >= RowCount()) return;
  const int end = first + std::min(count, RowCount() - first);
  for (int row = end - 1; row >= first; --row) rows_->Delete(row);
  emit OnChange(this);
}

void TDataTable::Clear() {
  rows_->Clear();
  emit OnChange(this);
}

QString TDataTable::GetDataValues() const {
  return IsLoading() ? pending_ : rows_->WriteProperties();
}

void TDataTable::SetDataValues(const QString& text) {
  if (IsLoading()) {
    pending_ = text;
  } else if (rows_->ReadProperties(text)) {
    rows_->KeepNewest(maxRows_);
    emit OnChange(this);
  }
}

void TDataTable::Loaded() {
  sampler_.Controls()->GetComponentsByNames();
  TIconControl::Loaded();
  SetDataValues(std::exchange(pending_, QString()));
}
