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
      EXPECT_NEAR(modes[i].Frequency() * factor / lambdas[i], 1.0, 0.015) << lambdas[i];
    }
  }
}

TEST(Examples, EverySetMovesEveryNodeOfItsModel) {
  for (const auto& [name, sets] : {std::pair("plate", 6u), {"bridge", 6u}, {"rolls", 5u}}) {
    SCOPED_TRACE(name);
    TModel model;
    TMeasuredData data;
    EXPECT_TRUE(model.LoadFromFile(ExampleFile(QString(name) + ".mod")).Ok());
    // Ok: there is a record for each node.
    EXPECT_TRUE(data.LoadFromFile(ExampleFile(QString(name) + ".dat"), model).Ok());
    EXPECT_GE(model.Nodes.Count(), 100u);
    ASSERT_EQ(data.All.Count(), sets);
    double last = 0.0;
    for (const TDataNodeList* set : data.All) {
      EXPECT_GT(set->Frequency, std::exchange(last, set->Frequency));
      EXPECT_GT(set->MaxAmplitude, 0.0);
      EXPECT_EQ(set->Count(), model.Nodes.Count());
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
  const QString document = Document("file-formats.md");
  QByteArray modelText = Fence(document, "model"), dataText = Fence(document, "data");
  // A fault in the worked example's files for each message of the document in turn.
  const std::tuple<QByteArray*, QByteArray, QByteArray> faults[] = {
      {&modelText, "[Nodes]", "[Points]"},
      {&modelText, "2   1 6\n", "2   1 99\n"},
      {&modelText, "]\n6\n", "]\n7\n"},
      {&modelText, "]\n6\n", "]\n5\n"},
      {&modelText, " 9   0    1.4", "# drive side\n 9   0    1.4"},
      {&modelText, " 1  -0.6", " 5  -0.6"},
      {&dataText, "0.35", "0,35"},
      {&dataText, "0.35", "nan"},
      {&dataText, " 6 ", "16 "},
      {&dataText, "[F = 9]\n 1 ", "[F = 9]\n 1 0 0 0\n 1 "},
      {&dataText, "[F = 9]", "[F = 9,5]"},
      {&modelText, "[Nodes]", "[Points]"},
      {&dataText, " 9   0.4   0   0\n", ""},
      {&dataText, "[F = 9]", "[F = 8]\n[F = 9]"},
      {&dataText, "[", "("}};
  const QRegularExpression row("\\n\\| `(?:Cannot read )?([^`]*)\\.`");
  const QRegularExpression counted("line \\d+|\\d+ more");
  auto messages =
      row.globalMatch(document, document.indexOf("\n| `Cannot read mast.mod: it holds"));
  for (const auto& [file, text, instead] : faults) {
    ASSERT_TRUE(messages.hasNext());
    const QString message = messages.next().captured(1).replace(counted, "#");
    EXPECT_TRUE(file->contains(text));
    const QByteArray whole = *file;
    file->replace(text, instead);
    TModel model;
    TMeasuredData data;
    QString said = model.LoadFromMemory(modelText.toStdString()).Sentence("mast.mod");
    said += data.LoadFromMemory(dataText.toStdString(), model).Sentence("mast.dat");
    EXPECT_THAT(said.replace(counted, "#").toStdString(),
                testing::HasSubstr(message.toStdString()));
    *file = whole;
  }
  EXPECT_FALSE(messages.hasNext());
}

}  // namespace
