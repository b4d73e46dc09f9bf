#include "builder/preprocessor/operandcollector.h"

#include "builder/preprocessor/fixedvalue.h"
#include "builder/valuetools.h"
#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

/// a * b, in double when either type is double. Both values are read in the type told for them; an
/// integral owner keeps the eight bytes of a double product.
OXValue multiply(ValueType typeA, OXValue a, ValueType typeB, OXValue b) {
  if (typeA == kDoubleType || typeB == kDoubleType) {
    return OXValue::ofDouble(asDouble(typeA, a) * asDouble(typeB, b));
  }
  return OXValue::ofInt(wrappingMul(a.intValue, b.intValue));
}

}  // namespace

void OperandCollector::collect(CreationFrame& frame) {
  const CreationFlags& flags = frame.flags;
  if (!flags.foldConstants && !flags.flattenNonNegative && !flags.flattenNonPositive &&
      !flags.collectCoefficients) {
    collectPlain(frame);
    return;
  }
  const OXExpression& e = *frame.expression;
  const OXValue one = ValueTools::one(ModelRecord::valueType(e));
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(e); ++i) {
    settle(frame, {one, &preprocessor.canonicalOperand(e, i)});
    while (!pending.empty()) {
      const Term term = pending.back();
      pending.pop_back();
      settle(frame, term);
    }
  }
}

void OperandCollector::collectPlain(CreationFrame& frame) const {
  const OXExpression& e = *frame.expression;
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(e); ++i) {
    frame.operands.push_back(&preprocessor.canonicalOperand(e, i));
  }
}

void OperandCollector::settle(CreationFrame& frame, const Term& term) {
  if (frame.flags.foldConstants && preprocessor.isFixed(*term.expression)) {
    fold(frame, term);
    return;
  }
  if (isOpened(frame, term)) {
    pushOperands(term);
    return;
  }
  if (frame.flags.collectCoefficients) {
    Factor factor;
    if (readFactor(*term.expression, factor)) {
      const ValueType type = ModelRecord::valueType(*frame.expression);
      pending.push_back(
          {multiply(type, term.coefficient, factor.type, factor.coefficient), factor.rest});
      return;
    }
    frame.coefficients.push_back(term.coefficient);
  }
  frame.operands.push_back(term.expression);
}

void OperandCollector::fold(CreationFrame& frame, const Term& term) const {
  const ValueType type = ModelRecord::valueType(*frame.expression);
  const OXExpression& x = *term.expression;
  frame.constants.push_back(
      multiply(type, term.coefficient, ModelRecord::valueType(x), fixedValue(preprocessor, x)));
}

/// An expression used elsewhere keeps a node of its own, so that it is not built twice.
bool OperandCollector::isOpened(const CreationFrame& frame, const Term& term) const {
  const OXExpression& e = *frame.expression;
  const OXExpression& x = *term.expression;
  if (ModelRecord::op(x) != ModelRecord::op(e)) return false;
  if (preprocessor.useCounts[Preprocessor::at(x)] > 1) return false;
  const CreationFlags& flags = frame.flags;
  if (ModelRecord::valueType(e) == kDoubleType) {
    const double c = term.coefficient.doubleValue;
    return (flags.flattenNonNegative && c >= 0.0) || (flags.flattenNonPositive && c <= 0.0);
  }
  const std::int64_t c = term.coefficient.intValue;
  return (flags.flattenNonNegative && c >= 0) || (flags.flattenNonPositive && c <= 0);
}

void OperandCollector::pushOperands(const Term& term) {
  const OXExpression& x = *term.expression;
  for (std::int32_t i = ModelRecord::nbOperands(x); i-- > 0;) {
    pending.push_back({term.coefficient, &preprocessor.canonicalOperand(x, i)});
  }
}

bool OperandCollector::readFactor(const OXExpression& x, Factor& factor) const {
  switch (ModelRecord::op(x)) {
    case OXOperator::Prod:
      if (!readProduct(x, factor)) return false;
      break;
    case OXOperator::Iif:
      if (!readGuard(x, factor)) return false;
      break;
    case OXOperator::Div:
      if (!readQuotient(x, factor)) return false;
      break;
    default:
      return false;
  }
  return !ValueTools::isZero(factor.type, factor.coefficient);
}

/// A product of constants and one free operand.
bool OperandCollector::readProduct(const OXExpression& x, Factor& factor) const {
  if (ModelRecord::nbOperands(x) < 2) return false;
  factor.type = ModelRecord::valueType(x);
  factor.coefficient = ValueTools::one(factor.type);
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(x); ++i) {
    OXExpression& y = preprocessor.canonicalOperand(x, i);
    if (preprocessor.isFixed(y)) {
      factor.coefficient = multiply(factor.type, factor.coefficient, factor.type,
                                    fixedValueAs(preprocessor, factor.type, y));
    } else if (factor.rest == nullptr) {
      factor.rest = &y;
    } else {
      return false;
    }
  }
  return factor.rest != nullptr;
}

/// iif(c, a, 0) is a times c.
bool OperandCollector::readGuard(const OXExpression& x, Factor& factor) const {
  const OXExpression& thenBranch = preprocessor.canonicalOperand(x, 1);
  const OXExpression& elseBranch = preprocessor.canonicalOperand(x, 2);
  if (!preprocessor.isFixed(thenBranch) || !preprocessor.isFixed(elseBranch)) return false;
  if (!ValueTools::isZero(ModelRecord::valueType(elseBranch), fixedValue(preprocessor, elseBranch)))
    return false;
  factor.type = ModelRecord::valueType(x);
  factor.coefficient = fixedValueAs(preprocessor, factor.type, thenBranch);
  factor.rest = &preprocessor.canonicalOperand(x, 0);
  return true;
}

/// A double quotient by a constant d is its dividend times 1 / d. The coefficient is then read in
/// the type of the divisor: the bytes of 1 / d under an integer divisor count as an integer. Models
/// depend on that reading, odd as it is.
bool OperandCollector::readQuotient(const OXExpression& x, Factor& factor) const {
  if (ModelRecord::valueType(x) != kDoubleType) return false;
  const OXExpression& divisor = preprocessor.canonicalOperand(x, 1);
  if (!preprocessor.isFixed(divisor)) return false;
  factor.type = ModelRecord::valueType(divisor);
  factor.coefficient = OXValue::ofDouble(1.0 / fixedDouble(preprocessor, divisor));
  factor.rest = &preprocessor.canonicalOperand(x, 0);
  return true;
}

}  // namespace ombrix
