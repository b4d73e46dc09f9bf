#include "builder/operatortools.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "support/failures.h"
#include "support/passmodel.h"

namespace ombrix {
namespace {

constexpr int kNbOperators = 34;

OXOperator op(int number) {
  return static_cast<OXOperator>(number);
}

struct ExpectedOperator {
  const char* name;
  int nbMinOperands;
  int nbMaxOperands;
  int valueTypes;
};

const std::vector<ExpectedOperator> kExpected = {
    {"bool", 0, 0, 1},        {"const", 0, 0, 7},     {"sum", 1, INT_MAX, 6},
    {"prod", 1, INT_MAX, 6},  {"max", 1, INT_MAX, 6}, {"min", 1, INT_MAX, 6},
    {"eq", 2, 2, 1},          {"neq", 2, 2, 1},       {"geq", 2, 2, 1},
    {"leq", 2, 2, 1},         {"gt", 2, 2, 1},        {"lt", 2, 2, 1},
    {"iif", 3, 3, 7},         {"not", 1, 1, 1},       {"and", 1, INT_MAX, 1},
    {"or", 1, INT_MAX, 1},    {"xor", 1, INT_MAX, 1}, {"abs", 1, 1, 6},
    {"dist", 2, 2, 6},        {"div", 2, 2, 6},       {"mod", 2, 2, 2},
    {"array", 0, INT_MAX, 8}, {"at", 2, 2, 6},        {"scalar", 2, 2, 6},
    {"ceil", 1, 1, 2},        {"floor", 1, 1, 2},     {"round", 1, 1, 2},
    {"sqrt", 1, 1, 4},        {"log", 1, 1, 4},       {"exp", 1, 1, 4},
    {"pow", 2, 2, 4},         {"cos", 1, 1, 4},       {"sin", 1, 1, 4},
    {"tan", 1, 1, 4}};

TEST(OperatorTools, TheTableOfOperators) {
  ASSERT_EQ(kExpected.size(), kNbOperators);
  for (int i = 0; i < kNbOperators; ++i) {
    const ExpectedOperator& expected = kExpected[static_cast<std::size_t>(i)];
    EXPECT_EQ(OperatorTools::getName(op(i)), expected.name);
    EXPECT_EQ(OperatorTools::getNbMinOperands(op(i)), expected.nbMinOperands) << expected.name;
    EXPECT_EQ(OperatorTools::getNbMaxOperands(op(i)), expected.nbMaxOperands) << expected.name;
    EXPECT_EQ(OperatorTools::getValueTypes(op(i)), expected.valueTypes) << expected.name;
    EXPECT_EQ(OperatorTools::stringToOperator(expected.name), op(i));
  }
}

TEST(OperatorTools, NamesAreExact) {
  for (const char* name : {"if", "SUM", "Sum", "", " sum", "sum ", "unknown"}) {
    test::expectFailure(6, "OperatorTools::stringToOperator",
                        std::string("Unknown operator : ") + name,
                        [&] { OperatorTools::stringToOperator(name); });
  }
}

TEST(OperatorTools, ANumberThatIsNoOperatorIsRefused) {
  for (const int number : {-1, 34, INT_MAX, INT_MIN}) {
    const std::string message = "Unknown operator : " + std::to_string(number);
    test::expectFailure(6, "OperatorTools::getName", message,
                        [=] { OperatorTools::getName(op(number)); });
    test::expectFailure(6, "OperatorTools::getNbMinOperands", message,
                        [=] { OperatorTools::getNbMinOperands(op(number)); });
    test::expectFailure(6, "OperatorTools::getNbMaxOperands", message,
                        [=] { OperatorTools::getNbMaxOperands(op(number)); });
    test::expectFailure(6, "OperatorTools::getValueTypes", message,
                        [=] { OperatorTools::getValueTypes(op(number)); });
    test::expectFailure(6, "OperatorTools::getOperandValueTypes", message,
                        [=] { OperatorTools::getOperandValueTypes(op(number), 0); });
    test::expectFailure(6, "OperatorTools::getOperandValueTypes", message,
                        [=] { OperatorTools::getOperandValueTypes(op(number), kIntType, 0); });
  }
}

TEST(OperatorTools, OperandTypesWhileBuilding) {
  const std::vector<std::string> boolean = {"bool", "not", "and", "or", "xor"};
  const std::vector<std::string> scalar = {"const", "sum",  "prod",  "max",   "min",  "eq",   "neq",
                                           "geq",   "leq",  "gt",    "lt",    "abs",  "dist", "div",
                                           "array", "ceil", "floor", "round", "sqrt", "log",  "exp",
                                           "pow",   "cos",  "sin",   "tan"};
  for (const int position : {0, 1, 5}) {
    for (const std::string& name : boolean) {
      EXPECT_EQ(
          OperatorTools::getOperandValueTypes(OperatorTools::stringToOperator(name), position), 1)
          << name;
    }
    for (const std::string& name : scalar) {
      EXPECT_EQ(
          OperatorTools::getOperandValueTypes(OperatorTools::stringToOperator(name), position), 7)
          << name;
    }
    EXPECT_EQ(OperatorTools::getOperandValueTypes(OXOperator::Mod, position), 3);
    EXPECT_EQ(OperatorTools::getOperandValueTypes(OXOperator::Scalar, position), 8);
    EXPECT_EQ(OperatorTools::getOperandValueTypes(OXOperator::Iif, position), position ? 7 : 1);
    EXPECT_EQ(OperatorTools::getOperandValueTypes(OXOperator::At, position), position ? 3 : 8);
  }
}

TEST(OperatorTools, OperandTypesAfterTyping) {
  const auto types = [](const char* name, ValueType result, int position) {
    return OperatorTools::getOperandValueTypes(OperatorTools::stringToOperator(name), result,
                                               position);
  };
  for (const char* name : {"bool", "not", "and", "or", "xor"}) EXPECT_EQ(types(name, 1, 1), 1);
  for (const char* name : {"sum", "prod", "max", "min", "abs", "dist", "div"}) {
    EXPECT_EQ(types(name, 2, 1), 3) << name;
    EXPECT_EQ(types(name, 4, 1), 7) << name;
  }
  for (const char* name : {"eq", "neq", "geq", "leq", "gt", "lt", "array", "ceil", "floor", "round",
                           "sqrt", "log", "exp", "pow", "cos", "sin", "tan"}) {
    EXPECT_EQ(types(name, 1, 1), 7) << name;
  }
  EXPECT_EQ(types("mod", 2, 1), 3);
  EXPECT_EQ(types("at", 2, 0), 8);
  EXPECT_EQ(types("at", 2, 1), 3);
  EXPECT_EQ(types("scalar", 2, 0), 8);
  EXPECT_EQ(types("scalar", 4, 1), 8);
}

TEST(OperatorTools, OperandTypesOfAConditional) {
  for (const ValueType result : {kBoolType, kIntType, kDoubleType, kArrayType}) {
    EXPECT_EQ(OperatorTools::getOperandValueTypes(OXOperator::Iif, result, 0), 1);
  }
  EXPECT_EQ(OperatorTools::getOperandValueTypes(OXOperator::Iif, kBoolType, 1), 1);
  EXPECT_EQ(OperatorTools::getOperandValueTypes(OXOperator::Iif, kIntType, 1), 3);
  EXPECT_EQ(OperatorTools::getOperandValueTypes(OXOperator::Iif, kDoubleType, 2), 7);
  EXPECT_EQ(OperatorTools::getOperandValueTypes(OXOperator::Iif, kArrayType, 2), 0);
}

TEST(OperatorTools, AConstantHasNoOperandsOnceTyped) {
  EXPECT_EQ(OperatorTools::getOperandValueTypes(OXOperator::Const, 0), 7);
  test::expectFailure(6, "OperatorTools::getOperandValueTypes",
                      "Const operator cannot have operands",
                      [] { OperatorTools::getOperandValueTypes(OXOperator::Const, kIntType, 0); });
}

TEST(OperatorTools, ArithmeticGivesNoOtherTypeThanIntegerOrDouble) {
  for (const char* name : {"sum", "prod", "max", "min", "abs", "dist", "div"}) {
    const OXOperator arithmetic = OperatorTools::stringToOperator(name);
    for (const ValueType result : {kNoType, kBoolType, ValueType{6}, kArrayType}) {
      test::expectFailure(6, "OperatorTools::getOperandValueTypes",
                          "ValueType not supported for this operator",
                          [=] { OperatorTools::getOperandValueTypes(arithmetic, result, 0); });
    }
  }
}

TEST(OperatorTools, AllowedOperandsShareAType) {
  EXPECT_TRUE(OperatorTools::isOperandAllowed(OXOperator::Sum, 3, OXOperator::Bool));
  EXPECT_FALSE(OperatorTools::isOperandAllowed(OXOperator::Sum, 0, OXOperator::Array));
  EXPECT_FALSE(OperatorTools::isOperandAllowed(OXOperator::Array, 0, OXOperator::Array));
  EXPECT_TRUE(OperatorTools::isOperandAllowed(OXOperator::At, 0, OXOperator::Array));
  EXPECT_FALSE(OperatorTools::isOperandAllowed(OXOperator::At, 1, OXOperator::Array));
  EXPECT_TRUE(OperatorTools::isOperandAllowed(OXOperator::Scalar, 1, OXOperator::Array));
  EXPECT_TRUE(OperatorTools::isOperandAllowed(OXOperator::And, 0, OXOperator::Iif));
  EXPECT_FALSE(OperatorTools::isOperandAllowed(OXOperator::And, 0, OXOperator::Sum));
  EXPECT_FALSE(OperatorTools::isOperandAllowed(OXOperator::Mod, 0, OXOperator::Sqrt));
}

TEST(OperatorTools, WordsForTypes) {
  const std::vector<std::string> words = {
      "boolean",           "integer",           "boolean or integer",         "double",
      "boolean or double", "integer or double", "boolean, integer or double", "array"};
  for (std::size_t i = 0; i < words.size(); ++i) {
    EXPECT_EQ(OperatorTools::valueTypesToString(static_cast<ValueType>(i + 1)), words[i]);
  }
  for (const ValueType types : {ValueType{0}, ValueType{9}, ValueType{-1}}) {
    test::expectFailure(6, "OperatorTools::valueTypesToString", "Argument type not supported",
                        [=] { OperatorTools::valueTypesToString(types); });
  }
}

/// The type written into an operator over operands.
class FixValueTypeTest : public testing::Test {
protected:
  ValueType typeOf(const char* name, const std::vector<OXExpression*>& operands) {
    OXExpression* e = model.make(OperatorTools::stringToOperator(name), operands);
    model.start();
    return ModelRecord::valueType(*e);
  }

