#include "builder/evaluatortools.h"

#include <cmath>
#include <limits>
#include <string>

#include "builder/operatortools.h"
#include "common/failure.h"
#include "solver/kernel/mathdouble.h"

namespace ombrix {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

OXTypedValue ofBool(bool value) {
  return OXTypedValue::ofBool(value);
}
OXTypedValue ofInt(std::int64_t value) {
  return OXTypedValue::ofInt(value);
}
OXTypedValue ofDouble(double value) {
  return OXTypedValue::ofDouble(value);
}

Where here() {
  return OMBRIX_HERE("EvaluatorTools::evaluate");
}

[[noreturn]] void failUnsupported(OXOperator op) {
  fail(kInternal, here(),
       "Cannot evaluate " + OperatorTools::getName(op) + " operator with this method");
}

[[noreturn]] void failUnknown(OXOperator op) {
  fail(kInternal, here(),
       "Operator " + std::to_string(static_cast<std::int32_t>(op)) + " is unknown");
}

void checkDivisor(std::int64_t divisor) {
  if (divisor == 0) fail(kComputation, here(), "Division by zero.");
}

bool isApproxGreater(double a, double b) {
  return a > b && !approxEqual(a, b);
}
bool isApproxGreaterOrEqual(double a, double b) {
  return a >= b || approxEqual(a, b);
}

/// The operands of one operator. Where an operator has an integer and a double form, the double one
/// applies when some operand is a double; it reads every operand as a double.
template <typename It>
class Operands {
public:
  Operands(const It& from, const It& to) : begin(from), end(to) {}

  bool hasDouble() const {
    for (It it = begin; it.notEquals(end); it.advance()) {
      if (it.isDouble()) return true;
    }
    return false;
  }

  It first() const { return begin; }
  It second() const { return It(begin).advance(); }
  It third() const { return second().advance(); }

  template <typename Step>
  std::int64_t foldInts(std::int64_t start, const Step& step) const {
    std::int64_t result = start;
    for (It it = begin; it.notEquals(end); it.advance()) result = step(result, it.getInt());
    return result;
  }

  template <typename Step>
  double foldDoubles(double start, const Step& step) const {
    double result = start;
    for (It it = begin; it.notEquals(end); it.advance()) result = step(result, it.toDouble());
    return result;
  }

  bool hasBool(bool value) const {
    for (It it = begin; it.notEquals(end); it.advance()) {
      if (it.getBool() == value) return true;
    }
    return false;
  }

