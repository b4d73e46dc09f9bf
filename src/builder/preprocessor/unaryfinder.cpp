#include "builder/preprocessor/unaryfinder.h"

#include <numeric>

namespace ombrix {

void UnaryFinder::run() {
  canonicals.resize(preprocessor->nbExpressions());
  std::iota(canonicals.begin(), canonicals.end(), 0U);
  for (Index e = 0; e < canonicals.size(); ++e) {
    Index x = e;
    for (Index next = x; next != kNone; next = findReplacement(x)) x = next;
    canonicals[e] = x;
    preprocessor->replace(e, x);
  }
}

UnaryFinder::Index UnaryFinder::findReplacement(Index x) const {
  if (preprocessor->isFixed(x)) return kNone;
  switch (preprocessor->op(x)) {
    case OXOperator::Sum:
    case OXOperator::Or:
      return findSingleOperand(x, 0);
    case OXOperator::Prod:
    case OXOperator::And:
      return findSingleOperand(x, 1);
    case OXOperator::Max:
    case OXOperator::Min:
      return preprocessor->nbOperands(x) == 1 ? preprocessor->operand(x, 0) : kNone;
    case OXOperator::Iif:
      return replaceIif(x);
    case OXOperator::Div:
      return replaceDiv(x);
    case OXOperator::At:
      return replaceAt(x);
    case OXOperator::Ceil:
    case OXOperator::Floor:
    case OXOperator::Round:
      return replaceRounding(x);
    default:
      return kNone;
  }
}

/// The one operand that is not fixed at the neutral element of the operator.
UnaryFinder::Index UnaryFinder::findSingleOperand(Index x, std::int64_t neutral) const {
  Index result = kNone;
  for (const Index operand : preprocessor->operands(x)) {
    const Index y = canonicals[operand];
    if (isFixedAt(y, neutral)) continue;
    if (result != kNone) return kNone;
    result = y;
  }
  return result;
}

UnaryFinder::Index UnaryFinder::replaceIif(Index x) const {
  const Index condition = canonicalOperand(x, 0);
  const Index thenBranch = canonicalOperand(x, 1);
  const Index elseBranch = canonicalOperand(x, 2);
  if (preprocessor->isFixed(condition)) {
    return isFixedAt(condition, 0) ? elseBranch : thenBranch;
  }
  if (thenBranch == elseBranch) return thenBranch;
  const bool isCondition = preprocessor->isBool(x) && preprocessor->isFixed(thenBranch) &&
                           !isFixedAt(thenBranch, 0) && isFixedAt(elseBranch, 0);
  return isCondition ? condition : kNone;
}

/// A quotient by 1 is replaced by its divisor, the constant 1, not by its dividend: models have
/// always been read so. The evaluation of a quotient knows nothing of it.
UnaryFinder::Index UnaryFinder::replaceDiv(Index x) const {
  const Index divisor = canonicalOperand(x, 1);
  if (!isFixedAt(divisor, 1)) return kNone;
  if (preprocessor->isDouble(x) && !preprocessor->isDouble(canonicalOperand(x, 0))) return kNone;
  return divisor;
}

/// A fixed index outside the array leaves the expression alone: computing its value is what fails.
UnaryFinder::Index UnaryFinder::replaceAt(Index x) const {
  const Index array = canonicalOperand(x, 0);
  const Index index = canonicalOperand(x, 1);
  if (!preprocessor->isFixed(index)) return kNone;
  const std::int64_t position = preprocessor->intBounds(index).low;
  if (position < 0 || position >= preprocessor->nbOperands(array)) return kNone;
  return canonicalOperand(array, static_cast<Index>(position));
}

/// An integer needs no rounding.
UnaryFinder::Index UnaryFinder::replaceRounding(Index x) const {
  const Index operand = canonicalOperand(x, 0);
  return preprocessor->isDouble(operand) ? kNone : operand;
}

bool UnaryFinder::isFixedAt(Index x, std::int64_t value) const {
  if (!preprocessor->isFixed(x)) return false;
  if (preprocessor->isDouble(x))
    return preprocessor->doubleBounds(x).low == static_cast<double>(value);
  return preprocessor->intBounds(x).low == value;
}

}  // namespace ombrix
