#include "viewer/Imagebutton.h"

#include "tests/support/Testing.h"
#include "viewer/window/Buttonfaces.h"

namespace {

constexpr QSize kSize(20, 10);

/// Four pictures, each filled with a colour of its own.
void FillWithColor(QPainter& painter, int index) {
  constexpr QRgb kColors[] = {0xff102030, 0xff405060, 0xff708090, 0xffa0b0c0};
  painter.fillRect(QRect(QPoint(), kSize), QColor::fromRgb(kColors[index]));
}

QRgb Middle(const QPixmap& picture) { return picture.toImage().pixel(picture.rect().center()); }

class ImageButton : public testing::Test {
 protected:
  ImageButton() {
    images.SetImages(4, FillWithColor);
    button.SetImages(&images);
    button.SetFaces(0);
  }
  TImageList images{kSize};
  TImageButton button;
};

/// The mouse comes and goes as the window system would report it.
void MoveMouse(QWidget& widget, bool inside) {
  QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&widget, inside ? &enter : &leave);
}

}  // namespace

TEST_F(ImageButton, ChoosesItsFaceByState) {
  enum { up, highlight, down, disabled };
  const std::tuple<bool, bool, bool, bool, int> cases[] = {
      {true, false, false, false, up},        {true, false, false, true, highlight},
      {true, true, false, false, down},       {true, true, false, true, down},
      {true, false, true, false, down},       {true, false, true, true, down},
      {false, false, false, false, disabled}, {false, true, false, false, disabled},
      {false, false, false, true, disabled},  {false, true, false, true, disabled}};
  button.SetStateButton(true);
  for (const auto& [enabled, isDown, pressed, inside, face] : cases) {
    SCOPED_TRACE(testing::Message() << enabled << isDown << pressed << inside);
    button.setEnabled(enabled);
    button.SetDown(isDown);
    MoveMouse(button, inside);
    if (pressed) QTest::mousePress(&button, Qt::LeftButton);
    EXPECT_EQ(button.FaceIndex(), face);
    EXPECT_EQ(Middle(button.Picture()), Middle(images.Image(face, 1.0)));
    if (pressed) QTest::mouseRelease(&button, Qt::LeftButton);
  }
}

TEST_F(ImageButton, FollowsItsListAndHasAnEmptyFaceOutsideOfIt) {
  images.SetImages(
      1, [](QPainter& painter, int) { painter.fillRect(QRect(QPoint(), kSize), QColor(1, 2, 3)); });
  EXPECT_EQ(Middle(button.Picture()), qRgb(1, 2, 3));
  for (const int index : {-1, 1, 1 << 30}) {
    button.SetUpIndex(index);
    EXPECT_TRUE(button.Picture().isNull()) << index;
    button.grab();
  }
  auto list = std::make_unique<TImageList>(kSize);
  list->SetImages(4, FillWithColor);
  button.SetUpIndex(1);
  button.SetImages(list.get());
  EXPECT_FALSE(button.Picture().isNull());
  list.reset();
  EXPECT_EQ(button.GetImages(), nullptr);
  EXPECT_TRUE(button.Picture().isNull());
}

TEST_F(ImageButton, AClickChangesDownBeforeItsHandlerRunsAndOnlyTheLeftButtonPresses) {
  std::vector<bool> seen;
  QObject::connect(&button, &TImageButton::OnClick, [&](QObject* sender) {
    seen.push_back(static_cast<TImageButton*>(sender)->GetDown());
  });
  QTest::mouseClick(&button, Qt::LeftButton);
  button.SetStateButton(true);
  QTest::mouseClick(&button, Qt::LeftButton);
  QTest::mouseClick(&button, Qt::LeftButton);
  button.click();
  EXPECT_EQ(seen, (std::vector<bool>{false, true, false, true}));
  button.SetStateButton(false);
  EXPECT_FALSE(button.GetDown());

  QTest::mousePress(&button, Qt::RightButton);
  EXPECT_EQ(button.FaceIndex(), 0);
  QTest::mousePress(&button, Qt::LeftButton);
  QTest::mouseRelease(&button, Qt::RightButton);
  EXPECT_EQ(button.FaceIndex(), 2);
  button.setEnabled(false);  // under the mouse
  button.setEnabled(true);
  EXPECT_EQ(button.FaceIndex(), 0);
}

TEST(Buttonfaces, AreAllDifferentAndTakeTheColorsOfThePalette) {
  QObject owner;
  const TImageList* faces = MakeButtonFaces(&owner);
  ASSERT_EQ(faces->Count(), 44);
  EXPECT_EQ(faces->Size(), QSize(56, 48));
  EXPECT_EQ(faces->Image(0, 2.0).size(), QSize(112, 96)) << "for the pixel density of the screen";
  EXPECT_EQ(faces->Image(0, 2.0).deviceIndependentSize(), QSizeF(56, 48));
  std::vector<QImage> seen;
  for (int i = 0; i < faces->Count(); ++i) {
    const QImage face = faces->Image(i, 1.5).toImage();
    ASSERT_EQ(face.size(), QSize(84, 72));
    for (std::size_t j = 0; j < seen.size(); ++j) EXPECT_NE(face, seen[j]) << i << " " << j;
    seen.push_back(face);
    const QImage middle = face.copy(18, 15, 48, 42);
    QImage blank = middle;
    blank.fill(middle.pixelColor(0, 0));
    EXPECT_NE(middle, blank) << i;
  }
  const QPalette before = QGuiApplication::palette();
  QGuiApplication::setPalette(QPalette(Qt::white, Qt::black, {}, {}, {}, Qt::white, Qt::black));
  faces = MakeButtonFaces(&owner);
  // Of the white text 4 % in the tile and 85 % in a bar, of which a disabled one keeps 30 %.
  for (const auto& [state, tile, bar] : {std::tuple(0, 10, 217), {3, 0, 65}}) {
    const QImage face = faces->Image(bfAnimForward + state, 1.0).toImage();
    EXPECT_EQ(face.pixel(8, 8), qRgb(tile, tile, tile));
    EXPECT_EQ(face.pixel(37, 24), qRgb(bar, bar, bar));
  }
  QGuiApplication::setPalette(before);
}
