#include "components/graphing/Axis.h"

#include "components/graphing/painting/Plotfont.h"
#include "tests/components/graphing/Panelfixture.h"

namespace {

constexpr QRect kPlot(60, 40, 301, 201);  // 300 and 200 pixels between the first and the last

QFontMetrics LabelMetrics() { return QFontMetrics(PlotFont(QFont(QStringLiteral("Arial"), 8))); }

/// Height of a line of text, which has a pixel of air above and below.
int LabelHeight() { return LabelMetrics().height() + 2; }

/// An axis on one side of kPlot, with black ticks and red labels in a white picture.
struct TAxisOnPaper {
  explicit TAxisOnPaper(TAxis::TAxisAlign align) {
    const bool vertical = align == TAxis::alLeft || align == TAxis::alRight;
    axis.SetOrientation(vertical ? TAxis::aoVertical : TAxis::aoHorizontal);
    axis.SetAlign(align);
    axis.SetShape(TAxis::shLine);
    axis.SetFixedOrigin(true);
    axis.SetLineColor(TColor::Black());
    axis.GetLabel()->SetFontColor(TColor::FromRgb(255, 0, 0));
    axis.OnQueryPlotRect = [this] { return plot; };
    axis.UpdateAxis();
  }

  QImage Draw() {
    axis.UpdateAxis();
    return Painted({420, 300}, [this](QPainter& painter) { axis.Draw(painter); });
  }
  void LeaveOutTexts() {
    axis.GetLabel()->SetPos(TTickLabel::lpNone);
    axis.GetTitle()->SetPos(TAxisTitle::tiNone);
  }
  /// The title alone is red.
  void PaintTheTitleAlone() {
    axis.GetLabel()->SetFontColor(TColor::White());
    axis.GetTitle()->SetFontColor(TColor::FromRgb(255, 0, 0));
  }

