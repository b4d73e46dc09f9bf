#ifndef OMBRIX_BUILDER_EVALUATORTOOLS_H
#define OMBRIX_BUILDER_EVALUATORTOOLS_H

#include <cstdint>

#include "api/oxoperator.h"
#include "builder/modelrecord.h"
#include "builder/valuetype.h"
#include "solver/kernel/oxvalue.h"
#include "solver/kernel/saturating.h"

namespace ombrix {

/// A value that tells its own type: boolean, integer or double. A result only; nothing is stored
/// so.
struct OXTypedValue {
  std::int32_t type;
  OXValue value;

  static OXTypedValue ofBool(bool value) { return {kBoolType, OXValue::ofInt(value ? 1 : 0)}; }
  static OXTypedValue ofInt(std::int64_t value) { return {kIntType, OXValue::ofInt(value)}; }
  static OXTypedValue ofDouble(double value) { return {kDoubleType, OXValue::ofDouble(value)}; }
};

/// Walks the operands of one operator and offers the value at the current position, so that one
/// evaluation serves operands that are expressions and operands that are plain lists. The concrete
/// iterators are final: evaluation is instantiated for each, and its calls are direct.
template <typename T>
class EvaluatorIterator {
public:
  /// Same position, same source.
  virtual bool equals(const T& other) const = 0;
  virtual bool notEquals(const T& other) const { return !equals(other); }
  /// This position minus the other one.
  virtual std::int64_t distance(const T& other) const = 0;
  virtual T& advance() = 0;
  virtual ValueType getValueType() const = 0;
  virtual void getValue(OXValue& out) const = 0;
  virtual bool isDouble() const { return getValueType() == kDoubleType; }
  virtual bool isInt() const { return isIntegral(getValueType()); }
  /// A boolean, or an integer that could be one.
  virtual bool isBoolValue() const {
    const ValueType type = getValueType();
    return type == kBoolType || (type == kIntType && (getInt() == 0 || getInt() == 1));
  }
  virtual std::int64_t getInt() const { return read().intValue; }
  virtual bool getBool() const { return getInt() != 0; }
  virtual double getDouble() const { return read().doubleValue; }
  virtual std::int64_t toInt() const {
    return isDouble() ? truncateToInt64(getDouble()) : getInt();
  }
  virtual double toDouble() const {
    return isDouble() ? getDouble() : static_cast<double>(getInt());
  }

protected:
  EvaluatorIterator() = default;
  EvaluatorIterator(const EvaluatorIterator&) = default;
  EvaluatorIterator& operator=(const EvaluatorIterator&) = default;
  ~EvaluatorIterator() = default;

private:
  OXValue read() const {
    OXValue value;
    getValue(value);
    return value;
  }
};

/// The operands of an expression, with their values in an array indexed by expression.
class ExpressionEvaluatorIterator final : public EvaluatorIterator<ExpressionEvaluatorIterator> {
public:
  ExpressionEvaluatorIterator(const OXValue* expressionValues, const OXExpression& parent,
                              std::int64_t start)
      : values(expressionValues), expression(&parent), position(start) {}
  static ExpressionEvaluatorIterator begin(const OXValue* values, const OXExpression& parent) {
    return {values, parent, 0};
  }
  static ExpressionEvaluatorIterator end(const OXValue* values, const OXExpression& parent) {
    return {values, parent, ModelRecord::nbOperands(parent)};
  }

  bool equals(const ExpressionEvaluatorIterator& other) const override {
    return position == other.position && expression == other.expression && values == other.values;
  }
  std::int64_t distance(const ExpressionEvaluatorIterator& other) const override {
    return position - other.position;
  }
  ExpressionEvaluatorIterator& advance() override {
    ++position;
    return *this;
  }
  ValueType getValueType() const override {
    return ModelRecord::valueType(*ModelRecord::operand(*expression, operandPosition()));
  }
  void getValue(OXValue& out) const override {
    out = values[ModelRecord::operandIndex(*expression, operandPosition())];
  }

private:
  std::int32_t operandPosition() const { return static_cast<std::int32_t>(position); }

  const OXValue* values;
  const OXExpression* expression;
  std::int64_t position;
};

/// A plain list of values that all have one type.
class SingleListEvaluatorIterator final : public EvaluatorIterator<SingleListEvaluatorIterator> {
public:
  SingleListEvaluatorIterator(ValueType commonType, const OXValue* list, std::int64_t start)
      : values(list), position(start), type(commonType) {}

  bool equals(const SingleListEvaluatorIterator& other) const override {
    return position == other.position && values == other.values;
  }
  std::int64_t distance(const SingleListEvaluatorIterator& other) const override {
    return position - other.position;
  }
  SingleListEvaluatorIterator& advance() override {
    ++position;
    return *this;
  }
  ValueType getValueType() const override { return type; }
  void getValue(OXValue& out) const override { out = values[position]; }

private:
  const OXValue* values;
  std::int64_t position;
  ValueType type;
};

/// Computes the value of one operator from the values of its operands, apart from the kernel and
/// its increments. It serves the public solution, the folding of constants, and as the plain truth
/// that the kernel is tested against. The arithmetic is that of doubles as soon as one operand is a
/// double; that of integers wraps. A computation without value fails with code 5.
class EvaluatorTools {
public:
  EvaluatorTools() = delete;

  /// The value of an operator over the operands from begin to end. An "at" and a "scalar" need the
  /// structure of their arrays and have operations of their own.
  template <typename It>
  static OXTypedValue evaluate(OXOperator op, const It& begin, const It& end);

  /// The value of an "at", from one value per expression.
  static OXTypedValue atEval(const OXExpression& at, const OXValue* values);
  /// The value of a "scalar", from one value per expression.
  static OXTypedValue scalarEval(const OXExpression& scalar, const OXValue* values);
};

extern template OXTypedValue EvaluatorTools::evaluate(OXOperator,
                                                      const ExpressionEvaluatorIterator&,
                                                      const ExpressionEvaluatorIterator&);
extern template OXTypedValue EvaluatorTools::evaluate(OXOperator,
                                                      const SingleListEvaluatorIterator&,
                                                      const SingleListEvaluatorIterator&);

}  // namespace ombrix

#endif
