#ifndef OMBRIX_SOLVER_MOVE_CONSTRAINTNODESUM_H
#define OMBRIX_SOLVER_MOVE_CONSTRAINTNODESUM_H

#include <concepts>
#include <string>

#include "common/failure.h"
#include "solver/kernel/oxvalue.h"
#include "solver/kernel/random.h"
#include "solver/kernel/saturating.h"
#include "solver/move/constraintnodevariadic.h"

namespace ombrix {

/// The mirror of a sum: its total, and the operands that can take it up and down. Kind tells the
/// number type and the coefficients; integers wrap as those of the graph do.
template <typename Kind, typename S>
class DynamicConstraintNodeTotal final : public DynamicConstraintNode {
public:
  using Number = typename Kind::Number;

  DynamicConstraintNodeTotal(AutonomousStructure& owner, const StaticConstraintNode& own)
      : DynamicConstraintNode(owner, own), sum(computeSum()) {
    const std::uint32_t n = nbOperands();
    increasers.init(n);
    decreasers.init(n);
    increasers.fill(n, [this](std::uint32_t i) { return helps(i, true); });
    decreasers.fill(n, [this](std::uint32_t i) { return helps(i, false); });
  }

  using DynamicConstraintNode::operandChanged;
  void operandChanged(std::uint32_t position, Number oldValue, Number newValue, bool canIncrease,
                      bool canDecrease) override {
    const Number oldSum = sum;
    const Number c = coefficient(position);
    addTerm(sum, c, newValue, oldValue);
    const std::uint32_t n = nbOperands();
    put(increasers, position, n, (c > 0 && canIncrease) || (c < 0 && canDecrease));
    put(decreasers, position, n, (c > 0 && canDecrease) || (c < 0 && canIncrease));
    notifyParents(oldSum, sum, increasers.size() > 0, decreasers.size() > 0);
  }

  std::int64_t getValue() const override {
    if constexpr (std::integral<Number>) {
      return sum;
    } else {
      return truncateToInt64(sum);
    }
  }
  double getDoubleValue() const override { return static_cast<double>(sum); }

  bool change(std::uint32_t& rng, bool strict) override { return changeRandomOperand(rng, strict); }
  bool increase(std::uint32_t& rng, bool strict) override {
    return move(increasers, rng, true, strict);
  }
  bool decrease(std::uint32_t& rng, bool strict) override {
    return move(decreasers, rng, false, strict);
  }
  std::uint32_t nbIncreasers() const override { return increasers.size(); }
  std::uint32_t nbDecreasers() const override { return decreasers.size(); }

  bool pickOperand(std::uint32_t& rng, bool up, std::uint32_t& operand,
                   bool& operandUp) const override {
    const std::uint32_t position = up ? increasers.randomMember(nbOperands(), rng)
                                      : decreasers.randomMember(nbOperands(), rng);
    if (position == kNone) return false;
    operandUp = operandDirection(position, up);
    return pickPosition(position, operand);
  }

  void collectIncreasers(bool up, std::span<const std::uint32_t> filter, DecisionList& out,
                         std::size_t limit) const override {
    const S& helpers = up ? increasers : decreasers;
    const std::uint32_t n = nbOperands();
    for (std::uint32_t i = helpers.first(n); i < n && out.size() < limit; i = helpers.next(i, n)) {
      collectFromOperand(i, operandDirection(i, up), filter, out, limit);
    }
  }
  void collectDecreasers(std::span<const std::uint32_t> filter, DecisionList& out,
                         std::size_t limit) const override {
    collectFromAllOperands(filter, out, limit);
  }

  void check() const override {
    if (!isSame(sum, computeSum())) refuse("1");
    const std::uint32_t n = nbOperands();
    if (!increasers.agrees(n, [this](std::uint32_t i) { return helps(i, true); }) ||
        !decreasers.agrees(n, [this](std::uint32_t i) { return helps(i, false); })) {
      refuse("2");
    }
  }

private:
  Number coefficient(std::uint32_t position) const {
    if constexpr (!Kind::kHasCoefficients) {
      return 1;
    } else if constexpr (std::integral<Number>) {
      return fields().scalarsOf(description->node)[position].intValue;
    } else {
      return fields().scalarsOf(description->node)[position].doubleValue;
    }
  }
  static void addTerm(Number& total, Number c, Number newValue, Number oldValue) {
    if constexpr (std::integral<Number>) {
      total = wrappingAdd(total, wrappingMul(c, wrappingSub(newValue, oldValue)));
    } else {
      total += c * (newValue - oldValue);
    }
  }
  static bool isSame(Number a, Number b) {
    if constexpr (std::integral<Number>) {
      return a == b;
    } else {
      return approxEqual(a, b);
    }
  }
  static void put(S& set, std::uint32_t position, std::uint32_t n, bool isMember) {
    if (isMember) {
      set.add(position, n);
    } else {
      set.remove(position, n);
    }
  }

