#include <QAccessible>

#include "components/channels/Variable.h"
#include "components/controls/Colorlabel.h"
#include "components/controls/Designmode.h"
#include "components/controls/Hyperlink.h"
#include "components/controls/Korvaltools.h"
#include "components/controls/Textlabel.h"
#include "components/controls/Textpanel.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;

/// What the widget draws, on white.
QImage Grab(QWidget& widget) {
  return Painted(widget.size(), [&widget](QPainter& painter) {
    widget.render(&painter, {}, {}, QWidget::RenderFlags());
  });
}

TEST(TTextLabel, PutsItsTextWhereAlignmentAndLayoutSay) {
  TTextLabel label;
  label.resize(200, 100);
  label.SetCaption("Speed");
  // The middle of the text, in parts of the label.
  const std::tuple<TTextLabel::TAlignment, TTextLabel::TTextLayout, double, double, double>
      cases[] = {{TTextLabel::taLeftJustify, TTextLabel::tlTop, 0.0, 0.1, 0.1},
                 {TTextLabel::taRightJustify, TTextLabel::tlBottom, 0.0, 0.9, 0.9},
                 {TTextLabel::taCenter, TTextLabel::tlCenter, 0.0, 0.5, 0.5},
                 // Turned, the text begins at the bottom, and its lines begin at the left.
                 {TTextLabel::taLeftJustify, TTextLabel::tlTop, 90.0, 0.05, 0.8},
                 {TTextLabel::taLeftJustify, TTextLabel::tlTop, -90.0, 0.95, 0.2}};
  for (const auto& [alignment, layout, angle, x, y] : cases) {
    label.SetAlignment(alignment);
    label.SetLayout(layout);
    label.SetAngle(angle);
    const QRect ink = InkBox(Grab(label));
    EXPECT_EQ(ink.width() > ink.height(), angle == 0.0);
    EXPECT_NEAR(ink.center().x(), x * 200, 20);
    EXPECT_NEAR(ink.center().y(), y * 100, 12);
  }
  for (const int none : {-1, 3}) label.SetAlignment(static_cast<TTextLabel::TAlignment>(none));
  EXPECT_EQ(label.GetAlignment(), TTextLabel::taLeftJustify);
}

TEST(TTextLabel, TakesTheSizeOfItsTextUnlessALayoutKeepsIt) {
  QWidget form;
  TTextLabel label(&form);
  label.SetCaption("Speed");
  EXPECT_EQ(label.size(), QSize(80, 22));
  label.SetAutoSize(true);
  const QSize once = label.size();
  label.SetCaption("Speed\nSpeed");
  EXPECT_EQ(label.width(), once.width());
  EXPECT_GT(label.height(), once.height() * 3 / 2);
  label.SetCaption("Speed");
  label.SetAngle(90.0);
  EXPECT_GT(label.height(), label.width());
  QWidget laidOut;
  auto* layout = new QVBoxLayout(&laidOut);
  layout->addWidget(&label);
  laidOut.resize(300, 300);
  layout->activate();
  label.SetCaption("x");
  EXPECT_GT(label.width(), 200);
  label.setParent(nullptr);
}

TEST(TTextLabel, EndsInDotsOrGoesOnInTheNextLine) {
  TTextLabel label;
  label.SetCaption("word word word word word word");
  label.resize(60, 100);
  const int line = QFontMetrics(label.font()).height();
  EXPECT_LE(InkBox(Grab(label)).height(), line);
  label.SetWordWrap(true);
  EXPECT_GT(InkBox(Grab(label)).height(), 2 * line);
  label.SetCaption(QString(1000000, 'x'));
  Grab(label);  // returns at once
}

TEST(TTextLabel, IsLegibleOnAGroundOfItsOwn) {
  TTextLabel label;
  QPalette colors;
  colors.setColor(QPalette::WindowText, QColor(200, 200, 100));
  label.setPalette(colors);
  label.resize(60, 30);
  label.SetCaption(QString(3, QChar(0x2588)));  // full blocks
  const auto ink = [&label] { return Grab(label).pixelColor(8, 15); };
  EXPECT_EQ(ink(), QColor(200, 200, 100));
  const std::pair<QColor, QColor> cases[] = {{QColor(255, 255, 0), Qt::black},
                                             {QColor(0, 0, 128), Qt::white},
                                             {QColor(255, 176, 0), Qt::black},
                                             {QColor(90, 90, 90), Qt::white}};
  for (const auto& [ground, legible] : cases) {
    label.SetColor(TColor::FromQColor(ground));
    EXPECT_EQ(ink(), legible);
  }
  label.SetFontColor(TColor::FromRgb(0, 255, 0));
  EXPECT_EQ(ink(), QColor(0, 255, 0));
  label.setEnabled(false);
  EXPECT_EQ(ink(), QColor(45, 172, 45));  // half of the ground
}

