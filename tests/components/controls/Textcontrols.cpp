#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QDesktopServices>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <limits>

#include "components/channels/Variable.h"
#include "components/controls/Colorlabel.h"
#include "components/controls/Designmode.h"
#include "components/controls/Hyperlink.h"
#include "components/controls/Korvaltools.h"
#include "components/controls/Textlabel.h"
#include "components/controls/Textpanel.h"
#include "tests/support/Testsupport.h"

namespace {

using testing::ElementsAre;

QImage Grab(QWidget& widget) {
  QImage image(widget.size(), QImage::Format_RGB32);
  image.fill(Qt::white);
  widget.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
  return image;
}

/// The part of the picture that is not white.
QRect Inked(const QImage& image) {
  QRect box;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) != qRgb(255, 255, 255)) box |= QRect(x, y, 1, 1);
    }
  }
  return box;
}

TEST(TTextLabel, PutsItsTextWhereAlignmentAndLayoutSay) {
  TTextLabel label;
  label.resize(200, 100);
  label.SetCaption("Speed");
  const struct {
    TTextLabel::TAlignment alignment;
    TTextLabel::TTextLayout layout;
    double angle;
    double x, y;  // of the middle of the text, in parts of the label
  } cases[] = {{TTextLabel::taLeftJustify, TTextLabel::tlTop, 0.0, 0.1, 0.1},
               {TTextLabel::taRightJustify, TTextLabel::tlBottom, 0.0, 0.9, 0.9},
               {TTextLabel::taCenter, TTextLabel::tlCenter, 0.0, 0.5, 0.5},
               // Turned, the text begins at the bottom, and its lines begin at the left.
               {TTextLabel::taLeftJustify, TTextLabel::tlTop, 90.0, 0.05, 0.8},
               {TTextLabel::taLeftJustify, TTextLabel::tlTop, -90.0, 0.95, 0.2}};
  for (const auto& c : cases) {
    label.SetAlignment(c.alignment);
    label.SetLayout(c.layout);
    label.SetAngle(c.angle);
    const QRect ink = Inked(Grab(label));
    EXPECT_EQ(ink.width() > ink.height(), c.angle == 0.0);
    EXPECT_NEAR(ink.center().x(), c.x * 200, 20);
    EXPECT_NEAR(ink.center().y(), c.y * 100, 12);
  }
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
  EXPECT_LE(Inked(Grab(label)).height(), line);
  label.SetWordWrap(true);
  EXPECT_GT(Inked(Grab(label)).height(), 2 * line);
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
  const struct {
    QColor ground, ink;
  } cases[] = {{QColor(255, 255, 0), Qt::black},
               {QColor(0, 0, 128), Qt::white},
               {QColor(255, 176, 0), Qt::black},
               {QColor(90, 90, 90), Qt::white}};
  for (const auto& c : cases) {
    label.SetColor(TColor::FromQColor(c.ground));
    EXPECT_EQ(Grab(label).pixelColor(8, 15), c.ink);
  }
  label.SetFontColor(TColor::FromRgb(0, 255, 0));
  EXPECT_EQ(Grab(label).pixelColor(8, 15), QColor(0, 255, 0));
  label.setEnabled(false);
  EXPECT_EQ(Grab(label).pixelColor(8, 15), QColor(45, 172, 45));  // half of the ground
  label.SetFontColor(TColor::None());
  label.SetColor(TColor::None());
  label.setEnabled(true);
  EXPECT_EQ(Grab(label).pixelColor(8, 15), QColor(200, 200, 100));
}

TEST(TTextPanel, HasTwoBevelsAboutItsText) {
  TTextPanel panel;
  panel.resize(60, 40);
  panel.SetColor(TColor::FromRgb(10, 20, 30));
  panel.SetBevelInner(TBevel::bvLowered);
  panel.SetBevelWidth(2);
  panel.SetBorderWidth(3);
  panel.SetBevelWidth(0);    // ignored
  panel.SetBorderWidth(-1);  // ignored
  const QImage image = Grab(panel);
  const QRgb light = qRgb(255, 255, 255), dark = qRgb(128, 128, 128), ground = qRgb(10, 20, 30);
  const QRgb column[] = {light, light, ground, ground, ground, dark, dark, ground};
  for (int x = 0; x < 8; ++x) {
    EXPECT_EQ(image.pixel(x, 20), column[x]) << x;
    if (x < 7) {
      EXPECT_EQ(image.pixel(59 - x, 20), column[x] == ground  ? ground
                                         : column[x] == light ? dark
                                                              : light);
    }
  }
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
}

