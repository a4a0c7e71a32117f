#include "exchange/Assembly.h"

#include "tests/support/Testing.h"

using testing::ElementsAre;

namespace {

using TIds = std::vector<std::int32_t>;

/// A job written by hand.
struct TWork {
  TJob Job;
  TFindings Findings;

  void File(const QString& name, double unit = 0.0) {
    Findings.BeginFile(name);
    Job.BeginFile();
    Job.LengthOfFile.back() = unit;
    Job.Places.push_back({static_cast<int>(Findings.Files().size()) - 1, 100, 2412});
  }
  void Node(std::int32_t id, TVertex place, std::int32_t definition = 0,
            std::int32_t displacement = 0) {
    Job.Nodes.push_back({id, definition, displacement, place});
  }
  void Element(TElementShape shape, TIds corners, std::int32_t id = 1) {
    Job.Elements.push_back({.ID = id,
                            .First = static_cast<std::uint32_t>(Job.Corners.size()),
                            .Count = static_cast<std::uint16_t>(corners.size()),
                            .Shape = shape,
                            .Set = static_cast<std::uint32_t>(Job.Places.size() - 1)});
    Job.Corners.insert(Job.Corners.end(), corners.begin(), corners.end());
  }
  TJobShape& Shape(double frequency, TIds ids, std::vector<TVertex> real,
                   std::vector<TVertex> imaginary = {}) {
    TJobShape& shape = Job.Shapes.emplace_back();
    shape.Frequency = frequency;
    shape.Info.Kind = TShapeKind::NormalMode;
    shape.IDs.assign(ids.begin(), ids.end());
    shape.Real.assign(real.begin(), real.end());
    shape.Imaginary.assign(imaginary.begin(), imaginary.end());
    return shape;
  }
  /// Nodes 1, 2, ... on the x axis.
  void Row(std::int32_t count) {
    File("a.unv");
    for (std::int32_t id = 1; id <= count; ++id) Node(id, {double(id), 0, 0});
  }

  TModelContent Model() { return AssembleModel(Job, nullptr, Findings); }
  std::vector<TDataSet> Sets(const TModelContent& model) {
    return AssembleShapes(Job, {model.Nodes, model.Index, model.Axes}, model.Centre, 1'000'000,
                          Findings);
  }
  std::vector<TDataSet> Sets() {
    model_ = Model();
    return Sets(model_);
  }
  QString Notes() const {
    QStringList notes;
    for (const auto& finding : Findings.All()) notes << finding.Text;
    return notes.join('\n');
  }

