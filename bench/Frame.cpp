#include <cmath>

#include "bench/Allocations.h"
#include "bench/Bench.h"
#include "model/Animation.h"

namespace {

std::string Records(int nodes, int numbers, double shift) {
  std::string text;
  for (int i = 0; i < nodes; ++i) {
    text += std::to_string(i + 1);
    for (int k = 0; k < numbers; ++k) text += ' ' + std::to_string(std::sin(shift + 0.01 * i + k));
    text += '\n';
  }
  return text;
}

/// How far the frame that was computed is off the formula, taken node by node.
double WorstError(const TMeasuredData& data, const TModel& model, const TAnimation& animation,
                  const std::vector<TVertex>& positions) {
  double worst = 0.0;
  for (std::size_t i = 0; i < model.Nodes.Count(); ++i) {
    if (animation.ScaleType != TScaleType::Sum) {
      const TDataNodeList& list = *data.Shown.Get(data.Shown.Count() - 1);
      const TVertex p = ScaleComplexNode(*list.Get(i), list.Phase, list.DrawScale);
      worst = std::max(worst, Length(p, positions[i]));
      continue;
    }
    TVertex sum;
    for (const TDataNodeList* list : data.Shown) {
      const double w = TAnimation::kFullCycle * list->Frequency * animation.Time;
      sum += Displacement(*list->Get(i), w);
    }
    const TVertex p = sum * model.Display.DrawScale + model.Nodes.Get(i)->Position;
    worst = std::max(worst, Length(p, positions[i]));
  }
  return worst;
}

}  // namespace

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  const int nodes = 100'000;
  TModel model;
  bench.Check(model.LoadFromMemory("[Nodes]\n" + Records(nodes, 3, 0.0)).Ok(), "the model loads");

  for (const int numbers : {3, 6}) {
    for (const int sets : {1, 3}) {
      TMeasuredData data;
      std::string text;
      for (int s = 0; s < sets; ++s) {
        text += "[F = " + std::to_string(5 + 10 * s) + "]\n" + Records(nodes, numbers, s);
      }
      bench.Check(data.LoadFromMemory(text, model).Ok(), "the data load");
      TAnimation animation;
      for (const TScaleType type : {TScaleType::Absolute, TScaleType::Relative, TScaleType::Sum}) {
        animation.ScaleType = type;
        animation.UpdateScale(data, model);
        std::vector<TVertex> positions;
        const auto frame = [&] {
          animation.Step(data, model);
          if (type == TScaleType::Sum) {
            PlaceNodes(model.Display, positions);
          } else {
            for (const TDataNodeList* list : data.Shown) PlaceNodes(*list, positions);
          }
        };
        frame();  // makes room for the positions
        const long before = allocations;
        const int frames = bench.Quick() ? 3 : 50;
        const double seconds = bench.Seconds(11, [&] {
          for (int i = 0; i < frames; ++i) frame();
        });
        // The clock keeps one list of times.
        bench.Check(allocations - before <= 8, "a frame allocates nothing");
        const char* names[] = {"absolute", "relative", "sum"};
        bench.Row(std::string(names[static_cast<int>(type)]) + ", " + std::to_string(sets) +
                      (sets == 1 ? " set" : " sets") + (numbers == 6 ? " with angles" : ""),
                  1e3 * seconds / frames, "ms per frame of 100000 nodes");
        const double error = WorstError(data, model, animation, positions);
        bench.Check(error < 1e-12, "the positions agree with the formula");
      }
    }
  }
  return bench.Result();
}
