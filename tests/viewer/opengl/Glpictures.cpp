#include <qopengl.h>

#include "tests/support/Testing.h"
#include "tests/viewer/opengl/Glreference.h"
#include "viewer/opengl/Offscreengl.h"
#include "viewer/opengl/Picture.h"

namespace {

using TMethod = TSceneRenderer::TMethod;

constexpr QSize kSize(640, 480);

/// One of everything that can be drawn, in all directions; the nodes move.
void MakeMixedModel(TModel& model, TDataNodeList& moving) {
  const TVertex places[] = {{-1.5, -1.0, 0.0}, {-1.5, 0.5, 0.0},  {-0.5, 0.5, 0.0},
                            {-0.5, -1.0, 0.0}, {-1.5, -1.0, 1.0}, {-1.5, 0.5, -1.0},
                            {0.3, -1.1, 0.2},  {1.5, -0.5, -0.4}, {0.5, 0.9, 0.3},
                            {1.6, 0.9, 0.3},   {0.5, 0.2, -0.5},  {1.2, 0.2, 0.8}};
  std::int32_t id = 0;
  for (const TVertex& place : places) model.Nodes.Emplace(++id, place);
  for (const TNode* node : model.Nodes) {
    TNode* copy = moving.Emplace(node->ID, 0.2, -0.1, 0.3);
    copy->Angles = {0.1 * node->ID, 0.5 * node->ID, 1.1 * node->ID};
    copy->Link = node;
  }
  constexpr TColor inherited = TColor::Inherited();
  const std::tuple<std::uint8_t, std::vector<std::int32_t>, double, TColor> elements[] = {
      {TElement::kFace, {0, 3, 2, 1}, 0.0, TColor::FromRgb(60, 120, 255)},
      {TElement::kFace, {6, 7, 9}, 0.0, TColor::FromRgb(255, 120, 60)},
      {TElement::kFace, {6, 10, 11}, 0.0, TColor::FromRgb(120, 60, 255)},
      {TElement::kBar, {0, 4}, 0.0, inherited},  // straight up
      {TElement::kBar, {1, 5}, 0.0, inherited},  // straight down
      {TElement::kBar, {2, 3}, 0.0, inherited},  // no way along x, down y
      {TElement::kBar, {7, 6}, 0.0, inherited},  // back along x
      {TElement::kBar, {8, 10}, 0.0, inherited},
      {TElement::kBar, {8, 9}, 0.12, TColor::FromRgb(200, 200, 0)},
      {TElement::kRoll, {10, 11}, 0.3, inherited},
      {9, {7}, 0.25, TColor::FromRgb(255, 0, 255)},
      {4, {5, 6}, 0.0, inherited}};
  for (const auto& [type, nodes, radius, color] : elements) {
    TElement* element = model.Elements.Emplace(type, static_cast<std::int32_t>(nodes.size()));
    std::ranges::copy(nodes, element->Nodes().begin());
    element->Radius = radius;
    element->Color = color;
    element->RollParam1 = 0.1;
    element->RollParam2 = 0.2;
  }

  moving.Elements = &model.Elements;
  moving.NodeColor = TColor::Green();
  moving.ElementColor = TColor::White();
  moving.EdgeColor = TColor::FromRgb(255, 255, 0);
  moving.NodeRadius = 0.09;
  moving.ElementRadius = 0.05;
  moving.DrawScale = 0.7;
  moving.Phase = 0.4;
  moving.SetVisible(true);
}

/// A picture in memory and the view it is seen in.
class GlPictures : public testing::Test {
 protected:
  void SetUp() override {
    if (!gl_.Create(kSize)) GTEST_SKIP() << gl_.Error().toStdString();
    view_.ModelSize = 2.0;
    view_.ScaleViewPort(kSize.width(), kSize.height());
  }

  QImage Draw(TMethod method) {
    return gl_.Render([this, method] {
      TSceneRenderer renderer;
      renderer.Init(gl_.Resolver(), method);
      EXPECT_EQ(renderer.Method(), method);
      glEnable(GL_DEPTH_TEST);
      BeginPicture(view_, kSize, Qt::black);
      TScene scene;
      scene.Begin(view_.ToViewer());
      scene.AddList(list_);
      renderer.Draw(scene, view_.PixelsPerUnit(kSize.width(), kSize.height()));
      EndPicture();
      EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    });
  }
  QImage DrawByPlainCalls() {
    return gl_.Render([this] {
      glMatrixMode(GL_MODELVIEW);
      glLoadIdentity();
      SetReferenceLights();
      glEnable(GL_DEPTH_TEST);
      BeginPicture(view_, kSize, Qt::black);
      DrawReference(list_);
      EndPicture();
    });
  }

  /// Two frames with a text over them.
  QImage PaintText(const QString& text, const QColor& font, const QColor& back, int ratio = 1) {
    return gl_.Render([&] {
      TPicture picture;
      picture.Init(gl_.Resolver());
      picture.Overlay.SetLines({text});
      picture.Overlay.SetColor(font);
      for (int frame = 0; frame < 2; ++frame) {
        BeginPicture(view_, kSize, back);
        picture.Paint(view_, kSize, ratio, model_, data_, TScaleType::Absolute, false);
        EndPicture();
      }
      EXPECT_TRUE(glIsEnabled(GL_LIGHTING) && glIsEnabled(GL_CULL_FACE));
      EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    });
  }

