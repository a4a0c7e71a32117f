#include "viewer/scene/Scene.h"

#include "tests/support/Testing.h"
#include "viewer/opengl/Stamps.h"
#include "viewer/scene/Viewtransform.h"

namespace {

const double kHalf = std::sqrt(0.5);

testing::AssertionResult Near(const TPoint& actual, const TVertex& expected) {
  const double off = Length({actual.x - expected.x, actual.y - expected.y, actual.z - expected.z});
  if (off < 1e-6) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << actual.x << ", " << actual.y << ", " << actual.z << " is " << off << " away from "
         << expected.x << ", " << expected.y << ", " << expected.z;
}

/// A model whose own list shows its elements, and a scene of that list.
struct TSceneTest : testing::Test {
  TSceneTest() {
    model.Nodes.ShowElements = true;
    model.Nodes.ElementRadius = 0.5;
    model.Nodes.NodeRadius = 1.0;
    model.Nodes.ElementColor = TColor::White();
  }

  TElement* Join(std::uint8_t type, const std::vector<TVertex>& places) {
    TElement* element = model.Elements.Emplace(type, static_cast<std::int32_t>(places.size()));
    std::size_t i = 0;
    for (const TVertex& place : places) {
      element->Nodes()[i++] = static_cast<std::int32_t>(model.Nodes.Count());
      model.Nodes.Emplace(1, place);
    }
    return element;
  }
  void Build(const TVertex& toViewer = {0.0, 0.0, 1.0}) {
    scene.Begin(toViewer);
    scene.AddList(model.Nodes);
  }
  std::size_t Size() const {
    return scene.Spheres().size() + scene.Cubes().size() + scene.Prisms().size() +
           scene.Cylinders().vertices.size() + scene.Faces().vertices.size() +
           scene.Outlines().size();
  }

