#include "exchange/Universal.h"

#include "tests/support/Testing.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct TRead {
  TJob Job;
  TFindings Findings;
};

TRead Read(const std::string& text) {
  TRead read;
  read.Findings.BeginFile(QStringLiteral("job.unv"));
  ReadUniversal(text, read.Job, read.Findings);
  return read;
}

/// A data set: its type in columns 1 to 6, its lines, and the marks around them.
std::string Set(const std::string& type, const std::string& lines) {
  return "    -1\n" + std::string(6 - type.size(), ' ') + type + '\n' + lines + "    -1\n";
}

/// Integers in columns of ten.
std::string Ints(std::initializer_list<int> values) {
  std::string line;
  for (const int value : values) {
    const std::string text = std::to_string(value);
    line += std::string(10 - text.size(), ' ') + text;
  }
  return line + '\n';
}

const std::string kFiveLines = "NONE\nNONE\nNONE\nNONE\nNONE\n";

std::vector<std::int32_t> CornersOf(const TJob& job, std::size_t element) {
  const auto begin = job.Corners.begin() + job.Elements[element].First;
  return {begin, begin + job.Elements[element].Count};
}

std::vector<std::int32_t> IDsOf(const TJob& job) {
  std::vector<std::int32_t> ids;
  for (const TJobNode& node : job.Nodes) ids.push_back(node.ID);
  return ids;
}

TEST(Universal, HeadUnitsAndSystemsAreRead) {
  const TRead read = Read(
      Set("151", "A bridge \xe9t\xe9\nabout\n\n\n\n\n\n") +
      Set("164", Ints({5}).substr(0, 10) + "mm mN               " + Ints({1}) +
                     "  1.00000000000000000D+03  1.00000000000000000D+03  1.00000000000000000D+00\n"
                     "  2.73149999999999977D+02\n") +
      Set("164", Ints({1}) + " 1.0 1.0 1.0\n") +  // the first counts
      Set("18",
          Ints({7, 1, 0, 1, 1}) +
              "hub\n"
              "  1.00000E+00  2.00000E+00  3.00000E+00  1.00000E+00  5.00000E+00  3.00000E+00\n"
              "  0.00000E+00  3.00000E+00  3.00000E+00\n") +
      Set("2420",
          Ints({1}) + "part\n" + Ints({8, 2, 0}) +
              "turned\n"
              "   0.0000000000000000E+00   1.0000000000000000D+00   0.0000000000000000E+00\n"
              "  -1.0000000000000000E+00   0.0000000000000000E+00   0.0000000000000000E+00\n"
              "   0.0000000000000000E+00   0.0000000000000000E+00   1.0000000000000000E+00\n"
              "   4.0000000000000000E+00   5.0000000000000000E+00   6.0000000000000000E+00\n"));
  const TJob& job = read.Job;
  EXPECT_EQ(job.ModelName, QStringLiteral("A bridge \u00e9t\u00e9"));
  EXPECT_EQ(job.Units.Code, 5);
  EXPECT_EQ(job.Units.Name, "mm mN");
  EXPECT_EQ(job.Units.TemperatureMode, 1);
  EXPECT_EQ(job.Units.Length, 1000.0);
  EXPECT_EQ(job.Units.TemperatureOffset, 273.15);
  EXPECT_THAT(job.LengthOfFile, ElementsAre(1000.0));
  ASSERT_EQ(job.Systems.size(), 2U);
  // x points along global y, and the third point lies on the side of -x: z is -x, y is -z.
  EXPECT_EQ(job.Systems[0].Kind, TSystemKind::Cylindrical);
  EXPECT_EQ(job.Systems[0].Origin, (TVertex{1, 2, 3}));
  EXPECT_THAT(job.Systems[0].Axes,
              ElementsAre(TVertex{0, 1, 0}, TVertex{0, 0, -1}, TVertex{-1, 0, 0}));
  EXPECT_EQ(job.Systems[1].Kind, TSystemKind::Spherical);
  EXPECT_EQ(job.Systems[1].Origin, (TVertex{4, 5, 6}));
  EXPECT_THAT(job.Systems[1].Axes,
              ElementsAre(TVertex{0, 1, 0}, TVertex{-1, 0, 0}, TVertex{0, 0, 1}));
  EXPECT_EQ(read.Findings.ToKnow(), 1U) << read.Findings.Text().toStdString();
  EXPECT_THAT(read.Findings.Text().toStdString(), HasSubstr("another unit of length"));
}

const std::string kNodes15 =
    "         3         1         2        11  1.00000E+00 -2.50000E-01  0.00000E+00\n"
    "        70         0         0         1  0.00000E+00  1.25000E+02  1.00000E-02\n"
    "1234567890         0         0         1  3.00000E+00  0.00000E+00  0.00000E+00\n";

