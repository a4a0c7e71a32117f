#include "components/graphing/Graph.h"

#include <QSvgGenerator>

#include "tests/components/graphing/Panelfixture.h"

namespace {

using testing::DoubleNear;
using testing::IsEmpty;
using testing::Pointwise;

/// A series that covers `reach` both ways and counts what its graph asks of it.
class TCountingSeries : public TCustomGraphSeries {
 public:
  void Draw(QPainter*) override { ++draws; }
  void UpdateRangeX() override {
    ++rangings;
    Cover(rangeX_);
  }
  void UpdateRangeY() override { Cover(rangeY_); }

  double reach = 100.0;
  int draws = 0;
  int rangings = 0;

 private:
  void Cover(TRange& range) const {
    range.SetReset(true);
    range.GetBounds(0.0);
    range.GetBounds(reach);
  }
};

/// A graph of 400 x 300 pixels on a window, whose axes show 0..100.
class GraphTest : public testing::Test {
 protected:
  GraphTest() {
    graph.resize(400, 300);
    series = graph.GetDataPanel()->AddSeries(std::make_unique<TCountingSeries>());
    graph.show();
    Settle();
  }

  /// Lets the window paint what is waiting.
  static void Settle() {
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
  }

  /// The pixel of a value between 0 and 100, worked out from the plot rectangle.
  QPoint At(double x, double y) const {
    const QRect plot = graph.PlotRect();
    return {plot.left() + qRound(x / 100.0 * (plot.width() - 1)),
            plot.bottom() - qRound(y / 100.0 * (plot.height() - 1))};
  }

  /// Lets the window paint, which draws the series so often since the last time.
  void ExpectDraws(int count) {
    Settle();
    EXPECT_EQ(std::exchange(series->draws, 0), count);
  }

  void Press(QPoint at) { QTest::mousePress(&graph, Qt::LeftButton, {}, at); }
  void Release(QPoint at) { QTest::mouseRelease(&graph, Qt::LeftButton, {}, at); }
  void Drag(QPoint from, QPoint to) {
    Press(At(from.x(), from.y()));
    DragMouse(graph, At(to.x(), to.y()));
    Release(At(to.x(), to.y()));
  }

  TSliderSeries* AddSlider(double x, double y) {
    auto slider = std::make_unique<TSliderSeries>();
    slider->SetPosition({x, y});
    return graph.GetDataPanel()->AddSeries(std::move(slider));
  }

