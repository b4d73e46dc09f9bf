#ifndef OMBRIX_SOLVER_MOVE_DYNAMICCONSTRAINTNODE_H
#define OMBRIX_SOLVER_MOVE_DYNAMICCONSTRAINTNODE_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "solver/kernel/cacheline.h"
#include "solver/move/staticconstraintnode.h"

namespace ombrix {

/// The names of functions in failures begin with "ombrix::", the texts do not.
inline constexpr std::size_t kNamespaceLength = 8;

class AutonomousStructure;
class DagFixedFields;

/// Decisions gathered while a move plans.
using DecisionList = CacheLineVector<std::uint32_t>;

/// One worker's mirror of a static constraint node. While a move plans, it flips decisions in the
/// mirror only: every node keeps its value and its sets of helpful operands up to date by telling
/// each change to its parents, so it can say at once whether and how it can be raised or lowered.
/// A flip costs what its decision reaches, over at most four ranks; nothing is allocated.
///
/// A boolean node that its parents see at 0 counts for them as able to rise, and at 1 as able to
/// fall: it tells them when its value turns, and nothing as long as it stays. A sum counts as able
/// to move in a direction as long as some operand takes it there.
class DynamicConstraintNode {
public:
  DynamicConstraintNode(AutonomousStructure& owner, const StaticConstraintNode& own)
      : structure(&owner), description(&own) {}
  virtual ~DynamicConstraintNode() = default;
  DynamicConstraintNode(const DynamicConstraintNode&) = delete;
  DynamicConstraintNode& operator=(const DynamicConstraintNode&) = delete;

  /// The operand at a position went from one value to another, and what it can do from there. By
  /// default the integers are handed on as doubles.
  virtual void operandChanged(std::uint32_t position, std::int64_t oldValue, std::int64_t newValue,
                              bool canIncrease, bool canDecrease);
  /// By default nothing: a node of integers has no operand that tells doubles.
  virtual void operandChanged(std::uint32_t position, double oldValue, double newValue,
                              bool canIncrease, bool canDecrease);

  const StaticConstraintNode* getStatic() const { return description; }
  virtual std::int64_t getValue() const = 0;
  virtual double getDoubleValue() const;

  // The changes flip one decision below and say whether they found one. With strict a change must
  // help: a node that stands where it is wanted does nothing. Without, one operand is tried anyway.
  virtual bool change(std::uint32_t& rng, bool strict) = 0;
  virtual bool increase(std::uint32_t& rng, bool strict) = 0;
  virtual bool decrease(std::uint32_t& rng, bool strict) = 0;

  /// How many ways lead up; 0 means none.
  virtual std::uint32_t nbIncreasers() const = 0;
  virtual std::uint32_t nbDecreasers() const = 0;
  /// The static index of a random operand that moves the node, and which way it must go.
  virtual bool pickOperand(std::uint32_t& rng, bool up, std::uint32_t& operand,
                           bool& operandUp) const = 0;

  /// Appends decisions of the sorted filter, told by index, that take the node in a direction,
  /// until out holds limit entries.
  virtual void collectIncreasers(bool up, std::span<const std::uint32_t> filter, DecisionList& out,
                                 std::size_t limit) const = 0;
  /// The same whatever the direction: all decisions of the filter below the node.
  virtual void collectDecreasers(std::span<const std::uint32_t> filter, DecisionList& out,
                                 std::size_t limit) const = 0;

  /// Code 6 if the state is not what a computation from the operands gives; a diagnostic.
  virtual void check() const = 0;

protected:
  const DagFixedFields& fields() const;
  std::uint32_t nbOperands() const;
  /// The dynamic node of an operand, or null for a constant.
  DynamicConstraintNode* operandNode(std::uint32_t position) const;
  std::int64_t operandInt(std::uint32_t position) const;
  double operandDouble(std::uint32_t position) const;
  template <typename Number>
  Number operandNumber(std::uint32_t position) const;

  /// What the operand tells its parents about itself; false for a constant.
  bool operandCanMove(std::uint32_t position, bool up) const;
  /// The ways of an operand; 0 for a constant.
  std::uint32_t nbOperandWays(std::uint32_t position, bool up) const;

  bool moveOperand(std::uint32_t position, std::uint32_t& rng, bool up, bool strict) const;
  bool changeOperand(std::uint32_t position, std::uint32_t& rng, bool strict) const;
  bool changeRandomOperand(std::uint32_t& rng, bool strict) const;
  /// The operand as the result of pickOperand; false for a constant.
  bool pickPosition(std::uint32_t position, std::uint32_t& operand) const;

  void collectFromOperand(std::uint32_t position, bool up, std::span<const std::uint32_t> filter,
                          DecisionList& out, std::size_t limit) const;
  void collectFromAllOperands(std::span<const std::uint32_t> filter, DecisionList& out,
                              std::size_t limit) const;

  /// Nothing if the value stayed. Keeps the set of violated constraints.
  template <typename Number>
  void notifyParents(Number oldValue, Number newValue, bool canIncrease, bool canDecrease) const;

  AutonomousStructure* structure;
  const StaticConstraintNode* description;
};

template <>
inline std::int64_t DynamicConstraintNode::operandNumber(std::uint32_t position) const {
  return operandInt(position);
}

template <>
inline double DynamicConstraintNode::operandNumber(std::uint32_t position) const {
  return operandDouble(position);
}

extern template void DynamicConstraintNode::notifyParents(std::int64_t, std::int64_t, bool,
                                                          bool) const;
extern template void DynamicConstraintNode::notifyParents(double, double, bool, bool) const;

}  // namespace ombrix

#endif