TEST(Universal, NodesComeInEveryWayThatWritersHave) {
  const std::string doubled =
      Ints({3, 1, 2, 11}) +
      "   1.0000000000000000D+00  -2.5000000000000000D-01   0.0000000000000000D+00\n" +
      Ints({70, 0, 0, 1}) +
      "   0.0000000000000000D+00   1.2500000000000000D+02   1.0000000000000000D-02\n" +
      Ints({1234567890, 0, 0, 1}) +
      "   3.0000000000000000D+00   0.0000000000000000D+00   0.0000000000000000D+00\n";
  QString returns = QString::fromStdString(Set("15", kNodes15));
  const std::string oldEnds = QString(returns).replace('\n', '\r').toStdString();
  const std::string bothEnds = QString(returns).replace('\n', "\r\n").toStdString();
  const std::string texts[] = {
      Set("15", kNodes15),
      Set("2411", doubled),
      Set("781", doubled),
      oldEnds,
      bothEnds,
      Set("15", kNodes15).substr(0, Set("15", kNodes15).size() - 1),
      "Remarks before it\n   15\n" + Set("15", kNodes15),
      "\xef\xbb\xbf" + Set("15", kNodes15),
      "    -1          \n    15          \n" + kNodes15 + "    -1   \n",
      "    -1\n    -1\n    15\n" + kNodes15 + "    -1\n",  // a mark too many
      Set("15", "3 1 2 11 1.0 -0.25 0\n70 0 0 1 0 125 .01\n1234567890 0 0 1 3 0 0\n"),
      Set("15",
          "         3         1         2        11 +1.0000E+000-2.50000E-001 0.00000E+00\n"
          "        70         0         0         1 0.00000D+00  1.25000d+02      1.0-002\n"
          "1234567890         0         0         1 3.0\n"
          "1234567890         0         0         1 3.0          0.0          0.0\n"),
  };
  for (const std::string& text : texts) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(IsUniversal(text));
    const TJob job = Read(text).Job;
    ASSERT_THAT(IDsOf(job), ElementsAre(3, 70, 1234567890));
    EXPECT_EQ(job.Nodes[0].Definition, 1);
    EXPECT_EQ(job.Nodes[0].Displacement, 2);
    EXPECT_EQ(job.Nodes[0].Coordinates, (TVertex{1, -0.25, 0}));
    EXPECT_EQ(job.Nodes[1].Coordinates, (TVertex{0, 125, 0.01}));
    EXPECT_EQ(job.Nodes[2].Coordinates, (TVertex{3, 0, 0}));
  }
}

TEST(Universal, ElementsKeepTheirCorners) {
  const auto numbered = [](int count) {
    std::string lines;
    for (int i = 1; i <= count; ++i) lines += Ints({i}).substr(0, 10) + (i % 8 == 0 ? "\n" : "");
    return count % 8 == 0 ? lines : lines + '\n';
  };
  const struct {
    int Descriptor, Nodes;
    TElementShape Shape;
    std::vector<std::int32_t> Corners;
  } rows[] = {
      {11, 2, TElementShape::Bar, {1, 2}},
      {21, 2, TElementShape::Bar, {1, 2}},
      {24, 3, TElementShape::Bar, {1, 3}},
      {121, 2, TElementShape::Bar, {1, 2}},
      {136, 2, TElementShape::Bar, {1, 2}},
      {91, 3, TElementShape::Face, {1, 2, 3}},
      {44, 4, TElementShape::Face, {1, 2, 3, 4}},
      {72, 6, TElementShape::Face, {1, 3, 5}},
      {95, 8, TElementShape::Face, {1, 3, 5, 7}},
      {111, 4, TElementShape::Tetrahedron, {1, 2, 3, 4}},
      {118, 10, TElementShape::Tetrahedron, {1, 3, 5, 10}},
      {112, 6, TElementShape::Wedge, {1, 2, 3, 4, 5, 6}},
      {113, 15, TElementShape::Wedge, {1, 3, 5, 10, 12, 14}},
      {115, 8, TElementShape::Brick, {1, 2, 3, 4, 5, 6, 7, 8}},
      {116, 20, TElementShape::Brick, {1, 3, 5, 7, 13, 15, 17, 19}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.Descriptor);
    const bool isBeam = row.Descriptor < 30;
    const std::string nodes = (isBeam ? Ints({0, 1, 1}) : std::string()) + numbered(row.Nodes);
    const std::string last = Ints({6, 136, 1, 1, 7, 2}) + Ints({8, 9});
    const TRead read =
        Read(Set("2412", Ints({5, row.Descriptor, 1, 1, 7, row.Nodes}) + nodes + last) +
             Set("780", Ints({5, row.Descriptor, 1, 1, 1, 1, 7, row.Nodes}) + nodes));
    const TJob& job = read.Job;
    ASSERT_EQ(job.Elements.size(), 3U) << read.Findings.Text().toStdString();
    for (const std::size_t i : {0, 2}) {
      EXPECT_EQ(job.Elements[i].ID, 5);
      EXPECT_EQ(job.Elements[i].Shape, row.Shape);
      EXPECT_EQ(CornersOf(job, i), row.Corners);
      EXPECT_EQ(job.Places[job.Elements[i].Set].Line, i == 0 ? 2U : job.Places[1].Line);
    }
    EXPECT_THAT(CornersOf(job, 1), ElementsAre(8, 9));
    EXPECT_EQ(read.Findings.ToKnow(), 0U);
  }
}

