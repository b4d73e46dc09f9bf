#include "builder/preprocessor/boundsinferrer.h"

#include <limits>

#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

void BoundsInferrer::run() {
  queue.clear();
  states.assign(preprocessor->nbExpressions(), kNew);
  pushRoots();
  pushConstraints();
  for (std::size_t front = 0; front < queue.size(); ++front) {
    const Index e = queue[front];
    states[e] = kTreated;
    applyRule(e);
    markIfKnown(e);
    pushNewOperands(e);
  }
}

void BoundsInferrer::push(Index e) {
  queue.push_back(e);
  states[e] = kQueued;
}

void BoundsInferrer::pushRoots() {
  for (const OXExpression* root : preprocessor->roots) push(Preprocessor::at(*root));
}

/// A conditional over numbers can be posted as a constraint; a double one is then the number 1.
void BoundsInferrer::pushConstraints() {
  for (const OXExpression* constraint : ModelRecord::constraints(*preprocessor->model)) {
    const Index e = Preprocessor::at(*constraint);
    push(e);
    if (preprocessor->isDouble(e)) {
      preprocessor->intersectDoubleBounds(e, 1.0, 1.0);
    } else {
      preprocessor->intersectIntBounds(e, 1, 1);
    }
  }
}

void BoundsInferrer::pushNewOperands(Index e) {
  for (const Index x : preprocessor->operands(e)) {
    if (states[x] == kNew) push(x);
  }
}

void BoundsInferrer::markIfKnown(Index e) {
  const OXOperator op = preprocessor->op(e);
  if ((op == OXOperator::Bool || op == OXOperator::Const) && isPoint(e)) {
    preprocessor->markFixed(e);
  }
}

void BoundsInferrer::applyRule(Index e) {
  switch (preprocessor->op(e)) {
    case OXOperator::Sum:
      return inferSum(e);
    case OXOperator::Prod:
      return preprocessor->isDouble(e) ? inferDoubleProd(e) : inferIntProd(e);
    case OXOperator::Max:
      return inferMax(e);
    case OXOperator::Min:
      return inferMin(e);
    case OXOperator::Eq:
      if (isKnownTrue(e)) inferEqual(e);
      return;
    case OXOperator::Neq:
      if (isKnownFalse(e)) inferEqual(e);
      return;
    case OXOperator::Geq:
    case OXOperator::Leq:
    case OXOperator::Gt:
    case OXOperator::Lt:
      if (isPoint(e)) inferOrder(e);
      return;
    case OXOperator::Not:
      return inferNot(e);
    case OXOperator::And:
      return inferAnd(e);
    case OXOperator::Or:
      return inferOr(e);
    case OXOperator::Abs:
      return inferAbs(e);
    case OXOperator::Div:
      return inferDiv(e);
    case OXOperator::At:
      return inferAt(e);
    case OXOperator::Sqrt:
    case OXOperator::Log:
      return inferNonNegative(e);
    default:
      return;
  }
}

/// No operand is above the maximum. An integer below a double is rounded outward.
void BoundsInferrer::inferMax(Index e) {
  for (const Index x : preprocessor->operands(e)) {
    if (preprocessor->isDouble(x)) {
      const double low = preprocessor->doubleBounds(x).low;
      preprocessor->intersectDoubleBounds(x, low, preprocessor->doubleBounds(e).high);
    } else {
      preprocessor->intersectIntBounds(x, preprocessor->intBounds(x).low, upperAsInt(e));
    }
  }
}

void BoundsInferrer::inferMin(Index e) {
  for (const Index x : preprocessor->operands(e)) {
    if (preprocessor->isDouble(x)) {
      const double high = preprocessor->doubleBounds(x).high;
      preprocessor->intersectDoubleBounds(x, preprocessor->doubleBounds(e).low, high);
    } else {
      preprocessor->intersectIntBounds(x, lowerAsInt(e), preprocessor->intBounds(x).high);
    }
  }
}

