#include <gtest/gtest.h>

#include <QFile>
#include <cmath>
#include <numbers>

#include "examples/generate/Beam.h"
#include "examples/generate/Bridge.h"
#include "examples/generate/Plate.h"
#include "examples/generate/Pump.h"
#include "examples/generate/Rolls.h"
#include "model/Animmodel.h"
#include "tests/support/Testsupport.h"

namespace {

QString ExampleFile(const QString& name) { return SourceFile("examples/" + name); }

std::string Content(const QString& fileName) {
  QFile file(fileName);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << fileName.toStdString();
  return file.readAll().toStdString();
}

TEST(Examples, FilesAreWhatTheGeneratorWrites) {
  for (const TExample& example : {MakePlate(), MakeBridge(), MakeRolls()}) {
    SCOPED_TRACE(example.name);
    const QString base = ExampleFile(QString::fromStdString(example.name));
    // Not EXPECT_EQ: it would print both texts whole.
    EXPECT_TRUE(Content(base + ".mod") == example.model);
    EXPECT_TRUE(Content(base + ".dat") == example.data);
  }
  EXPECT_TRUE(Content(ExampleFile("values/pump.txt")) == MakePumpRecord());
}

TEST(Examples, BeamShapesMeetTheirEndsAndTheTables) {
  const struct {
    TBeamShape shape;
    double beta;  // Blevins, table 8-1
  } cases[] = {
      {TBeamShape::ClampedFree(1), 1.87510407}, {TBeamShape::ClampedFree(2), 4.69409113},
      {TBeamShape::ClampedFree(3), 7.85475744}, {TBeamShape::FreeFree(2), 4.73004074},
      {TBeamShape::FreeFree(3), 7.85320462},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.beta);
    EXPECT_NEAR(c.shape.Beta(), c.beta, 1e-8);
    EXPECT_NEAR(c.shape.Curvature(1.0) / (c.beta * c.beta), 0.0, 1e-9);
    EXPECT_NEAR(std::abs(c.shape.Value(1.0)), 2.0, 1e-9);
  }
  const TBeamShape clamped = TBeamShape::ClampedFree(2), free = TBeamShape::FreeFree(2);
  EXPECT_EQ(clamped.Value(0.0), 0.0);
  EXPECT_EQ(clamped.Slope(0.0), 0.0);
  EXPECT_EQ(free.Curvature(0.0), 0.0);
  EXPECT_NEAR(free.Value(0.5), -1.2156, 1e-4);
  // The derivatives belong to the value.
  const double h = 1e-4;
  for (const TBeamShape& s : {clamped, free}) {
    EXPECT_NEAR((s.Value(0.3 + h) - s.Value(0.3 - h)) / (2.0 * h), s.Slope(0.3), 1e-5);
    EXPECT_NEAR((s.Slope(0.3 + h) - s.Slope(0.3 - h)) / (2.0 * h), s.Curvature(0.3), 1e-4);
  }
}

TEST(Examples, PlateFrequenciesAgreeWithPublishedOnes) {
  // omega a^2 sqrt(rho h / D) of cantilever plates with nu = 0.3, in ascending order: Young, J.
  // Appl. Mech. 17 (1950); Barton, J. Appl. Mech. 18 (1951), both in Leissa, NASA SP-160,
  // chapter 4.
  const struct {
    double lengthToWidth;
    std::vector<double> lambdas;
  } cases[] = {
      {0.5, {3.508, 5.372, 10.26}},
      {1.0, {3.494, 8.547, 21.44, 27.46, 31.17}},
      {2.0, {3.472, 14.93, 21.61, 48.71}},
  };
  for (const auto& c : cases) {
    TPlate plate;
    plate.width = plate.length / c.lengthToWidth;
    const double stiffness = plate.modulus * std::pow(plate.thickness, 3) /
                             (12.0 * (1.0 - plate.poisson * plate.poisson));
    const double factor = 2.0 * std::numbers::pi * plate.length * plate.length *
                          std::sqrt(plate.density * plate.thickness / stiffness);
    const std::vector<TPlateMode> modes = PlateModes(plate);
    for (std::size_t i = 0; i < c.lambdas.size(); ++i) {
      SCOPED_TRACE(c.lambdas[i]);
      EXPECT_NEAR(modes[i].Frequency() * factor / c.lambdas[i], 1.0, 0.015);
    }
  }
}