  TModel model;
  TScene scene;
};

TEST(TCylinderFrame, TiltsTheAxesOfACylinderAlongZOntoItsDirection) {
  const double s = kHalf, e = 0.25 * std::sqrt(2.0);  // 0.5 sin 45 degrees
  const std::tuple<TVertex, TVertex, TVertex> cases[] = {
      {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
      {{0, 0, -1}, {-1, 0, 0}, {0, 1, 0}},  // 180 degrees about the y axis
      {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}},
      {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
      {{0, 1, 0}, {1, 0, 0}, {0, 0, -1}},
      {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
      // 45 degrees about (-s, s, 0).
      {{0.5, 0.5, s}, {0.5 + e, e - 0.5, -0.5}, {e - 0.5, 0.5 + e, -0.5}},
      // 135 degrees about (s, s, 0).
      {{0.5, -0.5, -s}, {0.5 - e, 0.5 + e, -0.5}, {0.5 + e, 0.5 - e, 0.5}}};
  for (const auto& [along, right, up] : cases) {
    SCOPED_TRACE(testing::Message() << along.x << ' ' << along.y << ' ' << along.z);
    const TCylinderFrame frame({}, {float(3 * along.x), float(3 * along.y), float(3 * along.z)});
    EXPECT_NEAR(frame.length, 3.0, 1e-6);
    EXPECT_TRUE(Near(frame.along, along));
    EXPECT_TRUE(Near(frame.right, right));
    EXPECT_TRUE(Near(frame.up, up));
  }
  EXPECT_EQ(TCylinderFrame({1, 2, 3}, {1, 2, 3}).length, 0.0);
}

TEST_F(TSceneTest, BarWithTheListsRadiusShowsThreeEdgesOfItsPrism) {
  model.Nodes.ShowNodes = true;  // hides the caps
  Join(TElement::kBar, {{0, 0, 0}, {0, 0, 4}});
  Build({0.8, 0.6, 0.0});
  ASSERT_EQ(scene.Prisms().size(), kPrismVertices);
  ASSERT_TRUE(scene.Cylinders().indices.empty());
  // Edges at y 0.5, x 0.5 and y -0.5; the middle one is the nearest.
  const TVertex corners[] = {{0, 0.5, 0}, {0, 0.5, 4},  {0.5, 0, 0},
                             {0.5, 0, 4}, {0, -0.5, 0}, {0, -0.5, 4}};
  for (std::size_t i = 0; i < kPrismVertices; ++i) {
    EXPECT_TRUE(Near(scene.Prisms()[i].position, corners[i])) << i;
    EXPECT_EQ(scene.Prisms()[i].color, TRgba(TColor::White()));
  }
  EXPECT_EQ(scene.Prisms()[2].normal.x, 127);
  EXPECT_EQ(scene.Prisms()[4].normal.y, -127);
}

/// The prism's triangles face the viewer whatever the directions of bar and view.
TEST_F(TSceneTest, EveryTriangleFacesTheViewer) {
  model.Nodes.ShowNodes = true;
  model.Nodes.NodeRadius = 0.5;
  std::vector<TVertex> directions;
  for (int i = 0; i < 200; ++i) {
    const TVertex any{std::sin(i * 1.7), std::sin(i * 2.9 + 1.0), std::sin(i * 0.7 + 2.0)};
    directions.push_back(any / Length(any));
    Join(TElement::kBar, {{}, 3.0 * directions.back()})->Radius = i % 2 ? 0.2 : 0.0;
  }
  for (const TVertex& viewer : {directions[3], directions[50], directions[121]}) {
    Build(viewer);
    std::vector<TPoint> corners;
    for (std::size_t first = 0; first < scene.Prisms().size(); first += kPrismVertices) {
      for (const auto index : kPrismIndices) {
        corners.push_back(scene.Prisms()[first + index].position);
      }
    }
    for (const auto index : scene.Cylinders().indices) {
      corners.push_back(scene.Cylinders().vertices[index].position);
    }
    ASSERT_GE(corners.size(), 3u * (100 * 4 + 100 * 18));
    for (std::size_t i = 0; i < corners.size(); i += 3) {
      const TPoint normal = Cross(corners[i + 1] - corners[i], corners[i + 2] - corners[i]);
      ASSERT_GT(Dot(normal, scene.ToViewer()), -1e-5f) << i;
    }
  }
}

TEST_F(TSceneTest, RollIsABodyBetweenTwoShafts) {
  TElement* roll = Join(TElement::kRoll, {{0, 0, 0}, {0, 0, 4}});
  roll->Radius = 1.0;
  roll->RollParam1 = 0.25;
  roll->RollParam2 = 0.25;
  Build({1, 0, 0});
  std::vector<float> shaft, body;
  for (const TMeshVertex& vertex : scene.Cylinders().vertices) {
    const float radius = std::hypot(vertex.position.x, vertex.position.y);
    ASSERT_NEAR(radius, radius < 0.5f ? 0.25f : 1.0f, 1e-6f);
    (radius < 0.5f ? shaft : body).push_back(vertex.position.z);
  }
  EXPECT_THAT(shaft, testing::Each(testing::AnyOf(0.0f, 1.0f, 3.0f, 4.0f)));
  EXPECT_THAT(body, testing::Each(testing::AnyOf(1.0f, 3.0f)));
  // The half that faces the viewer: 5 of 10 sides per shaft, 10 of 20 of the body.
  EXPECT_EQ(scene.Cylinders().indices.size(), 6u * (5 + 5 + 10));
}

TEST_F(TSceneTest, LeavesOutWhatCannotBeDrawn) {
  constexpr auto kBar = TElement::kBar, kFace = TElement::kFace, kRoll = TElement::kRoll;
  const TVertex o, x{1, 0, 0}, y{0, 1, 0}, place{1, 2, 3};
  // An element on places, of a radius, and what else is changed in it.
  const std::function<void(TElement&)> nothing = [](TElement&) {};
  const auto refers = [](std::size_t node, int index) {
    return [=](TElement& element) { element.Nodes()[node] = index; };
  };
  const std::tuple<const char*, std::uint8_t, std::vector<TVertex>, double,
                   std::function<void(TElement&)>>
      cases[] = {
          {"a bar with three nodes", kBar, {o, x, {2, 0, 0}}, 0, nothing},
          {"a face with two nodes", kFace, {o, x}, 0, nothing},
          {"a bar without length", kBar, {place, place}, 0, nothing},
          {"a tube without length", kBar, {place, place}, 1, nothing},
          {"a tube of negative radius", kBar, {o, x}, -1, nothing},
          {"an index below the list", kBar, {o, x}, 0, refers(0, -1)},
          {"an index beyond the list", kFace, {o, x, y}, 0, refers(2, 3)},
          {"a point with a stray second index", 7, {o, x}, 0, refers(1, 2)},
          {"a bar from nowhere", kBar, {{kNan, 0, 0}, o}, 0, nothing},
          {"a face at infinity", kFace, {o, {kInfinity, 0, 0}, y}, 0, nothing},
          {"a bar beyond all bounds", kBar, {{0, 1e300, 0}, o}, 0, nothing},
          {"a roll of no shape", kRoll, {o, x}, 1, [](TElement& r) { r.RollParam2 = kNan; }}};
  for (const auto& [why, type, places, radius, change] : cases) {
    model.Clear();
    TElement* element = Join(type, places);
    element->Radius = radius;
    change(*element);
    Build({0.6, 0.0, 0.8});
    EXPECT_EQ(Size(), 0u) << why;
  }
}

TEST_F(TSceneTest, BarsInsideTheirNodesAreLeftOut) {
  // Balls of radius 1 hide a bar of radius 0.6 up to a length of 2 x 0.8.
  model.Nodes.ElementRadius = 0.6;
  Join(TElement::kBar, {{0, 0, 0}, {1.59, 0, 0}});
  Join(TElement::kBar, {{0, 9, 0}, {1.61, 9, 0}});
  for (const bool shown : {true, false}) {
    model.Nodes.ShowNodes = shown;
    Build();
    std::size_t bars = scene.Prisms().size() / kPrismVertices;
    if (!shown) bars = scene.Cylinders().indices.size() / kPrismIndices.size();
    EXPECT_EQ(bars, shown ? 1u : 2u);
  }
}

TEST_F(TSceneTest, CapsAreLeftOutOnlyWhereNodesHideThem) {
  TElement* bar = Join(TElement::kBar, {{0, 0, -4}, {0, 0, 4}});
  model.Nodes.ShowNodes = true;
  // A cube of edge 1 hides a ball of radius 0.5, a sphere one of radius 1.
  for (const auto& [shape, hidden] :
       {std::pair(TNodeShape::Sphere, 1.0), {TNodeShape::Cube, 0.5}}) {
    for (const double radius : {hidden - 0.01, hidden + 0.01}) {
      for (const bool own : {true, false}) {
        model.Nodes.NodeShape = shape;
        bar->Radius = own ? radius : 0.0;
        model.Nodes.ElementRadius = radius;
        Build({0.6, 0.0, 0.8});
        const bool cap = std::ranges::any_of(scene.Cylinders().vertices,
                                             [](const auto& v) { return v.normal.z == 127; });
        EXPECT_EQ(cap, radius > hidden) << radius << own;
      }
    }
  }
}

TEST_F(TSceneTest, FaceIsFilledInItsColorAndOutlinedInTheEdgeColor) {
  model.Nodes.EdgeColor = TColor::Yellow();
  Join(TElement::kFace, {{0, 0, 1}, {2, 0, 1}, {2, 2, 1}, {0, 2, 1}})->Color = TColor::Blue();
  Build();
  ASSERT_EQ(scene.Faces().vertices.size(), 4u);
  EXPECT_THAT(scene.Faces().indices, testing::ElementsAre(0, 1, 2, 0, 2, 3));
  EXPECT_EQ(scene.Faces().vertices[0].normal.z, 127);
  EXPECT_EQ(scene.Faces().vertices[0].color, TRgba(TColor::Blue()));
  ASSERT_EQ(scene.Outlines().size(), 8u);
  EXPECT_TRUE(Near(scene.Outlines()[6].position, {0, 2, 1}));
  EXPECT_TRUE(Near(scene.Outlines()[7].position, {0, 0, 1}));  // closed
  EXPECT_EQ(scene.Outlines()[7].color, TRgba(TColor::Yellow()));

  // Faces that cross themselves or have no area do no harm.
  Join(TElement::kFace, {{0, 0, 0}, {4, 0, 0}, {1, 3, 0}, {4, 4, 0}});
  Join(TElement::kFace, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 0, 0}});
  Join(TElement::kFace, {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}});
  Build();
  EXPECT_EQ(scene.Faces().indices.size(), 6u + 6u);
  EXPECT_EQ(scene.Outlines().size(), 2u * (4 + 4 + 4 + 3));
}

