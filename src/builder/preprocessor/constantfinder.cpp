#include "builder/preprocessor/constantfinder.h"

#include "builder/preprocessor/fixedvalue.h"

namespace ombrix {

void ConstantFinder::run() {
  for (const Index e : preprocessor->bottomUp()) {
    if (!preprocessor->isArray(e) && !preprocessor->isFixed(e)) visit(e);
  }
}

void ConstantFinder::visit(Index e) {
  switch (preprocessor->op(e)) {
    case OXOperator::Bool:
      if (preprocessor->hasEqualBounds(e)) preprocessor->markFixed(e);
      return;
    case OXOperator::Const:
      return preprocessor->markFixed(e);
    case OXOperator::Prod:
    case OXOperator::And:
      return hasOperandAt(e, 0) ? fixAt(e, 0) : evaluateIfFixed(e);
    case OXOperator::Or:
      return hasOperandAt(e, 1) ? fixAt(e, 1) : evaluateIfFixed(e);
    case OXOperator::At:
      return visitAt(e);
    default:
      return evaluateIfFixed(e);
  }
}

/// A fixed index outside the array tells nothing: reading the value is what fails.
void ConstantFinder::visitAt(Index e) {
  const Index array = preprocessor->operand(e, 0);
  const Index index = preprocessor->operand(e, 1);
  if (!preprocessor->isFixed(index)) return;
  const std::int64_t position = preprocessor->intBounds(index).low;
  if (position < 0 || position >= preprocessor->nbOperands(array)) return;
  const auto element = preprocessor->operand(array, static_cast<Index>(position));
  if (!preprocessor->isFixed(element)) return;
  intersect(e,
            EvaluatorTools::atEval(preprocessor->expression(e), preprocessor->lowerBounds.data()));
  preprocessor->markFixed(e);
}

void ConstantFinder::evaluateIfFixed(Index e) {
  if (!areOperandsFixed(e)) return;
  if (!preprocessor->hasEqualBounds(e)) intersect(e, evaluate(e));
  preprocessor->markFixed(e);
}

/// An array is never fixed itself, so an expression over arrays never has all operands fixed.
bool ConstantFinder::areOperandsFixed(Index e) const {
  for (const Index x : preprocessor->operands(e)) {
    if (preprocessor->isArray(x) || !preprocessor->isFixed(x)) return false;
  }
  return true;
}

bool ConstantFinder::hasOperandAt(Index e, std::int64_t value) const {
  for (const Index x : preprocessor->operands(e)) {
    if (preprocessor->isArray(x) || !preprocessor->hasEqualBounds(x)) continue;
    const bool isThere = preprocessor->isDouble(x) ? approxEqual(preprocessor->doubleBounds(x).low,
                                                                 static_cast<double>(value))
                                                   : preprocessor->intBounds(x).low == value;
    if (isThere) return true;
  }
  return false;
}

OXTypedValue ConstantFinder::evaluate(Index e) const {
  const OXValue* values = preprocessor->lowerBounds.data();
  const OXExpression& expression = preprocessor->expression(e);
  return EvaluatorTools::evaluate(preprocessor->op(e),
                                  ExpressionEvaluatorIterator::begin(values, expression),
                                  ExpressionEvaluatorIterator::end(values, expression));
}

void ConstantFinder::fixAt(Index e, std::int64_t value) {
  intersect(e, OXTypedValue::ofInt(value));
  preprocessor->markFixed(e);
}

/// The bounds are of the type of the expression: one that was typed at an earlier closing may be a
/// double over integers only.
void ConstantFinder::intersect(Index e, const OXTypedValue& result) {
  if (preprocessor->isDouble(e)) {
    const double value = asDouble(static_cast<ValueType>(result.type), result.value);
    preprocessor->intersectDoubleBounds(e, value, value);
  } else {
    preprocessor->intersectIntBounds(e, result.value.intValue, result.value.intValue);
  }
}

}  // namespace ombrix