  Number computeSum() const {
    Number total = 0;
    for (std::uint32_t i = 0, n = nbOperands(); i < n; ++i) {
      addTerm(total, coefficient(i), operandNumber<Number>(i), 0);
    }
    return total;
  }
  /// Which way the operand goes to take the sum in a direction.
  bool operandDirection(std::uint32_t position, bool up) const {
    return (coefficient(position) > 0) == up;
  }
  bool helps(std::uint32_t position, bool up) const {
    const Number c = coefficient(position);
    return (c > 0 || c < 0) && operandCanMove(position, (c > 0) == up);
  }
  bool moveTerm(std::uint32_t position, std::uint32_t& rng, bool up, bool strict) const {
    const Number c = coefficient(position);
    return (c > 0 || c < 0) && moveOperand(position, rng, (c > 0) == up, strict);
  }
  bool move(const S& helpers, std::uint32_t& rng, bool up, bool strict) {
    const std::uint32_t n = nbOperands();
    if (helpers.size() == 0) {
      return !strict && n > 0 && moveTerm(randomIndex(rng, n), rng, up, strict);
    }
    for (int attempt = 0; attempt < kMaxOperandTries; ++attempt) {
      if (moveTerm(helpers.randomMember(n, rng), rng, up, strict)) return true;
    }
    return false;
  }
  [[noreturn]] static void refuse(const char* number) {
    const std::string function(Kind::kCheck + kNamespaceLength);
    fail(kInternal, Where{__FILE__, __LINE__, Kind::kCheck}, function + "() : " + number);
  }

  Number sum;
  S increasers;
  S decreasers;
};

struct SumKind {
  using Number = std::int64_t;
  static constexpr bool kHasCoefficients = false;
  static constexpr const char* kStart = "sum(";
  static constexpr const char* kCheck = "ombrix::DynamicConstraintNodeSum::check";
  template <typename S>
  using Dynamic = DynamicConstraintNodeTotal<SumKind, S>;
};

struct ScalarSumKind {
  using Number = std::int64_t;
  static constexpr bool kHasCoefficients = true;
  static constexpr const char* kStart = "scalarsum(";
  static constexpr const char* kCheck = "ombrix::DynamicConstraintNodeScalarSum::check";
  template <typename S>
  using Dynamic = DynamicConstraintNodeTotal<ScalarSumKind, S>;
};

struct DoubleSumKind {
  using Number = double;
  static constexpr bool kHasCoefficients = false;
  static constexpr const char* kStart = "doublesum(";
  static constexpr const char* kCheck = "ombrix::DynamicConstraintNodeDoubleSum::check";
  template <typename S>
  using Dynamic = DynamicConstraintNodeTotal<DoubleSumKind, S>;
};

struct DoubleScalarSumKind {
  using Number = double;
  static constexpr bool kHasCoefficients = true;
  static constexpr const char* kStart = "doublescalarsum(";
  static constexpr const char* kCheck = "ombrix::DynamicConstraintNodeDoubleScalarSum::check";
  template <typename S>
  using Dynamic = DynamicConstraintNodeTotal<DoubleScalarSumKind, S>;
};

using StaticConstraintNodeSum = StaticConstraintNodeVariadic<SumKind>;
using StaticConstraintNodeScalarSum = StaticConstraintNodeVariadic<ScalarSumKind>;
using StaticConstraintNodeDoubleSum = StaticConstraintNodeVariadic<DoubleSumKind>;
using StaticConstraintNodeDoubleScalarSum = StaticConstraintNodeVariadic<DoubleScalarSumKind>;
template <typename S>
using DynamicConstraintNodeSum = DynamicConstraintNodeTotal<SumKind, S>;
template <typename S>
using DynamicConstraintNodeScalarSum = DynamicConstraintNodeTotal<ScalarSumKind, S>;
template <typename S>
using DynamicConstraintNodeDoubleSum = DynamicConstraintNodeTotal<DoubleSumKind, S>;
template <typename S>
using DynamicConstraintNodeDoubleScalarSum = DynamicConstraintNodeTotal<DoubleScalarSumKind, S>;

extern template class StaticConstraintNodeVariadic<SumKind>;
extern template class StaticConstraintNodeVariadic<ScalarSumKind>;
extern template class StaticConstraintNodeVariadic<DoubleSumKind>;
extern template class StaticConstraintNodeVariadic<DoubleScalarSumKind>;

}  // namespace ombrix

#endif
