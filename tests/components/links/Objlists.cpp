#include "components/links/Objlists.h"

#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

std::vector<double> Column(const TDataList& list, int column) {
  std::vector<double> values;
  for (int row = 0; row < list.Count(); ++row) values.push_back(list.GetValues(row, column));
  return values;
}

std::vector<double> Numbers(int first, int last) {
  std::vector<double> numbers;
  for (int number = first; number <= last; ++number) numbers.push_back(number);
  return numbers;
}

TEST(TDataList, PushedRowsAreNewUntilItIsFullAndThenTheOldestOnes) {
  TFloatList list;
  EXPECT_EQ(list.ColNames, QStringList({"Time", "Values"}));
  for (int value = 1; value <= 100; ++value) list.PushBack(value);
  std::set<const double*> places;
  for (int row = 0; row < list.Count(); ++row) places.insert(list.Row(row));
  ASSERT_EQ(places.size(), 100u);

  list.Row(0)[TFloatList::kTime] = 41.0;
  for (int value = 101; value <= 150; ++value) {
    list.PushBack(value);
    EXPECT_TRUE(places.contains(list.Row(99))) << "a row was allocated for " << value;
  }
  EXPECT_EQ(Column(list, 1), Numbers(51, 150));
  EXPECT_EQ(list.GetValues(50, TFloatList::kTime), 41.0) << "a row comes with its old values";
}

TEST(TDataList, WithoutAMaximumItGrowsTo65536RowsAndThenRecycles) {
  TDataList list(1);
  for (int value = 0; value < 65536; ++value) list.PushBackRow()[0] = value;
  EXPECT_EQ(Column(list, 0), Numbers(0, 65535));
  list.PushBackRow()[0] = 65536.0;
  EXPECT_EQ(Column(list, 0), Numbers(1, 65536));
  list.AddRow()[0] = 65537.0;
  EXPECT_EQ(Column(list, 0), Numbers(1, 65537)) << "AddRow knows no limit";
  list.PushBackRow()[0] = 65538.0;
  EXPECT_EQ(Column(list, 0), Numbers(2, 65538));
}

/// The ring against the simplest list there can be, whatever order the operations come in.
TEST(TDataList, HoldsWhatAPlainListWouldHoldAndReportsWhatTakesRowsAway) {
  for (const int maximum : {0, 1, 2, 5, 17}) {
    SCOPED_TRACE(maximum);
    std::srand(5);
    TDataList list(1);
    list.SetMaxCount(maximum);
    QSignalSpy changes(&list, &TDataList::OnChange);
    std::vector<double> plain;
    for (int step = 0; step < 4000; ++step) {
      const double value = step;
      const auto count = static_cast<int>(plain.size());
      const bool full = maximum > 0 && count >= maximum;
      const int index = std::rand() % (count + 1);
      const auto pushBack = [&] {
        if (full) std::rotate(plain.begin(), plain.begin() + 1, plain.end());
        if (!full) plain.push_back(0.0);
        plain.back() = value;
      };
      bool shrinks = false;
      switch (std::rand() % 7) {
        case 0:
          if (full) std::rotate(plain.begin(), plain.end() - 1, plain.end());
          if (!full) plain.insert(plain.begin(), 0.0);
          list.PushRow()[0] = plain.front() = value;
          break;
        case 1:
        case 2:
          pushBack();
          list.PushBackRow()[0] = value;
          break;
        case 3:
          if (count >= 40) break;
          plain.insert(plain.begin() + index, value);
          list.InsertRow(index)[0] = value;
          break;
        case 4:
          shrinks = index < count;
          if (shrinks) plain.erase(plain.begin() + index);
          list.Delete(index);
          break;
        case 5:
          if (index == count) pushBack();
          if (index < count) plain[static_cast<std::size_t>(index)] = value;
          list.PutValues(index < count ? index : count + 500, 0, value);
          break;
        default:
          if (step % 50 != 0) break;
          shrinks = maximum > 0 && count > maximum;
          if (shrinks) plain.resize(static_cast<std::size_t>(maximum));
          list.SetMaxCount(maximum);
      }
      ASSERT_THAT(Column(list, 0), ElementsAreArray(plain)) << "after step " << step;
      ASSERT_EQ(changes.count(), shrinks ? 1 : 0) << "after step " << step;
      changes.clear();
    }
  }
}