TEST(TTextPanel, HasTwoBevelsAboutItsText) {
  TTextPanel panel;
  panel.resize(60, 40);
  panel.SetColor(TColor::Blue());
  panel.SetBevelInner(TBevel::bvLowered);
  panel.SetBevelWidth(2);
  panel.SetBorderWidth(3);
  panel.SetBevelWidth(0);    // ignored
  panel.SetBorderWidth(-1);  // ignored
  const QImage image = Grab(panel);
  QString row;  // light, dark or the ground
  for (int x = 0; x < 60; ++x) {
    const QColor color = image.pixelColor(x, 20);
    row += color == Qt::white ? 'L' : color == Qt::darkGray ? 'D' : '.';
  }
  EXPECT_EQ(row, "LL...DD" + QString(46, '.') + "LL...DD");
  // The text has what the bevels leave: 3 x 7 and one pixel at each side.
  panel.SetCaption("word word word");
  panel.SetWordWrap(true);
  panel.SetBevelWidth(7);
  panel.resize(2 * 18 + panel.fontMetrics().horizontalAdvance("word word"), 40);
  EXPECT_GT(panel.sizeHint().height(), 2 * 18 + 3 * panel.fontMetrics().height() / 2);
}

/// Stands in for the system's programs.
class TOpened : public QObject {
  Q_OBJECT

 public:
  TOpened() {
    for (const char* scheme : kSchemes) QDesktopServices::setUrlHandler(scheme, this, "Open");
  }
  ~TOpened() override {
    for (const char* scheme : kSchemes) QDesktopServices::unsetUrlHandler(scheme);
  }
  QStringList urls;

 public slots:
  void Open(const QUrl& url) { urls << url.toString(); }

 private:
  static constexpr const char* kSchemes[] = {"http", "https", "mailto", "file", "ssh"};
};

