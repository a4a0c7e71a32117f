#include "components/controls/Arrow.h"

#include "components/controls/Designmode.h"
#include "tests/support/Testing.h"

namespace {

using TEnd = TArrowEnd;

/// A form with two plain widgets and an arrow, shown without a screen's size in the way.
struct Arrow : testing::Test {
  Arrow() {
    form.resize(400, 300);
    first.setGeometry(100, 50, 80, 40);
    second.setGeometry(250, 201, 61, 31);
    arrow.setGeometry(10, 20, 40, 60);
    first.setObjectName("first");
    second.setObjectName("second");
    form.show();
  }

  QImage Picture() {
    return Painted(form.size(), [this](QPainter& painter) {
      arrow.render(&painter, arrow.pos(), {}, QWidget::RenderFlags());
    });
  }

  QWidget form;
  QWidget first{&form};
  QWidget second{&form};
  TArrow arrow{&form};
  TArrowEnd& start = *arrow.GetArrowStart();
  TArrowEnd& end = *arrow.GetArrowEnd();
};

TEST_F(Arrow, EndsInTheMiddleOfASideAndOnTheOppositeOneOfItsOwnBox) {
  const std::tuple<TEnd::TAttachPos, QPoint, QPoint> cases[] = {
      {TEnd::apControlLeft, {100, 70}, {50, 50}},
      {TEnd::apControlTop, {140, 50}, {30, 80}},
      {TEnd::apControlRight, {180, 70}, {10, 50}},
      {TEnd::apControlBottom, {140, 90}, {30, 20}}};
  for (const auto& [side, attached, free] : cases) {
    SCOPED_TRACE(side);
    end.SetControl(nullptr);
    end.SetAttachTo(side);
    arrow.setGeometry(10, 20, 40, 60);
    EXPECT_EQ(end.GetPos(), free);
    end.SetControl(&first);
    EXPECT_EQ(end.GetPos(), attached);
  }
  for (const int none : {-1, 4}) {  // no side
    end.SetAttachTo(static_cast<TEnd::TAttachPos>(none));
    EXPECT_EQ(end.GetAttachTo(), TEnd::apControlBottom);
  }
  end.SetControl(&second);
  end.SetAttachTo(TEnd::apControlTop);
  EXPECT_EQ(end.GetPos(), QPoint(280, 201));  // between 250 and 311, rounded towards zero
  second.setGeometry(-10, 0, 7, 7);
  EXPECT_EQ(end.GetPos(), QPoint(-6, 0));  // between -10 and -3
}

TEST_F(Arrow, EnclosesItsLineAndFollowsItsControls) {
  start.SetControl(&first);  // at the bottom
  end.SetControl(&second);
  end.SetAttachTo(TEnd::apControlLeft);
  // From (140, 90) to (250, 216).
  EXPECT_EQ(arrow.geometry(), QRect(132, 82, 110 + 16, 126 + 16));
  second.move(20, 201);
  EXPECT_EQ(arrow.geometry(), QRect(12, 82, 120 + 16, 126 + 16));
  first.resize(80, 60);
  EXPECT_EQ(arrow.geometry(), QRect(12, 102, 120 + 16, 106 + 16));
  EXPECT_EQ(arrow.Points().Count(), 2);
  EXPECT_EQ(arrow.Points().Get(0), QPoint(140, 110));
  EXPECT_EQ(arrow.Points().Get(1), QPoint(20, 216));
  arrow.setGeometry(0, 0, 10, 10);  // by somebody else: both ends are held
  EXPECT_EQ(arrow.geometry(), QRect(12, 102, 120 + 16, 106 + 16));
  // At the end of the world there is nothing to see.
  first.setGeometry(INT_MIN / 2, INT_MIN / 2, 10, 10);
  second.setGeometry(INT_MAX / 2, INT_MAX / 2, 10, 10);
  Picture();
  end.Assign(&start);
  EXPECT_EQ(end.GetPos(), start.GetPos());
}

/// What is saved and read over and over stays, too.
TEST_F(Arrow, AFreeEndStaysWhereItIsWhenTheOtherOneMoves) {
  start.SetAttachTo(TEnd::apControlTop);  // free: the lower side, (30, 80)
  end.SetControl(&first);
  EXPECT_EQ(arrow.geometry(), QRect(22, 72, 110 + 16, 10 + 16));
  first.move(200, 160);
  EXPECT_EQ(start.GetPos(), QPoint(30, 80));
  EXPECT_EQ(arrow.geometry(), QRect(22, 72, 210 + 16, 120 + 16));
  TArrow again(&form);
  again.BeginLoading();
  again.setGeometry(arrow.geometry());
  again.GetArrowStart()->SetAttachTo(TEnd::apControlTop);
  again.GetArrowEnd()->SetControlName("first");
  again.Loaded();
  EXPECT_EQ(again.GetArrowStart()->GetPos(), QPoint(30, 80));
  EXPECT_EQ(again.geometry(), arrow.geometry());
}

TEST_F(Arrow, FollowsControlsInOtherWidgets) {
  QWidget outer(&form), inner(&outer);
  outer.setGeometry(200, 100, 150, 150);
  inner.setGeometry(10, 20, 100, 100);
  first.setParent(&inner);
  first.setGeometry(1, 2, 20, 10);
  outer.show();
  first.show();
  // Inside of another widget, an arrow is moved by that one, too.
  TArrow line(&outer);
  line.GetArrowStart()->SetControl(&outer);  // at its bottom
  line.GetArrowEnd()->SetControl(&second);
  end.SetControl(&first);
  const std::tuple<std::function<void()>, QPoint, QPoint, QPoint> cases[] = {
      {[] {}, {221, 132}, {75, 150}, {80, 132}},
      {[&] { outer.move(100, 90); }, {121, 122}, {75, 150}, {180, 142}},
      {[&] { outer.resize(150, 120); }, {121, 122}, {75, 120}, {180, 142}},
      {[&] { inner.move(0, 0); }, {111, 102}, {75, 120}, {180, 142}},
      {[&] { first.setParent(&form); }, {11, 12}, {75, 120}, {180, 142}},
      {[&] { outer.move(0, 0); }, {11, 12}, {75, 120}, {280, 232}}};  // of no concern to the first
  for (const auto& [move, inForm, from, to] : cases) {
    SCOPED_TRACE(inForm.x());
    move();
    EXPECT_EQ(end.GetPos(), inForm);
    EXPECT_EQ(line.GetArrowStart()->GetPos(), from);
    EXPECT_EQ(line.GetArrowEnd()->GetPos(), to);
  }
  end.SetControl(nullptr);
}

TEST_F(Arrow, LetsGoOfAControlThatIsDestroyed) {
  auto* button = new QPushButton(&form);
  button->setGeometry(200, 200, 50, 20);
  end.SetControl(button);
  EXPECT_EQ(end.GetPos(), QPoint(225, 220));
  QSignalSpy changes(&end, &TEnd::OnChange);
  delete button;
  EXPECT_EQ(end.GetControl(), nullptr);
  EXPECT_EQ(changes.count(), 1);
  // Free again, at the upper side of the box about (30, 20) to (225, 220).
  EXPECT_EQ(end.GetPos(), QPoint(127, 12));
}

TEST_F(Arrow, RefusesArrowsAndSurvivesTheFormsEnd) {
  TArrow other(&form);
  for (TArrow* refused : {&other, &arrow}) {
    end.SetControl(refused);
    EXPECT_EQ(end.GetControl(), nullptr);
  }
  auto* doomed = new QWidget(&form);
  auto* held = new QWidget(doomed);
  auto* line = new TArrow(doomed);
  line->GetArrowStart()->SetControl(held);
  line->GetArrowEnd()->SetControl(doomed);
  EXPECT_EQ(line->GetArrowEnd()->GetControl(), doomed);
  delete doomed;
}

/// A control that gives way to the arrow moves while the arrow changes its bounds.
TEST_F(Arrow, IsNotEnteredAgainWhileItChangesItsBounds) {
  struct Fleeing : QObject {
    explicit Fleeing(QWidget& prey) : widget(prey) {}
    bool eventFilter(QObject*, QEvent* event) override {
      if (event->type() == QEvent::Resize && ++count < 1000)
        widget.move(widget.x() + 1, widget.y());
      return false;
    }
    QWidget& widget;
    int count = 0;
  } fleeing(first);
  start.SetControl(&second);
  arrow.installEventFilter(&fleeing);
  end.SetControl(&first);
  EXPECT_EQ(fleeing.count, 1);
}

TEST_F(Arrow, HeadsPointIntoTheControl) {
  const std::tuple<TEnd::TAttachPos, QPoint, QPoint> cases[] = {
      {TEnd::apControlLeft, {92, 67}, {92, 73}},
      {TEnd::apControlTop, {137, 42}, {143, 42}},
      {TEnd::apControlRight, {188, 67}, {188, 73}},
      {TEnd::apControlBottom, {137, 98}, {143, 98}}};
  start.SetControl(&second);
  end.SetControl(&first);
  end.SetStyle(TEnd::asArrow);
  for (const auto& [side, wing, other] : cases) {
    SCOPED_TRACE(side);
    end.SetAttachTo(side);
    const QImage image = Picture();
    for (const QPoint& place : {wing, other, end.GetPos()}) {
      EXPECT_LT(qGray(image.pixel(place)), 128);
    }
  }
}

TEST_F(Arrow, DrawsItsLineInItsColourWithADiscAtItsEnd) {
  second.setGeometry(100, 200, 80, 40);
  start.SetControl(&first);
  end.SetControl(&second);
  end.SetAttachTo(TEnd::apControlTop);
  end.SetStyle(TEnd::asCircle);
  arrow.SetColor(TColor::FromRgb(0, 0, 255));
  const QImage image = Picture();
  const QColor blue(0, 0, 255), white(255, 255, 255);
  EXPECT_EQ(CountPixels(image, blue, {139, 91, 3, 100}), 100);  // one pixel wide and sharp
  EXPECT_EQ(CountPixels(image, blue, {140, 91, 1, 109}), 109);
  for (const int away : {-2, 2}) {
    EXPECT_EQ(image.pixelColor(140 + away, 200), blue);
    EXPECT_EQ(image.pixelColor(140, 200 + away), blue);
    EXPECT_EQ(image.pixelColor(140 + 2 * away, 200), white);
  }
  // Without a colour of its own it has that of the form's texts.
  QPalette colors;
  colors.setColor(QPalette::WindowText, Qt::magenta);
  form.setPalette(colors);
  arrow.SetColor(TColor::None());
  EXPECT_EQ(Picture().pixelColor(140, 150), QColor(Qt::magenta));
}

TEST_F(Arrow, IsFramedByDashesWhileItIsDesignedAndHeldByNothing) {
  arrow.setGeometry(10, 20, 40, 60);
  const auto greys = [this] { return CountPixels(Picture(), Qt::darkGray, {10, 20, 40, 1}); };
  EXPECT_EQ(greys(), 0);
  EXPECT_EQ(form.childAt(30, 50), nullptr);  // the mouse does not see it
  SetDesignMode(&form, true);
  EXPECT_GT(greys(), 15);
  EXPECT_LT(greys(), 25);
  EXPECT_EQ(form.childAt(30, 50), &arrow);
  end.SetControl(&first);
  EXPECT_EQ(greys(), 0);
}

TEST_F(Arrow, FindsItsControlsByNameOnceTheFormIsComplete) {
  TArrow late(&form);
  late.BeginLoading();
  late.setGeometry(5, 5, 30, 30);
  late.GetArrowStart()->SetControlName("first");
  late.GetArrowEnd()->SetControlName("second");
  EXPECT_EQ(late.geometry(), QRect(5, 5, 30, 30));
  late.Loaded();
  EXPECT_EQ(late.GetArrowStart()->GetControl(), &first);
  EXPECT_EQ(late.geometry(), QRect(132, 82, 140 + 16, 142 + 16));  // (140, 90) to (280, 232)
  late.GetArrowEnd()->SetControlName("nobody");
  late.GetArrowEnd()->Loaded();
  EXPECT_EQ(late.GetArrowEnd()->GetControl(), nullptr);
  EXPECT_EQ(late.GetArrowEnd()->GetControlName(), "nobody");
}

/// A widget that was placed before it is shown hears of that when it is shown.
TEST_F(Arrow, AFreeEndStaysWhereItIsWhenTheFormIsShown) {
  QWidget hidden;
  QWidget control(&hidden);
  TArrow line(&hidden);
  control.setGeometry(100, 50, 80, 40);
  line.setGeometry(10, 20, 40, 60);
  line.GetArrowEnd()->SetControl(&control);
  EXPECT_EQ(line.geometry(), QRect(22, 12, 126, 86));  // (30, 20) to (140, 90)
  hidden.show();
  EXPECT_EQ(line.GetArrowStart()->GetPos(), QPoint(30, 20));
  EXPECT_EQ(line.geometry(), QRect(22, 12, 126, 86));
}

}  // namespace