  TKorvalGraph graph;
  TCountingSeries* series;
};

TEST(Graph, BeginsAsItsDefaultsSay) {
  TKorvalGraph graph;
  EXPECT_EQ(graph.size(), QSize(160, 160));
  EXPECT_EQ(graph.GetBorderStyle(), TBevel::bvRaised);
  EXPECT_EQ(
      std::tuple(graph.GetColor(), graph.GetBorderColor(), graph.GetDataPanel()->GetFillColor()),
      std::tuple(TColor::White(), TColor::None(), TColor::None()));
  EXPECT_EQ(graph.PlotRect(), QRect()) << "nothing is laid out by the constructor";
  EXPECT_EQ(graph.GetVerticalAx()->GetOrientation(), TAxis::aoVertical);
  for (const TAxis* axis : {graph.GetHorizontalAx(), graph.GetVerticalAx()}) {
    EXPECT_TRUE(axis->GetFixedOrigin());
    EXPECT_EQ(axis->GetShape(), TAxis::shLine);
    EXPECT_EQ(axis->GetTitle()->GetPos(), TAxisTitle::tiRight);
    EXPECT_EQ(axis->GetTitle()->GetCaption(), axis == graph.GetVerticalAx() ? "Y-axis" : "X-axis");
  }
}

TEST_F(GraphTest, LeavesItsAxesTheirRoomAndThePlotTheRest) {
  const TAxis& x = *graph.GetHorizontalAx();
  const TAxis& y = *graph.GetVerticalAx();
  EXPECT_EQ(graph.Overlap(), QMargins(y.Overlap().left(), y.Overlap().top(), 0,
                                      std::max(x.Overlap().bottom(), y.Overlap().bottom())));
  EXPECT_EQ(graph.PlotRect(), graph.rect().marginsRemoved(graph.Overlap()));
  EXPECT_EQ(x.ClientRect(), graph.PlotRect());
  EXPECT_EQ(y.ClientRect(), graph.PlotRect());
  EXPECT_EQ(graph.GetDataPanel()->Rect(), graph.PlotRect());
  EXPECT_DOUBLE_EQ(x.ScaleFactor(), (graph.PlotRect().width() - 1) / 100.0);

  const int before = graph.PlotRect().left();
  series->reach = 1000000.0;  // longer labels
  graph.UpdateGraph();
  EXPECT_GT(graph.PlotRect().left(), before);
  EXPECT_EQ(y.ClientRect(), graph.PlotRect());
}

TEST_F(GraphTest, DrawsOnceForManyRedraws) {
  series->draws = 0;
  for (int i = 0; i < 5; ++i) graph.Redraw();
  ExpectDraws(1);
  graph.update();
  ExpectDraws(0);  // an expose copies the back buffer

  graph.GetHorizontalAx()->SetLineColor(TColor::Black());
  graph.SetColor(TColor::Yellow());
  ExpectDraws(1);
  graph.SetColor(TColor::Yellow());
  ExpectDraws(0);  // an equal value is no change
}

TEST_F(GraphTest, LaysItselfOutWhenItsSizeChanges) {
  series->rangings = 0;
  for (const int width : {400, 500}) {  // the first is the same
    graph.resize(width, 300);
    Settle();
    EXPECT_EQ(series->rangings, width == 500);
  }
  EXPECT_EQ(graph.PlotRect(), QRect(0, 0, 500, 300).marginsRemoved(graph.Overlap()));

  graph.hide();
  graph.SetWidth(350);
  EXPECT_EQ(graph.Picture().width(), 350);
  EXPECT_EQ(graph.PlotRect().right(), 349) << "a hidden graph is laid out when it is drawn";
  for (const QSize noRoom : {QSize(0, 0), QSize(1, 1), QSize(20, 400), QSize(400, 20)}) {
    graph.resize(noRoom);
    graph.Replay();
    EXPECT_FALSE(graph.Picture().isNull());
    EXPECT_GE(graph.PlotRect().width(), 0);
    EXPECT_GE(graph.PlotRect().height(), 0);
  }
}

TEST_F(GraphTest, PaintsBackgroundFrameSeriesAndAxesInThisOrder) {
  graph.SetColor(TColor::FromRgb(10, 20, 30));
  graph.SetBorderColor(TColor::FromRgb(200, 0, 0));
  graph.GetDataPanel()->SetFillColor(TColor::FromRgb(0, 0, 90));
  graph.GetHorizontalAx()->SetLineColor(TColor::Green());
  const QRect plot = graph.PlotRect();
  QImage picture = graph.Picture();
  EXPECT_EQ(picture.pixelColor(3, 3), QColor(10, 20, 30));
  EXPECT_NE(picture.pixelColor(200, 0), QColor(200, 0, 0)) << "a bevel takes the frame's place";
  EXPECT_EQ(picture.pixelColor(plot.center()), QColor(0, 0, 90));
  EXPECT_EQ(picture.pixelColor(plot.center().x(), plot.bottom()), QColor(0, 255, 0))
      << "the axis lies over the panel";

  graph.SetBorderStyle(TBevel::bvSpace);
  picture = graph.Picture();
  for (const QPoint corner : {QPoint(0, 0), QPoint(399, 0), QPoint(0, 299), QPoint(399, 299)}) {
    EXPECT_EQ(picture.pixelColor(corner), QColor(200, 0, 0));
  }
  EXPECT_EQ(picture.pixelColor(1, 1), QColor(10, 20, 30));
}

TEST_F(GraphTest, ShowsInItsWindowAndCopiesWhatItDraws) {
  AddSlider(40, 60);
  Settle();
  graph.CopyToClipboardAsBitmap();
  const QImage drawn = graph.Picture(graph.devicePixelRatioF());
  EXPECT_EQ(graph.grab().toImage().convertToFormat(QImage::Format_RGB32), drawn);
  EXPECT_EQ(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32), drawn);
}