TEST_F(TSceneTest, TwoSidedFacesShowTheSideThatIsLookedAt) {
  Join(TElement::kFace, {{0, 0, 1}, {2, 0, 1}, {2, 2, 1}, {0, 2, 1}})->IsTwoSided = true;
  for (const double z : {1.0, -1.0}) {
    Build({0, 0, z});
    ASSERT_EQ(scene.Faces().indices.size(), 6u);
    EXPECT_EQ(scene.Outlines().size(), 8u);
    for (std::size_t i = 0; i < 6; i += 3) {
      const auto at = [&](std::size_t j) {
        return scene.Faces().vertices[scene.Faces().indices[i + j]];
      };
      EXPECT_EQ(at(0).normal.z, z * 127);
      EXPECT_EQ(Cross(at(1).position - at(0).position, at(2).position - at(0).position).z, z * 4);
    }
  }
}

/// Of triangles as a viewer above them sees them.
template <class TCorners, class TIndices>
double Area(const TCorners& corners, const TIndices& indices) {
  double area = 0.0;
  for (std::size_t i = 0; i < indices.size(); i += 3) {
    const TPoint a = corners[indices[i]].position;
    const TPoint normal =
        Cross(corners[indices[i + 1]].position - a, corners[indices[i + 2]].position - a);
    EXPECT_GE(normal.z, 0.0f);  // all on one side
    area += 0.5 * normal.z;
  }
  return area;
}

