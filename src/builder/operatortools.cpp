#include "builder/operatortools.h"

#include <array>
#include <cstdint>
#include <limits>
#include <map>

#include "builder/modelrecord.h"
#include "common/failure.h"

namespace ombrix {

namespace {

struct OperatorEntry {
  const char* name;
  int nbMinOperands;
  int nbMaxOperands;
  ValueType valueTypes;
};

constexpr int kUnbounded = std::numeric_limits<std::int32_t>::max();
constexpr ValueType kBoolOrInt = kBoolType | kIntType;
constexpr ValueType kIntOrDouble = kIntType | kDoubleType;
constexpr ValueType kScalar = kBoolType | kIntType | kDoubleType;

/// Sorted by operator number.
constexpr std::array<OperatorEntry, 34> kOperators = {{
    {"bool", 0, 0, kBoolType},
    {"const", 0, 0, kScalar},
    {"sum", 1, kUnbounded, kIntOrDouble},
    {"prod", 1, kUnbounded, kIntOrDouble},
    {"max", 1, kUnbounded, kIntOrDouble},
    {"min", 1, kUnbounded, kIntOrDouble},
    {"eq", 2, 2, kBoolType},
    {"neq", 2, 2, kBoolType},
    {"geq", 2, 2, kBoolType},
    {"leq", 2, 2, kBoolType},
    {"gt", 2, 2, kBoolType},
    {"lt", 2, 2, kBoolType},
    {"iif", 3, 3, kScalar},
    {"not", 1, 1, kBoolType},
    {"and", 1, kUnbounded, kBoolType},
    {"or", 1, kUnbounded, kBoolType},
    {"xor", 1, kUnbounded, kBoolType},
    {"abs", 1, 1, kIntOrDouble},
    {"dist", 2, 2, kIntOrDouble},
    {"div", 2, 2, kIntOrDouble},
    {"mod", 2, 2, kIntType},
    {"array", 0, kUnbounded, kArrayType},
    {"at", 2, 2, kIntOrDouble},
    {"scalar", 2, 2, kIntOrDouble},
    {"ceil", 1, 1, kIntType},
    {"floor", 1, 1, kIntType},
    {"round", 1, 1, kIntType},
    {"sqrt", 1, 1, kDoubleType},
    {"log", 1, 1, kDoubleType},
    {"exp", 1, 1, kDoubleType},
    {"pow", 2, 2, kDoubleType},
    {"cos", 1, 1, kDoubleType},
    {"sin", 1, 1, kDoubleType},
    {"tan", 1, 1, kDoubleType},
}};

bool isKnown(OXOperator op) {
  const auto number = static_cast<std::int32_t>(op);
  return number >= 0 && number < static_cast<std::int32_t>(kOperators.size());
}

[[noreturn]] void failUnknown(OXOperator op, const Where& where) {
  fail(kInternal, where, "Unknown operator : " + std::to_string(static_cast<std::int32_t>(op)));
}

const OperatorEntry& entry(OXOperator op, const Where& where) {
  if (!isKnown(op)) failUnknown(op, where);
  return kOperators[static_cast<std::size_t>(op)];
}

/// The operators whose type is double as soon as an operand is, else integer.
ValueType arithmeticOperandTypes(ValueType result) {
  if (result == kIntType) return kBoolOrInt;
  if (result == kDoubleType) return kScalar;
  fail(kInternal, OMBRIX_HERE("OperatorTools::getOperandValueTypes"),
       "ValueType not supported for this operator");
}

ValueType iifOperandTypes(ValueType result, int position) {
  if (position == 0 || result == kBoolType) return kBoolType;
  if (result == kIntType) return kBoolOrInt;
  if (result == kDoubleType) return kScalar;
  return kNoType;
}

ValueType typeOfOperand(const OXExpression& expression, int position) {
  return ModelRecord::valueType(*ModelRecord::operand(expression, position));
}

bool containsDouble(const OXExpression& expression) {
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(expression); ++i) {
    if (typeOfOperand(expression, i) == kDoubleType) return true;
  }
  return false;
}

bool arrayContainsDouble(const OXExpression& expression, int position) {
  return containsDouble(*ModelRecord::operand(expression, position));
}

ValueType doubleOrInt(bool isDouble) {
  return isDouble ? kDoubleType : kIntType;
}

/// The only operator that stays boolean over booleans; the condition has no say.
ValueType typeOfIif(const OXExpression& iif) {
  const ValueType thenType = typeOfOperand(iif, 1);
  const ValueType elseType = typeOfOperand(iif, 2);
  if (thenType == kDoubleType || elseType == kDoubleType) return kDoubleType;
  if (thenType == kIntType || elseType == kIntType) return kIntType;
  return kBoolType;
}

ValueType finalType(const OXExpression& expression) {
  switch (ModelRecord::op(expression)) {
    case OXOperator::Const:
      return ModelRecord::valueType(expression);
    case OXOperator::Bool:
    case OXOperator::Eq:
    case OXOperator::Neq:
    case OXOperator::Geq:
    case OXOperator::Leq:
    case OXOperator::Gt:
    case OXOperator::Lt:
    case OXOperator::Not:
    case OXOperator::And:
    case OXOperator::Or:
    case OXOperator::Xor:
      return kBoolType;
    case OXOperator::Sum:
    case OXOperator::Prod:
    case OXOperator::Max:
    case OXOperator::Min:
    case OXOperator::Abs:
    case OXOperator::Dist:
    case OXOperator::Div:
      return doubleOrInt(containsDouble(expression));
    case OXOperator::Iif:
      return typeOfIif(expression);
    case OXOperator::Mod:
    case OXOperator::Ceil:
    case OXOperator::Floor:
    case OXOperator::Round:
      return kIntType;
    case OXOperator::Array:
      return kArrayType;
    case OXOperator::At:
      return doubleOrInt(arrayContainsDouble(expression, 0));
    case OXOperator::Scalar:
      return doubleOrInt(arrayContainsDouble(expression, 0) || arrayContainsDouble(expression, 1));
    case OXOperator::Sqrt:
    case OXOperator::Log:
    case OXOperator::Exp:
    case OXOperator::Pow:
    case OXOperator::Cos:
    case OXOperator::Sin:
    case OXOperator::Tan:
      return kDoubleType;
  }
  fail(kInternal, OMBRIX_HERE("OperatorTools::fixValueType"), "ValueType not supported");
}

std::map<std::string, OXOperator> makeNameMap() {
  std::map<std::string, OXOperator> result;
  for (std::size_t i = 0; i < kOperators.size(); ++i) {
    result.emplace(kOperators[i].name, static_cast<OXOperator>(i));
  }
  return result;
}

}  // namespace

