#ifndef OMBRIX_SOLVER_MOVE_CONSTRAINTNODEBOOL_H
#define OMBRIX_SOLVER_MOVE_CONSTRAINTNODEBOOL_H

#include "solver/move/dynamicconstraintnode.h"

namespace ombrix {

/// A boolean decision below constraints.
class StaticConstraintNodeBool final : public StaticConstraintNode {
public:
  StaticConstraintNodeBool(std::uint32_t ownIndex, std::uint32_t kernelNode,
                           std::uint32_t decisionIndex)
      : StaticConstraintNode(ownIndex, kernelNode), decision(decisionIndex) {}

  DynamicConstraintNode* createDynamic(AutonomousStructure& structure) const override;
  void print(const MoveAnalysis& analysis) const override;
  bool isFlat(const MoveAnalysis&) const override { return true; }

  std::uint32_t decision;  ///< its index among the boolean decisions
};

/// A decision in the mirror: its committed value, inverted while a flip of it is pending. It has no
/// state of its own.
class DynamicConstraintNodeBool final : public DynamicConstraintNode {
public:
  DynamicConstraintNodeBool(AutonomousStructure& owner, const StaticConstraintNodeBool& own)
      : DynamicConstraintNode(owner, own) {}

  std::uint32_t decision() const {
    return static_cast<const StaticConstraintNodeBool*>(description)->decision;
  }
  /// Makes a flip pending, or takes a pending one back.
  void toggle();
  /// Tells the parents of a change of the committed value that no plan made.
  void tellCommitted(std::int64_t oldValue, std::int64_t newValue) const;

  std::int64_t getValue() const override;
  /// False for a decision that is pending already: a plan flips a decision once.
  bool change(std::uint32_t& rng, bool strict) override;
  bool increase(std::uint32_t& rng, bool strict) override;
  bool decrease(std::uint32_t& rng, bool strict) override;
  std::uint32_t nbIncreasers() const override { return getValue() == 0 ? 1 : 0; }
  std::uint32_t nbDecreasers() const override { return getValue() == 1 ? 1 : 0; }
  bool pickOperand(std::uint32_t&, bool, std::uint32_t&, bool&) const override { return false; }
  void collectIncreasers(bool up, std::span<const std::uint32_t> filter, DecisionList& out,
                         std::size_t limit) const override;
  void collectDecreasers(std::span<const std::uint32_t> filter, DecisionList& out,
                         std::size_t limit) const override;
  void check() const override {}
};

}  // namespace ombrix

#endif
