#include "builder/evaluatortools.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/failures.h"
#include "support/passmodel.h"

namespace ombrix {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::nan("");

OXTypedValue evaluateList(OXOperator op, ValueType type, const std::vector<OXValue>& values) {
  const SingleListEvaluatorIterator begin(type, values.data(), 0);
  const SingleListEvaluatorIterator end(type, values.data(),
                                        static_cast<std::int64_t>(values.size()));
  return EvaluatorTools::evaluate(op, begin, end);
}

OXTypedValue onInts(OXOperator op, const std::vector<std::int64_t>& operands) {
  std::vector<OXValue> values;
  for (const std::int64_t operand : operands) values.push_back(OXValue::ofInt(operand));
  return evaluateList(op, kIntType, values);
}

OXTypedValue onDoubles(OXOperator op, const std::vector<double>& operands) {
  std::vector<OXValue> values;
  for (const double operand : operands) values.push_back(OXValue::ofDouble(operand));
  return evaluateList(op, kDoubleType, values);
}

void expectBool(const OXTypedValue& result, bool value) {
  EXPECT_EQ(result.type, kBoolType);
  EXPECT_EQ(result.value.intValue, value ? 1 : 0);
}

void expectInt(const OXTypedValue& result, std::int64_t value) {
  EXPECT_EQ(result.type, kIntType);
  EXPECT_EQ(result.value.intValue, value);
}

void expectDouble(const OXTypedValue& result, double value) {
  EXPECT_EQ(result.type, kDoubleType);
  EXPECT_EQ(result.value.doubleValue, value);
}

template <typename Action>
void expectEvaluationFailure(int code, const std::string& message, const Action& action) {
  test::expectFailure(code, "EvaluatorTools::evaluate", message, action);
}

class EvaluatorToolsTest : public testing::Test {
protected:
  void SetUp() override { errno = 0; }
};

TEST_F(EvaluatorToolsTest, SumsWrapAndDoublesAreNotChecked) {
  expectInt(onInts(OXOperator::Sum, {1, 2, -7}), -4);
  expectInt(onInts(OXOperator::Sum, {kIntMax, 1}), kIntMin);
  expectInt(onInts(OXOperator::Sum, {}), 0);
  expectDouble(onDoubles(OXOperator::Sum, {1.5, 2.0}), 3.5);
  EXPECT_TRUE(std::isnan(onDoubles(OXOperator::Sum, {kInf, -kInf}).value.doubleValue));
}

TEST_F(EvaluatorToolsTest, ProductsWrapAndRefuseZeroTimesInfinity) {
  expectInt(onInts(OXOperator::Prod, {3, -4, 5}), -60);
  expectInt(onInts(OXOperator::Prod, {kIntMax, 2}), -2);
  expectInt(onInts(OXOperator::Prod, {}), 1);
  expectDouble(onDoubles(OXOperator::Prod, {0.5, -4.0}), -2.0);
  for (const auto& operands :
       {std::vector<double>{0.0, kInf}, std::vector<double>{0.0, kInf, 1.0}}) {
    expectEvaluationFailure(5, "Cannot compute product of zero and infinity",
                            [&] { onDoubles(OXOperator::Prod, operands); });
  }
}

TEST_F(EvaluatorToolsTest, ExtremesStartFromTheLimits) {
  expectInt(onInts(OXOperator::Max, {3, 9, -4}), 9);
  expectInt(onInts(OXOperator::Min, {3, 9, -4}), -4);
  expectInt(onInts(OXOperator::Max, {}), kIntMin);
  expectInt(onInts(OXOperator::Min, {}), kIntMax);
  expectDouble(onDoubles(OXOperator::Max, {-2.0, -1.0}), -1.0);
  expectDouble(onDoubles(OXOperator::Min, {-2.0, -1.0}), -2.0);
}

TEST_F(EvaluatorToolsTest, ANaNNeverReplacesTheRunningExtreme) {
  expectDouble(onDoubles(OXOperator::Max, {kNan, 1.0, kNan}), 1.0);
  expectDouble(onDoubles(OXOperator::Min, {kNan, 1.0, kNan}), 1.0);
  expectDouble(onDoubles(OXOperator::Max, {kNan}), -kInf);
  expectDouble(onDoubles(OXOperator::Min, {kNan}), kInf);
}

TEST_F(EvaluatorToolsTest, IntegersCompareExactly) {
  const std::vector<std::vector<std::int64_t>> pairs = {{1, 2}, {2, 2}, {3, 2}};
  for (const auto& pair : pairs) {
    expectBool(onInts(OXOperator::Eq, pair), pair[0] == pair[1]);
    expectBool(onInts(OXOperator::Neq, pair), pair[0] != pair[1]);
    expectBool(onInts(OXOperator::Geq, pair), pair[0] >= pair[1]);
    expectBool(onInts(OXOperator::Leq, pair), pair[0] <= pair[1]);
    expectBool(onInts(OXOperator::Gt, pair), pair[0] > pair[1]);
    expectBool(onInts(OXOperator::Lt, pair), pair[0] < pair[1]);
  }
}

TEST_F(EvaluatorToolsTest, DoublesCompareWithinTolerance) {
  for (const auto& pair :
       {std::vector<double>{1.0, 1.0 + 1e-7}, std::vector<double>{1.0 + 1e-7, 1.0}}) {
    expectBool(onDoubles(OXOperator::Eq, pair), true);
    expectBool(onDoubles(OXOperator::Neq, pair), false);
    expectBool(onDoubles(OXOperator::Geq, pair), true);
    expectBool(onDoubles(OXOperator::Leq, pair), true);
    expectBool(onDoubles(OXOperator::Gt, pair), false);
    expectBool(onDoubles(OXOperator::Lt, pair), false);
  }
  expectBool(onDoubles(OXOperator::Gt, {2.0, 1.0}), true);
  expectBool(onDoubles(OXOperator::Lt, {2.0, 1.0}), false);
  expectBool(onDoubles(OXOperator::Geq, {1.0, 2.0}), false);
  expectBool(onDoubles(OXOperator::Leq, {1.0, 2.0}), true);
}

TEST_F(EvaluatorToolsTest, ANaNIsUnequalToEverything) {
  expectBool(onDoubles(OXOperator::Eq, {kNan, kNan}), false);
  expectBool(onDoubles(OXOperator::Neq, {kNan, kNan}), true);
  for (const OXOperator op : {OXOperator::Geq, OXOperator::Leq, OXOperator::Gt, OXOperator::Lt}) {
    expectBool(onDoubles(op, {kNan, 1.0}), false);
  }
}

TEST_F(EvaluatorToolsTest, AConditionalSelectsOnAnythingButZero) {
  expectInt(onInts(OXOperator::Iif, {1, 5, 7}), 5);
  expectInt(onInts(OXOperator::Iif, {0, 5, 7}), 7);
  expectInt(onInts(OXOperator::Iif, {-1, 5, 7}), 5);
}

TEST_F(EvaluatorToolsTest, AConditionalOverBooleansStaysBoolean) {
  const auto conditional = [](std::int64_t a, std::int64_t b, std::int64_t c) {
    return evaluateList(OXOperator::Iif, kBoolType,
                        {OXValue::ofInt(a), OXValue::ofInt(b), OXValue::ofInt(c)});
  };
  expectBool(conditional(1, 0, 1), false);
  expectBool(conditional(0, 0, 1), true);
}

TEST_F(EvaluatorToolsTest, LogicalOperators) {
  expectBool(onInts(OXOperator::Not, {0}), true);
  expectBool(onInts(OXOperator::Not, {1}), false);
  expectBool(onInts(OXOperator::Not, {2}), true);
  expectBool(onInts(OXOperator::And, {1, 2, 1}), true);
  expectBool(onInts(OXOperator::And, {1, 0, 1}), false);
  expectBool(onInts(OXOperator::And, {}), true);
  expectBool(onInts(OXOperator::Or, {0, 0}), false);
  expectBool(onInts(OXOperator::Or, {0, 2}), true);
  expectBool(onInts(OXOperator::Or, {}), false);
  expectBool(onInts(OXOperator::Xor, {1, 1, 1}), true);
  expectBool(onInts(OXOperator::Xor, {1, 1}), false);
  expectBool(onInts(OXOperator::Xor, {1, 2}), true);
}

TEST_F(EvaluatorToolsTest, AbsoluteValues) {
  expectInt(onInts(OXOperator::Abs, {-5}), 5);
  expectInt(onInts(OXOperator::Abs, {kIntMin}), kIntMin);
  expectDouble(onDoubles(OXOperator::Abs, {-2.5}), 2.5);
  EXPECT_FALSE(std::signbit(onDoubles(OXOperator::Abs, {-0.0}).value.doubleValue));
}

TEST_F(EvaluatorToolsTest, Distances) {
  expectInt(onInts(OXOperator::Dist, {3, 10}), 7);
  expectInt(onInts(OXOperator::Dist, {10, 3}), 7);
  expectInt(onInts(OXOperator::Dist, {kIntMin, 0}), kIntMin);
  expectInt(onInts(OXOperator::Dist, {kIntMax, -1}), kIntMin);
  expectDouble(onDoubles(OXOperator::Dist, {3.0, 0.5}), 2.5);
  test::expectFailure(5, "MathDouble::dist", "Cannot compute distance between two infinities", [] {
    onDoubles(OXOperator::Dist, {kInf, kInf});
  });
}

TEST_F(EvaluatorToolsTest, QuotientsAndRemaindersTruncate) {
  expectInt(onInts(OXOperator::Div, {-7, 2}), -3);
  expectInt(onInts(OXOperator::Mod, {-7, 2}), -1);
  expectInt(onInts(OXOperator::Div, {kIntMin, -1}), kIntMin);
  expectInt(onInts(OXOperator::Mod, {kIntMin, -1}), 0);
  expectDouble(onDoubles(OXOperator::Div, {1.0, 4.0}), 0.25);
}

TEST_F(EvaluatorToolsTest, AnIntegerDivisionByZeroFailsAndADoubleOneDoesNot) {
  for (const OXOperator op : {OXOperator::Div, OXOperator::Mod}) {
    expectEvaluationFailure(5, "Division by zero.", [op] { onInts(op, {1, 0}); });
  }
  expectDouble(onDoubles(OXOperator::Div, {1.0, 0.0}), kInf);
  EXPECT_TRUE(std::isnan(onDoubles(OXOperator::Div, {0.0, 0.0}).value.doubleValue));
}

TEST_F(EvaluatorToolsTest, IntegersNeedNoRounding) {
  for (const OXOperator op : {OXOperator::Ceil, OXOperator::Floor, OXOperator::Round}) {
    expectInt(onInts(op, {kIntMax}), kIntMax);
  }
}

TEST_F(EvaluatorToolsTest, RoundingOfDoubles) {
  expectInt(onDoubles(OXOperator::Ceil, {2.1}), 3);
  expectInt(onDoubles(OXOperator::Ceil, {3.0000005}), 3);
  expectInt(onDoubles(OXOperator::Floor, {2.9}), 2);
  expectInt(onDoubles(OXOperator::Floor, {2.9999995}), 3);
  expectInt(onDoubles(OXOperator::Round, {2.5}), 3);
  expectInt(onDoubles(OXOperator::Round, {-2.5}), -2);
  expectInt(onDoubles(OXOperator::Round, {2.4999995}), 3);
  expectInt(onDoubles(OXOperator::Round, {2.499}), 2);
  test::expectFailure(5, "MathDouble::floor", "Invalid floor operation (out of bounds)",
                      [] { onDoubles(OXOperator::Round, {1e19}); });
}

TEST_F(EvaluatorToolsTest, FunctionsReadIntegersAsDoubles) {
  expectDouble(onInts(OXOperator::Sqrt, {9}), 3.0);
  expectDouble(onInts(OXOperator::Log, {1}), 0.0);
  expectDouble(onInts(OXOperator::Exp, {0}), 1.0);
  expectDouble(onInts(OXOperator::Pow, {2, 10}), 1024.0);
  expectDouble(onInts(OXOperator::Pow, {2, -1}), kInf);
  expectDouble(onInts(OXOperator::Cos, {0}), 1.0);
  expectDouble(onInts(OXOperator::Sin, {0}), 0.0);
  expectDouble(onInts(OXOperator::Tan, {0}), 0.0);
  test::expectFailure(5, "MathDouble::sqrt",
                      "Invalid square root operation (NaN or negative number provided)",
                      [] { onInts(OXOperator::Sqrt, {-1}); });
}

TEST_F(EvaluatorToolsTest, OperatorsWithStructureAreRefused) {
  const std::vector<std::pair<OXOperator, std::string>> refused = {{OXOperator::Bool, "bool"},
                                                                   {OXOperator::Const, "const"},
                                                                   {OXOperator::Array, "array"},
                                                                   {OXOperator::At, "at"},
                                                                   {OXOperator::Scalar, "scalar"}};
  for (const auto& [op, name] : refused) {
    expectEvaluationFailure(6, "Cannot evaluate " + name + " operator with this method", [op = op] {
      onInts(op, {1, 2});
    });
  }
}

TEST_F(EvaluatorToolsTest, ANumberThatIsNoOperatorIsRefused) {
  expectEvaluationFailure(6, "Operator 34 is unknown",
                          [] { onInts(static_cast<OXOperator>(34), {1}); });
}

TEST_F(EvaluatorToolsTest, AListIteratorOffersItsValues) {
  const std::vector<OXValue> values = {OXValue::ofInt(1), OXValue::ofInt(0), OXValue::ofInt(5)};
  SingleListEvaluatorIterator it(kIntType, values.data(), 0);
  const SingleListEvaluatorIterator end(kIntType, values.data(), 3);
  EXPECT_TRUE(it.notEquals(end));
  EXPECT_EQ(end.distance(it), 3);
  EXPECT_TRUE(it.isInt());
  EXPECT_FALSE(it.isDouble());
  EXPECT_TRUE(it.isBoolValue());
  EXPECT_TRUE(it.getBool());
  EXPECT_FALSE(it.advance().getBool());
  EXPECT_EQ(it.advance().toDouble(), 5.0);
  EXPECT_FALSE(it.isBoolValue());
  EXPECT_EQ(it.toInt(), 5);
  EXPECT_TRUE(it.advance().equals(end));
}

TEST_F(EvaluatorToolsTest, AListOfDoublesTruncatesTowardsZero) {
  const std::vector<OXValue> values = {OXValue::ofDouble(-2.9)};
  const SingleListEvaluatorIterator it(kDoubleType, values.data(), 0);
  EXPECT_EQ(it.toInt(), -2);
  EXPECT_EQ(it.getDouble(), -2.9);
  EXPECT_FALSE(it.isInt());
  EXPECT_FALSE(it.isBoolValue());
}

TEST_F(EvaluatorToolsTest, ListsWithDifferentSourcesDiffer) {
  const std::vector<OXValue> values(1, OXValue::ofInt(0));
  const std::vector<OXValue> others(1, OXValue::ofInt(0));
  const SingleListEvaluatorIterator a(kIntType, values.data(), 0);
  const SingleListEvaluatorIterator b(kIntType, others.data(), 0);
  EXPECT_FALSE(a.equals(b));
}

/// Evaluates an expression over leaves whose values stand in their lower bounds.
class ExpressionEvaluationTest : public testing::Test {
protected:
  void SetUp() override { errno = 0; }