class ExampleData : public testing::Test {
 protected:
  void Load(const QString& name) {
    EXPECT_TRUE(model.LoadFromFile(ExampleFile(name + ".mod")).Ok());
    EXPECT_TRUE(data.LoadFromFile(ExampleFile(name + ".dat"), model).Ok());
  }
  const TNode& Node(std::size_t set, std::int32_t id) {
    const TNode* node = data.All.Get(set)->FindNode(id);
    EXPECT_NE(node, nullptr) << id;
    static const TNode none;
    return node ? *node : none;
  }

  TModel model;
  TMeasuredData data;
};

TEST_F(ExampleData, EverySetMovesEveryNodeOfItsModel) {
  const struct {
    const char* name;
    std::size_t sets;
  } cases[] = {{"plate", 6}, {"bridge", 6}, {"rolls", 5}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Load(c.name);
    EXPECT_GE(model.Nodes.Count(), 100u);
    ASSERT_EQ(data.All.Count(), c.sets);
    double last = 0.0;
    for (const TDataNodeList* set : data.All) {
      EXPECT_GT(set->Frequency, last);
      last = set->Frequency;
      EXPECT_GT(set->MaxAmplitude, 0.0);
      ASSERT_EQ(set->Count(), model.Nodes.Count());
      for (std::size_t i = 0; i < set->Count(); ++i) {
        EXPECT_EQ(set->Get(i)->Link, model.Nodes.Get(i));
      }
    }
  }
}

/// Brings an angle into -pi to pi.
double Wrapped(double angle) { return std::remainder(angle, 2.0 * std::numbers::pi); }

TEST_F(ExampleData, BridgeCarriesAWaveThatLagsMoreAndMore) {
  Load("bridge");
  const std::size_t wave = 5;
  double lag = 0.0;
  for (int i = 1; i <= 16; ++i) {  // the panel points of the left truss
    const double step = Wrapped(Node(wave, 100 + i).Angles.y - Node(wave, 100 + i - 1).Angles.y);
    EXPECT_LT(step, 0.0);
    lag -= step;
  }
  // The first mode, 2.75 Hz, is half a wave of 128 m, and a wave's length falls with the root of
  // its frequency: 37.5 m at 32 Hz. The span is 64 m.
  EXPECT_NEAR(lag / (2.0 * std::numbers::pi), 64.0 / 37.5, 0.01);
}

TEST_F(ExampleData, RollsWhirlForwardAndTheLooseBearingAgainstTheOthers) {
  Load("rolls");
  const std::size_t dryersOnce = 0, feltRollsOnce = 2;
  const double quarter = 0.5 * std::numbers::pi;
  // The middle of a felt roll rides on two bearings that are much alike along x and y.
  const TNode& middle = Node(feltRollsOnce, 303);
  EXPECT_NEAR(Wrapped(middle.Angles.x - middle.Angles.y), quarter, 0.3);
  // A loose bearing runs above its resonance, so its roll end moves far more than the others.
  EXPECT_GT(Length(Node(dryersOnce, 30).Position), 2.5 * Length(Node(dryersOnce, 31).Position));
  EXPECT_GT(Length(Node(feltRollsOnce, 200).Position),
            1.4 * Length(Node(feltRollsOnce, 206).Position));
  // Both ends are unbalanced at nearly the same angle; the loose end answers in opposite phase.
  EXPECT_GT(std::abs(Wrapped(Node(dryersOnce, 30).Angles.y - Node(dryersOnce, 31).Angles.y)), 2.5);
}

