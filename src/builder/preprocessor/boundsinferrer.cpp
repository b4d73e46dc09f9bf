#include "builder/preprocessor/boundsinferrer.h"

#include <limits>

#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

constexpr std::int32_t kNew = 0;
constexpr std::int32_t kQueued = 1;
constexpr std::int32_t kTreated = 2;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool isDouble(const OXExpression& e) {
  return ModelRecord::valueType(e) == kDoubleType;
}

std::int32_t nbOperands(const OXExpression& e) {
  return ModelRecord::nbOperands(e);
}

OXExpression& operand(const OXExpression& e, std::int32_t position) {
  return *ModelRecord::operand(e, position);
}

}  // namespace

void BoundsInferrer::run() {
  queue.clear();
  states.assign(preprocessor->unaries.size(), kNew);
  pushRoots();
  pushConstraints();
  while (!queue.empty()) {
    OXExpression& e = *queue.front();
    queue.pop_front();
    states[Preprocessor::at(e)] = kTreated;
    applyRule(e);
    markIfKnown(e);
    pushNewOperands(e);
  }
}

void BoundsInferrer::pushRoots() {
  for (OXExpression* root : preprocessor->roots) {
    queue.push_back(root);
    states[Preprocessor::at(*root)] = kQueued;
  }
}

/// A conditional over numbers can be posted as a constraint; a double one is then the number 1.
void BoundsInferrer::pushConstraints() {
  for (OXExpression* constraint : ModelRecord::constraints(*preprocessor->model)) {
    queue.push_back(constraint);
    states[Preprocessor::at(*constraint)] = kQueued;
    if (isDouble(*constraint)) {
      preprocessor->intersectDoubleBounds(*constraint, 1.0, 1.0);
    } else {
      preprocessor->intersectIntBounds(*constraint, 1, 1);
    }
  }
}

void BoundsInferrer::pushNewOperands(const OXExpression& e) {
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    std::int32_t& state = states[static_cast<std::size_t>(ModelRecord::operandIndex(e, i))];
    if (state != kNew) continue;
    queue.push_back(&operand(e, i));
    state = kQueued;
  }
}

void BoundsInferrer::markIfKnown(const OXExpression& e) {
  const OXOperator op = ModelRecord::op(e);
  if ((op == OXOperator::Bool || op == OXOperator::Const) && isPoint(e)) {
    preprocessor->markFixed(e);
  }
}

void BoundsInferrer::applyRule(OXExpression& e) {
  switch (ModelRecord::op(e)) {
    case OXOperator::Sum:
      return inferSum(e);
    case OXOperator::Prod:
      return isDouble(e) ? inferDoubleProd(e) : inferIntProd(e);
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
void BoundsInferrer::inferMax(const OXExpression& e) {
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    OXExpression& x = operand(e, i);
    if (isDouble(x)) {
      const double low = preprocessor->doubleBounds(x).low;
      preprocessor->intersectDoubleBounds(x, low, preprocessor->doubleBounds(e).high);
    } else {
      preprocessor->intersectIntBounds(x, preprocessor->intBounds(x).low, upperAsInt(e));
    }
  }
}

void BoundsInferrer::inferMin(const OXExpression& e) {
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    OXExpression& x = operand(e, i);
    if (isDouble(x)) {
      const double high = preprocessor->doubleBounds(x).high;
      preprocessor->intersectDoubleBounds(x, preprocessor->doubleBounds(e).low, high);
    } else {
      preprocessor->intersectIntBounds(x, lowerAsInt(e), preprocessor->intBounds(x).high);
    }
  }
}

void BoundsInferrer::inferNot(const OXExpression& e) {
  if (isKnownTrue(e)) intersectOperands(e, {0, 0});
  if (isKnownFalse(e)) intersectOperands(e, {1, 1});
}

void BoundsInferrer::inferAnd(OXExpression& e) {
  if (isKnownTrue(e)) return intersectOperands(e, {1, 1});
  if (!isKnownFalse(e)) return;
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    if (!isKnownTrue(operand(e, i))) return;
  }
  preprocessor->conflicts.push_back(&e);
}

void BoundsInferrer::inferOr(OXExpression& e) {
  if (isKnownFalse(e)) return intersectOperands(e, {0, 0});
  if (!isKnownTrue(e)) return;
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    if (!isKnownFalse(operand(e, i))) return;
  }
  preprocessor->conflicts.push_back(&e);
}

/// Narrows the absolute value itself by its own upper bound, and infers nothing about its operand.
void BoundsInferrer::inferAbs(OXExpression& e) {
  if (isDouble(operand(e, 0))) {
    const double high = preprocessor->doubleBounds(e).high;
    preprocessor->intersectDoubleBounds(e, -high, high);
  } else {
    const std::int64_t high = preprocessor->intBounds(e).high;
    preprocessor->intersectIntBounds(e, saturatingNegate(high), high);
  }
}

/// The divisor of an integer quotient is not 0, which narrows it where 0 is one of its ends.
void BoundsInferrer::inferDiv(const OXExpression& e) {
  if (isDouble(e)) return;
  OXExpression& divisor = operand(e, 1);
  const IntInterval bounds = preprocessor->intBounds(divisor);
  if (bounds.low == 0) {
    preprocessor->intersectIntBounds(divisor, 1, kIntMax);
  } else if (bounds.high == 0) {
    preprocessor->intersectIntBounds(divisor, kIntMin, -1);
  }
}

void BoundsInferrer::inferAt(const OXExpression& e) {
  const std::int64_t size = nbOperands(operand(e, 0));
  preprocessor->intersectIntBounds(operand(e, 1), 0, size - 1);
}

/// Square roots and logarithms have no negative operand.
void BoundsInferrer::inferNonNegative(const OXExpression& e) {
  OXExpression& x = operand(e, 0);
  if (isDouble(x)) {
    preprocessor->intersectDoubleBounds(x, 0.0, kInfinity);
  } else {
    preprocessor->intersectIntBounds(x, 0, kIntMax);
  }
}

void BoundsInferrer::intersectOperands(const OXExpression& e, IntInterval bounds) {
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    preprocessor->intersectIntBounds(operand(e, i), bounds);
  }
}

bool BoundsInferrer::isKnownTrue(const OXExpression& e) const {
  return isPoint(e) && preprocessor->intBounds(e).low != 0;
}

bool BoundsInferrer::isKnownFalse(const OXExpression& e) const {
  return isPoint(e) && preprocessor->intBounds(e).low == 0;
}

bool BoundsInferrer::isUnbounded(const OXExpression& e) const {
  if (isDouble(e)) {
    const DoubleInterval bounds = preprocessor->doubleBounds(e);
    return bounds.low == -kInfinity || bounds.high == kInfinity;
  }
  const IntInterval bounds = preprocessor->intBounds(e);
  return bounds.low == kIntMin || bounds.high == kIntMax;
}

std::int64_t BoundsInferrer::lowerAsInt(const OXExpression& e) const {
  if (isDouble(e)) return floorEnd(preprocessor->doubleBounds(e).low);
  return preprocessor->intBounds(e).low;
}

std::int64_t BoundsInferrer::upperAsInt(const OXExpression& e) const {
  if (isDouble(e)) return ceilEnd(preprocessor->doubleBounds(e).high);
  return preprocessor->intBounds(e).high;
}

}  // namespace ombrix
