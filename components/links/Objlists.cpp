#include "components/links/Objlists.h"

#include <QByteArrayView>
#include <QLocale>
#include <QScopeGuard>
#include <algorithm>
#include <cmath>
#include <functional>
#include <tuple>
#include <utility>

namespace {

constexpr int kSmallest = 16;   ///< rows of the first allocation of a list without a maximum
constexpr int kMost = 1 << 30;  ///< rows, before counting them gets difficult

int sortColumn = -1;

bool SameNumber(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

QStringList DefaultNames(int count) {
  QStringList names;
  for (int column = 1; column <= count; ++column) names << QStringLiteral("Col%1").arg(column);
  return names;
}

/// The numbers of one line, appended to `cells`; a message if there are not `count` of them.
QString ReadLine(QByteArrayView line, int count, std::vector<double>& cells) {
  int found = 0;
  for (QByteArrayView rest = line.trimmed(); !rest.isEmpty(); ++found) {
    const auto* end = std::find(rest.begin(), rest.end(), ' ');
    const QByteArrayView word(rest.begin(), end);
    bool ok = false;
    cells.push_back(word.toDouble(&ok));
    if (!ok) return QStringLiteral("'%1' is not a number").arg(QString::fromLatin1(word));
    rest = QByteArrayView(end, rest.end()).trimmed();
  }
  if (found == count) return {};
  return QStringLiteral("%1 values instead of %2").arg(found).arg(count);
}

}  // namespace

TDataList::TDataList(int colCount, QObject* owner)
    : TPersistent(owner),
      ColNames(DefaultNames(std::max(1, colCount))),
      colCount_(std::max(1, colCount)) {}

// Places

void TDataList::SetCapacity(int rows) {
  if (rows == capacity_) return;
  const auto width = static_cast<std::size_t>(colCount_);
  auto cells = std::make_unique_for_overwrite<double[]>(static_cast<std::size_t>(rows) * width);
  double* end = cells.get();
  for (const std::span<const double>& run : Runs()) end = std::copy(run.begin(), run.end(), end);
  cells_ = std::move(cells);
  capacity_ = rows;
  first_ = 0;
}

std::array<std::span<const double>, 2> TDataList::Runs() const {
  const auto width = static_cast<std::size_t>(colCount_);
  const int behind = std::min(count_, capacity_ - first_);  // rows up to the end of the ring
  const double* cells = cells_.get();
  if (!cells) return {};
  return {std::span(cells + static_cast<std::size_t>(first_) * width,
                    static_cast<std::size_t>(behind) * width),
          std::span(cells, static_cast<std::size_t>(count_ - behind) * width)};
}

/// Makes room for one row more, by doubling, but not beyond what the list may hold when full.
bool TDataList::MakeRoom() {
  if (count_ < capacity_) return true;
  if (count_ == kMost) return false;
  const int limit = count_ < kLimit ? kLimit : kMost;
  SetCapacity(std::min(std::max(kSmallest, 2 * count_), limit));
  return true;
}

// Rows

bool TDataList::CreateRow(double* row) {
  Q_UNUSED(row)
  return true;
}

double* TDataList::AddRow() { return InsertRow(count_); }

double* TDataList::InsertRow(int index) {
  if (index < 0 || index > count_ || !MakeRoom()) return nullptr;
  // The row is made in the free place beside the nearer end and moved in from there.
  const bool fromFront = index < count_ - index;
  double* fresh = Row(fromFront ? capacity_ - 1 : count_);
  std::fill_n(fresh, colCount_, 0.0);
  if (!CreateRow(fresh)) return nullptr;
  if (fromFront) first_ = Slot(capacity_ - 1);
  ++count_;
  int at = fromFront ? 0 : count_ - 1;
  for (; at < index; ++at) std::swap_ranges(Row(at), Row(at) + colCount_, Row(at + 1));
  for (; at > index; --at) std::swap_ranges(Row(at), Row(at) + colCount_, Row(at - 1));
  return Row(index);
}

/// Where the list fills its ring, first and new place are one and nothing is copied.
double* TDataList::MoveFirstToEnd() {
  if (count_ < capacity_) std::copy_n(Row(0), colCount_, Row(count_));
  first_ = Slot(1);
  return Row(count_ - 1);
}

double* TDataList::PushBackRow() { return IsFull() ? MoveFirstToEnd() : AddRow(); }

double* TDataList::PushRow() {
  if (!IsFull()) return InsertRow(0);
  if (count_ < capacity_) std::copy_n(Row(count_ - 1), colCount_, Row(capacity_ - 1));
  first_ = Slot(capacity_ - 1);
  return Row(0);
}

void TDataList::Remove(int index) {
  if (index < count_ / 2) {
    for (int row = index; row > 0; --row) std::copy_n(Row(row - 1), colCount_, Row(row));
    first_ = Slot(1);
  } else {
    for (int row = index + 1; row < count_; ++row) std::copy_n(Row(row), colCount_, Row(row - 1));
  }
  --count_;
}

void TDataList::Delete(int index) {
  if (index < 0 || index >= count_) return;
  Remove(index);
  Changed();
}

void TDataList::Clear() {
  const int previous = std::exchange(count_, 0);
  SetCapacity(maxCount_ > 0 ? maxCount_ : std::min(100, previous));
  Changed();
}

void TDataList::SetMaxCount(int count) {
  if (count < 0 || count > kLimit) return;
  maxCount_ = count;
  if (count == 0) return;
  const bool shrinks = count_ > count;
  count_ = std::min(count_, count);
  SetCapacity(count);
  if (shrinks) Changed();
}

void TDataList::KeepNewest(int count) {
  if (count < 1 || count > kLimit || count_ <= count) return SetMaxCount(count);
  first_ = Slot(count_ - count);
  count_ = count;
  SetMaxCount(count);
  Changed();
}

// Cells

double TDataList::GetValues(int row, int column) const {
  return row >= 0 && row < count_ ? GetColValue(Row(row), column) : 0.0;
}

void TDataList::PutValues(int row, int column, double value) {
  if (row < 0 || !HasColumn(column)) return;
  double* cells = nullptr;
  if (row < count_) {
    cells = Row(row);
  } else if (maxCount_ > 0 && count_ >= maxCount_) {
    cells = MoveFirstToEnd();
  } else {
    cells = AddRow();
  }
  if (cells) cells[column] = value;
}

// Notification

void TDataList::Changed() {
  if (!updating_) emit OnChange(this);
}

void TDataList::EndUpdate(bool notify) {
  updating_ = false;
  if (notify) emit OnChange(this);
}

// Order

int TDataList::SortColumn() { return sortColumn; }

int TDataList::CompareValues(const double* a, const double* b) {
  const double left = a[sortColumn];
  const double right = b[sortColumn];
  if (std::isnan(left) || std::isnan(right)) return int{std::isnan(left)} - int{std::isnan(right)};
  return int{left > right} - int{left < right};
}

void TDataList::SortBy(int column) {
  if (!HasColumn(column) || !Compare) return;
  std::vector<const double*> rows(static_cast<std::size_t>(count_));
  for (int row = 0; row < count_; ++row) rows[static_cast<std::size_t>(row)] = Row(row);

  sortColumn = column;
  const auto noColumn = qScopeGuard([] { sortColumn = -1; });
  std::stable_sort(rows.begin(), rows.end(),
                   [this](const double* a, const double* b) { return Compare(a, b) < 0; });

  std::vector<double> sorted;
  sorted.reserve(rows.size() * static_cast<std::size_t>(colCount_));
  for (const double* row : rows) sorted.insert(sorted.end(), row, row + colCount_);
  Replace(sorted);
}

/// Puts whole rows in the place of the rows there are.
void TDataList::Replace(const std::vector<double>& values) {
  count_ = 0;
  first_ = 0;
  const auto rows = static_cast<int>(values.size() / static_cast<std::size_t>(colCount_));
  if (rows > capacity_) SetCapacity(std::max(rows, maxCount_));
  std::copy(values.begin(), values.end(), cells_.get());
  count_ = rows;
}

// Copies

bool TDataList::HasValues(const std::vector<double>& values) const {
  const auto [head, tail] = Runs();
  return head.size() + tail.size() == values.size() &&
         std::equal(head.begin(), head.end(), values.begin(), SameNumber) &&
         std::equal(tail.begin(), tail.end(), values.end() - std::ssize(tail), SameNumber);
}

std::vector<double> TDataList::Values() const {
  const auto [head, tail] = Runs();
  std::vector<double> values(head.begin(), head.end());
  values.insert(values.end(), tail.begin(), tail.end());
  return values;
}

void TDataList::AssignTo(TPersistent* destination) const {
  auto* other = qobject_cast<TDataList*>(destination);
  if (!other || other->colCount_ != colCount_ || SameAs(other)) return;
  other->maxCount_ = maxCount_;
  other->ColNames = ColNames;
  other->Replace(Values());
  other->Changed();
}

bool TDataList::SameAs(const TPersistent* other) const {
  const auto* list = qobject_cast<const TDataList*>(other);
  return list && list->colCount_ == colCount_ && list->maxCount_ == maxCount_ &&
         list->ColNames == ColNames && list->HasValues(Values());
}

QString TDataList::WriteProperties() const {
  QByteArray text;
  for (int row = 0; row < count_; ++row) {
    for (int column = 0; column < colCount_; ++column) {
      text += QByteArray::number(Row(row)[column], 'g', QLocale::FloatingPointShortest);
      text += column + 1 < colCount_ ? ' ' : '\n';
    }
  }
  return QString::fromLatin1(text);
}

bool TDataList::ReadProperties(const QString& text, QString* error) {
  const QByteArray latin = text.trimmed().toLatin1();
  std::vector<double> values;
  int number = 0;
  for (QByteArrayView rest = latin; !rest.isEmpty();) {
    const auto* end = std::find(rest.begin(), rest.end(), '\n');
    const QString fault = ReadLine(QByteArrayView(rest.begin(), end), colCount_, values);
    ++number;
    if (!fault.isEmpty()) {
      if (error) *error = QStringLiteral("Row %1: %2").arg(number).arg(fault);
      return false;
    }
    rest = end == rest.end() ? QByteArrayView() : QByteArrayView(end + 1, rest.end());
  }
  if (HasValues(values)) return true;
  Replace(values);
  Changed();
  return true;
}

// TFloatList

TFloatList::TFloatList(QObject* owner) : TDataList(2, owner) {
  ColNames = {QStringLiteral("Time"), QStringLiteral("Values")};
  SetMaxCount(100);
}

void TFloatList::SetValue(double* row, double value) {
  if (row) row[kValue] = value;
}

void TFloatList::Add(double value) { SetValue(AddRow(), value); }

void TFloatList::Push(double value) { SetValue(PushRow(), value); }

void TFloatList::PushBack(double value) { SetValue(PushBackRow(), value); }

void TFloatList::Insert(int index, double value) { SetValue(InsertRow(index), value); }

template <class Better>
double TFloatList::Extreme(Better better) const {
  const double* best = nullptr;
  for (const std::span<const double>& run : Runs()) {
    for (std::size_t cell = kValue; cell < run.size(); cell += 2) {
      if (!std::isnan(run[cell]) && (!best || better(run[cell], *best))) best = &run[cell];
    }
  }
  return best ? *best : 0.0;
}

double TFloatList::Max() const { return Extreme(std::greater<>()); }

double TFloatList::Min() const { return Extreme(std::less<>()); }

bool TFloatList::ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const {
  Q_UNUSED(extent)
  if (index < 0 || index >= Count()) return false;
  point = {static_cast<double>(index), Row(index)[kValue]};
  ++index;
  return true;
}

// TCoordinateList

TCoordinateList::TCoordinateList(QObject* owner) : TDataList(2, owner) {
  ColNames = {QStringLiteral("X"), QStringLiteral("Y")};
}

void TCoordinateList::SetPoint(double* row, const TCoordinate& point) {
  if (row) std::tie(row[0], row[1]) = std::tie(point.X, point.Y);
}

void TCoordinateList::Add(const TCoordinate& point) { SetPoint(AddRow(), point); }

void TCoordinateList::PushBack(const TCoordinate& point) { SetPoint(PushBackRow(), point); }

TCoordinate TCoordinateList::Get(int index) const {
  return {GetValues(index, 0), GetValues(index, 1)};
}

bool TCoordinateList::ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const {
  Q_UNUSED(extent)
  if (index < 0 || index >= Count()) return false;
  point = Get(index++);
  return true;
}

// TArrayList

void TArrayList::SetCount(int count) {
  if (count < 0 || count > kLimit || count == Count()) return;
  std::vector<double> values = Values();
  values.resize(static_cast<std::size_t>(count) * static_cast<std::size_t>(ColCount()));
  Replace(values);
  Changed();
}

void TArrayList::Zero(int firstColumn) {
  firstColumn = std::clamp(firstColumn, 0, ColCount());
  for (int row = 0; row < Count(); ++row)
    std::fill(Row(row) + firstColumn, Row(row) + ColCount(), 0.0);
  Changed();
}

// TPointList

void TPointList::Translate(const QPoint& distance) {
  for (QPoint& point : points_) point += distance;
}

QRect TPointList::Bounds() const {
  if (points_.empty()) return {};
  const auto [left, right] = std::minmax_element(points_.begin(), points_.end(),
                                                 [](QPoint a, QPoint b) { return a.x() < b.x(); });
  const auto [top, bottom] = std::minmax_element(points_.begin(), points_.end(),
                                                 [](QPoint a, QPoint b) { return a.y() < b.y(); });
  return {left->x(), top->y(), right->x() - left->x(), bottom->y() - top->y()};
}