TEST(TDataList, RefusesMaximaAndPlacesThatCannotBe) {
  TFloatList list;
  list.SetMaxCount(0);
  list.Add(1.0);
  for (const int refused : {70000, 65537, -1}) {
    list.SetMaxCount(refused);
    EXPECT_EQ(list.GetMaxCount(), 0);
  }
  for (const auto& [row, column] : {std::pair{-1, 1}, {0, 2}, {0, -1}, {9, 2}}) {
    list.PutValues(row, column, 99.0);
    EXPECT_EQ(list.GetValues(row, column), 0.0);
  }
  list.Delete(-1);
  EXPECT_THAT(Column(list, 1), ElementsAre(1.0));
  list.SetMaxCount(30);
  EXPECT_EQ(list.Capacity(), 30);
}

TEST(TDataList, ClearKeepsTheRoomThatWillBeNeeded) {
  const std::array<int, 3> cases[] = {{50, 20, 50}, {50, 70, 50}, {0, 20, 20}, {0, 300, 100}, {}};
  for (const auto& [maximum, rows, capacity] : cases) {
    SCOPED_TRACE(testing::Message() << maximum << ", " << rows);
    TDataList list(2);
    list.SetMaxCount(maximum);
    for (int row = 0; row < rows; ++row) list.AddRow();
    QSignalSpy changes(&list, &TDataList::OnChange);
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Capacity(), capacity);
    EXPECT_EQ(changes.count(), 1);
  }
}

TEST(TDataList, IsSilentWhileItIsBeingUpdated) {
  TDataList list(1);
  QSignalSpy changes(&list, &TDataList::OnChange);
  for (const bool notify : {false, true}) {
    for (int i = 0; i < 3; ++i) list.AddRow();
    list.BeginUpdate();
    list.Delete(0);
    list.SetMaxCount(1);
    list.Clear();
    EXPECT_EQ(changes.count(), 0);
    list.EndUpdate(notify);
    EXPECT_EQ(changes.count(), notify);
  }
}

TEST(TDataList, SortsWholeRowsStablyByOneColumn) {
  TDataList list(2);
  list.SetMaxCount(6);
  QSignalSpy changes(&list, &TDataList::OnChange);
  double order = 0.0;
  const double values[] = {9.0, 9.0, 2.0, kNan, -1.0, 2.0, -kInfinity, 5.0};  // the first two go
  for (const double value : values) {
    double* row = list.PushBackRow();
    row[0] = value;
    row[1] = ++order;
  }
  list.SortBy(0);
  EXPECT_THAT(Column(list, 1), ElementsAre(3, 4, 5, 6, 7, 8)) << "there is no order yet";
  list.Compare = TDataList::CompareValues;
  list.SortBy(2);
  EXPECT_THAT(Column(list, 1), ElementsAre(3, 4, 5, 6, 7, 8)) << "there is no such column";
  list.SortBy(0);
  EXPECT_THAT(Column(list, 1), ElementsAre(7, 5, 3, 6, 8, 4));
  list.Compare = [](const double* a, const double* b) {
    EXPECT_EQ(TDataList::SortColumn(), 1);
    return a[1] > b[1] ? -1 : 1;
  };
  list.SortBy(1);
  EXPECT_THAT(Column(list, 1), ElementsAre(8, 7, 6, 5, 4, 3));
  EXPECT_EQ(TDataList::SortColumn(), -1);
  EXPECT_EQ(changes.count(), 0);
}

class TFussyList : public TDataList {
 public:
  TFussyList() : TDataList(2) {}
  bool refuse = false;

 protected:
  bool CreateRow(double* row) override {
    row[1] = 5.0;
    return !refuse;
  }
};

TEST(TDataList, AKindOfListMayFillOrRefuseNewRows) {
  TFussyList list;
  list.AddRow()[0] = 1.0;
  EXPECT_EQ(list.GetValues(0, 1), 5.0);
  EXPECT_EQ(list.InsertRow(2), nullptr) << "behind the end";
  list.refuse = true;
  for (const double* row : {list.AddRow(), list.InsertRow(0), list.PushRow(), list.PushBackRow()}) {
    EXPECT_EQ(row, nullptr);
  }
  list.PutValues(3, 0, 4.0);
  EXPECT_THAT(Column(list, 0), ElementsAre(1.0));
}

TEST(TDataList, SavesAndLoadsEveryNumber) {
  TFloatList list;
  list.SetMaxCount(5);
  for (const double value : {0.0, 0.1, 1.0 / 3.0, -1e300, 5e-324, kInfinity, kNan}) {
    list.PushBack(value);
  }
  const QString text = list.property("DataValues").toString();
  EXPECT_EQ(text, "0 0.3333333333333333\n0 -1e+300\n0 5e-324\n0 inf\n0 nan\n");
  TFloatList copy;
  copy.SetMaxCount(5);
  copy.setProperty("DataValues", text);
  EXPECT_TRUE(copy.SameAs(&list));
  copy.SetDataValues("");
  EXPECT_EQ(copy.Count(), 0);
}