TEST(Universal, TraceLinesAreStrokesBetweenNodes) {
  const TRead read = Read(
      Set("82", Ints({4, 11, 7}) + "outline\n" + Ints({1, 2, 3, 0, 5, 6, 0, 7}) + Ints({8, 8, 9})));
  std::vector<std::vector<std::int32_t>> strokes;
  for (std::size_t i = 0; i < read.Job.Elements.size(); ++i) {
    EXPECT_TRUE(read.Job.Elements[i].IsTraced);
    EXPECT_EQ(read.Job.Elements[i].ID, 4);
    strokes.push_back(CornersOf(read.Job, i));
  }
  EXPECT_THAT(strokes, ElementsAre(ElementsAre(1, 2), ElementsAre(2, 3), ElementsAre(5, 6),
                                   ElementsAre(7, 8), ElementsAre(8, 9)));
  EXPECT_EQ(read.Findings.ToKnow(), 0U);
}

/// Data at nodes of type 55: the head, the lines that depend on the analysis, the values.
std::string Shape55(std::initializer_list<int> head, const std::string& specifics,
                    const std::string& values) {
  return Set("55", "first\nsecond\n\n\nNONE\n" + Ints(head) + specifics + values);
}

/// The same of type 2414, at nodes.
std::string Shape2414(std::initializer_list<int> head, const std::string& specifics,
                      const std::string& values) {
  return Set("2414", Ints({1}) + "shape\n" + Ints({1}) + "first\nsecond\n\n\nNONE\n" + Ints(head) +
                         specifics + values);
}

const std::string kValues = "         3\n  1.00000E+00 -2.50000E+00  5.00000E-01\n";
const std::string kZeros =
    "  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00\n";