TEST_F(GraphTest, DrawsSharplyAtTwiceThePixels) {
  const QImage single = graph.Picture(1.0);
  QImage twice = graph.Picture(2.0);
  EXPECT_EQ(twice.size(), QSize(800, 600));
  twice.setDevicePixelRatio(1.0);
  const QRect plot = graph.PlotRect();
  int lit = 0;
  for (int x = plot.left(); x <= plot.right(); ++x) {
    const QColor tick = single.pixelColor(x, plot.bottom() + 3);
    lit += tick != QColor(Qt::white);
    for (const QPoint offset : {QPoint(0, 0), QPoint(1, 0), QPoint(0, 1), QPoint(1, 1)}) {
      EXPECT_EQ(twice.pixelColor(2 * QPoint(x, plot.bottom() + 3) + offset), tick) << x;
    }
  }
  EXPECT_EQ(lit, 11) << "ticks of 0..100";
}

TEST_F(GraphTest, SelectsARegionWithTheMouse) {
  TDataPanel& panel = *graph.GetDataPanel();
  TAxis& axis = *graph.GetHorizontalAx();
  bool zooms = false;
  QObject::connect(&panel, &TDataPanel::OnSelection, &graph, [&] {
    if (zooms) FixRange(axis, SelectionOf(panel).at(0), SelectionOf(panel).at(2));
  });
  QSignalSpy selections(&panel, &TDataPanel::OnSelection);
  Drag({60, 30}, {20, 80});
  EXPECT_EQ(selections.count(), 0) << "selecting is not allowed";

  panel.SetAllowSelection(true);
  Settle();
  series->draws = 0;
  Press(At(60, 30));
  DragMouse(graph, At(40, 70));
  DragMouse(graph, At(20, 80));
  ExpectDraws(1);  // the moves between two paint events share one picture
  Release(At(20, 80));
  EXPECT_EQ(selections.count(), 1);
  const double pixel = 100.0 / (graph.PlotRect().height() - 1);
  EXPECT_THAT(SelectionOf(panel), Pointwise(DoubleNear(pixel), {20.0, 80.0, 60.0, 30.0}));
  EXPECT_NE(panel.SelectionAnchor(), panel.SelectionCorner());

  // The zoom that the selection is made for.
  zooms = true;
  Drag({60, 30}, {20, 80});
  EXPECT_EQ(panel.SelectionAnchor(), panel.SelectionCorner()) << "a rubber band stays";
  EXPECT_GE(axis.WorkingMin(), 10);  // a step of 10 beyond 20..60 at most
  EXPECT_LE(axis.WorkingMax(), 70);
  EXPECT_THAT(SelectionOf(panel), IsEmpty()) << "its pixels mean other values now";

  // Outside the plot or with another button nothing begins or ends.
  QTest::mousePress(&graph, Qt::RightButton, {}, At(50, 50));
  EXPECT_FALSE(panel.IsSelecting());
  Press(QPoint(2, 150));
  EXPECT_FALSE(panel.IsSelecting());
  Press(At(50, 50));
  QTest::mouseRelease(&graph, Qt::RightButton, {}, At(60, 60));
  EXPECT_TRUE(panel.IsSelecting());
}

TEST_F(GraphTest, ALogarithmicAxisBeginsAtTheLeastPositiveValue) {
  graph.GetDataPanel()->GetSeriesList().Clear();
  graph.GetVerticalAx()->SetScale(TAxis::asLog);
  auto points = std::make_unique<TArraySeries>(3);
  for (int i = 0; i < 3; ++i) points->SetPoint(i, {1.0 * i, i == 1 ? 0.0 : i == 0 ? 1e-9 : 1e-7});
  graph.GetDataPanel()->AddSeries(std::move(points));
  graph.Replay();
  EXPECT_NEAR(graph.GetVerticalAx()->WorkingMin(), 1e-9, 1e-15);
  EXPECT_NEAR(graph.GetVerticalAx()->WorkingMax(), 1e-7, 1e-13);
  TCoordinate zero{1.0, 0.0};
  QPoint pixel;
  graph.GetDataPanel()->LocateValue(pixel, zero);
  EXPECT_EQ(pixel.y(), graph.PlotRect().bottom()) << "below all others, and not at 1e-6 above them";
}