  test::PassModel model;
  OXExpression* boolean = model.boolean();
  OXExpression* integer = model.integer(0, 5);
  OXExpression* real = model.real(0.0, 5.0);
};

TEST_F(FixValueTypeTest, LogicIsBooleanWhateverItCompares) {
  for (const char* name : {"eq", "neq", "geq", "leq", "gt", "lt"}) {
    EXPECT_EQ(typeOf(name, {real, integer}), kBoolType) << name;
  }
  for (const char* name : {"not", "and", "or", "xor"}) {
    EXPECT_EQ(typeOf(name, {boolean}), kBoolType) << name;
  }
  EXPECT_EQ(typeOf("bool", {}), kBoolType);
}

TEST_F(FixValueTypeTest, ArithmeticIsDoubleAsSoonAsAnOperandIs) {
  for (const char* name : {"sum", "prod", "max", "min"}) {
    EXPECT_EQ(typeOf(name, {boolean, boolean}), kIntType) << name;
    EXPECT_EQ(typeOf(name, {boolean, integer, real}), kDoubleType) << name;
  }
  for (const char* name : {"dist", "div"}) {
    EXPECT_EQ(typeOf(name, {boolean, integer}), kIntType) << name;
    EXPECT_EQ(typeOf(name, {integer, real}), kDoubleType) << name;
  }
  EXPECT_EQ(typeOf("abs", {boolean}), kIntType);
  EXPECT_EQ(typeOf("abs", {real}), kDoubleType);
}

TEST_F(FixValueTypeTest, AConstantKeepsTheTypeItWasMadeWith) {
  OXExpression* half = model.constant(0.5);
  OXExpression* seven = model.constant(std::int64_t{7});
  OXExpression* one = model.constant(std::int64_t{1});
  for (OXExpression* constant : {half, seven, one}) OperatorTools::fixValueType(*constant);
  EXPECT_EQ(ModelRecord::valueType(*half), kDoubleType);
  EXPECT_EQ(ModelRecord::valueType(*seven), kIntType);
  EXPECT_EQ(ModelRecord::valueType(*one), kBoolType);
}

TEST_F(FixValueTypeTest, AConditionalGoesByItsBranches) {
  EXPECT_EQ(typeOf("iif", {boolean, boolean, boolean}), kBoolType);
  EXPECT_EQ(typeOf("iif", {boolean, boolean, integer}), kIntType);
  EXPECT_EQ(typeOf("iif", {boolean, integer, boolean}), kIntType);
  EXPECT_EQ(typeOf("iif", {boolean, real, integer}), kDoubleType);
  EXPECT_EQ(typeOf("iif", {boolean, boolean, real}), kDoubleType);
}

TEST_F(FixValueTypeTest, RemaindersAndRoundingAreIntegers) {
  EXPECT_EQ(typeOf("mod", {integer, boolean}), kIntType);
  for (const char* name : {"ceil", "floor", "round"}) EXPECT_EQ(typeOf(name, {real}), kIntType);
}

TEST_F(FixValueTypeTest, FunctionsAreDoubles) {
  for (const char* name : {"sqrt", "log", "exp", "cos", "sin", "tan"}) {
    EXPECT_EQ(typeOf(name, {boolean}), kDoubleType) << name;
  }
  EXPECT_EQ(typeOf("pow", {integer, integer}), kDoubleType);
}

TEST_F(FixValueTypeTest, AnElementIsADoubleWhenAnyElementIs) {
  EXPECT_EQ(typeOf("array", {}), kArrayType);
  EXPECT_EQ(typeOf("at", {model.array({boolean, boolean}), integer}), kIntType);
  EXPECT_EQ(typeOf("at", {model.array({boolean, real}), integer}), kDoubleType);
}

TEST_F(FixValueTypeTest, AScalarProductIsADoubleWhenAnyElementOfEitherArrayIs) {
  OXExpression* integers = model.array({boolean, integer});
  OXExpression* reals = model.array({integer, real});
  EXPECT_EQ(typeOf("scalar", {integers, integers}), kIntType);
  EXPECT_EQ(typeOf("scalar", {integers, reals}), kDoubleType);
  EXPECT_EQ(typeOf("scalar", {reals, integers}), kDoubleType);
}

TEST_F(FixValueTypeTest, ANumberThatIsNoOperatorIsRefused) {
  OXExpression* e = ModelRecord::createRecord(model.getModel(), op(40));
  test::expectFailure(6, "OperatorTools::fixValueType", "ValueType not supported",
                      [e] { OperatorTools::fixValueType(*e); });
}

}  // namespace
}  // namespace ombrix