TEST_F(TSceneTest, FacesWithDentsAreFilledWithinTheirOutline) {
  const std::pair<std::vector<TVertex>, double> cases[] = {
      {{{0, 0, 0}, {4, 0, 0}, {4, 1, 0}, {1, 1, 0}, {1, 4, 0}, {0, 4, 0}}, 7.0},  // an L
      {{{1, 1, 0}, {0, 4, 0}, {0, 0, 0}, {4, 0, 0}}, 4.0},                        // an arrow
      {{{0, 0, 0}, {5, 0, 0}, {5, 3, 0}, {4, 3, 0}, {4, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}},
       9.0},                                                           // a U
      {{{0, 0, 0}, {2, 0, 0}, {4, 0, 0}, {4, 2, 0}, {0, 2, 0}}, 8.0},  // a corner on an edge
  };
  for (const auto& [corners, area] : cases) {
    SCOPED_TRACE(corners.size());
    // From every first corner, since the fill must not depend on it.
    for (std::size_t turn = 0; turn < corners.size(); ++turn) {
      model.Clear();
      std::vector<TVertex> turned = corners;
      std::rotate(turned.begin(), turned.begin() + static_cast<std::ptrdiff_t>(turn), turned.end());
      Join(TElement::kFace, turned);
      Build();
      EXPECT_NEAR(Area(scene.Faces().vertices, scene.Faces().indices), area, 1e-5);
      EXPECT_EQ(scene.Faces().indices.size(), 3 * (corners.size() - 2));
    }
  }
}

TEST_F(TSceneTest, OtherTypesAreSpheresAtTheirFirstNode) {
  Join(4, {{1, 2, 3}, {0, 0, 0}});
  Join(200, {{4, 5, 6}})->Radius = 2.0;
  Build();
  ASSERT_EQ(scene.Spheres().size(), 2u);
  EXPECT_TRUE(Near(scene.Spheres()[0].center, {1, 2, 3}));
  EXPECT_EQ(scene.Spheres()[0].size, 0.5f);
  EXPECT_EQ(scene.Spheres()[1].size, 2.0f);
  EXPECT_EQ(scene.Spheres()[1].color, TRgba(TColor::White()));
}

/// A model of one node with two data sets at other places, and its display list.
class TBuildSceneTest : public testing::Test {
 protected:
  TBuildSceneTest() {
    const auto place = [](TDataNodeList& list, double x) {
      list.Emplace(1, x, 0.0, 0.0);
      list.ShowNodes = true;
      list.NodeRadius = 0.1;
    };
    place(model.Nodes, 1.0);
    place(model.Display, 4.0);
    for (const double x : {2.0, 3.0}) {
      auto set = std::make_unique<TDataNodeList>(&model, false);
      place(*set, x);
      set->SetVisible(true);
      data.Shown.Refer(data.All.Add(std::move(set)));
    }
  }

  TModel model;
  TMeasuredData data;
};

TEST_F(TBuildSceneTest, DrawsTheModelThenTheSetsOrTheirSum) {
  const auto expect = [&](TScaleType type, bool showModel, const std::vector<float>& expected) {
    TScene scene;
    BuildScene(scene, {0, 0, 1}, model, data, type, showModel);
    std::vector<float> places;
    for (const TMark& mark : scene.Spheres()) places.push_back(mark.center.x);
    EXPECT_EQ(places, expected);
  };
  model.Loaded = true;
  expect(TScaleType::Absolute, true, {1, 2, 3});
  expect(TScaleType::Relative, false, {2, 3});
  expect(TScaleType::Sum, true, {1, 4});
  model.Loaded = false;
  expect(TScaleType::Absolute, true, {2, 3});
  data.Shown.Clear();
  expect(TScaleType::Sum, true, {});
}