TEST_F(GraphTest, DragsASliderWhileTheAxesHoldStill) {
  TSliderSeries* slider = AddSlider(100, 50);
  series->reach = 95;  // the slider alone holds the axes at 100
  graph.GetDataPanel()->SetAllowSelection(true);
  Settle();

  Press(At(100, 50));
  ASSERT_EQ(graph.GetDataPanel()->SelSlider(), slider);
  EXPECT_FALSE(graph.GetDataPanel()->IsSelecting()) << "a slider goes before the selection";
  series->reach = 100000;
  DragMouse(graph, At(30, 50));
  graph.UpdateGraph();
  EXPECT_EQ(graph.GetHorizontalAx()->WorkingMax(), 100.0);
  EXPECT_EQ(graph.GetVerticalAx()->WorkingMax(), 100.0);
  EXPECT_NEAR(slider->GetPositionX(), 30.0, 0.5);

  Settle();
  series->draws = 0;
  DragMouse(graph, At(30, 50));
  ExpectDraws(0);  // the slider has not moved

  series->rangings = 0;
  Release(At(30, 50));
  EXPECT_EQ(graph.GetDataPanel()->SelSlider(), nullptr);
  EXPECT_EQ(graph.GetHorizontalAx()->WorkingMax(), 100000.0);
  EXPECT_EQ(series->rangings, 1) << "rescaled once";

  series->reach = 95;
  graph.UpdateGraph();
  Press(At(30, 50));
  EXPECT_EQ(graph.GetDataPanel()->SelSlider(), slider);
  series->reach = 100000;
  QEvent dialog(QEvent::WindowBlocked);  // that takes the mouse
  QCoreApplication::sendEvent(&graph, &dialog);
  EXPECT_EQ(graph.GetDataPanel()->SelSlider(), nullptr);
  EXPECT_EQ(graph.GetHorizontalAx()->WorkingMax(), 100000.0);
}

TEST_F(GraphTest, OpensTheEditorOfWhatIsDoubleClicked) {
  QStringList opened;
  graph.EditAxis = [&](TAxis& axis) {
    opened << (&axis == graph.GetHorizontalAx() ? "horizontal" : "vertical");
  };
  graph.GetDataPanel()->GetSeriesList().Editor = [&](TSeriesList&) { opened << "series"; };
  const QRect plot = graph.PlotRect();
  const std::pair<QPoint, QStringList> cases[] = {
      {{plot.center().x(), plot.bottom() + 1}, {"horizontal"}},
      {{plot.center().x(), 299}, {"horizontal"}},
      {{plot.left() - 1, plot.center().y()}, {"vertical"}},
      {{0, plot.center().y()}, {"vertical"}},
      {plot.center(), {"series"}},
      {{0, 299}, {}},
      {{plot.center().x(), 0}, {}}};
  for (const auto& [at, opens] : cases) {
    opened.clear();
    QTest::mouseDClick(&graph, Qt::LeftButton, {}, at);
    EXPECT_EQ(opened, opens) << at.x() << ", " << at.y();
  }
  opened.clear();
  QTest::mouseDClick(&graph, Qt::RightButton, {}, plot.center());
  EXPECT_TRUE(opened.isEmpty());
  graph.GetVerticalAx()->SetAlign(TAxis::alRight);
  QTest::mouseDClick(&graph, Qt::LeftButton, {}, {398, 150});
  EXPECT_EQ(opened, QStringList("vertical"));
}

TEST_F(GraphTest, TellsTheValuesUnderTheMouse) {
  EXPECT_EQ(graph.CoordinateText(QPoint(1, 1)), "");
  EXPECT_EQ(graph.CoordinateText(graph.PlotRect().bottomLeft()), "x = 0   y = 0");
  EXPECT_EQ(graph.CoordinateText(graph.PlotRect().topRight()), "x = 100   y = 100");
  EXPECT_THAT(graph.CoordinateText(At(12.3, 45.6)).toStdString(),
              testing::MatchesRegex("x = [0-9]+[.][0-9]   y = [0-9]+[.][0-9]"));
  graph.GetHorizontalAx()->SetScale(TAxis::asTime);
  EXPECT_EQ(graph.CoordinateText(graph.PlotRect().bottomLeft()), "x = 1899-12-30 00:00   y = 0");

  Settle();
  const QImage without = graph.grab().toImage();
  graph.SetShowCoordinates(true);
  QTest::mouseMove(&graph, At(50, 50));
  DragMouse(graph, At(50, 50));
  series->draws = 0;
  EXPECT_NE(graph.grab().toImage(), without);
  EXPECT_EQ(series->draws, 0) << "the curves are not drawn anew for it";
  graph.SetShowCoordinates(false);
  EXPECT_EQ(graph.grab().toImage(), without);
}