TEST(Universal, ShapesSayWhatTheyAre) {
  const std::string modalAB = "  3.00000E+00  4.00000E+00  5.00000E+00  6.00000E+00\n";
  const std::string ids2414 = Ints({0, 0, 0, 0, 2, 7, 8, 9}) + Ints({0, 0});
  const std::string reals2414 =
      "  1.50000E-01  1.25000E+01  6.00000E+00  2.00000E+00  1.00000E-02  3.00000E-02\n";
  const struct {
    std::string Text;
    TShapeKind Kind;
    double Frequency, Damping, Hysteretic, Mass, Time;
    int Mode;
    std::complex<double> Eigenvalue, ModalA, ModalB;
  } rows[] = {
      {Shape55({1, 2, 2, 12, 2, 3},
               Ints({2, 4, 2, 7}) + "  1.25000E+01  2.00000E+00  1.00000E-02  3.00000E-02\n",
               kValues),
       TShapeKind::NormalMode, 12.5, 0.01, 0.03, 2, 0, 7, 0, 0, 0},
      // -3 + 4i rad/s: 4 / 2 pi Hz, and 3 / 5 of the critical damping
      {Shape55({1, 3, 2, 12, 2, 3}, Ints({2, 6, 2, 7}) + " -3.00000E+00  4.00000E+00" + modalAB,
               kValues),
       TShapeKind::ComplexMode,
       0.63661977236758138,
       0.6,
       0,
       0,
       0,
       7,
       {-3, 4},
       {3, 4},
       {5, 6}},
      {Shape55({1, 7, 2, 12, 2, 3}, Ints({2, 6, 2, 7}) + " -3.00000E+00 -4.00000E+00" + modalAB,
               kValues),
       TShapeKind::ComplexModeSecondOrder,
       0.63661977236758138,
       0.6,
       0,
       0,
       0,
       7,
       {-3, -4},
       {3, 4},
       {5, 6}},
      {Shape55({1, 3, 2, 12, 2, 3}, Ints({2, 2, 2, 7}) + " -3.00000E+00  4.00000E+00\n", kValues),
       TShapeKind::ComplexMode,
       0.63661977236758138,
       0.6,
       0,
       0,
       0,
       7,
       {-3, 4},
       0,
       0},
      {Shape55({1, 5, 2, 12, 2, 3}, Ints({2, 1, 2, 7}) + "  1.25000E+01\n", kValues),
       TShapeKind::Response, 12.5, 0, 0, 0, 0, 7, 0, 0, 0},
      {Shape55({1, 4, 2, 12, 2, 3}, Ints({2, 1, 2, 7}) + "  1.50000E-01\n", kValues),
       TShapeKind::Transient, 0, 0, 0, 0, 0.15, 7, 0, 0, 0},
      {Shape55({1, 1, 2, 12, 2, 3}, Ints({1, 1, 2}) + "  0.00000E+00\n", kValues),
       TShapeKind::Static, 0, 0, 0, 0, 0, 0, 0, 0, 0},
      {Shape55({1, 6, 2, 12, 2, 3}, Ints({1, 1, 2}) + "  4.00000E+00\n", kValues),
       TShapeKind::Buckling, 0, 0, 0, 0, 0, 0, 4, 0, 0},
      {Shape2414({1, 2, 2, 12, 2, 3}, ids2414 + reals2414 + kZeros, kValues),
       TShapeKind::NormalMode, 12.5, 0.01, 0.03, 2, 0, 7, 6, 0, 0},
      // the eigenvalue alone: 2 rad/s
      {Shape2414({1, 2, 2, 12, 2, 3}, ids2414 + "  0. 0. 4. 0. 0. 0.\n" + kZeros, kValues),
       TShapeKind::NormalMode, 0.31830988618379067, 0, 0, 0, 0, 7, 4, 0, 0},
      {Shape2414({1, 3, 2, 12, 2, 3}, ids2414 + reals2414 + " -3.00000E+00  4.00000E+00" + modalAB,
                 kValues),
       TShapeKind::ComplexMode,
       0.63661977236758138,
       0.6,
       0.03,
       2,
       0,
       7,
       {-3, 4},
       {3, 4},
       {5, 6}},
      {Shape2414({1, 3, 2, 12, 2, 3}, ids2414 + reals2414 + kZeros, kValues),
       TShapeKind::ComplexMode, 12.5, 0.01, 0.03, 2, 0, 7, 6, 0, 0},
      {Shape2414({1, 5, 2, 12, 2, 3}, ids2414 + reals2414 + kZeros, kValues), TShapeKind::Response,
       12.5, 0.01, 0.03, 2, 0, 9, 6, 0, 0},
      {Shape2414({1, 4, 2, 12, 2, 3}, ids2414 + reals2414 + kZeros, kValues), TShapeKind::Transient,
       0, 0, 0, 0, 0.15, 8, 0, 0, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.Text);
    const TRead read = Read(row.Text);
    ASSERT_EQ(read.Job.Shapes.size(), 1U) << read.Findings.Text().toStdString();
    const TJobShape& shape = read.Job.Shapes[0];
    EXPECT_EQ(shape.Info.Kind, row.Kind);
    EXPECT_DOUBLE_EQ(shape.Frequency, row.Frequency);
    EXPECT_DOUBLE_EQ(shape.Info.Damping, row.Damping);
    EXPECT_EQ(shape.Info.HystereticDamping, row.Hysteretic);
    EXPECT_EQ(shape.Info.ModalMass, row.Mass);
    EXPECT_EQ(shape.Info.Time, row.Time);
    EXPECT_EQ(shape.Info.LoadCase, 2);
    EXPECT_EQ(shape.Info.Mode, row.Mode);
    EXPECT_EQ(shape.Info.Eigenvalue, row.Eigenvalue);
    EXPECT_EQ(shape.Info.ModalA, row.ModalA);
    EXPECT_EQ(shape.Info.ModalB, row.ModalB);
    EXPECT_EQ(shape.Info.Quantity, 12);
    EXPECT_THAT(shape.Info.Lines, ElementsAre("first", "second", "", "", "NONE"));
    EXPECT_THAT(shape.Real, ElementsAre(TVertex{1, -2.5, 0.5}));
    EXPECT_EQ(read.Findings.ToKnow(), 0U);
  }
}

TEST(Universal, ValuesAtNodesAreRealOrComplexSingleOrDouble) {
  const std::string mode = Ints({2, 4, 1, 1}) + "  1.00000E+00  0.00000E+00  0.00000E+00\n";
  const struct {
    int Characteristic, DataType, Count;
    std::string Lines;
    bool IsComplex;
  } rows[] = {
      {2, 2, 3, "  1.00000E+00 -2.50000E+00  5.00000E-01\n", false},
      {2, 2, 3, " 1. -2.5 .5\n", false},
      {2, 4, 3, "  1.000000000000E+00 -2.500000000000E+00  5.000000000000E-01\n", false},
      {2, 4, 3, "   1.0000000000000000D+00  -2.5000000000000000D+00   5.0000000000000000D-01\n",
       false},
      {3, 2, 6, "  1.00000E+00 -2.50000E+00  5.00000E-01  7.00000E+00  8.00000E+00  9.00000E+00\n",
       false},
      {2, 5, 3, "  1.00000E+00  3.00000E+00 -2.50000E+00 -4.00000E+00  5.00000E-01  0.00000E+00\n",
       true},
      {2, 6, 3,
       "  1.000000000000E+00  3.000000000000E+00 -2.500000000000E+00 -4.000000000000E+00"
       "  5.000000000000E-01  0.000000000000E+00\n",
       true},
      {2, 6, 3,
       "   1.0000000000000000E+00   3.0000000000000000E+00  -2.5000000000000000E+00\n"
       "  -4.0000000000000000E+00   5.0000000000000000E-01   0.0000000000000000E+00\n",
       true},
      {3, 5, 6,
       "  1.00000E+00  3.00000E+00 -2.50000E+00 -4.00000E+00  5.00000E-01  0.00000E+00\n"
       "  7.00000E+00  7.00000E+00  7.00000E+00  7.00000E+00  7.00000E+00  7.00000E+00\n",
       true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.Lines);
    const std::string values = Ints({3}) + row.Lines + Ints({70000000}) + row.Lines;
    const TRead read =
        Read(Shape55({1, 2, row.Characteristic, 8, row.DataType, row.Count}, mode, values));
    ASSERT_EQ(read.Job.Shapes.size(), 1U) << read.Findings.Text().toStdString();
    const TJobShape& shape = read.Job.Shapes[0];
    EXPECT_EQ(shape.Info.IsComplex, row.IsComplex);
    EXPECT_THAT(shape.IDs, ElementsAre(3, 70000000));
    EXPECT_THAT(shape.Real, ElementsAre(TVertex{1, -2.5, 0.5}, TVertex{1, -2.5, 0.5}));
    const TLarge<TVertex> imaginary(row.IsComplex ? 2 : 0, TVertex{3, -4, 0});
    EXPECT_EQ(shape.Imaginary, imaginary);
    EXPECT_EQ(read.Findings.ToKnow(), row.Count == 6 ? 1U : 0U);
  }
}