TEST_F(TBuildSceneTest, WhatStandsOnGuessedNodesIsGreyer) {
  const TRgba plain(TColor::FromRgb(200, 0, 255));
  const TRgba greyer(TColor::FromRgb(164, 64, 191));
  model.Nodes.ShowNodes = false;
  TDataNodeList& set = *data.Shown.Get(0);
  set.Emplace(2, 5.0, 0.0, 0.0);
  model.Display.Emplace(2, 5.0, 0.0, 0.0);
  for (TDataNodeList* list : {&set, data.Shown.Get(1), &model.Display}) {
    list->ElementColor = list->NodeColor = TColor::FromRgb(200, 0, 255);
    list->Elements = &model.Elements;
    list->ElementRadius = 0.01;
  }
  for (const std::int32_t node : {0, 1}) model.Elements.Emplace(9, 1)->Nodes()[0] = node;
  set.Measured = {true, false};
  for (const bool isInterpolated : {false, true}) {
    set.IsInterpolated = isInterpolated;
    for (const TScaleType type : {TScaleType::Absolute, TScaleType::Sum}) {
      TScene scene;
      BuildScene(scene, {0, 0, 1}, model, data, type, false);
      ASSERT_GE(scene.Spheres().size(), 4u);
      for (const TMark& mark : scene.Spheres()) {
        const bool isGuessed = isInterpolated && mark.center.x == 5.0f;
        EXPECT_EQ(mark.color, isGuessed ? greyer : plain) << mark.center.x;
      }
    }
  }
}

TEST_F(TSceneTest, SecondFrameKeepsTheMemoryOfTheFirst) {
  model.Nodes.ShowNodes = true;
  for (int i = 0; i < 100; ++i) {
    Join(TElement::kBar, {{3.0 * i, 0, 0}, {3.0 * i, 9, 0}});
    Join(TElement::kBar, {{3.0 * i, 0, 0}, {3.0 * i, 9, 0}})->Radius = 0.3;
    Join(TElement::kFace, {{}, {3.0 * i, 0, 0}, {0, 9, 0}});
  }
  const auto memory = [this] {
    return std::vector<const void*>{
        scene.Spheres().data(),           scene.Prisms().data(),
        scene.Cylinders().indices.data(), scene.Cylinders().vertices.data(),
        scene.Faces().vertices.data(),    scene.Outlines().data()};
  };
  Build();
  const auto first = memory();
  for (TNode* node : model.Nodes) node->Position.z += 0.1;
  Build();
  EXPECT_EQ(memory(), first);
}

TEST(TStamp, SphereRimCoversTheAreaOfItsCircleWithMoreSidesAsItGrows) {
  for (const int sides : {6, 8, 20}) {
    const TStamp stamp = SphereStamp({0, 0, 1}, sides);
    EXPECT_NEAR(Area(stamp.corners, stamp.indices), std::numbers::pi, 1e-5);
  }
  EXPECT_EQ(SphereSides(0.0), 6);
  EXPECT_LT(SphereSides(4.0), SphereSides(40.0));
  EXPECT_EQ(SphereSides(1e9), SphereSides(kInfinity));
  EXPECT_LE(SphereSides(kInfinity), 128);
}

TEST(TViewTransform, AspectFollowsTheSize) {
  TViewTransform view;
  const std::pair<QSize, QSizeF> cases[] = {
      {{400, 200}, {2, 1}}, {{200, 400}, {1, 2}}, {{300, 0}, {1, 2}}};
  for (const auto& [size, scale] : cases) {  // without height the panel is hidden
    view.ScaleViewPort(size.width(), size.height());
    EXPECT_EQ(QSizeF(view.ScaleX, view.ScaleY), scale);
  }
  view.ModelSize = 5.0;
  for (const auto& [zoom, pixels] : {std::pair(2.0, 10.0), {0.0, 0.0}}) {
    view.Zoom = zoom;
    EXPECT_DOUBLE_EQ(view.PixelsPerUnit(200, 400), pixels);
  }
}

TEST(TViewTransform, TheRotatedDirectionPointsAtTheViewer) {
  TViewTransform view;
  const std::pair<TVertex, TVertex> cases[] = {
      {{0, 0, 0}, {0, 0, 1}},
      {{0, -90, 0}, {1, 0, 0}},
      {{90, 0, 0}, {0, 1, 0}},
      {{30, -45, 0}, {std::sqrt(0.375), 0.5, std::sqrt(0.375)}}};
  for (const auto& [rotation, toViewer] : cases) {
    view.Rotation = rotation;
    EXPECT_LT(Length(view.ToViewer(), toViewer), 1e-12);
  }
}

}  // namespace
