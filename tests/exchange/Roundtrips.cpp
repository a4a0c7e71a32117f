#include <set>

#include "exchange/Openjob.h"
#include "exchange/Savejob.h"
#include "model/Motions.h"
#include "tests/support/Testing.h"

namespace {

struct TLoaded {
  explicit TLoaded(const QStringList& files) {
    const TOpenedJob job = OpenJob(files, Model, Data);
    EXPECT_TRUE(job.HasModel && job.HasData) << job.Findings.Text().toStdString();
  }
  TModel Model;
  TMeasuredData Data;
};

/// The largest difference between two data sets over a cycle, as a part of the largest
/// displacement.
double Difference(const TDataNodeList& a, const TDataNodeList& b) {
  double largest = 0.0;
  double difference = 0.0;
  for (int step = 0; step < 10; ++step) {
    const double phase = 0.2 * std::numbers::pi * step;
    for (std::size_t i = 0; i < a.Count(); ++i) {
      const TVertex move = Displacement(*a.Get(i), phase);
      largest = std::max(largest, Length(move));
      difference = std::max(difference, Length(move, Displacement(*b.Get(i), phase)));
    }
  }
  return largest > 0.0 ? difference / largest : kInfinity;
}

void ExpectSame(const TLoaded& a, const TLoaded& b, double tolerance) {
  ASSERT_EQ(a.Model.Nodes.Count(), b.Model.Nodes.Count());
  for (std::size_t i = 0; i < a.Model.Nodes.Count(); ++i) {
    ASSERT_EQ(a.Model.Nodes.Get(i)->ID, b.Model.Nodes.Get(i)->ID);
    const TVertex p = a.Model.Nodes.Get(i)->Position + a.Model.Centre;
    ASSERT_LE(Length(p, b.Model.Nodes.Get(i)->Position + b.Model.Centre), 1e-14 * a.Model.Size);
  }
  ASSERT_EQ(a.Data.All.Count(), b.Data.All.Count());
  for (std::size_t i = 0; i < a.Data.All.Count(); ++i) {
    EXPECT_FLOAT_EQ(a.Data.All.Get(i)->Frequency, b.Data.All.Get(i)->Frequency);
    EXPECT_LE(Difference(*a.Data.All.Get(i), *b.Data.All.Get(i)), tolerance) << i;
  }
}

/// The corners of all elements; the two sides of a face count once.
std::set<std::set<std::int32_t>> Elements(const TModel& model) {
  std::set<std::set<std::int32_t>> all;
  for (const TElement* element : model.Elements) {
    all.insert({element->Nodes().begin(), element->Nodes().end()});
  }
  return all;
}

TEST(Roundtrips, ExamplesComeBackFromEveryFormat) {
  for (const QString name : {"plate", "bridge", "rolls"}) {
    const QString start = SourceFile("examples/" + name);
    const TLoaded original({start + ".mod", start + ".dat"});
    const struct {
      QString file;
      TUniversalOptions options;
      double tolerance;
    } rows[] = {
        {"a.mod", {}, 1e-15},
        {"a.unv", {}, 1e-6},
        {"b.unv", {TLinesType::TraceLines, TShapesType::Nodal55, false, {}}, 1e-6},
        {"c.uff", {TLinesType::Elements, TShapesType::Nodal2414, true, {}}, 1e-12},
        {"d.uff", {TLinesType::TraceLines, TShapesType::Nodal55, true, {}}, 1e-12},
    };
    for (const auto& [file, options, tolerance] : rows) {
      SCOPED_TRACE(name.toStdString() + ' ' + file.toStdString());
      const QString path = TestFolder() + '/' + file;
      TFindings findings;
      ASSERT_EQ(SaveJob(original.Model, original.Data, path, options, findings), QString());
      QStringList files{path};
      if (!IsUniversalName(path)) files << DataFileBeside(path);
      const TLoaded again(files);
      ExpectSame(original, again, tolerance);
      EXPECT_EQ(Elements(original.Model), Elements(again.Model));
    }
  }
}

}  // namespace