/// The lines of a function between type and values: 3 +Z over 12 -X, `count` values from 10 on in
/// steps of 0.5.
std::string FunctionHead(int dataType, bool isEven, int count) {
  const std::string axis = "    0    0    0 frequency            Hz                  \n";
  return kFiveLines +
         "    4         1    1         2 wing               3   3 tail              12  -1\n" +
         Ints({dataType, count, isEven ? 1 : 0}).substr(0, 30) +
         "  1.00000E+01  5.00000E-01  0.00000E+00\n" + Ints({18}).substr(0, 10) + axis +
         Ints({12}).substr(0, 10) + "    1    0    0 acceleration         m/s2                \n" +
         Ints({13}).substr(0, 10) + "    0    1    0 force                N                   \n" +
         Ints({0}).substr(0, 10) + "    0    0    0 NONE                 NONE\n";
}

/// What a function with the values 1, -2.5, 0.15625, 1024, or complex ones of these, must be.
void ExpectFunction(const TRead& read, int dataType, bool isEven, std::size_t toKnow = 0) {
  ASSERT_EQ(read.Job.Functions.size(), 1U) << read.Findings.Text().toStdString();
  const TMeasuredFunction& function = read.Job.Functions[0];
  const bool isDouble = dataType == 4 || dataType == 6;
  EXPECT_EQ(function.IsComplex, dataType > 4);
  EXPECT_EQ(function.Count(), dataType > 4 ? 2U : 4U);
  const std::vector<double> values(function.Single.begin(), function.Single.end());
  EXPECT_THAT(isDouble ? function.Double : values, ElementsAre(1, -2.5, 0.15625, 1024));
  EXPECT_EQ(isDouble ? values : function.Double, std::vector<double>());
  EXPECT_EQ(function.Abscissas, isEven         ? std::vector<double>()
                                : dataType > 4 ? std::vector<double>({10, 11.5})
                                               : std::vector<double>({10, 11.5, 12, 14}));
  EXPECT_EQ(read.Findings.ToKnow(), toKnow) << read.Findings.Text().toStdString();
}

TEST(Universal, FunctionsSayWhereAndWhatWasMeasured) {
  const std::string values = "  1.00000E+00 -2.50000E+00  1.56250E-01  1.02400E+03\n";
  const std::string byBlanks =
      "    4         1    1         2 wing               3   3 tail              12  -1\n";
  std::string head = FunctionHead(2, true, 4);
  const std::string rows[] = {
      head, head.replace(head.find(byBlanks), byBlanks.size(), "4 1 1 2 wing 3 3 tail 12 -1\n")};
  for (const std::string& row : rows) {
    SCOPED_TRACE(row);
    const TRead read = Read(Set("58", row + values));
    ExpectFunction(read, 2, true);
    const TMeasuredFunction& function = read.Job.Functions.at(0);
    EXPECT_EQ(function.Kind, TFunctionKind::FrequencyResponse);
    EXPECT_EQ(function.LoadCase, 2);
    EXPECT_EQ(function.Response.Entity, "wing");
    EXPECT_EQ(function.Response.Node, 3);
    EXPECT_EQ(function.Response.Direction, 3);
    EXPECT_EQ(function.Reference.Node, 12);
    EXPECT_EQ(function.Reference.Direction, -1);
    EXPECT_EQ(function.First, 10.0);
    EXPECT_EQ(function.Step, 0.5);
    EXPECT_EQ(function.Abscissa.Quantity, 18);
    EXPECT_EQ(function.Abscissa.Label, "frequency");
    EXPECT_EQ(function.Ordinate.LengthExponent, 1);
    EXPECT_EQ(function.Denominator.ForceExponent, 1);
    EXPECT_THAT(read.Findings.Text().toStdString(),
                HasSubstr("function wing 3 +Z / tail 12 -X, frequency response, m/s2/N, 4 points"));
  }
}