TEST_F(GraphTest, DrawsDirectlyOnWhatShowsMoreThanItsBuffer) {
  series->draws = 0;
  QBuffer file;
  QSvgGenerator svg;
  svg.setOutputDevice(&file);
  QPainter painter(&svg);
  graph.render(&painter);
  painter.end();
  EXPECT_EQ(series->draws, 1);
  EXPECT_TRUE(file.data().contains(">X-axis<")) << "texts stay texts";
}

TEST_F(GraphTest, PaintsDirectlyWhereABufferWouldTakeAllMemory) {
  graph.hide();
  graph.resize(4000000, 3000000);
  graph.SetColor(TColor::Yellow());
  EXPECT_EQ(graph.grab(QRect(20, 20, 5, 5)).toImage().pixelColor(2, 2), QColor(Qt::yellow));
  EXPECT_TRUE(graph.Picture().isNull());

  auto* line = graph.GetDataPanel()->AddSeries(std::make_unique<TArraySeries>(2));
  line->SetPoint(1, {100.0, 100.0});
  TSeriesStyle& style = *line->GetStyle();
  style.SetLineColor(TColor::Green());
  for (const auto pen : {TSeriesStyle::psSolid, TSeriesStyle::psDash}) {
    for (const int weight : {1, 4}) {
      style.SetLineStyle(pen);
      style.SetLineWeight(weight);
      const QRect middle(At(50.0, 50.0) - QPoint(40, 30), QSize(80, 60));
      const int drawn = CountPixels(graph.grab(middle).toImage(), Qt::green);
      EXPECT_GE(drawn, 30 * weight);
      EXPECT_LE(drawn, 80 * weight * 3 / 2);
    }
  }
}

TEST_F(GraphTest, CopiesSizeAxesAndPanelIntoAnother) {
  graph.GetHorizontalAx()->GetTitle()->SetCaption("Frequency [Hz]");
  graph.GetVerticalAx()->SetScale(TAxis::asLog);
  graph.GetDataPanel()->SetLineColor(TColor::Blue());
  TKorvalGraph other;
  graph.AssignTo(&other);
  EXPECT_EQ(other.size(), graph.size());
  EXPECT_TRUE(other.GetHorizontalAx()->SameAs(graph.GetHorizontalAx()));
  EXPECT_TRUE(other.GetVerticalAx()->SameAs(graph.GetVerticalAx()));
  EXPECT_EQ(other.GetDataPanel()->GetLineColor(), TColor::Blue());
}

/// Values at the ends of what a double can hold, and others among them.
TEST(Graph, DrawsWhateverItsSeriesHoldAtAnySize) {
  constexpr double kValues[] = {0.0,   -0.0,      1.0,         -1.0,      1e308,      -1e308,
                                1e-6,  5e-324,    -5e-324,     kInfinity, -kInfinity, 1e17,
                                43000, 43000.001, 1.0 + 1e-15, kNan};
  std::mt19937 random(20);
  const auto any = [&random](int count) { return static_cast<int>(random() % count); };
  const auto value = [&] { return kValues[random() % std::size(kValues)]; };
  const auto point = [&] { return TCoordinate{value(), value()}; };
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    TKorvalGraph graph;
    graph.resize(any(3) ? any(400) : any(3), any(3) ? any(300) : any(3));
    for (TAxis* axis : {graph.GetHorizontalAx(), graph.GetVerticalAx()}) {
      axis->SetScale(static_cast<TAxis::TAxisScale>(any(3)));
      axis->SetAutoMin(any(2));
      axis->SetMinMax(value(), value());
    }
    auto* series = graph.GetDataPanel()->AddSeries(std::make_unique<TArraySeries>(any(40)));
    for (int i = 0; i < series->PointCount(); ++i) series->SetPoint(i, point());
    auto* bars = graph.GetDataPanel()->AddSeries(std::make_unique<TSeries>());
    bars->DataSource = [&point](int& index, TCoordinate& at, TCoordinate& extent) {
      at = point();
      extent = point();
      return ++index < 10;
    };
    for (TSeriesStyle* style : {series->GetStyle(), bars->GetStyle()}) {
      style->SetLineStyle(static_cast<TSeriesStyle::TPenStyle>(any(6)));
      style->SetPointStyle(static_cast<TSeriesStyle::TPointStyle>(any(6)));
      style->SetLineWeight(any(2) ? 1 : 1 + any(100));
    }
    auto* slider = graph.GetDataPanel()->AddSeries(std::make_unique<TSliderSeries>());
    slider->SetPosition(point());
    slider->SetShowGridX(true);
    graph.Replay();
    EXPECT_FALSE(graph.Picture(1.0 + any(3)).isNull());
    for (int i = 0; i < 3; ++i) {
      graph.GetDataPanel()->GetSelSlider({}, any(400), any(300));
      graph.GetDataPanel()->MoveSelSlider({}, any(400), any(300));
      graph.CoordinateText({any(400), any(300)});
    }
    EXPECT_TRUE(std::isfinite(slider->GetPositionX()));
    for (const TAxis* axis : {graph.GetHorizontalAx(), graph.GetVerticalAx()}) {
      EXPECT_LT(axis->WorkingMin(), axis->WorkingMax());
      EXPECT_TRUE(std::isfinite(axis->WorkingMax() - axis->WorkingMin()));
    }
  }
}