  QRect plot = kPlot;
  TAxis axis;
};

bool IsBlack(const QImage& picture, QPoint at) { return picture.pixel(at) == 0xff000000u; }

bool HasRed(const QImage& picture, const QRect& rect) {
  return CountIf(
             picture, [](const QColor& c) { return c.red() > c.green() + 32; }, rect) > 0;
}

/// Groups of columns with red in them, apart by `gap` empty columns or more.
int RedGroups(const QImage& picture, const QRect& band, int gap) {
  int groups = 0;
  int empty = gap;
  for (int x = band.left(); x <= band.right(); ++x) {
    if (!HasRed(picture, QRect(x, band.top(), 1, band.height()))) {
      ++empty;
      continue;
    }
    if (empty >= gap) ++groups;
    empty = 0;
  }
  return groups;
}

TEST(Axis, PutsTheFirstAndTheLastTickOnTheFirstAndTheLastPixel) {
  const std::tuple<TAxis::TAxisAlign, QPoint, QPoint, QPoint> cases[] = {
      {TAxis::alBottom, {60, 240}, {360, 240}, {0, 1}},
      {TAxis::alTop, {60, 40}, {360, 40}, {0, -1}},
      {TAxis::alLeft, {60, 240}, {60, 40}, {-1, 0}},
      {TAxis::alRight, {360, 240}, {360, 40}, {1, 0}}};
  for (const auto& [align, first, last, outward] : cases) {
    SCOPED_TRACE(align);
    TAxisOnPaper paper(align);
    paper.LeaveOutTexts();
    const QImage picture = paper.Draw();
    const QPoint along = (last - first) / 10;
    for (int tick = 0; tick <= 10; ++tick) {  // 0..1 has 10 steps of 30 or 20 pixels
      const QPoint end = first + tick * along + 4 * outward;
      EXPECT_TRUE(IsBlack(picture, end)) << tick;
      EXPECT_FALSE(IsBlack(picture, end + outward)) << tick;
    }
    const QPoint before = first - along / std::max(std::abs(along.x()), std::abs(along.y()));
    EXPECT_FALSE(IsBlack(picture, before)) << "the line ends on the plot";
  }
}

TEST(Axis, DrawsTicksOnTheSideThatTheirPositionNames) {
  const std::tuple<TTick::TTickPos, bool, bool, int> cases[] = {{TTick::tpNone, false, false, 0},
                                                                {TTick::tpInside, true, false, 0},
                                                                {TTick::tpCross, true, true, 6},
                                                                {TTick::tpOutside, false, true, 6}};
  for (const auto& [pos, inside, outside, overlap] : cases) {
    SCOPED_TRACE(pos);
    TAxisOnPaper paper(TAxis::alBottom);
    paper.axis.GetMinorTick()->SetPos(TTick::tpNone);
    paper.axis.GetTitle()->SetPos(TAxisTitle::tiNone);
    paper.axis.GetMajorTick()->SetSize(6);
    paper.axis.GetMajorTick()->SetPos(pos);
    EXPECT_EQ(HasRed(paper.Draw(), QRect(0, 0, 420, 300)), pos != TTick::tpNone) << "labels";
    paper.LeaveOutTexts();
    const QImage line = paper.Draw();
    EXPECT_EQ(IsBlack(line, {60, 240 - 6}), inside);
    EXPECT_EQ(IsBlack(line, {60, 240 + 6}), outside);
    EXPECT_EQ(paper.axis.Overlap(), QMargins(0, 0, 0, overlap));
    paper.axis.SetShape(TAxis::shFrame);
    const QImage frame = paper.Draw();
    for (const QPoint middle : {QPoint(60, 145), {215, 40}, {360, 145}, {215, 240}}) {
      EXPECT_EQ(IsBlack(line, middle), middle.y() == 240);
      EXPECT_TRUE(IsBlack(frame, middle));
    }
  }
}

TEST(Axis, DrawsNineTicksPerDecade) {
  TAxisOnPaper paper(TAxis::alBottom);
  paper.plot = QRect(60, 40, 201, 201);
  paper.axis.GetMajorTick()->SetPos(TTick::tpNone);
  paper.axis.GetTitle()->SetPos(TAxisTitle::tiNone);
  paper.axis.SetScale(TAxis::asLog);
  GiveRange(paper.axis, 1, 100);
  const QImage picture = paper.Draw();
  std::vector<int> drawn;
  for (int x = 0; x < picture.width(); ++x) {
    if (IsBlack(picture, {x, 240 + 2})) drawn.push_back(x - 60);
  }
  // 100 pixels to a decade: log10 of 1 to 9, in pixels.
  EXPECT_THAT(drawn, testing::ElementsAre(0, 30, 48, 60, 70, 78, 85, 90, 95, 100, 130, 148, 160,
                                          170, 178, 185, 190, 195, 200));
  paper.axis.SetLineColor(TColor::None());
  QImage ground({420, 300}, QImage::Format_RGB32);
  ground.fill(Qt::yellow);
  QPainter painter(&ground);
  paper.axis.Draw(painter);
  EXPECT_EQ(CountOther(ground, Qt::yellow), 0);
}

TEST(Axis, LabelsEveryMajorTickThatHasRoom) {
  const std::tuple<int, TTickLabel::TLabelSpacing, int> cases[] = {
      {301, TTickLabel::lsAuto, 11},  // 30 pixels a step: "0.1" and its gap fit
      {301, TTickLabel::lsMinMax, 2},
      {151, TTickLabel::lsAuto, 7},  // 15 pixels a step: 0, 0.1, then every other one, 0.9, 1
  };
  const int tallest = LabelHeight();
  ASSERT_GT(LabelMetrics().horizontalAdvance("0.1") + 4, 15) << "the font is smaller than expected";
  for (const auto& [width, spacing, labels] : cases) {
    SCOPED_TRACE(width);
    TAxisOnPaper paper(TAxis::alBottom);
    paper.plot.setWidth(width);
    paper.axis.GetLabel()->SetSpacing(spacing);
    const QImage picture = paper.Draw();
    EXPECT_EQ(RedGroups(picture, QRect(0, 245, 420, tallest), 4), labels);
  }
  const QImage upright = TAxisOnPaper(TAxis::alLeft).Draw();
  for (int tick = 0; tick <= 10; ++tick) {
    EXPECT_TRUE(HasRed(upright, QRect(30, 240 - 20 * tick - tallest / 2, 24, tallest))) << tick;
  }
}

/// The collision rule, label by label: a text of the width `w` and the height `h`.
TEST(Axis, KeepsLabelsApart) {
  QImage picture(400, 300, QImage::Format_RGB32);
  QPainter painter(&picture);
  const int w = LabelMetrics().horizontalAdvance("0.5");
  const int h = LabelHeight();
  const TAxisOnPaper bottom(TAxis::alBottom), left(TAxis::alLeft);
  const std::tuple<const TAxisOnPaper&, QPoint, bool, QPoint> cases[] = {
      {bottom, {w / 2 - 1, 100}, false, {0, 200}},  // would start left of 0
      {bottom, {w / 2, 100}, true, {w + 4, 200}},
      {bottom, {w + 3 + w / 2, 100}, false, {w + 4, 200}},  // 3 pixels apart; the same end
      {bottom, {w + 4 + w / 2, 100}, true, {2 * (w + 4), 200}},
      {left, {100, 200 - h + h / 2 + 1}, false, {2 * (w + 4), 200}},
      {left, {100, 200 - h + h / 2}, true, {2 * (w + 4), 200 - h}},
      {left, {100, 200 - 2 * h + h / 2 + 1}, false, {2 * (w + 4), 200 - h}},
      {left, {100, 200 - 2 * h + h / 2}, true, {2 * (w + 4), 200 - 2 * h}}};
  QPoint last(0, 200);
  for (const auto& [paper, at, isDrawn, end] : cases) {
    SCOPED_TRACE(testing::Message() << at.x() << ' ' << at.y());
    EXPECT_EQ(paper.axis.GetLabel()->Draw(painter, at, 0.5, last), isDrawn);
    EXPECT_EQ(last, end);
  }
}

TEST(Axis, MovesTheLastLabelIntoTheBounds) {
  TAxisOnPaper paper(TAxis::alBottom);
  GiveRange(paper.axis, 0, 30000);
  paper.axis.SetBounds(QRect(0, 0, kPlot.right() + 1, 300));
  const QImage picture = paper.Draw();
  const int h = LabelHeight();
  EXPECT_FALSE(HasRed(picture, QRect(kPlot.right() + 1, 244, 40, h)));
  EXPECT_TRUE(HasRed(picture, QRect(kPlot.right() - 8, 244, 8, h)));
}

TEST(Axis, NeedsRoomForTicksLabelsAndTitle) {
  const int h = LabelHeight();
  const int w = LabelMetrics().horizontalAdvance("0.5");
  const QMargins ends(0, h / 2, 0, h / 2);
  const std::pair<TAxis::TAxisAlign, QMargins> cases[] = {
      {TAxis::alLeft, QMargins(4 + w + 2 + h, 0, 0, 0) + ends},
      {TAxis::alTop, {0, 4 + h + h, 0, 0}},
      {TAxis::alRight, QMargins(0, 0, 4 + w + 2 + h, 0) + ends},
      {TAxis::alBottom, {0, 0, 0, 4 + h + h}}};
  for (const auto& [align, overlap] : cases) {
    SCOPED_TRACE(align);
    TAxisOnPaper paper(align);
    EXPECT_EQ(paper.axis.Overlap(), overlap);
    paper.axis.SetFixedOrigin(false);
    paper.axis.AdjustOrigin();
    EXPECT_EQ(paper.axis.Origin(), kPlot);
    EXPECT_EQ(paper.axis.ClientRect(), kPlot.marginsRemoved(overlap));
    paper.axis.GetMajorTick()->SetPos(TTick::tpNone);  // no major ticks, no labels; 2 for the minor
    paper.axis.GetTitle()->SetPos(TAxisTitle::tiNone);
    const QMargins m = paper.axis.Overlap();
    EXPECT_EQ(m.left() + m.top() + m.right() + m.bottom(), 2);
  }
}

TEST(Axis, PlacesTheTitleAlongTheAxis) {
  TAxisOnPaper bottom(TAxis::alBottom);
  TAxisOnPaper left(TAxis::alLeft);
  for (TAxisOnPaper* paper : {&bottom, &left}) paper->PaintTheTitleAlone();
  const int w = LabelMetrics().horizontalAdvance("Title");
  const int h = LabelHeight();
  const int below = 241 + 4 + h;
  const int beside = 60 - 4 - 2 - LabelMetrics().horizontalAdvance("0.5") - h;
  const std::tuple<TAxisTitle::TTitlePos, QRect, QRect> cases[] = {
      {TAxisTitle::tiLeft, {60, below, w, h}, {beside, 241 - w, h, w}},
      {TAxisTitle::tiCenter, {60 + (301 - w) / 2, below, w, h}, {beside, 40 + (201 - w) / 2, h, w}},
      {TAxisTitle::tiRight, {361 - w, below, w, h}, {beside, 40, h, w}}};
  for (const auto& [pos, horizontal, vertical] : cases) {
    SCOPED_TRACE(pos);
    for (auto& [paper, box] : {std::pair(&bottom, horizontal), std::pair(&left, vertical)}) {
      paper->axis.GetTitle()->SetPos(pos);
      QImage picture = paper->Draw();
      EXPECT_TRUE(HasRed(picture, box));
      QPainter(&picture).fillRect(box.adjusted(-1, -1, 1, 1), Qt::white);
      EXPECT_FALSE(HasRed(picture, picture.rect())) << "the title leaves its place";
    }
  }
}

TEST(Axis, ShortensATitleThatIsTooLongForIt) {
  for (const auto align : {TAxis::alBottom, TAxis::alTop, TAxis::alLeft, TAxis::alRight}) {
    TAxisOnPaper paper(align);
    paper.PaintTheTitleAlone();
    const QRect bounds(30, 20, 360, 260);
    paper.axis.SetBounds(bounds);
    const bool upright = align == TAxis::alLeft || align == TAxis::alRight;
    QImage last;
    for (const char* end : {"first", "other"}) {
      SCOPED_TRACE(testing::Message() << align << end);
      paper.axis.GetTitle()->SetCaption(QString(200, 'm') + end);
      QImage picture = paper.Draw();
      EXPECT_TRUE(last.isNull() || picture == last) << "the end is what is left out";
      last = picture;
      QPainter(&picture).fillRect(upright ? QRect(0, 20, 420, 260) : QRect(30, 0, 360, 300),
                                  Qt::white);
      EXPECT_FALSE(HasRed(picture, picture.rect())) << "the title leaves the bounds";
    }
  }
}

TEST(Axis, RefusesABoundThatWouldCollapseTheRange) {
  const std::tuple<void (TAxis::*)(double), double, TMinMax, int> cases[] = {
      {&TAxis::SetMin, 0.0, {0.0, 1.0}, 0},  {&TAxis::SetMin, 1.0, {0.0, 1.0}, 0},
      {&TAxis::SetMin, 0.5, {0.5, 1.0}, 1},  {&TAxis::SetMin, 5.0, {1.0, 5.0}, 1},
      {&TAxis::SetMax, 0.0, {0.0, 1.0}, 0},  {&TAxis::SetMax, -2.0, {-2.0, 0.0}, 1},
      {&TAxis::SetMax, kNan, {0.0, 1.0}, 0}, {&TAxis::SetMin, -kInfinity, {0.0, 1.0}, 0}};
  for (const auto& [set, value, bounds, fired] : cases) {
    SCOPED_TRACE(value);
    TAxis axis;
    QSignalSpy changes(&axis, &TAxis::OnChange);
    (axis.*set)(value);
    EXPECT_EQ(BoundsOf(axis), bounds);
    EXPECT_EQ(changes.count(), fired);
    EXPECT_EQ(axis.WorkingMax(), 1.0) << "both bounds are automatic";
  }
  TAxis axis, copy;
  axis.SetMinMax(1, 2);
  copy.Assign(&axis);  // passes 0..1, whose bounds each refuse one
  EXPECT_TRUE(copy.SameAs(&axis));
}

TEST(Axis, DrawsTheUsersRangeOnceItIsNotAutomatic) {
  TAxis axis;
  axis.SetAutoMin(false);
  axis.SetMinMax(-20, 30);
  EXPECT_EQ(DrawnBounds(axis), TMinMax(-20.0, 1.0)) << "one is still automatic";
  axis.SetAutoMax(false);
  axis.SetMinMax(2.5, 0);
  EXPECT_EQ(axis.GetMajorTick()->Count(), 3);
  EXPECT_EQ(axis.WorkingMax(), 3.0);
  EXPECT_EQ(axis.GetMax(), 2.5) << "the published range stays what was set";
  axis.SetAutoMax(true);
  GiveRange(axis, -100, 4);
  axis.AutoScale();
  EXPECT_EQ(DrawnBounds(axis), TMinMax(0.0, 4.0));
}

TEST(Axis, AsksForARepaintAfterEachChangeOfItselfOrAPart) {
  TAxis axis;
  QStringList news;
  QObject::connect(&axis, &TAxis::OnChange, [&] { news << "change"; });
  QObject::connect(&axis, &TAxis::OnRepaint, [&] { news << "repaint"; });
  const std::function<void()> changes[] = {
      [&] { axis.SetScale(TAxis::asTime); },
      [&] { axis.SetShape(TAxis::shLine); },
      [&] { axis.SetOrigin(QRect(1, 2, 3, 4)); },
      [&] { axis.GetMajorTick()->SetSize(7); },
      [&] { axis.GetMinorTick()->SetPos(TTick::tpInside); },
      [&] { axis.GetLabel()->GetNumFormat()->SetPrecision(3); },
      [&] { axis.GetTitle()->SetCaption("Frequency [Hz]"); }};
  for (const auto& change : changes) {
    news.clear();
    change();
    EXPECT_EQ(news, QStringList({"change", "repaint"})) << &change - changes;
  }
  axis.SetFixedOrigin(true);
  news.clear();
  axis.SetOrigin(QRect(9, 9, 9, 9));
  EXPECT_EQ(axis.Origin(), QRect(1, 2, 3, 4));
  EXPECT_TRUE(news.isEmpty());
}

TEST(Axis, ShowsTimesExactlyWhenItsScaleIsTime) {
  TAxis axis;
  for (const auto& [scale, title] : {std::pair(TAxis::asLinear, "Title"),
                                     {TAxis::asTime, "Date Time : 30:12:1899 hour:min"},
                                     {TAxis::asLog, "Title"}}) {
    axis.SetScale(scale);
    EXPECT_EQ(axis.GetLabel()->GetNumFormat()->GetIsTimeFormat(), scale == TAxis::asTime);
    EXPECT_EQ(axis.GetTitle()->Text(), title);
  }
}

TEST(Axis, DrawsNothingWithoutRoomAndSurvivesEveryRange) {
  for (const TAxis::TAxisScale scale : {TAxis::asLinear, TAxis::asLog, TAxis::asTime}) {
    for (const double limit : {kInfinity, 1e308, 1e-320, 1.0}) {
      TAxisOnPaper paper(TAxis::alBottom);
      paper.axis.SetScale(scale);
      GiveRange(paper.axis, -limit, limit);
      EXPECT_TRUE(IsBlack(paper.Draw(), {60, 244}));
      paper.plot = QRect(60, 40, 1, 1);
      EXPECT_TRUE(InkBox(paper.Draw()).isEmpty());
    }
  }
}

/// Texts of a million characters, as a damaged form may hold them, took seconds each.
TEST(Axis, DrawsTheBeginningOfAVeryLongText) {
  const QString longText(1'000'000, 'x');
  TAxisOnPaper paper(TAxis::alLeft);
  paper.axis.GetLabel()->GetNumFormat()->SetIsTimeFormat(true);
  paper.axis.GetLabel()->GetNumFormat()->SetTimeFormatStr(longText);
  paper.axis.GetTitle()->SetCaption(longText);
  paper.Draw();
  EXPECT_LT(paper.axis.Overlap().left(), 20'000);
  EXPECT_EQ(paper.axis.GetTitle()->GetCaption(), longText) << "nothing of it is lost";
  EXPECT_TRUE(longText.startsWith(paper.axis.GetTitle()->Text()));
  EXPECT_LT(paper.axis.GetTitle()->Text().size(), 10'000);
}

}  // namespace
