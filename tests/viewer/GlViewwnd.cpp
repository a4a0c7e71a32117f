// The main window on a real display: what the mouse, the clipboard and the files get to see.

#include "tests/support/Testing.h"
#include "viewer/Animatorabout.h"
#include "viewer/Glpanel.h"
#include "viewer/Imagebutton.h"
#include "viewer/Viewwnd.h"

namespace {

const QByteArray kModel =
    "[Nodes]\n1 -1 -1 0\n2 1 -1 0\n3 1 1 0\n4 -1 1 0\n[Elements]\n1\n1 3 255 4 1 2 3 4\n";
const QByteArray kData = "[F = 5]\n1 1 0 0\n2 1 0 0\n3 1 0 0\n4 1 0 0\n";

class GlViewwnd : public testing::Test {
 protected:
  GlViewwnd()
      : window(
            WriteTestFile("velmora.ini", "[Windows]\nLeft=20\nTop=20\nWidth=900\nHeight=700\n")) {
    window.OpenModel(WriteTestFile("a.mod", kModel));
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();
    panel = window.findChild<TGLPanel*>("P");
    if (!panel->HasContext()) ADD_FAILURE() << "no OpenGL";
    Click("ViewZ");
  }
  ~GlViewwnd() override { EXPECT_EQ(TakeMessages(), QStringList()); }

  void Click(const char* name) { Child<TImageButton>(window, name).click(); }
  void Trigger(const char* name) { Child<QAction>(window, name).trigger(); }

  void Drag(Qt::MouseButton button, QPoint by) {
    const QPoint from = panel->rect().center();
    QTest::mousePress(panel, button, {}, from);
    DragMouse(*panel, from + by, button);
    QTest::mouseRelease(panel, button, {}, from + by);
  }
  /// The face in the picture's middle row.
  QRect Face() {
    const QImage picture = panel->Picture();
    return InkBox(picture.copy(0, picture.height() / 2, picture.width(), 1), Qt::black);
  }

  TViewWnd window;
  TGLPanel* panel = nullptr;
};

}  // namespace

TEST_F(GlViewwnd, ShowsTheModelInProportionAndTheMouseTurnsMovesAndZooms) {
  const QImage picture = panel->Picture();
  EXPECT_EQ(picture.size(), panel->PixelSize());
  // The square is as wide as high: its side is 2 of the 2 x sqrt(2) units of the smaller side.
  const double side = qMin(picture.width(), picture.height()) / 1.4142;
  EXPECT_NEAR(Face().width(), side, 3.0);
  const QRect face = Face();
  const int top = InkBox(picture, Qt::black).top();
  Drag(Qt::MiddleButton, {40, 0});
  EXPECT_GT(Face().left(), face.left());
  EXPECT_EQ(InkBox(panel->Picture(), Qt::black).top(), top);
  EXPECT_NEAR(Face().width(), face.width(), 1);
  Drag(Qt::MiddleButton, {0, 40});
  EXPECT_GT(InkBox(panel->Picture(), Qt::black).top(), top);
  Drag(Qt::RightButton, {0, 100});  // down: the view volume grows
  EXPECT_LT(Face().width(), face.width());
  const int narrow = Face().width();
  Drag(Qt::LeftButton, {120, 0});  // 60 degrees about the upright axis
  EXPECT_NEAR(Face().width(), narrow * 0.5, 4.0);
  Click("ViewZ");
  Click("View1_1");
  EXPECT_NEAR(Face().width(), side, 3.0);
}

