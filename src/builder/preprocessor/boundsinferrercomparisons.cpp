// The rules of BoundsInferrer for comparisons. The second operand is narrowed by what the first one
// has become.

#include <algorithm>
#include <utility>

#include "builder/preprocessor/boundsinferrer.h"
#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

/// Of a false comparison the opposite one is true.
OXOperator opposite(OXOperator op) {
  switch (op) {
    case OXOperator::Geq:
      return OXOperator::Lt;
    case OXOperator::Leq:
      return OXOperator::Gt;
    case OXOperator::Gt:
      return OXOperator::Leq;
    default:
      return OXOperator::Geq;
  }
}

}  // namespace

/// Both operands are equal.
void BoundsInferrer::inferEqual(Index e) {
  const Index a = preprocessor->operand(e, 0);
  const Index b = preprocessor->operand(e, 1);
  if (preprocessor->hasDoubleOperand(e)) {
    doubleEqualTo(a, b);
    doubleEqualTo(b, a);
  } else {
    preprocessor->intersectIntBounds(a, preprocessor->intBounds(b));
    preprocessor->intersectIntBounds(b, preprocessor->intBounds(a));
  }
}

void BoundsInferrer::doubleEqualTo(Index a, Index b) {
  if (preprocessor->isDouble(a)) {
    preprocessor->intersectDoubleBounds(a, preprocessor->doubleBounds(b));
  } else {
    preprocessor->intersectIntBounds(a, lowerAsInt(b), upperAsInt(b));
  }
}

/// Doubles have no strict order: whichever of both operands is larger may be equal as well.
void BoundsInferrer::inferOrder(Index e) {
  const Index a = preprocessor->operand(e, 0);
  const Index b = preprocessor->operand(e, 1);
  const OXOperator op = isKnownTrue(e) ? preprocessor->op(e) : opposite(preprocessor->op(e));
  const bool isFirstLarger = op == OXOperator::Geq || op == OXOperator::Gt;
  if (preprocessor->hasDoubleOperand(e))
    return isFirstLarger ? doubleAtLeast(a, b) : doubleAtLeast(b, a);
  switch (op) {
    case OXOperator::Geq:
      return intAtLeast(a, b);
    case OXOperator::Gt:
      return intAbove(a, b);
    case OXOperator::Leq:
      return intAtMost(a, b);
    default:
      return intBelow(a, b);
  }
}

void BoundsInferrer::intAtMost(Index a, Index b) {
  preprocessor->intersectIntBounds(a, kIntMin, preprocessor->intBounds(b).high);
  preprocessor->intersectIntBounds(b, preprocessor->intBounds(a).low, kIntMax);
}

void BoundsInferrer::intAtLeast(Index a, Index b) {
  preprocessor->intersectIntBounds(a, preprocessor->intBounds(b).low, kIntMax);
  preprocessor->intersectIntBounds(b, kIntMin, preprocessor->intBounds(a).high);
}

void BoundsInferrer::intBelow(Index a, Index b) {
  preprocessor->intersectIntBounds(a, kIntMin, saturatingSub(preprocessor->intBounds(b).high, 1));
  preprocessor->intersectIntBounds(b, saturatingAdd(preprocessor->intBounds(a).low, 1), kIntMax);
}

void BoundsInferrer::intAbove(Index a, Index b) {
  preprocessor->intersectIntBounds(a, saturatingAdd(preprocessor->intBounds(b).low, 1), kIntMax);
  preprocessor->intersectIntBounds(b, kIntMin, saturatingSub(preprocessor->intBounds(a).high, 1));
}

void BoundsInferrer::doubleAtLeast(Index a, Index b) {
  for (const Index e : {a, b}) {
    if (preprocessor->isDouble(e)) {
      preprocessor->intersectDoubleBounds(e, preprocessor->doubleBounds(b).low,
                                          preprocessor->doubleBounds(a).high);
    } else {
      preprocessor->intersectIntBounds(e, lowerAsInt(b), upperAsInt(a));
    }
  }
}

}  // namespace ombrix
