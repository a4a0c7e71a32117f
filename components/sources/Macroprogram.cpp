#include "components/sources/Macroprogram.h"

#include <algorithm>
#include <bit>
#include <unordered_map>
#include <utility>

#include "components/sources/Macrofunctions.h"

namespace {

using TStep = TMacroProgram::TStep;
using TFunction1 = TMacroItem::TFunction1;
using TFunction2 = TMacroItem::TFunction2;

/// The code of a step for each place where its operands can be. If none is at hand, the result at
/// hand is kept for a later step.
template <class TFunction>
struct TCodes {
  TFunction function;
  TStep::TCode inMemory;
  TStep::TCode leftAtHand;
  TStep::TCode rightAtHand;
};

/// `call` makes a value of a step and its operands.
template <auto call>
constexpr TCodes<TFunction1> CodesOfOne(TFunction1 function) {
  return {function,
          [](const TStep& step, double* memory, double result) {
            memory[step.kept] = result;
            return call(step, memory[step.left]);
          },
          [](const TStep& step, double*, double result) { return call(step, result); }, nullptr};
}

template <auto call>
constexpr TCodes<TFunction2> CodesOfTwo(TFunction2 function) {
  return {function,
          [](const TStep& step, double* memory, double result) {
            memory[step.kept] = result;
            return call(step, memory[step.left], memory[step.right]);
          },
          [](const TStep& step, double* memory, double result) {
            return call(step, result, memory[step.right]);
          },
          [](const TStep& step, double* memory, double result) {
            return call(step, memory[step.left], result);
          }};
}

/// A function that is known here takes the place of its call.
template <TFunction1 function>
constexpr TCodes<TFunction1> Known() {
  return CodesOfOne<[](const TStep&, double a) { return function(a); }>(function);
}
template <TFunction2 function>
constexpr TCodes<TFunction2> Known() {
  return CodesOfTwo<[](const TStep&, double a, double b) { return function(a, b); }>(function);
}

double Itself(double a) { return a; }

/// Power(a, b) for b = 2, to the last bit, mostly without the call. `square` is the nearest double
/// to the exact square. The library errs by less than 9/16 of a last place (glibc: 0.54), so if
/// the exact square is within 7/16 of `square`, no other double is left for it to give.
double Square(double a, double b) {
  const double square = a * a;
  // The two halves have products that are exact.
  const double high = std::bit_cast<double>(std::bit_cast<std::uint64_t>(a) & ~0x7ffffffULL);
  const double low = a - high;
  const double rest = ((high * high - square) + 2.0 * high * low) + low * low;
  const double lastPlace =
      0x1p-52 * std::bit_cast<double>(std::bit_cast<std::uint64_t>(square) & 0x7ff0000000000000ULL);
  constexpr double kNoUnderflow = 1e-270;
  if (square > kNoUnderflow && std::fabs(rest) < 7.0 / 16.0 * lastPlace) return square;
  return Macrofunctions::Power(a, b);
}

const TCodes<TFunction1>& CodesOf(TFunction1 function) {
  using namespace Macrofunctions;
  static constexpr TCodes<TFunction1> kKnown[] = {Known<Itself>(),  Known<Negate>(),
                                                  Known<Sine>(),    Known<Cosine>(),
                                                  Known<Tangent>(), Known<Absolute>()};
  static constexpr TCodes<TFunction1> kOther =
      CodesOfOne<[](const TStep& step, double a) { return step.function1(a); }>(nullptr);
  const auto* found = std::ranges::find(kKnown, function, &TCodes<TFunction1>::function);
  return found == std::end(kKnown) ? kOther : *found;
}

const TCodes<TFunction2>& CodesOf(TFunction2 function) {
  using namespace Macrofunctions;
  static constexpr TCodes<TFunction2> kKnown[] = {
      Known<Add>(),         Known<Subtract>(), Known<Multiply>(), Known<Divide>(),
      Known<Power>(),       Known<Maximum>(),  Known<Minimum>(),  Known<Equal>(),
      Known<NotEqual>(),    Known<Greater>(),  Known<Less>(),     Known<GreaterOrEqual>(),
      Known<LessOrEqual>(), Known<Square>()};
  static constexpr TCodes<TFunction2> kOther =
      CodesOfTwo<[](const TStep& step, double a, double b) { return step.function2(a, b); }>(
          nullptr);
  const auto* found = std::ranges::find(kKnown, function, &TCodes<TFunction2>::function);
  return found == std::end(kKnown) ? kOther : *found;
}

}  // namespace