TEST(ExamplesDocument, WorkedExampleLoadsAsItSays) {
  const QString document = Document("file-formats.md");
  TModel model;
  TMeasuredData data;
  EXPECT_TRUE(model.LoadFromMemory(Fence(document, "model").toStdString()).Ok());
  EXPECT_TRUE(data.LoadFromMemory(Fence(document, "data").toStdString(), model).Ok());

  EXPECT_EQ(model.Nodes.Count(), 9u);
  EXPECT_EQ(model.Nodes.NodeRadius, 0.02);
  EXPECT_EQ(model.Nodes.ElementRadius, 0.012);
  ASSERT_EQ(model.Elements.Count(), 6u);
  EXPECT_EQ(model.Elements.Get(0)->Color.ToQColor(), QColor(128, 128, 128));
  EXPECT_TRUE(model.Elements.Get(2)->Color.IsInherited());
  const TElement& drum = *model.Elements.Get(4);
  EXPECT_EQ(drum.Type, TElement::kRoll);
  EXPECT_EQ(drum.Radius, 0.09);
  EXPECT_EQ(drum.RollParam1, 0.03);
  EXPECT_EQ(drum.RollParam2, 0.2);
  EXPECT_EQ(model.Elements.Get(5)->Color.ToQColor(), QColor(255, 0, 0));

  ASSERT_EQ(data.All.Count(), 2u);
  EXPECT_EQ(data.All.Get(0)->Frequency, 4.5);
  EXPECT_EQ(data.All.Get(0)->FindNode(7)->Angles, (TVertex{0.0, 0.0, 1.5708}));
  EXPECT_EQ(data.All.Get(1)->Frequency, 9.0);
  EXPECT_EQ(data.All.Get(1)->FindNode(6)->Position, (TVertex{-0.6, 0.0, 0.0}));
  EXPECT_EQ(data.All.Get(1)->FindNode(6)->Angles, TVertex{});
}

TEST(ExamplesDocument, MessagesAreThoseOfTheReaders) {
  const struct {
    const char* file;  // the worked example's file that gets the fault
    QByteArray text, instead;
    const char* message;
  } cases[] = {
      {"mast.mod", "[Nodes]", "[Points]", "mast.mod: it holds no nodes"},
      {"mast.mod", "2   1 6\n", "2   1 99\n",
       "mast.mod, line 23: element 6 names node 99, which does not exist; the element was "
       "dropped."},
      {"mast.mod", "]\n6\n", "]\n7\n",
       "mast.mod, line 24: the elements end after 6 of 7 records; the missing ones were dropped."},
      {"mast.mod", "]\n6\n", "]\n5\n",
       "mast.mod, line 23: there are more element records than the 5 announced; the rest was "
       "dropped."},
      {"mast.mod", " 9   0    1.4", "# drive side\n 9   0    1.4",
       "mast.mod, line 14: text that is no number ends the nodes; the records behind it were "
       "dropped, and 1 more fault followed."},
      {"mast.mod", " 1  -0.6", " 5  -0.6",
       "mast.dat: the model's nodes are not in ascending order of their numbers, so shapes may be "
       "wrong"},
      {"mast.dat", "0.35", "0,35",
       "mast.dat, line 7: the record of node 6 is not complete; the records from there on were "
       "dropped."},
      {"mast.dat", "0.35", "nan",
       "mast.dat, line 7: node 6 has a value that is no number or beyond 1e30; it was set to 0."},
      {"mast.dat", " 6 ", "16 ",
       "mast.dat, line 7: the model has no node 16; its record was dropped, and 1 more fault "
       "followed."},
      {"mast.dat", " 9   0.4   0   0\n", "",
       "mast.dat, line 12: the data set has no record for node 9 of the model; the node is not "
       "drawn "
       "at its place."},
      {"mast.dat", "[F = 9]\n 1 ", "[F = 9]\n 1 0 0 0\n 1 ",
       "mast.dat, line 22: the record of node 9 is beyond the number of the model's nodes and was "
       "dropped."},
      {"mast.dat", "[", "(", "mast.dat: it holds no data sets."},
  };
  const QString document = Document("file-formats.md");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    EXPECT_TRUE(document.contains(c.message));
    QByteArray modelText = Fence(document, "model"), dataText = Fence(document, "data");
    QByteArray& faulty = c.file == std::string("mast.mod") ? modelText : dataText;
    EXPECT_TRUE(faulty.contains(c.text));
    faulty.replace(c.text, c.instead);

    TModel model;
    TMeasuredData data;
    QString said = model.LoadFromMemory(modelText.toStdString()).Sentence("mast.mod");
    said += data.LoadFromMemory(dataText.toStdString(), model).Sentence("mast.dat");
    EXPECT_TRUE(said.contains(c.message)) << said.toStdString();
  }
}

}  // namespace
