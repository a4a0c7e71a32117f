#include "components/graphing/Gseries.h"

#include "tests/components/graphing/Panelfixture.h"

namespace {

TEST(SeriesStyle, RefusesWhatIsNoStyleAndReportsAnOpenUpdateAtItsEnd) {
  TSeriesStyle style;
  QSignalSpy changes(&style, &TSeriesStyle::OnChange);
  style.SetLineWeight(0);
  style.SetLineStyle(static_cast<TSeriesStyle::TPenStyle>(6));
  style.SetPointStyle(static_cast<TSeriesStyle::TPointStyle>(-1));
  EXPECT_EQ(PublishedNames(style).join(' '),
            "LineColor FillColor LineStyle LineWeight PointColor PointStyle");
  // The colours are of a new series; blue is the third byte.
  EXPECT_EQ(std::tuple(style.GetLineColor(), style.GetFillColor(), style.GetPointColor()),
            std::tuple(TColor(0xff0000), TColor(0x00ffff), TColor(0)));
  EXPECT_EQ(std::tuple(style.GetLineStyle(), style.GetLineWeight(), style.GetPointStyle()),
            std::tuple(TSeriesStyle::psSolid, 1, TSeriesStyle::psCircle));
  style.BeginUpdate();
  style.SetLineWeight(3);
  style.SetPointColor(TColor::Green());
  EXPECT_EQ(changes.count(), 0);
  style.EndUpdate();
  EXPECT_EQ(changes.count(), 1);
}

TEST(Series, EveryPointHasItsMarkerTheFirstAndAnOnlyOneToo) {
  for (const auto style :
       {TSeriesStyle::psCircle, TSeriesStyle::psRectangle, TSeriesStyle::psCross}) {
    TPanelFixture one, two;
    one.AddCurve({{2.0, 5.0}}, {}, style);
    EXPECT_EQ(InkBox(one.Picture()), QRect(37, 107, 7, 7)) << "3 pixels around (40, 110)";
    TSeries* series = two.AddCurve({{2.0, 5.0}, {6.0, 5.0}}, {}, style);
    series->GetStyle()->SetLineStyle(TSeriesStyle::psClear);
    EXPECT_EQ(InkBox(two.Picture()), QRect(37, 107, 47, 7));
  }
}

TEST(Series, MarkersHaveTheirOutlineAndFill) {
  TPanelFixture f;
  TSeries* series = f.AddCurve({{2.0, 5.0}, {6.0, 5.0}});
  TSeriesStyle& style = *series->GetStyle();
  style.SetLineStyle(TSeriesStyle::psClear);
  style.SetPointStyle(TSeriesStyle::psRectangle);
  EXPECT_EQ(CountPixels(f.Picture(), Qt::black), 2 * 24);
  EXPECT_EQ(CountPixels(f.Picture(), Qt::yellow), 2 * 25);
  style.SetFillColor(TColor::None());
  EXPECT_EQ(CountPixels(f.Picture(), Qt::black), 2 * 24);
  EXPECT_EQ(CountPixels(f.Picture(), Qt::white), 150 * 230 - 2 * 24);
  style.SetPointStyle(TSeriesStyle::psCross);
  EXPECT_EQ(CountPixels(f.Picture(), Qt::black), 2 * 13);
}

TEST(Series, EachLineCrossesTheMarkerBeforeIt) {
  TPanelFixture f;
  TSeries* series = f.AddCurve({{0.0, 5.0}, {5.0, 5.0}, {10.0, 5.0}, {kNan, 5.0}, {9.0, 1.0}});
  series->GetStyle()->SetPointStyle(TSeriesStyle::psRectangle);
  const QImage image = f.Picture();
  // The marker at (70, 110) covers the line that led to it and is crossed by the next.
  EXPECT_EQ(image.pixelColor(68, 110), QColor(Qt::yellow));
  EXPECT_EQ(image.pixelColor(72, 110), QColor(Qt::blue));
  EXPECT_EQ(CountOther(image, Qt::white, QRect(20, 120, 101, 60)), 0) << "no line over the gap";
  series->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
  series->GetStyle()->SetLineStyle(TSeriesStyle::psClear);
  EXPECT_TRUE(InkBox(f.Picture()).isEmpty());
}

TEST(Series, BarsReachFromThePointToTheAxis) {
  // X 1 to 3 is 30 to 50, Y 3 to 5 is 150 to 110, the axes 20 and 210.
  const std::tuple<TSeriesStyle::TPointStyle, TCoordinate, QPoint, QPoint> cases[] = {
      {TSeriesStyle::psXBar, {2.0, 0.0}, {30, 110}, {50, 210}},
      {TSeriesStyle::psXBar, {0.0, 2.0}, {50, 110}, {50, 210}},  // a line without width
      {TSeriesStyle::psYBar, {0.0, 2.0}, {20, 110}, {50, 150}}};
  for (const auto& [style, size, topLeft, bottomRight] : cases) {
    TPanelFixture f;
    f.AddCurve({{3.0, 5.0}}, size, style)->GetStyle()->SetLineStyle(TSeriesStyle::psClear);
    const QRect bar(topLeft, bottomRight);
    EXPECT_EQ(InkBox(f.Picture()), bar);
    EXPECT_EQ(CountPixels(f.Picture(), Qt::yellow),
              std::max(0, bar.width() - 2) * (bar.height() - 2));
  }
}

TEST(Series, DashesLeaveGapsAndRunOnOverBars) {
  TPanelFixture f;
  std::vector<TCoordinate> points;
  for (int i = 0; i <= 100; ++i) points.push_back({0.1 * i, 5.0});  // a point in every pixel
  TSeriesStyle& style = *f.AddCurve(points, {}, TSeriesStyle::psXBar)->GetStyle();
  style.SetLineStyle(TSeriesStyle::psDash);
  style.SetPointColor(TColor::None());
  style.SetFillColor(TColor::None());
  EXPECT_THAT(CountPixels(f.Picture(), Qt::blue), testing::AllOf(testing::Gt(50), testing::Lt(90)));
}

TEST(Series, ABlockSourceDrawsWhatTheSameSourcePointByPointDraws) {
  std::vector<TCoordinate> points;
  for (int i = 0; i < 1000; ++i) points.push_back({0.01 * i, 5.0 + 4.0 * std::sin(0.1 * i)});
  TPanelFixture byPoint, byBlock;
  byPoint.AddCurve(points);
  TSeries* series = byBlock.AddCurve(points);
  int calls = 0;
  series->BlockSource = [&](int index, std::span<TCoordinate> out) {
    ++calls;
    const auto left = std::span(points).subspan(static_cast<std::size_t>(index));
    const std::size_t count = std::min({out.size(), left.size(), std::size_t{100}});
    std::ranges::copy(left.first(count), out.begin());
    return static_cast<int>(count);
  };
  EXPECT_EQ(byBlock.Picture(), byPoint.Picture());
  EXPECT_EQ(calls, 11);
  series->BlockSource = [](int index, std::span<TCoordinate> block) {
    std::ranges::fill(block, TCoordinate{1.0, 1.0});
    return index == 0 ? 1'000'000 : 0;  // claims too much
  };
  byBlock.Picture();
}

TEST(ArraySeries, HoldsAFixedNumberOfPoints) {
  TPanelFixture f;
  auto* series = f.panel.AddSeries(std::make_unique<TArraySeries>(3));
  series->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
  const TCoordinate points[] = {{0.0, 5.0}, {4.0, 5.0}, {4.0, 7.0}, {9.0, 9.0}};
  for (int i = 0; i < 4; ++i) series->SetPoint(i, points[i]);
  series->SetPoint(-1, {9.0, 9.0});
  EXPECT_EQ(series->PointCount(), 3);
  EXPECT_EQ(series->GetPoint(3), TCoordinate());
  EXPECT_EQ(InkBox(f.Picture()), QRect(QPoint(20, 70), QPoint(60, 110)));
  f.UpdateRanges();
  EXPECT_EQ(BoundsOf(series->RangeX()), TMinMax(0.0, 4.0));
  EXPECT_EQ(BoundsOf(series->RangeY()), TMinMax(5.0, 7.0));
  EXPECT_EQ(TArraySeries(-5).PointCount(), 0);
}

TEST(SliderSeries, DrawsACrossAndItsGridLines) {
  TPanelFixture f;
  auto* slider = f.AddSlider({});
  slider->SetSliderPos({70, 110});
  EXPECT_EQ(slider->GetPosition(), (TCoordinate{5.0, 5.0}));
  slider->SetPositionX(kNan);
  slider->SetPositionY(kInfinity);
  EXPECT_EQ(slider->GetPosition(), (TCoordinate{5.0, 5.0})) << "what is not finite is ignored";
  EXPECT_EQ(InkBox(f.Picture()), QRect(63, 103, 15, 15));
  EXPECT_EQ(CountPixels(f.Picture(), Qt::red), 29);
  // A dotted line may end in a gap.
  slider->SetShowGridX(true);
  EXPECT_TRUE(InkBox(f.Picture()).contains(QRect(63, 10, 15, 198)));
  EXPECT_EQ(InkBox(f.Picture()).width(), 15);
  slider->SetShowGridY(true);
  EXPECT_TRUE(InkBox(f.Picture()).contains(QRect(20, 10, 98, 198)));
  slider->SetActive(false);
  EXPECT_EQ(CountPixels(f.Picture(), Qt::red), 0);
  TSliderSeries().SetSliderPos({5, 5});  // without a panel
}

// The list

TEST(SeriesList, ABorrowedSeriesBelongsToItsOwnListAndLeavesWithIt) {
  TPanelFixture f;
  auto owner = std::make_unique<TSeriesList>();
  auto* series = owner->Add(std::make_unique<TSeries>());
  const auto expectShown = [&](int count, const TDataPanel* panel) {
    EXPECT_EQ(f.panel.GetSeriesList().Count(), count);
    EXPECT_EQ(series->Panel(), panel);
  };
  for (int i = 0; i < 2; ++i) f.panel.AddSeries(*owner);
  expectShown(1, &f.panel);
  EXPECT_FALSE(f.panel.GetSeriesList().IsOwner(0));
  f.panel.DeleteSeries(0);
  expectShown(0, nullptr);
  EXPECT_EQ(owner->Count(), 1);
  f.panel.AddSeries(*owner);
  {
    TPanelFixture second;
    second.panel.AddSeries(*owner);  // shown elsewhere it moves
    expectShown(0, &second.panel);
  }
  expectShown(0, nullptr);  // the panel went first
  f.panel.AddSeries(*owner);
  const auto taken = owner->Remove(series);
  expectShown(0, nullptr);
  owner->Add(std::make_unique<TSeries>());
  f.panel.AddSeries(*owner);
  owner.reset();
  expectShown(0, nullptr);

  TSeries* own = f.AddCurve({});
  TPanelFixture other;
  other.panel.AddSeries(f.panel.GetSeriesList());
  EXPECT_EQ(other.panel.GetSeriesList().Count(), 0) << "a panel lends none of its own";
  EXPECT_EQ(own->Panel(), &f.panel);
}

/// A list with one series of each class, none of them in its initial state.
void Fill(TSeriesList& list) {
  auto* series = list.Add(std::make_unique<TSeries>());
  series->SetLabel(QStringLiteral("Accel \"x\" \u00b5"));
  series->SetVisible(false);
  series->GetStyle()->SetFillColor(TColor::None());
  series->GetStyle()->SetLineStyle(TSeriesStyle::psDashDot);
  series->GetStyle()->SetPointStyle(TSeriesStyle::psYBar);
  series->GetStyle()->SetLineWeight(7);
  auto* array = list.Add(std::make_unique<TArraySeries>(2));
  array->SetPoint(0, {0.1, -1.0e300});
  array->SetPoint(1, {1.0 / 3.0, 5.0e-324});
  auto* slider = list.Add(std::make_unique<TSliderSeries>());
  slider->SetPosition({0.1, 43000.123456789});
  slider->SetShowGridY(true);
  slider->SetActive(false);
}

TEST(SeriesList, APanelKeepsItsOwnSeriesOnly) {
  TSeriesList link;
  link.Add(std::make_unique<TSeries>())->SetLabel("linked");
  TPanelFixture f;
  f.panel.AddSeries(link);
  f.panel.AddSeries(std::make_unique<TSliderSeries>())->SetLabel("own");
  const QString text = f.panel.GetSeriesData();
  EXPECT_FALSE(text.contains("linked"));

  TPanelFixture other;
  other.panel.AddSeries(link);
  other.panel.SetSeriesData(text);
  ASSERT_EQ(other.panel.GetSeriesList().Count(), 2);
  EXPECT_EQ(other.panel.GetSeriesList().Get(0)->GetLabel(), "own");
  EXPECT_EQ(other.panel.GetSeriesList().Get(0)->Panel(), &other.panel);
  EXPECT_EQ(other.panel.GetSeriesList().Get(1)->GetLabel(), "linked");
}

TEST(SeriesList, WhatWasWrittenIsReadAndADamagedTextIsRefusedWithAReason) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "Character 0: illegal value"},
      {"{}", "The text is no list of series"},
      {"[7]", "Series 1: unknown class \"\""},
      {R"([{"Class":"TSeries"},{"Class":"TWidget"}])", "Series 2: unknown class \"TWidget\""},
      {R"([{"Class":"TArraySeries"}])",
       "Series 1: TArraySeries.Points is no list of at most 16777216 points"},
      {R"([{"Class":"TArraySeries","Points":[[1,2],[3]]}])",
       "Series 1: TArraySeries.Points[1] is no pair of numbers"},
      {R"([{"Class":"TSliderSeries","PositionX":null}])",
       "Series 1: TSliderSeries.PositionX has a value of another kind"}};
  // Of a series of one property.
  const std::pair<const char*, const char*> properties[] = {
      {R"("Colour":1)", "There is no property TSeries.Colour"},
      {R"("objectName":"x")", "There is no property TSeries.objectName"},
      {R"("Visible":1)", "TSeries.Visible has a value of another kind"},
      {R"("Style":3)", "TSeries.Style is no record"},
      {R"("Style":{"LineWeight":0})", "TSeriesStyle.LineWeight does not take its value"},
      {R"("Style":{"LineWeight":1e30})", "TSeriesStyle.LineWeight has a value of another kind"},
      {R"("Style":{"PointStyle":"x"})", "TSeriesStyle.PointStyle has a value of another kind"}};
  TSeriesList list;
  Fill(list);
  const QString before = list.WriteProperties();
  QSignalSpy changes(&list, &TSeriesList::OnChange);
  const auto expectRefused = [&](const QString& text, const QString& reason) {
    QString error;
    EXPECT_FALSE(list.ReadProperties(text, &error)) << text.toStdString();
    EXPECT_EQ(error, reason);
  };
  for (const auto& [text, reason] : cases) expectRefused(text, reason);
  for (const auto& [property, reason] : properties) {
    expectRefused(QString(R"([{"Class":"TSeries",%1}])").arg(property),
                  QString("Series 1: ") + reason);
  }
  for (int length = 0; length < before.size(); ++length) {
    EXPECT_FALSE(list.ReadProperties(before.left(length))) << length;
  }
  EXPECT_EQ(list.WriteProperties(), before);
  EXPECT_EQ(changes.count(), 0);
  TSeriesList read;
  read.Add(std::make_unique<TSeries>());
  EXPECT_TRUE(read.ReadProperties(before));
  EXPECT_TRUE(read.SameAs(&list));
  EXPECT_EQ(read.WriteProperties(), before);
}

TEST(SeriesList, AssigningCopiesTheOwnedSeriesWithTheirSources) {
  TPanelFixture f;
  f.AddCurve({{0.0, 0.0}, {10.0, 10.0}})->SetLabel(QStringLiteral("diagonal"));
  Fill(f.panel.GetSeriesList());
  f.panel.SetFillColor(TColor::Yellow());
  TPanelFixture copy;
  copy.panel.Assign(&f.panel);
  EXPECT_TRUE(copy.panel.SameAs(&f.panel));
  EXPECT_EQ(copy.Picture(), f.Picture());
}

}  // namespace