  template <typename CompareInts, typename CompareDoubles>
  OXTypedValue compare(const CompareInts& ints, const CompareDoubles& doubles) const {
    if (hasDouble()) return ofBool(doubles(first().toDouble(), second().toDouble()));
    return ofBool(ints(first().getInt(), second().getInt()));
  }

private:
  const It& begin;
  const It& end;
};

template <typename It>
OXTypedValue sum(const Operands<It>& operands) {
  if (operands.hasDouble()) {
    return ofDouble(operands.foldDoubles(0.0, [](double a, double b) { return a + b; }));
  }
  return ofInt(operands.foldInts(0, wrappingAdd));
}

/// A zero times an infinity met on the way stays NaN, so the end is the one place to test.
template <typename It>
OXTypedValue prod(const Operands<It>& operands) {
  if (!operands.hasDouble()) return ofInt(operands.foldInts(1, wrappingMul));
  const double result = operands.foldDoubles(1.0, [](double a, double b) { return a * b; });
  if (std::isnan(result)) {
    fail(kComputation, here(), "Cannot compute product of zero and infinity");
  }
  return ofDouble(result);
}

/// A NaN never replaces the running value, which the order of the comparison sees to.
template <typename It>
OXTypedValue max(const Operands<It>& operands) {
  const auto larger = [](auto best, auto x) { return x > best ? x : best; };
  if (operands.hasDouble()) return ofDouble(operands.foldDoubles(-kInfinity, larger));
  return ofInt(operands.foldInts(kIntMin, larger));
}

template <typename It>
OXTypedValue min(const Operands<It>& operands) {
  const auto smaller = [](auto best, auto x) { return x < best ? x : best; };
  if (operands.hasDouble()) return ofDouble(operands.foldDoubles(kInfinity, smaller));
  return ofInt(operands.foldInts(kIntMax, smaller));
}

template <typename It>
OXTypedValue eq(const Operands<It>& operands) {
  return operands.compare([](std::int64_t a, std::int64_t b) { return a == b; }, approxEqual);
}

template <typename It>
OXTypedValue neq(const Operands<It>& operands) {
  return ofBool(eq(operands).value.intValue == 0);
}

template <typename It>
OXTypedValue geq(const Operands<It>& operands) {
  return operands.compare([](std::int64_t a, std::int64_t b) { return a >= b; },
                          isApproxGreaterOrEqual);
}

template <typename It>
OXTypedValue leq(const Operands<It>& operands) {
  return operands.compare([](std::int64_t a, std::int64_t b) { return a <= b; },
                          [](double a, double b) { return isApproxGreaterOrEqual(b, a); });
}

template <typename It>
OXTypedValue gt(const Operands<It>& operands) {
  return operands.compare([](std::int64_t a, std::int64_t b) { return a > b; }, isApproxGreater);
}

template <typename It>
OXTypedValue lt(const Operands<It>& operands) {
  return operands.compare([](std::int64_t a, std::int64_t b) { return a < b; },
                          [](double a, double b) { return isApproxGreater(b, a); });
}

/// The type follows from both branches, whichever is selected.
template <typename It>
OXTypedValue iif(const Operands<It>& operands) {
  const It thenBranch = operands.second();
  const It elseBranch = operands.third();
  const It selected = operands.first().getInt() != 0 ? thenBranch : elseBranch;
  if (thenBranch.isDouble() || elseBranch.isDouble()) return ofDouble(selected.toDouble());
  if (thenBranch.getValueType() == kIntType || elseBranch.getValueType() == kIntType) {
    return ofInt(selected.getInt());
  }
  return ofBool(selected.getBool());
}

template <typename It>
OXTypedValue isOdd(const Operands<It>& operands) {
  return ofBool((operands.foldInts(0, wrappingAdd) & 1) != 0);
}

template <typename It>
OXTypedValue abs(const It& x) {
  return x.isDouble() ? ofDouble(std::fabs(x.getDouble())) : ofInt(wrappingAbs(x.getInt()));
}

template <typename It>
OXTypedValue dist(const Operands<It>& operands) {
  if (operands.hasDouble()) {
    return ofDouble(MathDouble::dist(operands.first().toDouble(), operands.second().toDouble()));
  }
  return ofInt(wrappingAbs(wrappingSub(operands.first().getInt(), operands.second().getInt())));
}

template <typename It>
OXTypedValue div(const Operands<It>& operands) {
  if (operands.hasDouble()) {
    return ofDouble(operands.first().toDouble() / operands.second().toDouble());
  }
  const std::int64_t divisor = operands.second().getInt();
  checkDivisor(divisor);
  return ofInt(truncatingDiv(operands.first().getInt(), divisor));
}

template <typename It>
OXTypedValue mod(const Operands<It>& operands) {
  const std::int64_t divisor = operands.second().getInt();
  checkDivisor(divisor);
  return ofInt(truncatingMod(operands.first().getInt(), divisor));
}

/// Ceil, floor and round leave an integer as it is.
template <typename It>
OXTypedValue toInteger(const It& x, std::int64_t (*convert)(double)) {
  return ofInt(x.isDouble() ? convert(x.getDouble()) : x.getInt());
}

std::int64_t round(double x) {
  return MathDouble::floor(x + 0.5);
}

}  // namespace