TEST(THyperlink, FollowsOnlyHarmlessSchemes) {
  TOpened opened;
  THyperlink link;
  const QString file = QUrl::fromLocalFile(WriteTestFile("a.txt", "x")).toString();
  const struct {
    QString url, opened, message;
  } cases[] = {
      {"example.org", "http://example.org", ""},
      {"mailto:a@example.org", "mailto:a@example.org", ""},
      {"a.txt.example.org/x", "http://a.txt.example.org/x", ""},
      {file, file, ""},
      {"HTTPS://example.org", "https://example.org", ""},
      {"", "", "Cannot open : it is no address"},
      {"javascript:alert(1)", "",
       "Cannot open javascript:alert(1): links to javascript: are not followed"},
      {"ssh://example.org", "", "Cannot open ssh://example.org: links to ssh: are not followed"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.url.toStdString());
    link.SetURL(c.url);
    link.Open();
    EXPECT_EQ(opened.urls, c.opened.isEmpty() ? QStringList() : QStringList(c.opened));
    EXPECT_EQ(TakeMessages(), c.message.isEmpty() ? QStringList() : QStringList(c.message));
    EXPECT_EQ(link.IsVisited(), !c.opened.isEmpty());
    opened.urls.clear();
  }
}

TEST(THyperlink, MayBeDestroyedByItsClick) {
  TOpened opened;
  auto* link = new THyperlink;
  link->SetURL("http://example.org");
  QObject::connect(link, &THyperlink::OnClick, [](QObject* sender) { delete sender; });
  const QPointer<THyperlink> alive(link);
  QKeyEvent key(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
  QApplication::sendEvent(link, &key);
  EXPECT_FALSE(alive);
  EXPECT_THAT(opened.urls, ElementsAre());
}

TEST(TCustomTextControl, ItsTextAndItsLinkAreAnnouncedToThoseWhoCannotSeeThem) {
  TOpened opened;
  TTextLabel label;
  label.SetCaption("Speed");
  QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&label);
  ASSERT_TRUE(access);
  EXPECT_EQ(access->text(QAccessible::Name), "Speed");
  EXPECT_EQ(access->role(), QAccessible::StaticText);
  label.setAccessibleName("Speed of the wind");
  EXPECT_EQ(access->text(QAccessible::Name), "Speed of the wind");
  THyperlink link;
  link.SetURL("http://example.org");
  access = QAccessible::queryAccessibleInterface(&link);
  ASSERT_TRUE(access);
  EXPECT_EQ(access->role(), QAccessible::Link);
  EXPECT_EQ(access->text(QAccessible::Name), "http://example.org");
  access->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_THAT(opened.urls, ElementsAre("http://example.org"));
  link.setEnabled(false);
  access->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(opened.urls.size(), 1);
}

const QStringList kLevels = {"80; #ff0000; #ffffff; ALARM {value}", "60;#ffc000",
                             "-5; none; #0000ff"};

TEST(TColorLevels, AreReadSortedAndKeptAsTheyWereWritten) {
  TColorLevels levels;
  QSignalSpy changes(&levels, &TColorLevels::OnChange);
  levels.SetLevels(kLevels);
  EXPECT_EQ(changes.count(), 1);
  EXPECT_EQ(levels.GetLevels(), kLevels);
  EXPECT_EQ(levels.Get(0).Limit, -5.0);
  EXPECT_EQ(levels.Get(1).Limit, 60.0);
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
  const struct {
    double value;
    int last, level;
  } cases[] = {{-6, -1, -1},  {-5, -1, 0},
               {59.9, 0, 0},  {60, 0, 1},
               {1e300, 1, 2}, {79, 2, 2},
               {78, 2, 2},    {77.9, 2, 1},
               {57, 2, 0},    {59, 2, 1},
               {59, 1, 1},    {-8, 0, -1},
               {59, 99, 1},   {std::numeric_limits<double>::quiet_NaN(), 2, -1}};
  for (const auto& c : cases) {
    EXPECT_EQ(levels.LevelOf(c.value, c.last), c.level) << c.value << " from " << c.last;
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
  const struct {
    double value;
    const char* text;
    QRgb back;
    int changes;
  } cases[] = {{-10.0, "-10 m/s", qRgb(0, 128, 0), 1},
               {12.5, "12.5 m/s", qRgb(0, 128, 0), 2},  // a level that paints no background
               {60.0, "60 m/s", qRgb(255, 192, 0), 3},
               {61.0, "61 m/s", qRgb(255, 192, 0), 3},
               {80.0, "ALARM 80 m/s", qRgb(255, 0, 0), 4}};
  for (const auto& c : cases) {
    speed.SetValue(c.value);
    EXPECT_EQ(label.Text(), c.text);
    EXPECT_EQ(Grab(label).pixel(1, 1), c.back);
    EXPECT_EQ(changes.count(), c.changes);
  }
  label.GetLevels()->SetLevels({});
  EXPECT_EQ(label.Level(), -1);
  EXPECT_EQ(label.Text(), "80 m/s");
}

}  // namespace

#include "Textcontrols.moc"
