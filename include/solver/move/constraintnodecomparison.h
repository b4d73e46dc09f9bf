#ifndef OMBRIX_SOLVER_MOVE_CONSTRAINTNODECOMPARISON_H
#define OMBRIX_SOLVER_MOVE_CONSTRAINTNODECOMPARISON_H

#include "solver/move/dynamicconstraintnode.h"

namespace ombrix {

/// A comparison of two operands. Kind tells which one and over which numbers.
template <typename Kind>
class StaticConstraintNodeComparison final : public StaticConstraintNode {
public:
  using StaticConstraintNode::StaticConstraintNode;

  DynamicConstraintNode* createDynamic(AutonomousStructure& structure) const override;
  void print(const MoveAnalysis& analysis) const override {
    printOperands(analysis, Kind::kStart, false);
  }
  bool isFlat(const MoveAnalysis&) const override { return false; }
};

/// The mirror of a comparison: the right operand minus the left one, of which only the sign
/// matters. Doubles count as equal within the tolerance.
template <typename Kind>
class DynamicConstraintNodeComparison final : public DynamicConstraintNode {
public:
  using Number = typename Kind::Number;

  DynamicConstraintNodeComparison(AutonomousStructure& owner, const StaticConstraintNode& own);

  using DynamicConstraintNode::operandChanged;
  void operandChanged(std::uint32_t position, Number oldValue, Number newValue, bool canIncrease,
                      bool canDecrease) override;
  std::int64_t getValue() const override { return holds() ? 1 : 0; }
  bool change(std::uint32_t& rng, bool strict) override;
  bool increase(std::uint32_t& rng, bool strict) override;
  bool decrease(std::uint32_t& rng, bool strict) override;
  std::uint32_t nbIncreasers() const override;
  std::uint32_t nbDecreasers() const override;
  bool pickOperand(std::uint32_t& rng, bool up, std::uint32_t& operand,
                   bool& operandUp) const override;
  void collectIncreasers(bool up, std::span<const std::uint32_t> filter, DecisionList& out,
                         std::size_t limit) const override;
  void collectDecreasers(std::span<const std::uint32_t> filter, DecisionList& out,
                         std::size_t limit) const override;
  void check() const override;

private:
  bool holds() const;
  /// Whether the slack rises when the comparison goes up or down. An equality that holds can be
  /// left on either side; this answers for all other cases.
  bool slackRises(bool up) const;
  bool canBeLeftOnBothSides() const;
  bool moveSlack(std::uint32_t& rng, bool rises, bool strict) const;
  std::uint32_t nbWays(bool rises) const;
  Number computeSlack() const;

  Number slack;
};

struct EqKind {
  using Number = std::int64_t;
  static constexpr bool kAllowsNegative = false;
  static constexpr bool kAllowsPositive = false;
  static constexpr const char* kStart = "eq(";
  static constexpr const char* kCheck = "ombrix::DynamicConstraintNodeEq::check";
};

struct LeqKind {
  using Number = std::int64_t;
  static constexpr bool kAllowsNegative = false;
  static constexpr bool kAllowsPositive = true;
  static constexpr const char* kStart = "leq(";
  static constexpr const char* kCheck = "ombrix::DynamicConstraintNodeLeq::check";
};

struct GeqKind {
  using Number = std::int64_t;
  static constexpr bool kAllowsNegative = true;
  static constexpr bool kAllowsPositive = false;
  static constexpr const char* kStart = "geq(";
  static constexpr const char* kCheck = "ombrix::DynamicConstraintNodeGeq::check";
};

struct DoubleEqKind : EqKind {
  using Number = double;
  static constexpr const char* kStart = "doubleeq(";
  static constexpr const char* kCheck = "ombrix::DynamicConstraintNodeDoubleEq::check";
};

struct DoubleLeqKind : LeqKind {
  using Number = double;
  static constexpr const char* kStart = "doubleleq(";
  static constexpr const char* kCheck = "ombrix::DynamicConstraintNodeDoubleLeq::check";
};

struct DoubleGeqKind : GeqKind {
  using Number = double;
  static constexpr const char* kStart = "doublegeq(";
  static constexpr const char* kCheck = "ombrix::DynamicConstraintNodeDoubleGeq::check";
};

using StaticConstraintNodeEq = StaticConstraintNodeComparison<EqKind>;
using StaticConstraintNodeLeq = StaticConstraintNodeComparison<LeqKind>;
using StaticConstraintNodeGeq = StaticConstraintNodeComparison<GeqKind>;
using StaticConstraintNodeDoubleEq = StaticConstraintNodeComparison<DoubleEqKind>;
using StaticConstraintNodeDoubleLeq = StaticConstraintNodeComparison<DoubleLeqKind>;
using StaticConstraintNodeDoubleGeq = StaticConstraintNodeComparison<DoubleGeqKind>;
using DynamicConstraintNodeEq = DynamicConstraintNodeComparison<EqKind>;
using DynamicConstraintNodeLeq = DynamicConstraintNodeComparison<LeqKind>;
using DynamicConstraintNodeGeq = DynamicConstraintNodeComparison<GeqKind>;
using DynamicConstraintNodeDoubleEq = DynamicConstraintNodeComparison<DoubleEqKind>;
using DynamicConstraintNodeDoubleLeq = DynamicConstraintNodeComparison<DoubleLeqKind>;
using DynamicConstraintNodeDoubleGeq = DynamicConstraintNodeComparison<DoubleGeqKind>;

extern template class StaticConstraintNodeComparison<EqKind>;
extern template class StaticConstraintNodeComparison<LeqKind>;
extern template class StaticConstraintNodeComparison<GeqKind>;
extern template class StaticConstraintNodeComparison<DoubleEqKind>;
extern template class StaticConstraintNodeComparison<DoubleLeqKind>;
extern template class StaticConstraintNodeComparison<DoubleGeqKind>;
extern template class DynamicConstraintNodeComparison<EqKind>;
extern template class DynamicConstraintNodeComparison<LeqKind>;
extern template class DynamicConstraintNodeComparison<GeqKind>;
extern template class DynamicConstraintNodeComparison<DoubleEqKind>;
extern template class DynamicConstraintNodeComparison<DoubleLeqKind>;
extern template class DynamicConstraintNodeComparison<DoubleGeqKind>;

}  // namespace ombrix

#endif
