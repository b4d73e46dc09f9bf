#ifndef OMBRIX_SOLVER_MOVE_CONSTRAINTNODELOGICAL_H
#define OMBRIX_SOLVER_MOVE_CONSTRAINTNODELOGICAL_H

#include "common/failure.h"
#include "solver/kernel/random.h"
#include "solver/move/constraintnodevariadic.h"

namespace ombrix {

/// The mirror of "and" and "or", which are one class seen from two sides. Kind::kNeutral is the
/// value of the node while no operand opposes it: true for "and", false for "or". helpers holds the
/// operands that can go to the neutral value, and so bring the node back to it.
template <typename Kind, typename S>
class DynamicConstraintNodeLogical final : public DynamicConstraintNode {
public:
  DynamicConstraintNodeLogical(AutonomousStructure& owner, const StaticConstraintNode& own)
      : DynamicConstraintNode(owner, own), nbOpposed(countOpposed()) {
    const std::uint32_t n = nbOperands();
    helpers.init(n);
    helpers.fill(n, [this](std::uint32_t i) { return operandCanMove(i, Kind::kNeutral); });
  }

  using DynamicConstraintNode::operandChanged;
  void operandChanged(std::uint32_t position, std::int64_t, std::int64_t newValue, bool canIncrease,
                      bool canDecrease) override {
    const std::int64_t oldOwn = getValue();
    if ((newValue != 0) == Kind::kNeutral) {
      --nbOpposed;
    } else {
      ++nbOpposed;
    }
    const std::uint32_t n = nbOperands();
    if (Kind::kNeutral ? canIncrease : canDecrease) {
      helpers.add(position, n);
    } else {
      helpers.remove(position, n);
    }
    const bool canReturn = helpers.size() > 0;
    const bool canLeave = isNeutral() && n > 0;
    notifyParents(oldOwn, getValue(), Kind::kNeutral ? canReturn : canLeave,
                  Kind::kNeutral ? canLeave : canReturn);
  }

  std::int64_t getValue() const override { return isNeutral() == Kind::kNeutral ? 1 : 0; }

  bool change(std::uint32_t& rng, bool strict) override {
    if (isNeutral()) return moveRandomOperand(rng, !Kind::kNeutral, strict);
    const std::uint32_t position = helpers.randomMember(nbOperands(), rng);
    return position != kNone && moveOperand(position, rng, Kind::kNeutral, strict);
  }
  bool increase(std::uint32_t& rng, bool strict) override {
    return Kind::kNeutral ? toNeutral(rng, strict) : fromNeutral(rng, strict);
  }
  bool decrease(std::uint32_t& rng, bool strict) override {
    return Kind::kNeutral ? fromNeutral(rng, strict) : toNeutral(rng, strict);
  }

  std::uint32_t nbIncreasers() const override { return nbWays(Kind::kNeutral); }
  std::uint32_t nbDecreasers() const override { return nbWays(!Kind::kNeutral); }

  bool pickOperand(std::uint32_t& rng, bool up, std::uint32_t& operand,
                   bool& operandUp) const override {
    if (nbWays(up == Kind::kNeutral) == 0) return false;
    const std::uint32_t n = nbOperands();
    operandUp = up;
    return pickPosition(up == Kind::kNeutral ? helpers.randomMember(n, rng) : randomIndex(rng, n),
                        operand);
  }

  void collectIncreasers(bool up, std::span<const std::uint32_t> filter, DecisionList& out,
                         std::size_t limit) const override {
    const std::uint32_t n = nbOperands();
    if (up == Kind::kNeutral) {
      for (std::uint32_t i = helpers.first(n); i < n && out.size() < limit;
           i = helpers.next(i, n)) {
        collectFromOperand(i, up, filter, out, limit);
      }
    } else if (isNeutral()) {
      for (std::uint32_t i = 0; i < n && out.size() < limit; ++i) {
        collectFromOperand(i, up, filter, out, limit);
      }
    }
  }
  void collectDecreasers(std::span<const std::uint32_t> filter, DecisionList& out,
                         std::size_t limit) const override {
    collectFromAllOperands(filter, out, limit);
  }

  void check() const override {
    if (nbOpposed != countOpposed()) {
      fail(kInternal, OMBRIX_HERE("DynamicConstraintNode::check"), "check() : 1");
    }
    const bool agrees = helpers.agrees(
        nbOperands(), [this](std::uint32_t i) { return operandCanMove(i, Kind::kNeutral); });
    if (!agrees) fail(kInternal, OMBRIX_HERE("DynamicConstraintNode::check"), "check() : 2");
  }

private:
  bool isNeutral() const { return nbOpposed == 0; }
  std::uint32_t countOpposed() const {
    std::uint32_t count = 0;
    for (std::uint32_t i = 0, n = nbOperands(); i < n; ++i) {
      if ((operandInt(i) != 0) != Kind::kNeutral) ++count;
    }
    return count;
  }
  /// To or away from the neutral value.
  std::uint32_t nbWays(bool towardsNeutral) const {
    if (towardsNeutral) return helpers.size();
    return isNeutral() ? nbOperands() : 0;
  }
  bool moveRandomOperand(std::uint32_t& rng, bool up, bool strict) const {
    const std::uint32_t n = nbOperands();
    return n > 0 && moveOperand(randomIndex(rng, n), rng, up, strict);
  }
  bool toNeutral(std::uint32_t& rng, bool strict) {
    if (isNeutral()) return !strict && moveRandomOperand(rng, Kind::kNeutral, strict);
    for (int attempt = 0; attempt < kMaxOperandTries; ++attempt) {
      const std::uint32_t position = helpers.randomMember(nbOperands(), rng);
      if (position == kNone) return false;
      if (moveOperand(position, rng, Kind::kNeutral, strict)) return true;
    }
    return false;
  }
  bool fromNeutral(std::uint32_t& rng, bool strict) {
    if (!isNeutral() && strict) return false;
    return moveRandomOperand(rng, !Kind::kNeutral, strict);
  }

  std::uint32_t nbOpposed;  ///< operands that are not at the neutral value
  S helpers;
};

struct AndKind {
  static constexpr bool kNeutral = true;
  static constexpr bool kHasCoefficients = false;
  static constexpr const char* kStart = "and(";
  template <typename S>
  using Dynamic = DynamicConstraintNodeLogical<AndKind, S>;
};

struct OrKind {
  static constexpr bool kNeutral = false;
  static constexpr bool kHasCoefficients = false;
  static constexpr const char* kStart = "or(";
  template <typename S>
  using Dynamic = DynamicConstraintNodeLogical<OrKind, S>;
};

using StaticConstraintNodeAnd = StaticConstraintNodeVariadic<AndKind>;
using StaticConstraintNodeOr = StaticConstraintNodeVariadic<OrKind>;
template <typename S>
using DynamicConstraintNodeAnd = DynamicConstraintNodeLogical<AndKind, S>;
template <typename S>
using DynamicConstraintNodeOr = DynamicConstraintNodeLogical<OrKind, S>;

extern template class StaticConstraintNodeVariadic<AndKind>;
extern template class StaticConstraintNodeVariadic<OrKind>;

}  // namespace ombrix

#endif