  OXExpression* integer(std::int64_t value) { return model.integer(value, value); }
  OXExpression* real(double value) { return model.real(value, value); }
  OXExpression* at(const std::vector<OXExpression*>& elements, std::int64_t index) {
    return model.make(OXOperator::At, {model.array(elements), integer(index)});
  }
  OXExpression* scalar(const std::vector<OXExpression*>& a, const std::vector<OXExpression*>& b) {
    return model.make(OXOperator::Scalar, {model.array(a), model.array(b)});
  }
  const OXValue* values() { return model.start().lowerBounds.data(); }
  OXTypedValue evaluate(const OXExpression* e) {
    const OXValue* all = values();
    return EvaluatorTools::evaluate(ModelRecord::op(*e),
                                    ExpressionEvaluatorIterator::begin(all, *e),
                                    ExpressionEvaluatorIterator::end(all, *e));
  }

  test::PassModel model;
};

TEST_F(ExpressionEvaluationTest, OneDoubleOperandMakesTheArithmeticDouble) {
  expectDouble(evaluate(model.make(OXOperator::Sum, {integer(2), real(0.5)})), 2.5);
  expectDouble(evaluate(model.make(OXOperator::Prod, {integer(2), real(0.5)})), 1.0);
  expectDouble(evaluate(model.make(OXOperator::Max, {integer(2), real(0.5)})), 2.0);
  expectDouble(evaluate(model.make(OXOperator::Dist, {integer(2), real(0.5)})), 1.5);
  expectDouble(evaluate(model.make(OXOperator::Div, {integer(1), real(0.0)})), kInf);
  expectDouble(evaluate(model.make(OXOperator::Pow, {integer(2), real(0.5)})), std::sqrt(2.0));
}

TEST_F(ExpressionEvaluationTest, OperandsOfBothTypesCompareAsDoubles) {
  expectBool(evaluate(model.make(OXOperator::Eq, {real(0.3), integer(0)})), false);
  expectBool(evaluate(model.make(OXOperator::Eq, {real(1e-7), integer(0)})), true);
  expectBool(evaluate(model.make(OXOperator::Gt, {integer(1), real(0.3)})), true);
}

TEST_F(ExpressionEvaluationTest, AConditionalConvertsItsIntegerBranch) {
  const auto conditional = [this](std::int64_t condition) {
    return evaluate(
        model.make(OXOperator::Iif, {model.boolean(condition, condition), integer(3), real(0.5)}));
  };
  expectDouble(conditional(1), 3.0);
  expectDouble(conditional(0), 0.5);
}

TEST_F(ExpressionEvaluationTest, AConditionalOfABooleanAndAnIntegerIsAnInteger) {
  expectInt(
      evaluate(model.make(OXOperator::Iif, {model.boolean(1, 1), model.boolean(1, 1), integer(7)})),
      1);
}

TEST_F(ExpressionEvaluationTest, AnExpressionIteratorReadsTypesAndValues) {
  const OXExpression* e = model.make(OXOperator::Sum, {integer(2), model.boolean(1, 1)});
  const OXValue* all = values();
  auto it = ExpressionEvaluatorIterator::begin(all, *e);
  const auto end = ExpressionEvaluatorIterator::end(all, *e);
  EXPECT_EQ(end.distance(it), 2);
  EXPECT_EQ(it.getValueType(), kIntType);
  EXPECT_EQ(it.getInt(), 2);
  EXPECT_FALSE(it.isBoolValue());
  EXPECT_EQ(it.advance().getValueType(), kBoolType);
  EXPECT_TRUE(it.isBoolValue());
  EXPECT_TRUE(it.isInt());
  EXPECT_TRUE(it.advance().equals(end));
}

TEST_F(ExpressionEvaluationTest, AnElementIsReadAtItsIndex) {
  const OXExpression* e = at({integer(7), integer(8)}, 1);
  expectInt(EvaluatorTools::atEval(*e, values()), 8);
}

TEST_F(ExpressionEvaluationTest, AnIntegerElementOfADoubleArrayIsConverted) {
  const OXExpression* first = at({integer(7), real(0.5)}, 0);
  const OXExpression* second = at({integer(7), real(0.5)}, 1);
  const OXValue* all = values();
  expectDouble(EvaluatorTools::atEval(*first, all), 7.0);
  expectDouble(EvaluatorTools::atEval(*second, all), 0.5);
}

TEST_F(ExpressionEvaluationTest, AnIndexOutsideTheArrayFails) {
  for (const std::int64_t index : {std::int64_t{-1}, std::int64_t{2}, kIntMax, kIntMin}) {
    const OXExpression* e = at({integer(7), integer(8)}, index);
    const OXValue* all = values();
    test::expectFailure(5, "EvaluatorTools::atEval",
                        "Index out of bounds for " + e->toString() +
                            " (index: " + std::to_string(index) + ", array size: 2).",
                        [=] { EvaluatorTools::atEval(*e, all); });
  }
}

TEST_F(ExpressionEvaluationTest, AScalarProductOfIntegersWraps) {
  const OXExpression* e = scalar({integer(2), integer(3)}, {integer(5), integer(-1)});
  const OXExpression* large = scalar({integer(kIntMax)}, {integer(2)});
  const OXExpression* empty = scalar({}, {});
  const OXValue* all = values();
  expectInt(EvaluatorTools::scalarEval(*e, all), 7);
  expectInt(EvaluatorTools::scalarEval(*large, all), -2);
  expectInt(EvaluatorTools::scalarEval(*empty, all), 0);
}

TEST_F(ExpressionEvaluationTest, OneDoubleInEitherArrayMakesAScalarProductDouble) {
  const OXExpression* left = scalar({integer(2), real(0.5)}, {integer(5), integer(4)});
  const OXExpression* right = scalar({integer(2), integer(4)}, {integer(5), real(0.5)});
  const OXValue* all = values();
  expectDouble(EvaluatorTools::scalarEval(*left, all), 12.0);
  expectDouble(EvaluatorTools::scalarEval(*right, all), 12.0);
}

TEST_F(ExpressionEvaluationTest, ArraysOfDifferentLengthsAreRefused) {
  const OXExpression* longer = scalar({integer(1), integer(2)}, {integer(1)});
  const OXExpression* shorter = scalar({}, {integer(1)});
  const OXValue* all = values();
  for (const OXExpression* e : {longer, shorter}) {
    test::expectFailure(6, "EvaluatorTools::scalarEval",
                        "Arrays for scalar operator must have the same number of elements",
                        [=] { EvaluatorTools::scalarEval(*e, all); });
  }
}

}  // namespace
}  // namespace ombrix