/// Goes through a tree once, operands first, and keeps account of where their values will be.
class TMacroProgram::TBuilder {
 public:
  explicit TBuilder(TMacroProgram& program) : program_(program) { nowhere_ = NewPlace(0.0); }

  void Take(const TMacroItem& item) {
    switch (item.GetType()) {
      case TMacroItem::miConstant:
        PushPlace(NewPlace(std::get<double>(item.Data())));
        break;
      case TMacroItem::miVariable:
        PushPlace(PlaceOf(std::get<const TMacroItem::TReader*>(item.Data())));
        break;
      case TMacroItem::miFunction1:
        AddStep(std::get<TFunction1>(item.Data()));
        break;
      case TMacroItem::miFunction2:
        AddStep(std::get<TFunction2>(item.Data()));
        break;
    }
  }

  /// A tree that is nothing but a leaf has no step yet.
  void Finish() {
    if (program_.steps_.empty()) AddStep(Itself);
  }

 private:
  struct TOperand {
    bool atHand;
    bool kept;            ///< in the memory, and has been at hand
    std::uint32_t place;  ///< unless at hand
  };
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  std::uint32_t NewPlace(double value) {
    program_.memory_.push_back(value);
    return static_cast<std::uint32_t>(program_.memory_.size() - 1);
  }

  std::uint32_t PlaceOf(const TMacroItem::TReader* reader) {
    const auto [found, isNew] = variables_.try_emplace(reader, 0);
    if (isNew) {
      found->second = NewPlace(0.0);
      program_.inputs_.push_back({reader, found->second});
    }
    return found->second;
  }

  void PushPlace(std::uint32_t place) { operands_.push_back({false, false, place}); }

  /// The places of variables and of results hold 0 while the program is built.
  bool IsTwo(const TOperand& operand) const {
    return !operand.atHand && program_.memory_[operand.place] == 2.0;
  }

  TOperand Pop() {
    const TOperand operand = operands_.back();
    operands_.pop_back();
    if (operand.kept) free_.push_back(operand.place);
    return operand;
  }

  void AddStep(TFunction1 function) {
    const TOperand left = Pop();
    const TCodes<TFunction1>& codes = CodesOf(function);
    TStep step{left.atHand ? codes.leftAtHand : codes.inMemory, left.place, 0, nowhere_, {}};
    step.function1 = function;
    AddStep(step, left.atHand);
  }

  void AddStep(TFunction2 function) {
    const TOperand right = Pop();
    const TOperand left = Pop();
    if (function == Macrofunctions::Power && IsTwo(right)) function = Square;
    const TCodes<TFunction2>& codes = CodesOf(function);
    const TStep::TCode code = left.atHand    ? codes.leftAtHand
                              : right.atHand ? codes.rightAtHand
                                             : codes.inMemory;
    TStep step{code, left.place, right.place, nowhere_, {}};
    step.function2 = function;
    AddStep(step, left.atHand || right.atHand);
  }

  void AddStep(TStep step, bool takesResult) {
    if (!takesResult && atHand_ != kNone) step.kept = Keep(operands_[atHand_]);
    program_.steps_.push_back(step);
    atHand_ = operands_.size();
    operands_.push_back({true, false, 0});
  }

  std::uint32_t Keep(TOperand& operand) {
    std::uint32_t place = 0;
    if (free_.empty()) {
      place = NewPlace(0.0);
    } else {
      place = free_.back();
      free_.pop_back();
    }
    operand = {false, true, place};
    return place;
  }

  TMacroProgram& program_;
  std::unordered_map<const TMacroItem::TReader*, std::uint32_t> variables_;
  std::vector<TOperand> operands_;   ///< not yet taken by a step, in the order of evaluation
  std::size_t atHand_ = kNone;       ///< the one of them that is at hand
  std::vector<std::uint32_t> free_;  ///< places of kept results that have been taken
  std::uint32_t nowhere_ = 0;        ///< for results that nobody waits for
};

TMacroProgram::TMacroProgram(const TMacroItem& root) {
  TBuilder builder(*this);
  root.Walk([&builder](const TMacroItem& item) { builder.Take(item); });
  builder.Finish();
}

double TMacroProgram::Run() {
  double* const memory = memory_.data();
  for (const TInput& input : inputs_) memory[input.place] = (*input.reader)();
  double result = 0.0;
  for (const TStep& step : steps_) result = step.code(step, memory, result);
  return result;
}
