#include "examples/generate/Bridge.h"
#include "examples/generate/Plate.h"
#include "examples/generate/Pump.h"
#include "examples/generate/Rolls.h"
#include "model/Animmodel.h"
#include "tests/support/Testing.h"

namespace {

QString ExampleFile(const QString& name) { return SourceFile("examples/" + name); }

TEST(Examples, FilesAreWhatTheGeneratorWrites) {
  for (const TExample& example : {MakePlate(), MakeBridge(), MakeRolls()}) {
    SCOPED_TRACE(example.name);
    const QString base = ExampleFile(QString::fromStdString(example.name));
    // Not EXPECT_EQ: it would print both texts whole.
    EXPECT_TRUE(Contents(base + ".mod").toStdString() == example.model);
    EXPECT_TRUE(Contents(base + ".dat").toStdString() == example.data);
  }
  EXPECT_TRUE(Contents(ExampleFile("values/pump.txt")).toStdString() == MakePumpRecord());
}

TEST(Examples, PlateFrequenciesAgreeWithPublishedOnes) {
  // omega a^2 sqrt(rho h / D) of cantilever plates with nu = 0.3, in ascending order: Young, J.
  // Appl. Mech. 17 (1950); Barton, J. Appl. Mech. 18 (1951), both in Leissa, NASA SP-160,
  // chapter 4.
  const std::pair<double, std::vector<double>> cases[] = {
      {0.5, {3.508, 5.372, 10.26}},
      {1.0, {3.494, 8.547, 21.44, 27.46, 31.17}},
      {2.0, {3.472, 14.93, 21.61, 48.71}}};
  for (const auto& [lengthToWidth, lambdas] : cases) {
    TPlate plate;
    plate.width = plate.length / lengthToWidth;
    const double stiffness = plate.modulus * std::pow(plate.thickness, 3) /
                             (12.0 * (1.0 - plate.poisson * plate.poisson));
    const double factor = 2.0 * std::numbers::pi * plate.length * plate.length *
                          std::sqrt(plate.density * plate.thickness / stiffness);
    const std::vector<TPlateMode> modes = PlateModes(plate);
    for (std::size_t i = 0; i < lambdas.size(); ++i) {
      SCOPED_TRACE(lambdas[i]);
      EXPECT_NEAR(modes[i].Frequency() * factor / lambdas[i], 1.0, 0.015);
    }
  }
}

TEST(Examples, EverySetMovesEveryNodeOfItsModel) {
  for (const auto& [name, sets] : {std::pair("plate", 6u), {"bridge", 6u}, {"rolls", 5u}}) {
    SCOPED_TRACE(name);
    TModel model;
    TMeasuredData data;
    EXPECT_TRUE(model.LoadFromFile(ExampleFile(QString(name) + ".mod")).Ok());
    EXPECT_TRUE(data.LoadFromFile(ExampleFile(QString(name) + ".dat"), model).Ok());
    EXPECT_GE(model.Nodes.Count(), 100u);
    ASSERT_EQ(data.All.Count(), sets);
    double last = 0.0;
    for (const TDataNodeList* set : data.All) {
      EXPECT_GT(set->Frequency, std::exchange(last, set->Frequency));
      EXPECT_GT(set->MaxAmplitude, 0.0);
      ASSERT_EQ(set->Count(), model.Nodes.Count());
      for (std::size_t i = 0; i < set->Count(); ++i) {
        EXPECT_EQ(set->Get(i)->Link, model.Nodes.Get(i));
      }
    }
  }
}

TEST(ExamplesDocument, WorkedExampleLoadsAsItSays) {
  const QString document = Document("file-formats.md");
  TModel model;
  TMeasuredData data;
  EXPECT_TRUE(model.LoadFromMemory(Fence(document, "model").toStdString()).Ok());
  EXPECT_TRUE(data.LoadFromMemory(Fence(document, "data").toStdString(), model).Ok());
  EXPECT_EQ(model.Nodes.Count(), 9u);
  EXPECT_EQ(model.Nodes.ElementRadius, 0.012);
  ASSERT_EQ(model.Elements.Count(), 6u);
  EXPECT_EQ(model.Elements.Get(4)->Type, TElement::kRoll);
  EXPECT_EQ(model.Elements.Get(5)->Color.ToQColor(), QColor(255, 0, 0));
  ASSERT_EQ(data.All.Count(), 2u);
  EXPECT_EQ(data.All.Get(0)->FindNode(7)->Angles, (TVertex{0.0, 0.0, 1.5708}));
  EXPECT_EQ(data.All.Get(1)->Frequency, 9.0);
  EXPECT_EQ(data.All.Get(1)->FindNode(6)->Position, (TVertex{-0.6, 0.0, 0.0}));
}

TEST(ExamplesDocument, MessagesAreThoseOfTheReaders) {
  // A fault put into the worked example's file that its message begins with.
  const std::tuple<QByteArray, QByteArray, QString> cases[] = {
      {"[Nodes]", "[Points]", "mast.mod: it holds no nodes"},
      {"2   1 6\n", "2   1 99\n",
       "mast.mod, line 23: element 6 names node 99, which does not exist; the element was "
       "dropped."},
      {"]\n6\n", "]\n7\n",
       "mast.mod, line 24: the elements end after 6 of 7 records; the missing ones were dropped."},
      {"]\n6\n", "]\n5\n",
       "mast.mod, line 23: there are more element records than the 5 announced; the rest was "
       "dropped."},
      {" 9   0    1.4", "# drive side\n 9   0    1.4",
       "mast.mod, line 14: text that is no number ends the nodes; the records behind it were "
       "dropped, and 1 more fault followed."},
      {"0.35", "0,35",
       "mast.dat, line 7: the record of node 6 is not complete; the records from there on were "
       "dropped."},
      {"0.35", "nan",
       "mast.dat, line 7: node 6 has a value that is no number or beyond 1e30; it was set to 0."},
      {" 6 ", "16 ",
       "mast.dat, line 7: the model has no node 16; its record was dropped, and 1 more fault "
       "followed."},
      {" 9   0.4   0   0\n", "",
       "mast.dat, line 12: the data set has no record for node 9 of the model; the node is not "
       "drawn at its place."},
      {"[F = 9]\n 1 ", "[F = 9]\n 1 0 0 0\n 1 ",
       "mast.dat, line 22: the record of node 9 is beyond the number of the model's nodes and was "
       "dropped."},
      {"[", "(", "mast.dat: it holds no data sets."}};
  const QString document = Document("file-formats.md");
  const QByteArray modelText = Fence(document, "model"), dataText = Fence(document, "data");
  const auto said = [](const QByteArray& modelFile, const QByteArray& dataFile) {
    TModel model;
    TMeasuredData data;
    const QString first = model.LoadFromMemory(modelFile.toStdString()).Sentence("mast.mod");
    return first + data.LoadFromMemory(dataFile.toStdString(), model).Sentence("mast.dat");
  };
  for (const auto& [text, instead, message] : cases) {
    SCOPED_TRACE(message.toStdString());
    EXPECT_TRUE(document.contains(message));
    const bool inModel = message.startsWith("mast.mod");
    QByteArray faulty = inModel ? modelText : dataText;
    EXPECT_TRUE(faulty.contains(text));
    faulty.replace(text, instead);
    const QString sentence = inModel ? said(faulty, dataText) : said(modelText, faulty);
    EXPECT_TRUE(sentence.contains(message)) << sentence.toStdString();
  }
  const QString order =
      "mast.dat: the model's nodes are not in ascending order of their numbers, so shapes may be "
      "wrong";
  EXPECT_TRUE(document.contains(order));
  EXPECT_TRUE(
      said(QByteArray(modelText).replace(" 1  -0.6", " 5  -0.6"), dataText).contains(order));
}

}  // namespace