TEST_F(GlViewwnd, EveryFrameShowsTheDeformedShapeAndATextInTheFontColor) {
  window.OpenData(WriteTestFile("a.dat", kData));
  window.Dialogs.Color = [](auto...) { return QColor(0, 0, 255); };
  Trigger("FontMenu");
  const auto isBlue = [](const QColor& color) {
    return color.blue() > color.red() + 100 && color.red() == color.green();
  };
  EXPECT_GT(CountIf(panel->Picture(), isBlue, QRect(0, 0, 80, 30)), 20);
  std::vector<int> lefts;
  for (int frame = 0; frame <= 10; ++frame) {
    lefts.push_back(Face().left());
    Click("AnimForward");
  }
  EXPECT_GT(lefts[0], lefts[1]);
  EXPECT_GT(lefts[1], lefts[5]);
  EXPECT_EQ(lefts[10], lefts[0]);
  Trigger("UnloadDataMenu");
  EXPECT_GT(Face().width(), 0);  // the undeformed model is back
  Trigger("ShowModelMenu");
  EXPECT_EQ(Face().width(), 0);
}

TEST_F(GlViewwnd, SavesThePictureAsABitmapAndCopiesIt) {
  const std::tuple<const char*, const char*, QByteArray> cases[] = {
      {"one", "one.bmp", "BM"}, {"two.png", "two.png", "\x89PNG"}, {"v2.1", "v2.1", "BM"}};
  for (const auto& [chosen, file, magic] : cases) {
    QString start;
    window.Dialogs.PictureFile = [&, name = chosen](QWidget*, const QString& folder) {
      start = folder;
      return TestFolder() + '/' + name;
    };
    Trigger("SaveBitmapMenu");
    EXPECT_TRUE(Contents(TestFolder() + '/' + file).startsWith(magic)) << file;
    EXPECT_EQ(start,
              chosen == std::string("one") ? QCoreApplication::applicationDirPath() : TestFolder());
  }
  EXPECT_EQ(QImage(TestFolder() + "/one.bmp"), panel->Picture());
  Trigger("CopyMenu");
  EXPECT_EQ(QGuiApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
            panel->Picture());
  EXPECT_EQ(window.CurrentSettings().SavePath, TestFolder());

  window.Dialogs.PictureFile = [](auto...) { return TestFolder() + "/none/bridge.bmp"; };
  Trigger("SaveBitmapMenu");
  EXPECT_EQ(TakeMessages(), QStringList("Cannot write bridge.bmp: No such file or directory."));
}

TEST_F(GlViewwnd, InANarrowWindowTheButtonBarOpensOverTheView) {
  Trigger("UnloadModelMenu");  // all black
  window.resize(400, 500);
  auto* bar = window.findChild<QToolBar*>("ButtonBar");
  auto* more = bar->findChild<QToolButton*>("qt_toolbar_ext_button");
  ASSERT_TRUE(QTest::qWaitFor([&] { return more->isVisible(); }));
  more->click();
  const auto* slider = window.findChild<QSlider*>("ScaleBar");
  // The slider's groove as the screen shows it, where the black picture was.
  EXPECT_TRUE(QTest::qWaitFor([&] {
    const QPoint place = slider->mapToGlobal(slider->rect().center());
    const QPixmap shown = window.screen()->grabWindow(0, place.x(), place.y(), 1, 1);
    return panel->rect().contains(panel->mapFromGlobal(place)) &&
           shown.toImage().pixelColor(0, 0).lightness() > 60;
  }));
}

TEST_F(GlViewwnd, TakesFilesDroppedOnTheView) {
  const QPoint place = panel->mapTo(&window, panel->rect().center());
  QMimeData mime;
  mime.setUrls({QUrl::fromLocalFile(WriteTestFile("dropped.dat", kData))});
  QDragEnterEvent enter(place, Qt::CopyAction, &mime, Qt::LeftButton, {});
  QDragMoveEvent move(place, Qt::CopyAction, &mime, Qt::LeftButton, {});
  QDropEvent drop(place, Qt::CopyAction, &mime, Qt::LeftButton, {});
  // By way of the system's window, as from another program.
  for (QEvent* event : std::initializer_list<QEvent*>{&enter, &move, &drop}) {
    QCoreApplication::sendEvent(window.windowHandle(), event);
    EXPECT_TRUE(event->isAccepted()) << event->type();
  }
  QCoreApplication::processEvents();
  EXPECT_EQ(window.windowTitle(),
            QString("Velmora Animator %1 : a.mod + dropped.dat").arg(kProgramVersion));
}
