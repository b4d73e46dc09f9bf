#include "builder/preprocessor/constantfinder.h"

namespace ombrix {

namespace {

bool isArray(const OXExpression& e) {
  return ModelRecord::op(e) == OXOperator::Array;
}

bool isDouble(const OXExpression& e) {
  return ModelRecord::valueType(e) == kDoubleType;
}

}  // namespace

void ConstantFinder::run() {
  walk.run(*preprocessor->model, preprocessor->roots, [this](OXExpression& e) {
    if (!isArray(e) && !preprocessor->isFixed(e)) visit(e);
  });
}

void ConstantFinder::visit(OXExpression& e) {
  switch (ModelRecord::op(e)) {
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
void ConstantFinder::visitAt(OXExpression& e) {
  const OXExpression& array = *ModelRecord::operand(e, 0);
  const OXExpression& index = *ModelRecord::operand(e, 1);
  if (!preprocessor->isFixed(index)) return;
  const std::int64_t position = preprocessor->intBounds(index).low;
  if (position < 0 || position >= ModelRecord::nbOperands(array)) return;
  if (!preprocessor->isFixed(*ModelRecord::operand(array, static_cast<std::int32_t>(position)))) {
    return;
  }
  intersect(e, EvaluatorTools::atEval(e, preprocessor->lowerBounds.data()));
  preprocessor->markFixed(e);
}

void ConstantFinder::evaluateIfFixed(OXExpression& e) {
  if (!areOperandsFixed(e)) return;
  if (!preprocessor->hasEqualBounds(e)) intersect(e, evaluate(e));
  preprocessor->markFixed(e);
}

/// An array is never fixed itself, so an expression over arrays never has all operands fixed.
bool ConstantFinder::areOperandsFixed(const OXExpression& e) const {
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(e); ++i) {
    const OXExpression& x = *ModelRecord::operand(e, i);
    if (isArray(x) || !preprocessor->isFixed(x)) return false;
  }
  return true;
}

bool ConstantFinder::hasOperandAt(const OXExpression& e, std::int64_t value) const {
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(e); ++i) {
    const OXExpression& x = *ModelRecord::operand(e, i);
    if (isArray(x) || !preprocessor->hasEqualBounds(x)) continue;
    const bool isThere =
        isDouble(x) ? approxEqual(preprocessor->doubleBounds(x).low, static_cast<double>(value))
                    : preprocessor->intBounds(x).low == value;
    if (isThere) return true;
  }
  return false;
}

OXTypedValue ConstantFinder::evaluate(const OXExpression& e) const {
  const OXValue* values = preprocessor->lowerBounds.data();
  return EvaluatorTools::evaluate(ModelRecord::op(e), ExpressionEvaluatorIterator::begin(values, e),
                                  ExpressionEvaluatorIterator::end(values, e));
}

void ConstantFinder::fixAt(OXExpression& e, std::int64_t value) {
  if (isDouble(e)) {
    intersect(e, OXTypedValue::ofDouble(static_cast<double>(value)));
  } else {
    intersect(e, OXTypedValue::ofInt(value));
  }
  preprocessor->markFixed(e);
}

void ConstantFinder::intersect(OXExpression& e, const OXTypedValue& result) {
  if (result.type == kDoubleType) {
    preprocessor->intersectDoubleBounds(e, result.value.doubleValue, result.value.doubleValue);
  } else {
    preprocessor->intersectIntBounds(e, result.value.intValue, result.value.intValue);
  }
}

}  // namespace ombrix
