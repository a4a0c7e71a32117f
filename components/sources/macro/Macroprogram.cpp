#include "components/sources/macro/Macroprogram.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <unordered_map>

#include "components/sources/macro/Macrofunctions.h"

namespace {

using TFunction1 = TMacroItem::TFunction1;
using TFunction2 = TMacroItem::TFunction2;

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

// The functions whose steps are cases of one switch: a call per step would double the time of a
// program. All others are Other1 and Other2, which call.
#define VELMORA_FUNCTIONS_1(X) X(Itself) X(Negate) X(Sine) X(Cosine) X(Tangent) X(Absolute)
#define VELMORA_ARITHMETIC(X) X(Add) X(Subtract) X(Multiply) X(Divide) X(Power) X(Square)
#define VELMORA_CHOICES(X) X(Maximum) X(Minimum) X(Equal) X(NotEqual)
#define VELMORA_ORDERS(X) X(Greater) X(Less) X(GreaterOrEqual) X(LessOrEqual)
#define VELMORA_FUNCTIONS_2(X) VELMORA_ARITHMETIC(X) VELMORA_CHOICES(X) VELMORA_ORDERS(X)

/// Codes of steps: what to compute, and where its operands are.
enum TCode : std::uint32_t {
#define VELMORA_CODES(function) k##function, k##function##LeftAtHand,
  VELMORA_FUNCTIONS_1(VELMORA_CODES) VELMORA_CODES(Other1)
#undef VELMORA_CODES
#define VELMORA_CODES(function) k##function, k##function##LeftAtHand, k##function##RightAtHand,
      VELMORA_FUNCTIONS_2(VELMORA_CODES) VELMORA_CODES(Other2)
#undef VELMORA_CODES
};

/// Added to the code of a function with its operands in memory.
enum TPlaces : std::uint32_t { kInMemory, kLeftAtHand, kRightAtHand };

template <class TFunction>
struct TKnown {
  TFunction function;
  TCode code;
};

TCode CodeOf(TFunction1 function) {
  using namespace Macrofunctions;
#define VELMORA_KNOWN(function) {function, k##function},
  static constexpr TKnown<TFunction1> kKnown[] = {VELMORA_FUNCTIONS_1(VELMORA_KNOWN)};
  const auto* found = std::ranges::find(kKnown, function, &TKnown<TFunction1>::function);
  return found == std::end(kKnown) ? kOther1 : found->code;
}

TCode CodeOf(TFunction2 function) {
  using namespace Macrofunctions;
  static constexpr TKnown<TFunction2> kKnown[] = {VELMORA_FUNCTIONS_2(VELMORA_KNOWN)};
#undef VELMORA_KNOWN
  const auto* found = std::ranges::find(kKnown, function, &TKnown<TFunction2>::function);
  return found == std::end(kKnown) ? kOther2 : found->code;
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
    const TPlaces places = left.atHand ? kLeftAtHand : kInMemory;
    TStep step{static_cast<std::uint32_t>(CodeOf(function)) + places, left.place, 0, nowhere_, {}};
    step.function1 = function;
    AddStep(step, places);
  }

  void AddStep(TFunction2 function) {
    const TOperand right = Pop();
    const TOperand left = Pop();
    if (function == Macrofunctions::Power && IsTwo(right)) function = Square;
    const TPlaces places = left.atHand ? kLeftAtHand : right.atHand ? kRightAtHand : kInMemory;
    TStep step{static_cast<std::uint32_t>(CodeOf(function)) + places,
               left.place,
               right.place,
               nowhere_,
               {}};
    step.function2 = function;
    AddStep(step, places);
  }

  void AddStep(TStep step, TPlaces places) {
    if (places == kInMemory && atHand_ != kNone) step.kept = Keep(operands_[atHand_]);
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
  return RunSteps(memory);
}

double TMacroProgram::RunSteps(double* memory) const {
  using namespace Macrofunctions;
  double result = 0.0;
  for (const TStep& step : steps_) {
    const auto Other1 = [&step](double a) { return step.function1(a); };
    const auto Other2 = [&step](double a, double b) { return step.function2(a, b); };
    switch (static_cast<TCode>(step.code)) {
#define VELMORA_STEPS(function)           \
  case k##function:                       \
    memory[step.kept] = result;           \
    result = function(memory[step.left]); \
    break;                                \
  case k##function##LeftAtHand:           \
    result = function(result);            \
    break;
      VELMORA_FUNCTIONS_1(VELMORA_STEPS)
      VELMORA_STEPS(Other1)
#undef VELMORA_STEPS
#define VELMORA_STEPS(function)                               \
  case k##function:                                           \
    memory[step.kept] = result;                               \
    result = function(memory[step.left], memory[step.right]); \
    break;                                                    \
  case k##function##LeftAtHand:                               \
    result = function(result, memory[step.right]);            \
    break;                                                    \
  case k##function##RightAtHand:                              \
    result = function(memory[step.left], result);             \
    break;
      VELMORA_FUNCTIONS_2(VELMORA_STEPS)
      VELMORA_STEPS(Other2)
#undef VELMORA_STEPS
    }
  }
  return result;
}