template <typename It>
OXTypedValue EvaluatorTools::evaluate(OXOperator op, const It& begin, const It& end) {
  const Operands<It> operands(begin, end);
  switch (op) {
    case OXOperator::Bool:
    case OXOperator::Const:
    case OXOperator::Array:
    case OXOperator::At:
    case OXOperator::Scalar:
      failUnsupported(op);
    case OXOperator::Sum:
      return sum(operands);
    case OXOperator::Prod:
      return prod(operands);
    case OXOperator::Max:
      return max(operands);
    case OXOperator::Min:
      return min(operands);
    case OXOperator::Eq:
      return eq(operands);
    case OXOperator::Neq:
      return neq(operands);
    case OXOperator::Geq:
      return geq(operands);
    case OXOperator::Leq:
      return leq(operands);
    case OXOperator::Gt:
      return gt(operands);
    case OXOperator::Lt:
      return lt(operands);
    case OXOperator::Iif:
      return iif(operands);
    case OXOperator::Not:
      return ofBool(begin.getInt() != 1);
    case OXOperator::And:
      return ofBool(!operands.hasBool(false));
    case OXOperator::Or:
      return ofBool(operands.hasBool(true));
    case OXOperator::Xor:
      return isOdd(operands);
    case OXOperator::Abs:
      return abs(begin);
    case OXOperator::Dist:
      return dist(operands);
    case OXOperator::Div:
      return div(operands);
    case OXOperator::Mod:
      return mod(operands);
    case OXOperator::Ceil:
      return toInteger(begin, MathDouble::ceil);
    case OXOperator::Floor:
      return toInteger(begin, MathDouble::floor);
    case OXOperator::Round:
      return toInteger(begin, round);
    case OXOperator::Sqrt:
      return ofDouble(MathDouble::sqrt(begin.toDouble()));
    case OXOperator::Log:
      return ofDouble(MathDouble::log(begin.toDouble()));
    case OXOperator::Exp:
      return ofDouble(MathDouble::exp(begin.toDouble()));
    case OXOperator::Pow:
      return ofDouble(MathDouble::pow(begin.toDouble(), operands.second().toDouble()));
    case OXOperator::Cos:
      return ofDouble(MathDouble::cos(begin.toDouble()));
    case OXOperator::Sin:
      return ofDouble(MathDouble::sin(begin.toDouble()));
    case OXOperator::Tan:
      return ofDouble(MathDouble::tan(begin.toDouble()));
  }
  failUnknown(op);
}

template OXTypedValue EvaluatorTools::evaluate(OXOperator, const ExpressionEvaluatorIterator&,
                                               const ExpressionEvaluatorIterator&);
template OXTypedValue EvaluatorTools::evaluate(OXOperator, const SingleListEvaluatorIterator&,
                                               const SingleListEvaluatorIterator&);

OXTypedValue EvaluatorTools::atEval(const OXExpression& at, const OXValue* values) {
  const OXExpression& array = *ModelRecord::operand(at, 0);
  const std::int64_t index = values[ModelRecord::operandIndex(at, 1)].intValue;
  const std::int32_t size = ModelRecord::nbOperands(array);
  if (index < 0 || index >= size) {
    fail(kComputation, OMBRIX_HERE("EvaluatorTools::atEval"),
         "Index out of bounds for " + at.toString() + " (index: " + std::to_string(index) +
             ", array size: " + std::to_string(size) + ").");
  }
  ExpressionEvaluatorIterator element(values, array, index);
  if (ModelRecord::valueType(at) == kDoubleType) return ofDouble(element.toDouble());
  return ofInt(element.getInt());
}

OXTypedValue EvaluatorTools::scalarEval(const OXExpression& scalar, const OXValue* values) {
  const OXExpression& left = *ModelRecord::operand(scalar, 0);
  const OXExpression& right = *ModelRecord::operand(scalar, 1);
  const std::int32_t size = ModelRecord::nbOperands(left);
  if (size != ModelRecord::nbOperands(right)) {
    fail(kInternal, OMBRIX_HERE("EvaluatorTools::scalarEval"),
         "Arrays for scalar operator must have the same number of elements");
  }
  const auto end = ExpressionEvaluatorIterator::end(values, left);
  auto a = ExpressionEvaluatorIterator::begin(values, left);
  auto b = ExpressionEvaluatorIterator::begin(values, right);
  const bool isDouble = Operands(a, end).hasDouble() ||
                        Operands(b, ExpressionEvaluatorIterator::end(values, right)).hasDouble();
  double doubleSum = 0.0;
  std::int64_t intSum = 0;
  for (; a.notEquals(end); a.advance(), b.advance()) {
    if (isDouble) {
      doubleSum += a.toDouble() * b.toDouble();
    } else {
      intSum = wrappingAdd(intSum, wrappingMul(a.getInt(), b.getInt()));
    }
  }
  return isDouble ? ofDouble(doubleSum) : ofInt(intSum);
}

}  // namespace ombrix
