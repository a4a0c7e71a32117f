#include <cmath>
#include <cstdlib>
#include <memory>

#include "model/Animation.h"

namespace {

/// A small model whose nodes are neither in order nor unique.
TModel& Model() {
  static const auto model = [] {
    auto made = std::make_unique<TModel>();
    const bool ok =
        made->LoadFromMemory("[Nodes]\n1 0 0 0\n5 1 0 0\n2 0 1 0\n5 0 0 1\n-1 1 1 1\n").Ok();
    if (!ok) std::abort();
    return made;
  }();
  return *model;
}

void CheckFrames(TMeasuredData& data) {
  data.Show(std::vector<bool>(data.All.Count(), true));
  TAnimation animation;
  std::vector<TVertex> positions;
  for (const TScaleType type : {TScaleType::Absolute, TScaleType::Relative, TScaleType::Sum}) {
    animation.ScaleType = type;
    animation.UpdateScale(data, Model());
    animation.Step(data, Model());
    PlaceNodes(Model().Display, positions);
    for (const TVertex& p : positions) {
      if (!std::isfinite(Length(p))) std::abort();
    }
  }
}

}  // namespace

/// Any bytes as a data file for a fixed model: what comes out must hold together, and move.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  TMeasuredData data;
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const TLoadReport report = data.LoadFromMemory(text, Model(), [](double) { return true; });
  if (!Model().Loaded || report.Cancelled()) std::abort();
  QStringList names;
  ReadSections(text, names);
  if (static_cast<std::size_t>(names.size()) != data.All.Count()) std::abort();
  for (const TDataNodeList* list : data.All) {
    if (!list->Empty() && list->Count() != Model().Nodes.Count()) std::abort();
    for (std::size_t i = 1; i < list->Count(); ++i) {
      if (CompareNodesID(list->Get(i - 1), list->Get(i)) > 0) std::abort();
    }
  }
  CheckFrames(data);
  return 0;
}