TEST(THyperlink, OpensOnClickAndByKeyboard) {
  TOpened opened;
  THyperlink link;
  link.SetURL("https://example.org/a?b=1#c");
  EXPECT_EQ(link.Text(), "https://example.org/a?b=1#c");
  link.SetCaption("Manual");
  EXPECT_EQ(link.Text(), "Manual");
  QSignalSpy clicks(&link, &THyperlink::OnClick);
  QTest::mouseClick(&link, Qt::RightButton);
  QTest::mousePress(&link, Qt::LeftButton);
  QTest::mouseRelease(&link, Qt::LeftButton, {}, QPoint(-5, 5));
  QTest::keyClick(&link, Qt::Key_A);
  EXPECT_EQ(clicks.count(), 0);
  EXPECT_FALSE(link.IsVisited());
  QTest::mouseClick(&link, Qt::LeftButton);
  EXPECT_TRUE(link.IsVisited());
  QTest::keyClick(&link, Qt::Key_Return);
  QTest::keyClick(&link, Qt::Key_Space);
  EXPECT_EQ(clicks.count(), 3);
  EXPECT_EQ(opened.urls, QStringList(3, "https://example.org/a?b=1#c"));
  EXPECT_EQ(link.focusPolicy() & Qt::TabFocus, Qt::TabFocus);
  link.SetURL("https://example.org/other");
  EXPECT_FALSE(link.IsVisited());
  SetDesignMode(&link, true);
  QTest::mouseClick(&link, Qt::LeftButton);
  EXPECT_EQ(opened.urls.size(), 3);
  // A click may destroy it.
  auto* doomed = new THyperlink;
  QObject::connect(doomed, &THyperlink::OnClick, [](QObject* sender) { delete sender; });
  const QPointer<THyperlink> alive(doomed);
  QKeyEvent key(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
  QApplication::sendEvent(doomed, &key);
  EXPECT_FALSE(alive);
  EXPECT_EQ(opened.urls.size(), 3);
}

TEST(THyperlink, FollowsOnlyHarmlessSchemes) {
  TOpened opened;
  THyperlink link;
  const QString file = QUrl::fromLocalFile(WriteTestFile("a.txt", "x")).toString();
  const std::tuple<QString, QStringList, QStringList> cases[] = {
      {"example.org", {"http://example.org"}, {}},
      {"mailto:a@example.org", {"mailto:a@example.org"}, {}},
      {"a.txt.example.org/x", {"http://a.txt.example.org/x"}, {}},
      {file, {file}, {}},
      {"HTTPS://example.org", {"https://example.org"}, {}},
      {"", {}, {"Cannot open : it is no address"}},
      {"javascript:alert(1)",
       {},
       {"Cannot open javascript:alert(1): links to javascript: are not followed"}},
      {"ssh://example.org", {}, {"Cannot open ssh://example.org: links to ssh: are not followed"}},
  };
  for (const auto& [url, urls, messages] : cases) {
    SCOPED_TRACE(url.toStdString());
    link.SetURL(url);
    link.Open();
    EXPECT_EQ(std::exchange(opened.urls, {}), urls);
    EXPECT_EQ(TakeMessages(), messages);
    EXPECT_EQ(link.IsVisited(), !urls.isEmpty());
  }
}

TEST(TCustomTextControl, ItsTextAndItsLinkAreAnnouncedToThoseWhoCannotSeeThem) {
  TOpened opened;
  TTextLabel label;
  label.SetCaption("Speed");
  THyperlink link;
  link.SetURL("http://example.org");
  const std::tuple<QWidget*, QAccessible::Role, QString> cases[] = {
      {&label, QAccessible::StaticText, "Speed"}, {&link, QAccessible::Link, "http://example.org"}};
  for (const auto& [widget, role, name] : cases) {
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(widget);
    ASSERT_TRUE(access);
    EXPECT_EQ(access->role(), role);
    EXPECT_EQ(access->text(QAccessible::Name), name);
    widget->setAccessibleName("Speed of the wind");
    EXPECT_EQ(access->text(QAccessible::Name), "Speed of the wind");
  }
  for (const bool enabled : {false, true}) {
    link.setEnabled(enabled);
    QAccessibleActionInterface* actions =
        QAccessible::queryAccessibleInterface(&link)->actionInterface();
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(opened.urls.size(), enabled ? 1 : 0);
  }
}

const QStringList kLevels = {"80; #ff0000; #ffffff; ALARM {value}", "60;#ffc000",
                             "-5; none; #0000ff"};

TEST(TColorLevels, AreReadSortedAndKeptAsTheyWereWritten) {
  TColorLevels levels;
  QSignalSpy changes(&levels, &TColorLevels::OnChange);
  levels.SetLevels(kLevels);
  EXPECT_EQ(changes.count(), 1);
  EXPECT_EQ(levels.GetLevels(), kLevels);
  EXPECT_LT(levels.Get(0).Limit, levels.Get(1).Limit);
  EXPECT_TRUE(levels.Get(1).FontColor.IsNone());
  EXPECT_EQ(levels.Get(2).Text, "ALARM {value}");
  levels.SetLevels(levels.GetLevels());
  for (const char* wrong : {"", "x; #ff0000", "1; reddish", "nan; #ff0000", "inf", "1; none; ?"}) {
    SCOPED_TRACE(wrong);
    levels.SetLevels({"1; #00ff00", wrong});
    EXPECT_EQ(levels.Count(), 3);
  }
  levels.SetLevels(QStringList(TColorLevels::kMaxCount + 1, "1"));
  EXPECT_EQ(levels.Count(), 3);
  EXPECT_EQ(changes.count(), 1);
  EXPECT_EQ(TColorLevel::FromText("1;;;a; b ; c")->Text, "a; b ; c");
}

TEST(TColorLevels, AreFoundByTheirLimitsAndLeftWithHysteresis) {
  TColorLevels levels;
  levels.SetLevels(kLevels);  // -5, 60, 80
  levels.SetHysteresis(2.0);
  levels.SetHysteresis(-1.0);  // ignored
  const std::tuple<double, int, int> cases[] = {
      // a value, the last level and the next
      {-6, -1, -1}, {-5, -1, 0}, {59.9, 0, 0}, {60, 0, 1},   {1e300, 1, 2},
      {79, 2, 2},   {78, 2, 2},  {77.9, 2, 1}, {57, 2, 0},   {59, 2, 1},
      {59, 1, 1},   {-8, 0, -1}, {59, 99, 1},  {kNan, 2, -1}};
  for (const auto& [value, last, level] : cases) {
    EXPECT_EQ(levels.LevelOf(value, last), level) << value << " from " << last;
  }
  EXPECT_EQ(TColorLevels().LevelOf(1.0, 0), -1);
}

TEST(TColorLabel, FollowsAControlInColourAndText) {
  QWidget form;
  TVariable speed(&form);
  TColorLabel label(&form);
  label.resize(120, 30);
  label.SetColor(TColor::FromRgb(0, 128, 0));
  label.SetUnits("m/s");
  label.GetLevels()->SetLevels(kLevels);
  label.GetInput()->SetDataControl(&speed);
  QSignalSpy changes(&label, &TColorLabel::OnLevelChanged);
  const std::tuple<double, const char*, QRgb, int> cases[] = {
      {-10.0, "-10 m/s", qRgb(0, 128, 0), 1},
      {12.5, "12.5 m/s", qRgb(0, 128, 0), 2},  // a level that paints no background
      {60.0, "60 m/s", qRgb(255, 192, 0), 3},
      {61.0, "61 m/s", qRgb(255, 192, 0), 3},
      {80.0, "ALARM 80 m/s", qRgb(255, 0, 0), 4}};
  for (const auto& [value, text, back, told] : cases) {
    speed.SetValue(value);
    EXPECT_EQ(label.Text(), text);
    EXPECT_EQ(Grab(label).pixel(1, 1), back);
    EXPECT_EQ(changes.count(), told);
  }
  label.GetLevels()->SetLevels({});
  EXPECT_EQ(label.Level(), -1);
  EXPECT_EQ(label.Text(), "80 m/s");
}

}  // namespace

#include "Textcontrols.moc"
