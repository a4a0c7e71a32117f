#include <cmath>
#include <cstdlib>

#include "model/Animmodel.h"

/// Any bytes as a model file: what comes out must hold together.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  TModel model;
  const TLoadReport report = model.LoadFromMemory({reinterpret_cast<const char*>(bytes), size},
                                                  [](double) { return true; });
  if (!model.Loaded || report.Cancelled()) std::abort();
  if (report.Ok() != report.Sentence(QStringLiteral("m.mod")).isEmpty()) std::abort();
  if (model.Display.Count() != model.Nodes.Count() || !std::isfinite(model.Size)) std::abort();
  for (const TNode* node : model.Nodes) {
    if (!std::isfinite(Length(node->Position)) || model.NodeIndex(node->ID) < 0) std::abort();
  }
  for (const TElement* element : model.Elements) {
    if (element->NodeCount() < 1 || element->Type < 1) std::abort();
    for (const std::int32_t index : element->Nodes()) {
      if (index < 0 || static_cast<std::size_t>(index) >= model.Nodes.Count()) std::abort();
    }
    if (!std::isfinite(Length(MaxNodeCoordinates(*element)))) std::abort();
  }
  return 0;
}
