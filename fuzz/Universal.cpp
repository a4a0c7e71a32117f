#include <cmath>
#include <cstdlib>

#include "exchange/Assembly.h"
#include "exchange/Universal.h"
#include "exchange/Universalwriter.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

bool IsFinite(const TVertex& v) { return std::isfinite(v.x + v.y + v.z); }

void CheckElements(const TJob& job) {
  for (const TJobElement& element : job.Elements) {
    Require(element.Count >= 2 && element.Count <= 8);
    Require(element.First + std::size_t{element.Count} <= job.Corners.size());
    Require(element.Set < job.Places.size());
  }
}

void CheckShape(const TJobShape& shape) {
  Require(!shape.IDs.empty() && shape.Real.size() == shape.IDs.size());
  Require(shape.Imaginary.size() == (shape.Info.IsComplex ? shape.IDs.size() : 0));
  for (const TVertex& value : shape.Real) Require(IsFinite(value));
  for (const TVertex& value : shape.Imaginary) Require(IsFinite(value));
  Require(std::isfinite(shape.Frequency) && std::isfinite(shape.Info.Damping));
}

void CheckFunction(const TMeasuredFunction& function) {
  const std::size_t count = function.Count();
  Require(count > 0 && (function.Single.empty() || function.Double.empty()));
  Require(function.Abscissas.empty() || function.Abscissas.size() == count);
  Require(function.Single.size() + function.Double.size() == count * (function.IsComplex ? 2 : 1));
}

/// The model and the data sets that the job makes can be drawn, and written and read again.
void CheckAssembly(TJob& job, TFindings& findings) {
  constexpr std::size_t kMostNodes = 100'000;
  TModel model;
  model.Replace(AssembleModel(job, &model.Nodes, findings));
  Require(std::isfinite(model.Size) && IsFinite(model.Centre));
  for (const TElement* element : model.Elements) {
    for (const std::int32_t index : element->Nodes()) {
      Require(index >= 0 && static_cast<std::size_t>(index) < model.Nodes.Count());
    }
  }
  TMeasuredData data;
  data.Replace(
      AssembleShapes(job, {model.Nodes, model.Index()}, model.Centre, kMostNodes, findings), model);
  for (const TDataNodeList* list : data.All) {
    Require(list->Count() == model.Nodes.Count() && std::isfinite(list->MaxAmplitude));
    Require(list->Measured.empty() || list->Measured.size() == list->Count());
  }
  TJob again;
  ReadUniversal(WriteUniversal(model, data, {}, findings), again, findings, {});
  Require(again.Nodes.size() == model.Nodes.Count());
  Require(again.Shapes.size() <= data.All.Count());
}

}  // namespace

/// Any bytes as a universal file: what comes out must hold together.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  TJob job;
  TFindings findings;
  findings.BeginFile(QStringLiteral("fuzz.unv"));
  ReadUniversal(text, job, findings, [](double part) { return part <= 1.0; });
  Require(!findings.Cancelled() && job.FirstOfFile.size() == 1 && job.LengthOfFile.size() == 1);
  const bool isRead = !job.Nodes.empty() || !job.Elements.empty() || !job.Shapes.empty();
  Require(!isRead || IsUniversal(text) || size > 100);
  for (const TJobNode& node : job.Nodes) Require(IsFinite(node.Coordinates));
  for (const TLocalSystem& system : job.Systems) {
    Require(IsFinite(system.Origin));
    for (const TVertex& axis : system.Axes) Require(IsFinite(axis));
  }
  CheckElements(job);
  for (const TJobShape& shape : job.Shapes) CheckShape(shape);
  for (const TMeasuredFunction& function : job.Functions) CheckFunction(function);
  Require(job.Units.Length > 0.0 && !findings.Text().isEmpty());
  CheckAssembly(job, findings);
  return 0;
}