TEST(Universal, FunctionsAreReadFromText) {
  const struct {
    int DataType;
    bool IsEven;
    const char* Values;
  } rows[] = {
      {2, true, "  1.00000E+00 -2.50000E+00  1.56250E-01\n  1.02400E+03\n"},
      {5, true, "  1.00000E+00 -2.50000E+00  1.56250E-01  1.02400E+03\n"},
      {4, true,
       "  1.000000000000E+00 -2.500000000000E+00  1.562500000000E-01  1.024000000000E+03\n"},
      {6, true,
       "  1.000000000000E+00 -2.500000000000E+00  1.562500000000E-01  1.024000000000E+03\n"},
      {2, false,
       "  1.00000E+01  1.00000E+00  1.15000E+01 -2.50000E+00  1.20000E+01  1.56250E-01\n"
       "  1.40000E+01  1.02400E+03\n"},
      {5, false,
       "  1.00000E+01  1.00000E+00 -2.50000E+00  1.15000E+01  1.56250E-01  1.02400E+03\n"},
      {4, false,
       "  1.00000E+01  1.000000000000E+00  1.15000E+01 -2.500000000000E+00\n"
       "  1.20000E+01  1.562500000000E-01  1.40000E+01  1.024000000000E+03\n"},
      {6, false,
       "  1.00000E+01  1.000000000000E+00 -2.500000000000E+00\n"
       "  1.15000E+01  1.562500000000E-01  1.024000000000E+03\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.Values);
    const std::string head = FunctionHead(row.DataType, row.IsEven, row.DataType > 4 ? 2 : 4);
    ExpectFunction(Read(Set("58", head + row.Values)), row.DataType, row.IsEven);
  }
}

template <class T>
void AddBytes(std::string& bytes, double value, bool isBig) {
  const T number = static_cast<T>(value);
  std::string raw(reinterpret_cast<const char*>(&number), sizeof number);
  if (isBig) std::reverse(raw.begin(), raw.end());
  bytes += raw;
}

/// The values of ExpectFunction in binary. Abscissas may be single where values are double.
std::string BinaryValues(int dataType, bool isEven, bool isBig, bool isNarrow) {
  const double values[] = {1, -2.5, 0.15625, 1024};
  const double abscissas[] = {10, 11.5, 12, 14};
  const bool isDouble = dataType == 4 || dataType == 6;
  const int parts = dataType > 4 ? 2 : 1;
  std::string bytes;
  for (int i = 0; i < 4; ++i) {
    if (!isEven && i % parts == 0) {
      isDouble && !isNarrow ? AddBytes<double>(bytes, abscissas[i / parts], isBig)
                            : AddBytes<float>(bytes, abscissas[i / parts], isBig);
    }
    isDouble ? AddBytes<double>(bytes, values[i], isBig) : AddBytes<float>(bytes, values[i], isBig);
  }
  return bytes;
}

std::string BinarySet(bool isBig, int floatForm, int byteCount, const std::string& lines) {
  const std::string numbers = "     " + std::to_string(isBig ? 2 : 1) + "     " +
                              std::to_string(floatForm) + "          11" + "  " +
                              Ints({byteCount}).substr(0, 10);
  std::string set = Set("58b", lines);
  return set.insert(set.find("58b") + 3, numbers + "     0     0           0           0");
}

TEST(Universal, FunctionsAreReadFromBytesOfEitherOrder) {
  for (int variant = 0; variant < 32; ++variant) {
    const int dataType = std::array{2, 4, 5, 6}[static_cast<std::size_t>(variant % 4)];
    const bool isEven = variant & 4, isBig = variant & 8, isNarrow = variant & 16;
    const std::string bytes = BinaryValues(dataType, isEven, isBig, isNarrow);
    const std::string head = FunctionHead(dataType, isEven, dataType > 4 ? 2 : 4);
    const int size = static_cast<int>(bytes.size());
    for (const char* const tail : {"", "\n"}) {
      for (const int announced : {size, 0, 7, size + 3, 2'000'000'000, -5}) {
        SCOPED_TRACE(testing::Message() << variant << ' ' << announced);
        // The next data set shows whether the end was found.
        const TRead read =
            Read(BinarySet(isBig, 2, announced, head + bytes + tail) + Set("15", kNodes15));
        ExpectFunction(read, dataType, isEven, announced == size ? 0 : 1);
        EXPECT_EQ(read.Job.Nodes.size(), 3U);
      }
    }
  }
}

TEST(Universal, CarriageReturnsThatATransferInsertedAreTakenOut) {
  // 1.0087... and -2.5 with two and one line feeds among their bytes
  const std::string bytes("\x0a\x0a\x81\x3f\x0a\x00\x20\xc0", 8);
  for (const std::string tail : {"", "\n"}) {
    const std::string whole =
        BinarySet(false, 2, 8, FunctionHead(2, true, 2) + bytes + tail) + Set("15", kNodes15);
    std::string inserted;
    for (const char c : whole) inserted += c == '\n' ? std::string("\r\n") : std::string(1, c);
    const TRead read = Read(inserted);
    ASSERT_EQ(read.Job.Functions.size(), 1U);
    EXPECT_EQ(read.Job.Functions[0].Single, Read(whole).Job.Functions.at(0).Single);
    EXPECT_NEAR(read.Job.Functions[0].Single.at(1), -2.5, 1e-5);
    EXPECT_EQ(read.Job.Nodes.size(), 3U);
    EXPECT_THAT(read.Findings.Text().toStdString(), HasSubstr("carriage returns that a transfer"));
  }
}

TEST(Universal, DamageIsNotedAndTheRestKept) {
  const std::string mode =
      Ints({2, 4, 1, 1}) + "  1.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00\n";
  const std::string shape = Shape55({1, 2, 2, 8, 2, 3}, mode, kValues);
  const std::string nodes = Set("15", kNodes15);
  const std::string face = Ints({5, 44, 1, 1, 7, 4}) + Ints({1, 2, 3, 4});
  const std::string values = "  1.00000E+00  2.00000E+00\n";
  const std::string axis = Ints({7, 0, 0, 1, 1}) + "flat\n";
  const struct {
    std::string Text;
    std::size_t Nodes, Elements, Shapes, Functions;
    const char* Finding;
  } rows[] = {
      {nodes.substr(0, nodes.size() - 30), 2, 0, 0, 0, "cuts the data set"},
      {shape + shape.substr(0, shape.size() - 20), 0, 0, 1, 0, "has 2 of its 3 values"},
      {nodes.substr(0, nodes.size() - 7) + shape, 3, 0, 1, 0, "that ends the data set"},
      {Set("999", "anything\n") + nodes, 3, 0, 0, 0, "its type is not known"},
      {Set("", "\xff\xfe what\n") + nodes, 3, 0, 0, 0, "its type is not known"},
      {Set("15", "garbage\n" + kNodes15 + "\n"), 3, 0, 0, 0,
       "line 3  the line holds no whole node"},
      {Set("15", Ints({9, 0, 0, 0}).substr(0, 40) + "          nan 0.0 1e31\n" + kNodes15), 3, 0, 0,
       0, "node 9: a coordinate is no number"},
      {Set("2411", Ints({1, 0, 0, 0}) + Ints({2, 0, 0, 0}) + " 1.0 2.0 3.0\n"), 1, 0, 0, 0,
       "node 1 has no coordinates"},
      {Set("2411", Ints({1, 0, 0, 0})), 0, 0, 0, 0, "node 1 has no coordinates"},
      {Set("15", std::string(1'000'000, '1') + '\n' + kNodes15), 3, 0, 0, 0, "no whole node"},
      {Set("2412", Ints({1, 44, 1, 1, 7, 1'000'000'000}) + Ints({1, 2, 3, 4}) + face), 0, 1, 0, 0,
       "element 1 cannot have 1000000000 nodes"},
      {Set("2412", Ints({1, 44, 1, 1, 7, 4}) + face), 0, 1, 0, 0, "element 1 has not the 4 nodes"},
      {Set("2412", Ints({1, 44, 1, 1, 7, 8}) + Ints({1, 2, 3, 4}) + face), 0, 1, 0, 0,
       "element 1 has not the 8 nodes"},
      {Set("2412", Ints({1, 44, 1, 1, 7, 5}) + Ints({1, 2, 3, 4, 5}) + face), 0, 1, 0, 0,
       "element 1 of descriptor 44 cannot have 5 nodes"},
      {Set("2412",
           Ints({1, 161, 1, 1, 7, 1}) + Ints({1}) + face + Ints({2, 161, 1, 1, 7, 1}) + Ints({1})),
       0, 1, 0, 0, "2 elements of descriptor 161"},
      {Set("2412", Ints({1, 21, 1, 1, 7, 2}) + Ints({1, 2}) + face), 0, 2, 0, 0, "2 elements"},
      {Set("82", Ints({1, 100, 7}) + "line\n" + Ints({1, 2, 3})), 0, 2, 0, 0,
       "it announces 100 nodes and holds 3"},
      {Set("18", axis + "0. 0. 0. 1. 0. 0.\n 2. 0. 0.\n") + nodes, 3, 0, 0, 0, "lie on a line"},
      {Set("18", axis + "0. 0. 0. 1. 0. 0.\n") + nodes, 3, 0, 0, 0, "points are not whole"},
      {Set("151", "a\n") + Set("151", "b\n"), 0, 0, 0, 0, "a second header"},
      {Set("164", Ints({1}) + " 0.0 1.0 1.0\n"), 0, 0, 0, 0, "its factors are not above 0"},
      {Shape55({1, 2, 1, 8, 2, 1}, mode, Ints({3}) + " 1.0\n") + shape, 0, 0, 1, 0, "scalars"},
      {Shape55({1, 2, 4, 8, 2, 6}, mode, Ints({3}) + values) + shape, 0, 0, 1, 0, "tensors"},
      {Shape55({1, 2, 2, 8, 9, 3}, mode, kValues) + shape, 0, 0, 1, 0, "its data type 9"},
      {Shape55({1, 2, 2, 8, 2, 2'000'000'000}, mode, kValues), 0, 0, 0, 0, "are no motion"},
      {Shape55({1, 2, 2, 8, 2, 3}, Ints({2'000'000'000, 2'000'000'000, 1, 1}), kValues), 0, 0, 0, 0,
       "it has no values"},
      {Shape55({1, 2, 2, 8, 2, 3}, mode, ""), 0, 0, 0, 0, "it has no values"},
      {Shape55({1, 2, 3, 8, 2, 6}, mode, Ints({3}) + " 1. 2. 3. 4. 5. 6.\n"), 0, 0, 1, 0,
       "the rotations of 1 data set"},
      {Shape55({1, 2, 2, 8, 2, 3}, mode, Ints({3}) + " 1.0 inf 2.0\n"), 0, 0, 1, 0,
       "node 3: a value is no number"},
      {Set("55", kFiveLines + "what\n") + shape, 0, 0, 1, 0, "what kind of data"},
      {Set("2414", Ints({1}) + "stress\n" + Ints({2}) + kFiveLines) + shape, 0, 0, 1, 0,
       "not at nodes"},
      {Set("58", FunctionHead(2, true, 2'147'483'647) + values), 0, 0, 0, 1,
       "it announces 2147483647 values and holds 2"},
      {Set("58", FunctionHead(2, true, 2) + values + values), 0, 0, 0, 1, "goes on behind the 2"},
      {Set("58", FunctionHead(3, true, 2) + values), 0, 0, 0, 0, "its data type 3"},
      {Set("58", FunctionHead(2, true, 0)), 0, 0, 0, 0, "it has no values"},
      {BinarySet(true, 1, 8, FunctionHead(2, true, 2) + "        ") + nodes, 3, 0, 0, 0, "VAX"},
      {BinarySet(true, 2, 8, FunctionHead(2, true, 2'147'483'647) + "        ") + nodes, 3, 0, 0, 1,
       "it announces 2147483647 values and holds 2"},
      {BinarySet(true, 2, 8, FunctionHead(2, true, 2) + "        ").substr(0, 500), 0, 0, 0, 0,
       "cuts the data set"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.Text.substr(0, 1000));
    const TRead read = Read(row.Text);
    EXPECT_EQ(read.Job.Nodes.size(), row.Nodes);
    EXPECT_EQ(read.Job.Elements.size(), row.Elements);
    EXPECT_EQ(read.Job.Shapes.size(), row.Shapes);
    EXPECT_EQ(read.Job.Functions.size(), row.Functions);
    EXPECT_THAT(read.Findings.Text().toStdString(), HasSubstr(row.Finding));
  }
}

TEST(Universal, MemoryFollowsTheText) {
  std::string strokes;
  while (strokes.size() < 5'000'000) strokes += "1 2 1 2 1 2 1 2\n";
  const TRead read = Read(Set("82", Ints({1, 0, 0}) + "dense\n" + strokes) + Set("15", kNodes15));
  EXPECT_THAT(read.Findings.Text().toStdString(), HasSubstr("there are too many strokes"));
  EXPECT_LT(read.Job.Elements.size() * sizeof(TJobElement), 2 * strokes.size() + (16U << 20));
  EXPECT_EQ(read.Job.Nodes.size(), 3U);
}

TEST(Universal, ReadingStopsWhenItsUserCancels) {
  std::string lines;
  while (lines.size() < 3'000'000) lines += kNodes15;
  TJob job;
  TFindings findings;
  findings.BeginFile(QStringLiteral("job.unv"));
  std::vector<double> parts;
  ReadUniversal(Set("15", lines) + Set("15", lines), job, findings, [&](double part) {
    parts.push_back(part);
    return parts.size() < 2;
  });
  EXPECT_TRUE(findings.Cancelled());
  ASSERT_EQ(parts.size(), 2U);
  EXPECT_NEAR(parts[0], 1.0 / 6, 0.02);
  EXPECT_NEAR(parts[1], 2.0 / 6, 0.02);
}

TEST(Universal, OtherFilesAreNone) {
  for (const char* const text : {"", "[Nodes]\n1 0 0 0\n", "    -1\n", "    -1\nnodes\n",
                                 "-1\n15\n", "    -1 5\n    15\n", "     1\n    15\n"}) {
    EXPECT_FALSE(IsUniversal(text)) << text;
    EXPECT_THAT(Read(text).Job.Nodes, IsEmpty());
  }
}

}  // namespace
