#include "components/channels/Statistics.h"

#include <QLocale>
#include <QStringList>
#include <array>
#include <cmath>

// TStatDataList

TStatDataList::TStatDataList(QObject* owner) : TDataList(kColumns, owner) {
  ColNames = {QStringLiteral("Pos"), QStringLiteral("Mean"), QStringLiteral("StDev"),
              QStringLiteral("Max"), QStringLiteral("Min")};
  SetMaxCount(100);
}

void TStatDataList::SetRecord(double* row, const TStatisticsData& record) {
  if (!row) return;
  row[kPos] = record.Pos;
  row[kMean] = record.Mean;
  row[kStDev] = record.StDev;
  row[kMax] = record.Max;
  row[kMin] = record.Min;
}

void TStatDataList::Add(const TStatisticsData& record) { SetRecord(AddRow(), record); }

void TStatDataList::Push(const TStatisticsData& record) { SetRecord(PushRow(), record); }

void TStatDataList::PushBack(const TStatisticsData& record) { SetRecord(PushBackRow(), record); }

void TStatDataList::Insert(int index, const TStatisticsData& record) {
  SetRecord(InsertRow(index), record);
}

TStatisticsData TStatDataList::Get(int index) const {
  if (index < 0 || index >= Count()) return {};
  const double* row = Row(index);
  return {row[kPos], row[kMean], row[kStDev], row[kMax], row[kMin]};
}

// TStatistics

TStatistics::TStatistics(QObject* owner) : TPersistent(owner) {
  data_.SetMaxCount(1);
  data_.AddRow();
}

void TStatistics::Compute() const {
  postponed_ = false;
  if (OnCompute) OnCompute();
}

void TStatistics::Reset() {
  Settle();
  pos_ = min_ = max_ = count_ = sum_ = sqSum_ = 0.0;
}

void TStatistics::AddValue(double x) {
  Settle();
  count_ += 1.0;
  sum_ += x;
  sqSum_ += x * x;
}

void TStatistics::SubtractValue(double x) {
  Settle();
  if (count_ < 1.0) {
    Reset();
    return;
  }
  count_ -= 1.0;
  sum_ -= x;
  sqSum_ -= x * x;
}

void TStatistics::Set(double& field, double value) {
  Settle();
  field = value;
}

double TStatistics::GetMean() const {
  Settle();
  return count_ > 0.0 ? sum_ / count_ : 0.0;
}

double TStatistics::GetVariance() const {
  Settle();
  if (!(count_ > 1.0)) return 0.0;
  return (count_ * sqSum_ - sum_ * sum_) / ((count_ - 1.0) * count_);
}

double TStatistics::GetStDev() const { return std::sqrt(GetVariance()); }

void TStatistics::Update() {
  Settle();
  if (data_.Count() > 0) data_.PushBack({pos_, GetMean(), GetStDev(), max_, min_});
}

void TStatistics::SetData(const TStatDataList* list) {
  if (!list || list->Count() == 0) return;
  Settle();
  data_.Assign(list);
  data_.SetMaxCount(1);
}

bool TStatistics::ProvideGraphData(int& index, TStatisticsData& record) const {
  Settle();
  if (index < 0 || index >= data_.Count()) return false;
  record = data_.Get(index++);
  return true;
}

void TStatistics::AssignTo(TPersistent* destination) const {
  auto* other = qobject_cast<TStatistics*>(destination);
  if (!other || other == this) return;
  Settle();
  other->SetCount(count_);
  other->SetPos(pos_);
  other->SetSum(sum_);
  other->SetSqSum(sqSum_);
}

// Forms

QString TStatistics::GetStatData() const {
  const auto text = [](double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
  };
  Settle();
  return text(count_) + ' ' + text(sum_) + ' ' + text(sqSum_);
}

void TStatistics::SetStatData(const QString& text) {
  const QStringList items = text.simplified().split(' ');
  if (items.size() != 3) return;
  std::array<double, 3> values;
  for (int i = 0; i < 3; ++i) {
    bool ok = false;
    values[static_cast<std::size_t>(i)] = items[i].toDouble(&ok);
    if (!ok) return;
  }
  SetCount(values[0]);
  SetSum(values[1]);
  SetSqSum(values[2]);
}