void BoundsInferrer::inferNot(Index e) {
  if (isKnownTrue(e)) intersectOperands(e, {0, 0});
  if (isKnownFalse(e)) intersectOperands(e, {1, 1});
}

void BoundsInferrer::inferAnd(Index e) {
  if (isKnownTrue(e)) return intersectOperands(e, {1, 1});
  if (!isKnownFalse(e)) return;
  for (const Index x : preprocessor->operands(e)) {
    if (!isKnownTrue(x)) return;
  }
  preprocessor->noteConflict(e);
}

void BoundsInferrer::inferOr(Index e) {
  if (isKnownFalse(e)) return intersectOperands(e, {0, 0});
  if (!isKnownTrue(e)) return;
  for (const Index x : preprocessor->operands(e)) {
    if (!isKnownFalse(x)) return;
  }
  preprocessor->noteConflict(e);
}

/// Narrows the absolute value itself by its own upper bound, and infers nothing about its operand.
void BoundsInferrer::inferAbs(Index e) {
  if (preprocessor->isDouble(preprocessor->operand(e, 0))) {
    const double high = preprocessor->doubleBounds(e).high;
    preprocessor->intersectDoubleBounds(e, -high, high);
  } else {
    const std::int64_t high = preprocessor->intBounds(e).high;
    preprocessor->intersectIntBounds(e, saturatingNegate(high), high);
  }
}

/// The divisor of an integer quotient is not 0, which narrows it where 0 is one of its ends.
void BoundsInferrer::inferDiv(Index e) {
  if (preprocessor->isDouble(e)) return;
  const Index divisor = preprocessor->operand(e, 1);
  const IntInterval bounds = preprocessor->intBounds(divisor);
  if (bounds.low == 0) {
    preprocessor->intersectIntBounds(divisor, 1, kIntMax);
  } else if (bounds.high == 0) {
    preprocessor->intersectIntBounds(divisor, kIntMin, -1);
  }
}

void BoundsInferrer::inferAt(Index e) {
  const std::int64_t size = preprocessor->nbOperands(preprocessor->operand(e, 0));
  preprocessor->intersectIntBounds(preprocessor->operand(e, 1), 0, size - 1);
}

/// Square roots and logarithms have no negative operand.
void BoundsInferrer::inferNonNegative(Index e) {
  const Index x = preprocessor->operand(e, 0);
  if (preprocessor->isDouble(x)) {
    preprocessor->intersectDoubleBounds(x, 0.0, kInfinity);
  } else {
    preprocessor->intersectIntBounds(x, 0, kIntMax);
  }
}

void BoundsInferrer::intersectOperands(Index e, IntInterval bounds) {
  for (const Index x : preprocessor->operands(e)) {
    preprocessor->intersectIntBounds(x, bounds);
  }
}

bool BoundsInferrer::isKnownTrue(Index e) const {
  return isPoint(e) && preprocessor->intBounds(e).low != 0;
}

bool BoundsInferrer::isKnownFalse(Index e) const {
  return isPoint(e) && preprocessor->intBounds(e).low == 0;
}

bool BoundsInferrer::isUnbounded(Index e) const {
  if (preprocessor->isDouble(e)) {
    const DoubleInterval bounds = preprocessor->doubleBounds(e);
    return bounds.low == -kInfinity || bounds.high == kInfinity;
  }
  const IntInterval bounds = preprocessor->intBounds(e);
  return bounds.low == kIntMin || bounds.high == kIntMax;
}

std::int64_t BoundsInferrer::lowerAsInt(Index e) const {
  if (preprocessor->isDouble(e)) return floorEnd(preprocessor->doubleBounds(e).low);
  return preprocessor->intBounds(e).low;
}

std::int64_t BoundsInferrer::upperAsInt(Index e) const {
  if (preprocessor->isDouble(e)) return ceilEnd(preprocessor->doubleBounds(e).high);
  return preprocessor->intBounds(e).high;
}

}  // namespace ombrix