  /// Both methods draw what plain calls draw.
  void ExpectSame(const std::string& name) {
    const QImage expected = DrawByPlainCalls();
    ASSERT_GT(CountOther(expected, Qt::black), 500);
    ExpectSamePicture(Draw(TMethod::Batches), expected, name + "-batches");
    ExpectSamePicture(Draw(TMethod::Shaders), expected, name + "-shaders");
  }

  TOffscreenGl gl_;
  TViewTransform view_;
  TModel model_;
  TMeasuredData data_;
  TDataNodeList list_{&model_, false};
};

TEST_F(GlPictures, BothMethodsDrawWhatPlainCallsDraw) {
  MakeMixedModel(model_, list_);
  const std::tuple<const char*, TVertex, TNodeShape, double> cases[] = {
      {"oblique", {30, -45, 0}, TNodeShape::Sphere, 1.0},
      {"front", {0, 0, 0}, TNodeShape::Sphere, 0.9},
      {"cubes", {-60, 130, 0}, TNodeShape::Cube, 1.0},
      {"mirrored", {20, 200, 0}, TNodeShape::Sphere, -1.0},
      {"close", {30, -45, 0}, TNodeShape::Sphere, 0.2}};
  for (const auto& [name, rotation, shape, zoom] : cases) {
    view_.Rotation = rotation;
    view_.Zoom = zoom;
    list_.NodeShape = shape;
    ExpectSame(name);
  }

  // The light stands 11 units from the origin, so a model of some size has it in its midst.
  for (TNode* node : model_.Nodes) node->Position = 10.0 * node->Position;
  for (TElement* element : model_.Elements) {
    element->Radius *= 10.0;
    element->RollParam1 *= 10.0;
  }
  list_.NodesChanged();
  for (double* size :
       {&list_.DrawScale, &list_.NodeRadius, &list_.ElementRadius, &view_.ModelSize}) {
    *size *= 10.0;
  }
  view_.Zoom = 1.0;
  ExpectSame("large");
}

TEST_F(GlPictures, SphereCutByTheViewVolumeIsCutAlike) {
  // Nodes on the near, far, left and right sides of the view volume.
  for (const TVertex& p : {TVertex{0, 0, 1.95}, {0.5, 0, -2.05}, {-2.65, 0, 0}, {2.7, 1.9, 0}}) {
    list_.Emplace(1, p);
  }
  list_.NodeRadius = 0.2;
  list_.NodeColor = TColor::White();
  list_.ShowNodes = true;
  view_.Rotation = {};
  ExpectSame("cut");
}

TEST_F(GlPictures, TextStandsInTheTopLeftCornerAndACollapsedViewShowsTheBackgroundAlone) {
  const QImage text = PaintText("F = 12.5", Qt::red, Qt::black);
  EXPECT_GT(CountOther(text, Qt::black), 30);
  EXPECT_TRUE(QRect(0, 0, 200, 40).contains(InkBox(text, Qt::black)));
  MakeMixedModel(model_, list_);
  data_.Shown.Refer(&list_);
  model_.Loaded = true;
  for (const double zoom : {0.0, kNan}) {
    view_.Zoom = zoom;
    EXPECT_EQ(CountOther(PaintText({}, {}, Qt::darkCyan), Qt::darkCyan), 0);
  }
}

double Luminance(const QColor& color) {
  const auto part = [](double c) {
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
}

/// How often a pixel of this colour and one next to it but one make a contrast of at least 3 to 1.
int CountSharpEdges(const QImage& image, const QColor& color) {
  int edges = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 2; x < image.width(); ++x) {
      const QColor a = image.pixelColor(x - 2, y), b = image.pixelColor(x, y);
      const auto [dark, light] = std::minmax({Luminance(a), Luminance(b)});
      edges += (a == color || b == color) && (light + 0.05) / (dark + 0.05) >= 3.0;
    }
  }
  return edges;
}

TEST_F(GlPictures, NamesAreLegibleOnEveryBackground) {
  const QColor colors[] = {Qt::white, Qt::black, QColor(128, 128, 128),
                           Qt::red,   Qt::blue,  Qt::yellow};
  for (const int ratio : {1, 2}) {
    for (const QColor& back : colors) {
      for (const QColor& font : colors) {
        const QImage image = PaintText("F = 12.5", font, back, ratio);
        const QImage corner = image.copy(0, 0, 100 * ratio, 30 * ratio);
        EXPECT_GT(CountSharpEdges(corner, font), 20 * ratio)
            << ratio << ": " << font.name().toStdString() << " on " << back.name().toStdString();
      }
    }
  }
}

TEST(GlOffscreen, RefusesSizesThatNoPictureHas) {
  TOffscreenGl gl;
  EXPECT_FALSE(gl.Create({0, 100}));
  EXPECT_FALSE(gl.Create({100, 1000000}));
  EXPECT_EQ(gl.Error(), "a picture of 100 x 1000000 pixels cannot be made");
}

}  // namespace
