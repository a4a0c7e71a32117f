#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "exchange/Texttable.h"

namespace {

void Expect(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

/// Any bytes as a table: what comes out must hold together, and nothing goes without a word.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  TJob job;
  TFindings findings;
  findings.BeginFile(QStringLiteral("t.csv"));
  ReadTextTable(text, job, findings);
  Expect(!findings.All().empty());
  Expect(IsTextTable(text) == (findings.All().front().Set != QLatin1String("table")));
  std::size_t corners = 0;
  for (const TJobElement& element : job.Elements) {
    Expect(element.First == corners && element.Count >= 2 && element.Set < job.Places.size());
    corners += element.Count;
  }
  Expect(corners == job.Corners.size());
  for (const TJobNode& node : job.Nodes) Expect(std::isfinite(Length(node.Coordinates)));
  for (const TJobShape& shape : job.Shapes) {
    Expect(!shape.IDs.empty() && shape.Real.size() == shape.IDs.size());
    Expect(shape.Imaginary.size() == (shape.Info.IsComplex ? shape.IDs.size() : 0));
    for (const TVertex& value : shape.Real) Expect(std::isfinite(Length(value)));
  }
  return 0;
}
