#pragma once

#include <cstdint>
#include <vector>

#include "components/sources/macro/Macroitem.h"

/// A tree as a list of steps, for evaluating it again and again: the same value as that of
/// TMacroItem::Evaluate, to the last bit, in a fraction of the time and without allocating. Each
/// variable is read once, before the first step. GUI thread only, and not from within itself.
class TMacroProgram {
 public:
  struct TInput {
    const TMacroItem::TReader* reader;  ///< not owned
    std::uint32_t place;                ///< in the memory
  };

  /// The value of an empty program is 0.
  TMacroProgram() = default;
  /// The tree may go, but the readers of its variables must outlive the program.
  explicit TMacroProgram(const TMacroItem& root);

  double Run();

  /// The variables, each once.
  const std::vector<TInput>& Inputs() const { return inputs_; }

 private:
  class TBuilder;

  /// One function. The result of the step before is at hand in a register; operands that are not
  /// lie in the memory: variables, constants, and results that wait.
  struct TStep {
    std::uint32_t code;
    std::uint32_t left;   ///< place of the operand, if it lies in the memory
    std::uint32_t right;  ///< same
    std::uint32_t kept;   ///< where the result at hand goes, if no operand is at hand
    union {
      TMacroItem::TFunction1 function1;
      TMacroItem::TFunction2 function2;
    };
  };

  double RunSteps(double* memory) const;

  std::vector<TInput> inputs_;
  std::vector<TStep> steps_;
  std::vector<double> memory_;
};
