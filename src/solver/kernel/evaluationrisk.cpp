#include "solver/kernel/evaluationrisk.h"

#include <cmath>

#include "solver/kernel/dag.h"
#include "solver/kernel/nodetype.h"

namespace ombrix {

namespace {

std::uint32_t arraySize(const DagFixedFields& fields, std::uint32_t array) {
  return fields.types[array] == NodeType::ConstArray ? fields.nbScalars(array)
                                                     : fields.nbOperands(array);
}

bool canLeaveArray(const DagFixedFields& fields, std::uint32_t node) {
  const std::uint32_t index = fields.operand(node, 1);
  return fields.minValues[index].intValue < 0 ||
         fields.maxValues[index].intValue >= arraySize(fields, fields.operand(node, 0));
}

bool canDivideByZero(const DagFixedFields& fields, std::uint32_t node) {
  const std::uint32_t divisor = fields.operand(node, 1);
  return fields.minValues[divisor].intValue <= 0 && fields.maxValues[divisor].intValue >= 0;
}

double lowerBound(const DagFixedFields& fields, std::uint32_t node) {
  return doubleValue(fields.domains[node], fields.minValues[node]);
}

double upperBound(const DagFixedFields& fields, std::uint32_t node) {
  return doubleValue(fields.domains[node], fields.maxValues[node]);
}

bool canBeNegative(const DagFixedFields& fields, std::uint32_t node) {
  return !(lowerBound(fields, node) >= 0.0);
}

bool canLeaveIntegers(const DagFixedFields& fields, std::uint32_t node) {
  constexpr double kLimit = 9.0e18;
  const std::uint32_t operand = fields.operand(node, 0);
  return !(lowerBound(fields, operand) > -kLimit && upperBound(fields, operand) < kLimit);
}

/// An infinite double is a failure at the next sum or function that reads it, if not at once.
bool canBeInfinite(const DagFixedFields& fields, std::uint32_t node) {
  return fields.domains[node] == kDoubleDomain &&
         (!std::isfinite(fields.minValues[node].doubleValue) ||
          !std::isfinite(fields.maxValues[node].doubleValue));
}

/// The bounds of a power do not tell of the infinity that a negative exponent gives, and with an
/// integer exponent they are too narrow for bases below 1: nothing above can be judged by them.
bool canPowerFail(const DagFixedFields& fields, std::uint32_t node) {
  const std::uint32_t base = fields.operand(node, 0);
  const std::uint32_t exponent = fields.operand(node, 1);
  const bool isNarrow =
      fields.domains[exponent] != kDoubleDomain && !(upperBound(fields, base) >= 1.0);
  return isNarrow || canBeNegative(fields, base) || canBeNegative(fields, exponent) ||
         canBeInfinite(fields, node);
}

bool canFail(const DagFixedFields& fields, std::uint32_t node) {
  switch (fields.types[node]) {
    case NodeType::At:
    case NodeType::DoubleAt:
      return canLeaveArray(fields, node) || canBeInfinite(fields, node);
    case NodeType::Divide:
    case NodeType::Modulo:
      return canDivideByZero(fields, node);
    case NodeType::DoubleSqrt:
    case NodeType::DoubleLog:
      return canBeNegative(fields, fields.operand(node, 0)) || canBeInfinite(fields, node);
    case NodeType::DoublePow:
      return canPowerFail(fields, node);
    case NodeType::DoubleCeil:
    case NodeType::DoubleFloor:
    case NodeType::DoubleRound:
      return canLeaveIntegers(fields, node);
    default:
      return canBeInfinite(fields, node);
  }
}

}  // namespace

bool canEvaluationFail(const DagFixedFields& fields) {
  for (std::uint32_t node = 0; node < fields.nbNodes; ++node) {
    if (canFail(fields, node)) return true;
  }
  return false;
}

}  // namespace ombrix