 private:
  TModelContent model_;
};

std::vector<TVertex> Positions(const TNodeList& nodes) {
  std::vector<TVertex> positions;
  for (const TNode* node : nodes) positions.push_back(node->Position);
  return positions;
}

/// The numbers of an element's nodes.
TIds NodesOf(const TModelContent& model, std::size_t element) {
  TIds ids;
  for (const auto index : model.Elements.Get(element)->Nodes()) {
    ids.push_back(model.Nodes.Get(static_cast<std::size_t>(index))->ID);
  }
  return ids;
}

TEST(AssembleModel, BringsNodesOfSeveralFilesIntoOneOrderSystemAndUnit) {
  TWork work;
  work.File("metres.unv", 1.0);
  work.Job.Systems = {{.Number = 3, .Kind = TSystemKind::Cylindrical, .Origin = {1, 0, 0}}};
  work.Node(20, {2, 90, 5}, 3);
  work.Node(7, {5, 0, 1});
  work.File("millimetres.unv", 1000.0);
  work.Job.Systems.push_back({.Number = 4, .Origin = {1000, 0, 0}, .Place = {1, 9}});
  work.Node(-1, {2000, 0, 3000}, 4);
  work.Node(20, {1000.001, 2000, 5000});  // the same place
  work.Node(7, {5, 0, 1});                // another
  work.Node(8, {1e34, 0, 0});
  work.File("silent.unv");
  work.Node(9, {1, 0, 1}, 77);
  const TModelContent model = work.Model();
  // -1 (3, 0, 3), 7 (5, 0, 1), 9 (1, 0, 1), 20 (1, 2, 5): the box is from (1, 0, 1) to (5, 2, 5)
  EXPECT_EQ(model.Centre, (TVertex{3, 1, 3}));
  EXPECT_THAT(Positions(model.Nodes), ElementsAre(TVertex{0, -1, 0}, TVertex{2, -1, -2},
                                                  TVertex{-2, -1, -2}, TVertex{-2, 1, 2}));
  EXPECT_EQ(model.Nodes.Get(2)->ID, 9);
  EXPECT_EQ(model.Index.Find(20), 3);
  EXPECT_EQ(model.Display.Get(3)->Link, model.Nodes.Get(3));
  EXPECT_DOUBLE_EQ(model.Size, 3.0);
  EXPECT_DOUBLE_EQ(model.NodeRadius, 0.03);
  EXPECT_DOUBLE_EQ(model.ElementRadius, 0.015);
  EXPECT_EQ(work.Notes(),
            "its lengths are multiplied by 0.001 to have the unit of metres.unv\n"
            "it names none; its lengths are taken for those of metres.unv\n"
            "nodes whose place is no number or beyond 1e30: 8\n"
            "nodes that come again at another place, of which the first counts: 7\n"
            "system 77, which nodes name, is not defined; it is taken as the global one\n"
            "nothing joins the nodes: there are no lines and no elements");
}

TEST(AssembleModel, MakesEachBarAndFaceOnce) {
  using enum TElementShape;
  TWork work;
  work.Row(4);
  for (const TIds& corners : {TIds{2, 1}, {1, 2}, {3, 3}, {3, 4}, {3, 5}, {6, 5}}) {
    work.Element(Bar, corners, 40 + corners[0]);
  }
  for (const TIds& corners : {TIds{1, 2, 3, 4}, {4, 3, 2, 1}, {1, 2, 2, 3}, {1, 2, 2, 1}}) {
    work.Element(Face, corners, 50);
  }
  const TModelContent model = work.Model();
  ASSERT_EQ(model.Elements.Count(), 4);
  EXPECT_EQ(NodesOf(model, 0), (TIds{2, 1}));
  EXPECT_EQ(NodesOf(model, 1), (TIds{3, 4}));
  EXPECT_EQ(NodesOf(model, 2), (TIds{1, 2, 3, 4}));
  EXPECT_EQ(NodesOf(model, 3), (TIds{1, 2, 3}));
  EXPECT_EQ(model.Elements.Get(0)->ID, 42);
  EXPECT_FALSE(model.Elements.Get(1)->IsTwoSided);
  EXPECT_TRUE(model.Elements.Get(2)->IsTwoSided);
  EXPECT_TRUE(model.Elements.Get(2)->Color.IsInherited());
  EXPECT_EQ(work.Notes(),
            "2 elements name nodes that are missing: 5, 6\n"
            "elements that have not the corners of their kind: 43, 50");
  EXPECT_EQ(work.Findings.All()[0].Line, 100);
  EXPECT_EQ(work.Findings.All()[0].Set, "2412");
}

TEST(AssembleModel, ShowsTheSkinOfSolidsFromOutside) {
  using enum TElementShape;
  const struct {
    const char* name;
    std::vector<std::pair<TElementShape, TIds>> solids;
    std::size_t faces;
  } rows[] = {
      {"a cube of two bricks, one of them the other way round, one given twice",
       {{Brick, {1, 2, 5, 4, 7, 8, 11, 10}},
        {Brick, {8, 9, 12, 11, 2, 3, 6, 5}},
        {Brick, {7, 8, 11, 10, 1, 2, 5, 4}}},
       10},
      {"a tetrahedron", {{Tetrahedron, {1, 2, 4, 7}}}, 4},
      {"a wedge", {{Wedge, {1, 2, 4, 7, 8, 10}}}, 5},
      {"a pyramid", {{Pyramid, {1, 2, 5, 4, 7}}}, 5},
      {"a brick that has collapsed to a wedge", {{Brick, {1, 2, 4, 4, 7, 8, 10, 10}}}, 5},
      {"a wedge beside a brick",
       {{Brick, {1, 2, 5, 4, 7, 8, 11, 10}}, {Wedge, {2, 3, 5, 8, 9, 11}}},
       9},
      {"too few corners", {{Brick, {1, 2, 5, 4}}}, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    TWork work;
    work.File("a.unv");
    for (std::int32_t i = 0; i < 12; ++i) {
      work.Node(i + 1, {0.5 * (i % 3), double(i / 3 % 2), double(i / 6)});
    }
    TVertex inside;
    for (const auto& [shape, corners] : row.solids) {
      work.Element(shape, corners);
      for (const auto id : corners) {
        inside += work.Job.Nodes[static_cast<std::size_t>(id) - 1].Coordinates /
                  double(corners.size() * row.solids.size());
      }
    }
    const TModelContent model = work.Model();
    EXPECT_EQ(model.Elements.Count(), row.faces);
    double volume = 0.0;  // by the divergence theorem: outward faces give the volume itself
    for (const TElement* face : model.Elements) {
      const auto nodes = face->Nodes();
      const auto at = [&](std::size_t i) {
        return model.Nodes.Get(static_cast<std::size_t>(nodes[i]))->Position + model.Centre -
               inside;
      };
      const TVertex a = at(0), b = at(1) - a, c = at(nodes.size() - 1) - a;
      const double height = a.x * (b.y * c.z - b.z * c.y) + a.y * (b.z * c.x - b.x * c.z) +
                            a.z * (b.x * c.y - b.y * c.x);
      EXPECT_GT(height, 0.0);
      volume += height / (nodes.size() == 3 ? 6.0 : 3.0);
      EXPECT_FALSE(face->IsTwoSided);
    }
    const double expected[] = {1.0, 1.0 / 12, 0.25, 1.0 / 6, 0.25, 0.75, 0.0};
    EXPECT_NEAR(volume, expected[&row - rows], 1e-12);
  }
}

TEST(AssembleShapes, KeepsAmplitudeAndPhaseOfARotatingVector) {
  TWork work;
  work.Row(1);
  work.Shape(12.5, {1}, {{-3, 0, 0.5}}, {{4, -2, 0}}).Info.IsComplex = true;
  const std::vector<TDataSet> sets = work.Sets();
  ASSERT_EQ(sets.size(), 1);
  const TNode& node = *sets[0].Content.Nodes.Get(0);
  EXPECT_DOUBLE_EQ(node.Position.x, 5.0);
  EXPECT_DOUBLE_EQ(node.Angles.x, std::numbers::pi - std::atan(4.0 / 3.0));
  for (const double wt : {0.0, 0.3, 1.7, 4.0, -11.0}) {
    const std::complex<double> turn = std::polar(1.0, wt);
    const TVertex expected = {(std::complex(-3.0, 4.0) * turn).real(),
                              (std::complex(0.0, -2.0) * turn).real(), (0.5 * turn).real()};
    EXPECT_LT(Length(Displacement(node, wt), expected), 1e-14) << wt;
  }
  EXPECT_EQ(sets[0].Section, "[F = 12.5]");
  EXPECT_TRUE(sets[0].Info.IsComplex);
  EXPECT_TRUE(sets[0].Measured.empty());
  EXPECT_DOUBLE_EQ(sets[0].Content.MaxAmplitude, std::sqrt(25 + 4 + 0.25));
}

TEST(AssembleShapes, TurnsValuesToTheGlobalSystem) {
  TWork work;
  work.File("a.unv");
  work.Job.Systems = {
      // Turned by 30 degrees about z.
      {.Number = 2,
       .Axes = {TVertex{std::sqrt(0.75), 0.5, 0}, {-0.5, std::sqrt(0.75), 0}, {0, 0, 1}}},
      {.Number = 3, .Kind = TSystemKind::Cylindrical, .Origin = {10, 0, 0}},
      // Both stand in a system that is turned by 90 degrees about z.
      {.Number = 7, .Kind = TSystemKind::Cylindrical, .Reference = 5, .Origin = {1, 0, 0}},
      {.Number = 8, .Kind = TSystemKind::Spherical, .Reference = 5, .Origin = {-2, 2, 0}},
      {.Number = 5, .Axes = {TVertex{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}, .Origin = {10, 0, 0}}};
  work.Node(1, {100, 0, 0}, 0, 2);
  work.Node(2, {10, 5, 0}, 0, 3);  // radial is +y, tangential -x
  work.Node(3, {0, 0, 0});
  work.Node(4, {2, 90, 3}, 7, 8);  // (8, 1, 3), which is (0, 3, 3) from the sphere's centre
  const std::vector<TVertex> values(4, {2, 4, 1});
  work.Shape(1, {3, 2, 1, 4}, values);
  work.Shape(2, {1, 2, 3, 4}, values).IsGlobal = true;
  work.Shape(3, {1, 2, 3, 4}, std::vector<TVertex>(4), values);
  const TModelContent model = work.Model();
  const std::vector<TDataSet> sets = work.Sets(model);
  ASSERT_EQ(sets.size(), 3);
  const TVertex turned = {2 * std::sqrt(0.75) - 2, 1 + 4 * std::sqrt(0.75), 1};
  const auto local = Positions(sets[0].Content.Nodes);
  EXPECT_LT(Length(local[0], turned), 1e-12);
  EXPECT_LT(Length(local[1], {-4, 2, 1}), 1e-12);
  EXPECT_EQ(local[2], (TVertex{2, 4, 1}));
  EXPECT_LT(Length(local[3], {-1, 6 * std::sqrt(0.5), -2 * std::sqrt(0.5)}), 1e-12);
  TWork later;  // shapes for the model that stays
  later.File("b.unv");
  later.Shape(1, {1, 2, 3, 4}, values);
  EXPECT_EQ(Positions(later.Sets(model).at(0).Content.Nodes), local);
  EXPECT_EQ(Positions(sets[1].Content.Nodes), values);
  EXPECT_LT(Length(Displacement(*sets[2].Content.Nodes.Get(0), -std::numbers::pi / 2), turned),
            1e-12);
  EXPECT_TRUE(work.Job.Shapes.empty());
}

TEST(AssembleShapes, BringsMotionsOfSeveralFilesToOneUnit) {
  for (const double ofModel : {0.0, 100.0}) {
    TWork work;
    work.File("metres.unv", 1.0);
    work.Node(1, {1, 0, 0});
    work.File("millimetres.unv", 1000.0);
    work.Job.LengthOfModel = ofModel;
    for (const int quantity : {8, 11, 12, 13}) {
      TJobShape& shape = work.Shape(quantity, {1}, {{2000, 0, 0}}, {{0, 3000, 0}});
      shape.Info.Quantity = quantity;
      shape.Place = {1, 9};
    }
    const double unit = ofModel > 0.0 ? ofModel : 1.0;
    for (const TDataSet& set : work.Sets()) {
      const bool isForce = set.Info.Quantity == 13;
      const TVertex expected = isForce ? TVertex{2000, 3000, 0} : TVertex{2 * unit, 3 * unit, 0};
      EXPECT_EQ(set.Content.Nodes.Get(0)->Position, expected);
    }
    EXPECT_TRUE(work.Notes().endsWith(
        ofModel > 0.0 ? "its motions are multiplied by 0.1 to have the unit of the model"
                      : "its motions are multiplied by 0.001 to have the unit of metres.unv"))
        << work.Notes().toStdString();
  }
}

TEST(AssembleShapes, LetsUnmeasuredNodesRestAndSaysWhich) {
  TWork work;
  work.Row(30);
  work.Shape(1, {2, 1, 99, 2}, {{1, 0, 0}, {0, 2, 0}, {5, 5, 5}, {7, 0, 3}});
  work.Shape(2, {2, 1}, {{1, 0, 0}, {0, 2, 0}});
  work.Shape(3, {98}, {{1, 0, 0}});
  const std::vector<TDataSet> sets = work.Sets();
  ASSERT_EQ(sets.size(), 2);
  const auto positions = Positions(sets[0].Content.Nodes);
  EXPECT_EQ(positions[0], (TVertex{0, 2, 0}));
  EXPECT_EQ(positions[1], (TVertex{1, 0, 3})) << "the first value of a direction counts";
  EXPECT_EQ(positions[2], TVertex{});
  ASSERT_EQ(sets[0].Measured.size(), 30);
  EXPECT_EQ(std::count(sets[0].Measured.begin(), sets[0].Measured.end(), true), 2);
  EXPECT_TRUE(sets[0].Measured[0] && sets[0].Measured[1]);
  EXPECT_EQ(
      work.Notes(),
      "nothing joins the nodes: there are no lines and no elements\n"
      "second values of nodes in one direction: 2\n"
      "none of its nodes is in the model\n"
      "28 nodes have no measurement: 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, "
      "19, 20, 21, 22, ... (in 2 data sets)\n"
      "values of nodes that the model does not have: 99, 98");
}

TEST(AssembleShapes, JoinsWhatWasMeasuredInSingleDirections) {
  TWork work;
  work.Row(2);
  work.Shape(5, {1, 2}, {{1, 0, 0}, {2, 0, 0}});
  work.Shape(6, {1}, {{9, 0, 0}});
  work.Shape(5, {1}, {{0, 3, 0}});
  work.Shape(5, {1}, {{0, 0, 4}});
  work.Shape(5, {1}, {{0, 8, 0}});                      // collides
  work.Shape(5, {2}, {{0, 8, 0}}).Info.Damping = 0.01;  // another mode
  work.Shape(0, {1}, {{1, 0, 0}});
  work.Shape(0, {2}, {{1, 0, 0}});  // nothing says that the two are one
  const std::vector<TDataSet> sets = work.Sets();
  std::vector<TVertex> first;
  QStringList sections;
  for (const TDataSet& set : sets) {
    first.push_back(set.Content.Nodes.Get(0)->Position);
    sections << set.Section;
  }
  EXPECT_THAT(first, ElementsAre(TVertex{1, 3, 4}, TVertex{9, 0, 0}, TVertex{0, 8, 0}, TVertex{},
                                 TVertex{1, 0, 0}, TVertex{}));
  EXPECT_EQ(sections.join(' '), "[F = 5] [F = 6] [F = 5 (2)] [F = 5 (3)] [F = 0] [F = 0 (2)]");
  EXPECT_THAT(
      work.Notes().toStdString(),
      testing::HasSubstr("2 data sets measure other nodes or directions of the same shapes"));
}

TEST(AssembleShapes, NamesSetsSoThatTheirFrequencyReadsBack) {
  for (const double frequency : {0.1 + 0.2, 1e-7 / 3.0, 1234567.0, 1e22, 0.0, 29.9}) {
    TWork work;
    work.Row(1);
    work.Shape(frequency, {1}, {{1, 0, 0}});
    const QString section = work.Sets().at(0).Section;
    const std::string name = section.sliced(1).chopped(1).toStdString();
    TTextScanner scanner(name);
    EXPECT_EQ(NamedFrequency(scanner), frequency) << name;
  }
  TWork work;
  work.Row(1);
  work.Shape(0, {1}, {{1, 0, 0}}).Info = {.Kind = TShapeKind::Static, .LoadCase = 3};
  work.Shape(0, {1}, {{1, 0, 0}}).Info = {.Kind = TShapeKind::Transient, .Time = 0.25};
  work.Shape(0, {1}, {{1, 0, 0}}).Info = {.Kind = TShapeKind::Buckling, .Mode = 2};
  QStringList names;
  for (const TDataSet& set : work.Sets()) names << set.Section;
  EXPECT_EQ(names.join(' '), "[Static 3] [t = 0.25 s] [Buckling 2]");
}

TEST(AssembleShapes, KeepsTheSetsForWhichThereIsRoom) {
  TWork work;
  work.Row(10);
  for (int i = 1; i <= 5; ++i) work.Shape(i, {1}, {{1, 0, 0}});
  const TModelContent model = work.Model();
  const auto sets =
      AssembleShapes(work.Job, {model.Nodes, model.Index}, model.Centre, 35, work.Findings);
  EXPECT_EQ(sets.size(), 3);
  EXPECT_TRUE(work.Notes().endsWith("\n2 data sets, for which there is no room"));
}

TEST(Summary, CountsWhatIsThere) {
  using enum TShapeKind;
  const struct {
    std::vector<std::pair<TShapeKind, double>> sets;
    const char* text;
  } rows[] = {
      {{}, "3 nodes, 1 bar, 1 face"},
      {{{NormalMode, 3.2}}, "3 nodes, 1 bar, 1 face, 1 normal mode at 3.2 Hz"},
      {{{ComplexMode, 29.94}, {ComplexModeSecondOrder, 0.7601}, {Static, 0}, {Static, 0}},
       "3 nodes, 1 bar, 1 face, 2 complex modes from 0.76 to 29.9 Hz, 2 static sets"},
      {{{Transient, 0}, {Transient, 2}, {Response, 1234.4}, {Response, 1234.4}},
       "3 nodes, 1 bar, 1 face, 2 frequency responses at 1234 Hz, 2 moments from 0 to 2 s"},
      {{{Unknown, 1e12}, {Buckling, 0}},
       "3 nodes, 1 bar, 1 face, 1 buckling mode, 1 data set at 1e+12 Hz"},
  };
  for (const auto& row : rows) {
    TWork work;
    work.Row(3);
    work.Element(TElementShape::Bar, {1, 2});
    work.Element(TElementShape::Face, {1, 2, 3});
    for (const auto& [kind, value] : row.sets) {
      TJobShape& shape = work.Shape(kind == Transient ? 0.0 : value, {1, 2, 3},
                                    std::vector<TVertex>(3, {1, 1, 1}));
      shape.Info = {.Kind = kind, .Time = kind == Transient ? value : 0.0};
    }
    TModel model;
    model.Replace(AssembleModel(work.Job, &model.Nodes, work.Findings));
    TMeasuredData data;
    data.Replace(
        AssembleShapes(work.Job, {model.Nodes, model.Index()}, model.Centre, 1000, work.Findings),
        model);
    EXPECT_EQ(Summary(model, data, work.Job), row.text);
    work.Job.Functions.resize(24);
    EXPECT_EQ(Summary(model, data, work.Job), QString(row.text) + ", 24 functions");
  }
}

}  // namespace
