#ifndef OMBRIX_SOLVER_NODE_NODEDOUBLECOMPARISON_H
#define OMBRIX_SOLVER_NODE_NODEDOUBLECOMPARISON_H

#include <cmath>

#include "solver/kernel/saturating.h"
#include "solver/node/comparisonpicks.h"

namespace ombrix {

/// A comparison of two doubles, within the tolerance: it never separates numbers that are equal
/// within it. Its value is a boolean.
class NodeDoubleComparison : public NodeInner {
public:
  virtual bool compare(double a, double b) const = 0;

  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
    return compare(DoubleArithmetic::read(dag, dag.values, operands[0]),
                   DoubleArithmetic::read(dag, dag.values, operands[1]))
               ? 1
               : 0;
  }
};

/// How a wanted truth value goes on to a float: the direction in which the first operand breaks the
/// comparison, where "either" leaves it to a coin.
enum class TargetRule { Refused, BrokenAbove, BrokenBelow, BrokenEitherWay };

/// Carries a wanted truth value of a comparison to one of its operands, chosen by a coin but never
/// a constant: it gets the other operand's value to satisfy the comparison, and one just beyond to
/// break it.
bool pickComparisonForTarget(const Dag& dag, std::uint32_t id, TargetRule rule, std::uint32_t& rng,
                             const OXValue& target, std::uint32_t& decision,
                             OXValue& decisionValue);

/// A comparison by its rule; the evaluation has it inlined. A violation is a distance cut to an
/// integer, so a small one does not show in the sum.
template <typename Rule, typename Picks>
class NodeDoubleComparisonBy final : public Picks {
public:
  bool compare(double a, double b) const override { return Rule::holds(a, b); }

  void eval(Dag& dag, std::uint32_t id) const override {
    const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
    const bool holds = Rule::holds(DoubleArithmetic::read(dag, dag.tValues, operands[0]),
                                   DoubleArithmetic::read(dag, dag.tValues, operands[1]));
    dag.tValues[id].intValue = holds ? 1 : 0;
  }

  bool pickForTarget(const Dag& dag, std::uint32_t id, std::uint32_t& rng, OXValue& target,
                     std::uint32_t& decision, OXValue& decisionValue) const override {
    return Rule::kTargetRule != TargetRule::Refused &&
           pickComparisonForTarget(dag, id, Rule::kTargetRule, rng, target, decision,
                                   decisionValue);
  }

  std::int64_t violation(const Dag& dag, std::uint32_t id) const override {
    return violationOn(dag, id, dag.values);
  }

  std::int64_t violationDelta(const Dag& dag, std::uint32_t id) const override {
    if (!Rule::kFollowsViolation) return 0;
    return wrappingSub(violationOn(dag, id, dag.tValues), violationOn(dag, id, dag.values));
  }

private:
  static std::int64_t violationOn(const Dag& dag, std::uint32_t id, const NodeValues& values) {
    const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
    const double a = DoubleArithmetic::read(dag, values, operands[0]);
    const double b = DoubleArithmetic::read(dag, values, operands[1]);
    return Rule::holds(a, b) ? 0 : clampToInt64(Rule::distance(a, b));
  }
};

/// The violation of an equality is counted once and for all: a move changes how many equalities are
/// violated, but not the sum of the distances.
struct DoubleEqRule {
  static constexpr TargetRule kTargetRule = TargetRule::BrokenEitherWay;
  static constexpr bool kFollowsViolation = false;
  static bool holds(double a, double b) { return approxEqual(a, b); }
  static double distance(double a, double b) { return std::fabs(a - b); }
};

struct DoubleNeqRule {
  static constexpr TargetRule kTargetRule = TargetRule::Refused;
  static constexpr bool kFollowsViolation = true;
  static bool holds(double a, double b) { return !approxEqual(a, b); }
  static double distance(double, double) { return 1.0; }
};

struct DoubleLeqRule {
  static constexpr TargetRule kTargetRule = TargetRule::BrokenAbove;
  static constexpr bool kFollowsViolation = true;
  static bool holds(double a, double b) { return a < b || approxEqual(a, b); }
  static double distance(double a, double b) { return a - b; }
};

struct DoubleLtRule {
  static constexpr TargetRule kTargetRule = TargetRule::Refused;
  static constexpr bool kFollowsViolation = true;
  static bool holds(double a, double b) { return a < b && !approxEqual(a, b); }
  static double distance(double a, double b) { return a - b + 1.0; }
};

struct DoubleGeqRule {
  static constexpr TargetRule kTargetRule = TargetRule::BrokenBelow;
  static constexpr bool kFollowsViolation = true;
  static bool holds(double a, double b) { return a > b || approxEqual(a, b); }
  static double distance(double a, double b) { return b - a; }
};

struct DoubleGtRule {
  static constexpr TargetRule kTargetRule = TargetRule::Refused;
  static constexpr bool kFollowsViolation = true;
  static bool holds(double a, double b) { return a > b && !approxEqual(a, b); }
  static double distance(double a, double b) { return b - a + 1.0; }
};

template <bool kIsLess>
using DoubleOrderPicks = OrderPicks<NodeDoubleComparison, DoubleArithmetic, kIsLess>;

using NodeDoubleEq =
    NodeDoubleComparisonBy<DoubleEqRule, EqualPicks<NodeDoubleComparison, DoubleArithmetic>>;
using NodeDoubleNeq =
    NodeDoubleComparisonBy<DoubleNeqRule, NotEqualPicks<NodeDoubleComparison, DoubleArithmetic>>;
using NodeDoubleLeq = NodeDoubleComparisonBy<DoubleLeqRule, DoubleOrderPicks<true>>;
using NodeDoubleLt = NodeDoubleComparisonBy<DoubleLtRule, DoubleOrderPicks<true>>;
using NodeDoubleGeq = NodeDoubleComparisonBy<DoubleGeqRule, DoubleOrderPicks<false>>;
using NodeDoubleGt = NodeDoubleComparisonBy<DoubleGtRule, DoubleOrderPicks<false>>;

}  // namespace ombrix

#endif