TEST(Graph, TakesAnOpenEditorAlongWhenItGoes) {
  for (const bool ofAxis : {true, false}) {
    auto graph = std::make_unique<TKorvalGraph>();
    graph->resize(300, 200);
    graph->show();
    const QRect plot = graph->PlotRect();
    const QPointF at(plot.center().x(), ofAxis ? plot.bottom() + 2 : plot.center().y());
    bool opened = false;
    QTimer::singleShot(0, [&] {
      opened = QApplication::activeModalWidget() != nullptr;
      graph.reset();
    });
    QMouseEvent twice(QEvent::MouseButtonDblClick, at, graph->mapToGlobal(at), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(graph.get(), &twice);
    EXPECT_TRUE(opened);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  }
}

/// A graph in the midst of a form.
struct TPlace {
  explicit TPlace(bool isMadeElsewhere = false) {
    form.resize(300, 200);
    graph = new TKorvalGraph(isMadeElsewhere ? &elsewhere : &form);
    graph->setParent(&form);
    graph->setGeometry(20, 30, 100, 80);
  }
  QWidget elsewhere, form;
  TKorvalGraph* graph;
};

TEST(GraphPlace, FollowsTheSizeOfItsParent) {
  using A = TAnchoring;
  const std::tuple<A::TAlign, A::TAnchors, QRect> cases[] = {
      {A::alNone, A::akLeft | A::akTop, {20, 30, 100, 80}},
      {A::alNone, A::akRight | A::akBottom, {120, 80, 100, 80}},
      {A::alNone, A::akLeft | A::akTop | A::akRight | A::akBottom, {20, 30, 200, 130}},
      {A::alNone, {}, {70, 55, 100, 80}},
      {A::alClient, {}, {0, 0, 400, 250}},
      {A::alTop, {}, {0, 0, 400, 80}},
      {A::alBottom, {}, {0, 170, 400, 80}},
      {A::alLeft, {}, {0, 0, 100, 250}},
      {A::alRight, {}, {300, 0, 100, 250}}};
  for (const auto& [align, anchors, place] : cases) {
    TPlace p(align == A::alBottom);
    p.graph->SetAnchors(anchors);
    p.graph->SetAlign(align);
    p.form.show();
    p.form.resize(400, 250);
    QCoreApplication::processEvents();
    EXPECT_EQ(p.graph->geometry(), place) << align << ' ' << anchors.toInt();
  }
}

TEST(GraphPlace, ComesBackAfterManySmallStepsAndASqueeze) {
  using A = TAnchoring;
  for (const A::TAnchors anchors : {A::TAnchors(), A::akLeft | A::akTop | A::akRight}) {
    SCOPED_TRACE(anchors.toInt());
    TPlace p;
    p.graph->SetAnchors(anchors);
    p.form.show();
    for (int width = 301; width <= 310; ++width) p.form.resize(width, 200);
    EXPECT_EQ(p.graph->geometry(), anchors ? QRect(20, 30, 110, 80) : QRect(25, 30, 100, 80));
    p.form.resize(100, 200);
    p.form.resize(300, 200);
    EXPECT_EQ(p.graph->geometry(), QRect(20, 30, 100, 80));

    p.graph->move(40, 50);  // its user's new place counts from now on
    p.form.resize(302, 200);
    EXPECT_EQ(p.graph->pos(), QPoint(anchors ? 40 : 41, 50));
  }
}

}  // namespace