TEST(TDataList, RefusesADamagedTextAndKeepsItsRows) {
  const std::pair<const char*, const char*> cases[] = {
      {"1 2\n3", "Row 2: 1 values instead of 2"},     {"1 2 3", "Row 1: 3 values instead of 2"},
      {"1 2\n\n3 4", "Row 2: 0 values instead of 2"}, {"1 2\n3 4x", "Row 2: '4x' is not a number"},
      {"1,5 2", "Row 1: '1,5' is not a number"},      {"\xff\xfe", "Row 1: '?\?' is not a number"},
  };
  TFloatList list;
  list.Add(7.0);
  QSignalSpy changes(&list, &TDataList::OnChange);
  for (const auto& [text, expected] : cases) {
    QString error;
    EXPECT_FALSE(list.ReadProperties(QString::fromUtf8(text), &error));
    EXPECT_EQ(error, expected);
    EXPECT_THAT(Column(list, 1), ElementsAre(7.0));
  }
  EXPECT_EQ(changes.count(), 0);
}

TEST(TDataList, AssignCopiesTheMaximumAndTheRoomForIt) {
  TFloatList source;
  source.SetMaxCount(3);
  for (const double value : {1, 2, 3, 4}) source.PushBack(value);
  TFloatList copy;
  copy.Assign(&source);
  copy.PushBack(5);
  EXPECT_THAT(Column(copy, 1), ElementsAre(3, 4, 5));
  TDataList plain(2);
  source.SetMaxCount(50);
  plain.Assign(&source);
  EXPECT_EQ(plain.Capacity(), 50) << "it can be filled without allocating";
  TDataList other(3);
  other.Assign(&source);
  EXPECT_EQ(other.Count(), 0);
}

TEST(TFloatList, FindsTheExtremesOfItsValues) {
  const std::tuple<std::vector<double>, double, double> cases[] = {
      {{}, 0.0, 0.0},
      {{3, 7, 7, 1}, 1.0, 7.0},
      {{9, 1, 5, 6, 7, 8}, 5.0, 8.0},  // the first two go
      {{-5, -2, -9}, -9.0, -2.0},
      {{kNan, 4, kNan, 6}, 4.0, 6.0},
      {{kNan}, 0.0, 0.0},
      {{1, -kInfinity, kInfinity}, -kInfinity, kInfinity}};
  for (const auto& [values, min, max] : cases) {
    TFloatList list;
    list.SetMaxCount(4);
    for (const double dropped : {1e9, -1e9}) list.Push(dropped);
    list.Clear();
    for (const double value : values) list.PushBack(value);
    for (int row = 0; row < list.Count(); ++row) list.Row(row)[TFloatList::kTime] = 1e6;
    EXPECT_EQ(list.Max(), max);
    EXPECT_EQ(list.Min(), min);
  }
}

TEST(TFloatList, GivesAGraphItsRowNumbersAndValues) {
  TFloatList list;
  list.SetMaxCount(2);
  list.Push(2);
  list.PushBack(3);
  list.PushBack(4);
  int index = 0;
  TCoordinate point, extent;
  std::vector<TCoordinate> points;
  while (list.ProvideGraphData(index, point, extent)) points.push_back(point);
  EXPECT_THAT(points, ElementsAre(TCoordinate{0.0, 3.0}, TCoordinate{1.0, 4.0}));
  EXPECT_EQ(index, 2);
  index = -1;
  EXPECT_FALSE(list.ProvideGraphData(index, point, extent));
}

TEST(TArrayList, HasAsManyRowsAsItIsGiven) {
  TArrayList list(3);
  QSignalSpy changes(&list, &TDataList::OnChange);
  list.SetCount(4);
  list.PutValues(1, 0, 10.0);
  list.PutValues(1, 2, 12.0);
  list.SetCount(65537);
  list.SetCount(-1);
  list.SetCount(4);
  EXPECT_EQ(changes.count(), 1);
  list.SetCount(2);
  list.SetCount(3);
  EXPECT_THAT(Column(list, 2), ElementsAre(0, 12, 0));
  list.Zero(1);
  EXPECT_THAT(Column(list, 2), ElementsAre(0, 0, 0));
  EXPECT_THAT(Column(list, 0), ElementsAre(0, 10, 0));
}

TEST(TPointList, BoundsReachFromTheSmallestToTheLargestCoordinates) {
  TPointList line;
  EXPECT_EQ(line.Bounds(), QRect());
  line.Add({140, 50});
  line.Add({100, 90});
  line.Translate({-10, 5});
  EXPECT_EQ(line.Bounds(), QRect(90, 55, 40, 40));
}

}  // namespace