std::string OperatorTools::getName(OXOperator op) {
  return entry(op, OMBRIX_HERE("OperatorTools::getName")).name;
}

OXOperator OperatorTools::stringToOperator(const std::string& name) {
  static const std::map<std::string, OXOperator> operators = makeNameMap();
  const auto found = operators.find(name);
  if (found == operators.end()) {
    fail(kInternal, OMBRIX_HERE("OperatorTools::stringToOperator"), "Unknown operator : " + name);
  }
  return found->second;
}

int OperatorTools::getNbMinOperands(OXOperator op) {
  return entry(op, OMBRIX_HERE("OperatorTools::getNbMinOperands")).nbMinOperands;
}

int OperatorTools::getNbMaxOperands(OXOperator op) {
  return entry(op, OMBRIX_HERE("OperatorTools::getNbMaxOperands")).nbMaxOperands;
}

ValueType OperatorTools::getValueTypes(OXOperator op) {
  return entry(op, OMBRIX_HERE("OperatorTools::getValueTypes")).valueTypes;
}

ValueType OperatorTools::getOperandValueTypes(OXOperator op, int position) {
  if (!isKnown(op)) failUnknown(op, OMBRIX_HERE("OperatorTools::getOperandValueTypes"));
  switch (op) {
    case OXOperator::Bool:
    case OXOperator::Not:
    case OXOperator::And:
    case OXOperator::Or:
    case OXOperator::Xor:
      return kBoolType;
    case OXOperator::Iif:
      return position == 0 ? kBoolType : kScalar;
    case OXOperator::Mod:
      return kBoolOrInt;
    case OXOperator::At:
      return position == 0 ? kArrayType : kBoolOrInt;
    case OXOperator::Scalar:
      return kArrayType;
    default:
      return kScalar;
  }
}

ValueType OperatorTools::getOperandValueTypes(OXOperator op, ValueType result, int position) {
  switch (op) {
    case OXOperator::Const:
      fail(kInternal, OMBRIX_HERE("OperatorTools::getOperandValueTypes"),
           "Const operator cannot have operands");
    case OXOperator::Sum:
    case OXOperator::Prod:
    case OXOperator::Max:
    case OXOperator::Min:
    case OXOperator::Abs:
    case OXOperator::Dist:
    case OXOperator::Div:
      return arithmeticOperandTypes(result);
    case OXOperator::Iif:
      return iifOperandTypes(result, position);
    default:
      return getOperandValueTypes(op, position);
  }
}

bool OperatorTools::isOperandAllowed(OXOperator op, int position, OXOperator operandOperator) {
  return (getOperandValueTypes(op, position) & getValueTypes(operandOperator)) != 0;
}

void OperatorTools::fixValueType(OXExpression& expression) {
  ModelRecord::setValueType(expression, finalType(expression));
}

std::string OperatorTools::valueTypesToString(ValueType types) {
  static constexpr std::array<const char*, 9> words = {
      "",       "boolean",           "integer",           "boolean or integer",
      "double", "boolean or double", "integer or double", "boolean, integer or double",
      "array"};
  if (types < 1 || types > 8) {
    fail(kInternal, OMBRIX_HERE("OperatorTools::valueTypesToString"),
         "Argument type not supported");
  }
  return words[static_cast<std::size_t>(types)];
}

}  // namespace ombrix
