#include "solver/move/constraintnodecomparison.h"

#include <concepts>
#include <string>

#include "common/failure.h"
#include "solver/kernel/random.h"
#include "solver/kernel/saturating.h"
#include "solver/move/autonomousstructure.h"

namespace ombrix {

namespace {

constexpr std::uint32_t kLeft = 0;
constexpr std::uint32_t kRight = 1;

int signOf(std::int64_t slack) {
  return slack == 0 ? 0 : (slack > 0 ? 1 : -1);
}

int signOf(double slack) {
  return approxEqual(slack, 0.0) ? 0 : (slack > 0.0 ? 1 : -1);
}

std::int64_t difference(std::int64_t a, std::int64_t b) {
  return wrappingSub(a, b);
}

double difference(double a, double b) {
  return a - b;
}

bool isSame(std::int64_t a, std::int64_t b) {
  return a == b;
}

bool isSame(double a, double b) {
  return approxEqual(a, b);
}

template <typename Kind, typename Number>
bool satisfies(Number slack) {
  const int sign = signOf(slack);
  return sign == 0 || (sign > 0 ? Kind::kAllowsPositive : Kind::kAllowsNegative);
}

}  // namespace

template <typename Kind>
DynamicConstraintNode* StaticConstraintNodeComparison<Kind>::createDynamic(
    AutonomousStructure& structure) const {
  return structure.create<DynamicConstraintNodeComparison<Kind>>(*this);
}

template <typename Kind>
DynamicConstraintNodeComparison<Kind>::DynamicConstraintNodeComparison(
    AutonomousStructure& owner, const StaticConstraintNode& own)
    : DynamicConstraintNode(owner, own), slack(computeSlack()) {}

template <typename Kind>
typename Kind::Number DynamicConstraintNodeComparison<Kind>::computeSlack() const {
  return difference(operandNumber<Number>(kRight), operandNumber<Number>(kLeft));
}

template <typename Kind>
bool DynamicConstraintNodeComparison<Kind>::holds() const {
  return satisfies<Kind>(slack);
}

template <typename Kind>
bool DynamicConstraintNodeComparison<Kind>::canBeLeftOnBothSides() const {
  return !Kind::kAllowsPositive && !Kind::kAllowsNegative && holds();
}

template <typename Kind>
bool DynamicConstraintNodeComparison<Kind>::slackRises(bool up) const {
  if constexpr (Kind::kAllowsPositive) return up;
  if constexpr (Kind::kAllowsNegative) return !up;
  return (signOf(slack) < 0) == up;
}

template <typename Kind>
void DynamicConstraintNodeComparison<Kind>::operandChanged(std::uint32_t position, Number oldValue,
                                                           Number newValue, bool, bool) {
  const bool held = holds();
  const Number delta = difference(newValue, oldValue);
  slack = position == kRight ? difference(slack, difference(Number{0}, delta))
                             : difference(slack, delta);
  notifyParents(std::int64_t{held}, getValue(), !holds(), holds());
}

template <typename Kind>
bool DynamicConstraintNodeComparison<Kind>::change(std::uint32_t& rng, bool strict) {
  const std::uint32_t position = randomTopBit(rng) ? kRight : kLeft;
  return changeOperand(position, rng, strict) || changeOperand(1 - position, rng, strict);
}

template <typename Kind>
bool DynamicConstraintNodeComparison<Kind>::increase(std::uint32_t& rng, bool strict) {
  if (holds() && (strict || canBeLeftOnBothSides())) return false;
  return moveSlack(rng, slackRises(true), strict);
}

template <typename Kind>
bool DynamicConstraintNodeComparison<Kind>::decrease(std::uint32_t& rng, bool strict) {
  if (!holds() && strict) return false;
  if (canBeLeftOnBothSides()) return change(rng, strict);
  return moveSlack(rng, slackRises(false), strict);
}

template <typename Kind>
bool DynamicConstraintNodeComparison<Kind>::moveSlack(std::uint32_t& rng, bool rises,
                                                      bool strict) const {
  if (randomTopBit(rng) && moveOperand(kRight, rng, rises, strict)) return true;
  return moveOperand(kLeft, rng, !rises, strict);
}

template <typename Kind>
std::uint32_t DynamicConstraintNodeComparison<Kind>::nbWays(bool rises) const {
  return nbOperandWays(kRight, rises) + nbOperandWays(kLeft, !rises);
}

template <typename Kind>
std::uint32_t DynamicConstraintNodeComparison<Kind>::nbIncreasers() const {
  return holds() ? 0 : nbWays(slackRises(true));
}

template <typename Kind>
std::uint32_t DynamicConstraintNodeComparison<Kind>::nbDecreasers() const {
  if (!holds()) return 0;
  return canBeLeftOnBothSides() ? nbWays(true) + nbWays(false) : nbWays(slackRises(false));
}

template <typename Kind>
bool DynamicConstraintNodeComparison<Kind>::pickOperand(std::uint32_t& rng, bool up,
                                                        std::uint32_t& operand,
                                                        bool& operandUp) const {
  if (holds() == up) return false;
  std::uint32_t position = randomTopBit(rng) ? kRight : kLeft;
  if (!pickPosition(position, operand)) {
    position = 1 - position;
    if (!pickPosition(position, operand)) return false;
  }
  if (canBeLeftOnBothSides()) {
    operandUp = nbOperandWays(position, true) > 0;
  } else {
    operandUp = (position == kRight) == slackRises(up);
  }
  return true;
}

template <typename Kind>
void DynamicConstraintNodeComparison<Kind>::collectIncreasers(bool up,
                                                              std::span<const std::uint32_t> filter,
                                                              DecisionList& out,
                                                              std::size_t limit) const {
  if (holds() == up) return;
  if (canBeLeftOnBothSides()) {
    collectFromAllOperands(filter, out, limit);
    return;
  }
  const bool rises = slackRises(up);
  collectFromOperand(kLeft, !rises, filter, out, limit);
  collectFromOperand(kRight, rises, filter, out, limit);
}

template <typename Kind>
void DynamicConstraintNodeComparison<Kind>::collectDecreasers(std::span<const std::uint32_t> filter,
                                                              DecisionList& out,
                                                              std::size_t limit) const {
  collectFromAllOperands(filter, out, limit);
}

template <typename Kind>
void DynamicConstraintNodeComparison<Kind>::check() const {
  if (isSame(slack, computeSlack())) return;
  const std::string function(Kind::kCheck + kNamespaceLength);
  fail(kInternal, Where{__FILE__, __LINE__, Kind::kCheck},
       function + " : " + std::to_string(description->index));
}

template class StaticConstraintNodeComparison<EqKind>;
template class StaticConstraintNodeComparison<LeqKind>;
template class StaticConstraintNodeComparison<GeqKind>;
template class StaticConstraintNodeComparison<DoubleEqKind>;
template class StaticConstraintNodeComparison<DoubleLeqKind>;
template class StaticConstraintNodeComparison<DoubleGeqKind>;
template class DynamicConstraintNodeComparison<EqKind>;
template class DynamicConstraintNodeComparison<LeqKind>;
template class DynamicConstraintNodeComparison<GeqKind>;
template class DynamicConstraintNodeComparison<DoubleEqKind>;
template class DynamicConstraintNodeComparison<DoubleLeqKind>;
template class DynamicConstraintNodeComparison<DoubleGeqKind>;

}  // namespace ombrix
