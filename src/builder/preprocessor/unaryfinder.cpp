#include "builder/preprocessor/unaryfinder.h"

namespace ombrix {

namespace {

bool isDouble(const OXExpression& e) {
  return ModelRecord::valueType(e) == kDoubleType;
}

}  // namespace

void UnaryFinder::run() {
  for (OXExpression* e : ModelRecord::expressions(*model)) {
    OXExpression* x = e;
    while (OXExpression* replacement = findReplacement(*x)) x = replacement;
    preprocessor->replace(*e, *x);
  }
}

OXExpression* UnaryFinder::findReplacement(const OXExpression& x) const {
  if (preprocessor->isFixed(x)) return nullptr;
  switch (ModelRecord::op(x)) {
    case OXOperator::Sum:
    case OXOperator::Or:
      return findSingleOperand(x, 0);
    case OXOperator::Prod:
    case OXOperator::And:
      return findSingleOperand(x, 1);
    case OXOperator::Max:
    case OXOperator::Min:
      return ModelRecord::nbOperands(x) == 1 ? ModelRecord::operand(x, 0) : nullptr;
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
      return nullptr;
  }
}

/// The one operand that is not fixed at the neutral element of the operator.
OXExpression* UnaryFinder::findSingleOperand(const OXExpression& x, std::int64_t neutral) const {
  OXExpression* result = nullptr;
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(x); ++i) {
    OXExpression& operand = preprocessor->canonicalOperand(x, i);
    if (isFixedAt(operand, neutral)) continue;
    if (result != nullptr) return nullptr;
    result = &operand;
  }
  return result;
}

OXExpression* UnaryFinder::replaceIif(const OXExpression& x) const {
  OXExpression& condition = preprocessor->canonicalOperand(x, 0);
  OXExpression& thenBranch = preprocessor->canonicalOperand(x, 1);
  OXExpression& elseBranch = preprocessor->canonicalOperand(x, 2);
  if (preprocessor->isFixed(condition)) {
    return isFixedAt(condition, 0) ? &elseBranch : &thenBranch;
  }
  if (&thenBranch == &elseBranch) return &thenBranch;
  const bool isCondition = ModelRecord::valueType(x) == kBoolType &&
                           preprocessor->isFixed(thenBranch) && !isFixedAt(thenBranch, 0) &&
                           isFixedAt(elseBranch, 0);
  return isCondition ? &condition : nullptr;
}

/// A quotient by 1 is replaced by its divisor, the constant 1, not by its dividend: models have
/// always been read so. The evaluation of a quotient knows nothing of it.
OXExpression* UnaryFinder::replaceDiv(const OXExpression& x) const {
  OXExpression& divisor = preprocessor->canonicalOperand(x, 1);
  if (!isFixedAt(divisor, 1)) return nullptr;
  if (isDouble(x) && !isDouble(preprocessor->canonicalOperand(x, 0))) return nullptr;
  return &divisor;
}

/// A fixed index outside the array leaves the expression alone: computing its value is what fails.
OXExpression* UnaryFinder::replaceAt(const OXExpression& x) const {
  const OXExpression& array = preprocessor->canonicalOperand(x, 0);
  const OXExpression& index = preprocessor->canonicalOperand(x, 1);
  if (!preprocessor->isFixed(index)) return nullptr;
  const std::int64_t position = preprocessor->intBounds(index).low;
  if (position < 0 || position >= ModelRecord::nbOperands(array)) return nullptr;
  return &preprocessor->canonicalOperand(array, static_cast<std::int32_t>(position));
}

/// An integer needs no rounding.
OXExpression* UnaryFinder::replaceRounding(const OXExpression& x) const {
  OXExpression& operand = preprocessor->canonicalOperand(x, 0);
  return isIntegral(ModelRecord::valueType(operand)) ? &operand : nullptr;
}

bool UnaryFinder::isFixedAt(const OXExpression& x, std::int64_t value) const {
  if (!preprocessor->isFixed(x)) return false;
  if (isDouble(x)) return preprocessor->doubleBounds(x).low == static_cast<double>(value);
  return preprocessor->intBounds(x).low == value;
}

}  // namespace ombrix
