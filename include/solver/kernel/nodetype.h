#ifndef OMBRIX_SOLVER_KERNEL_NODETYPE_H
#define OMBRIX_SOLVER_KERNEL_NODETYPE_H

#include <cstdint>

namespace ombrix {

/// The kernel's node types. A type says which algorithm evaluates a node, so one operator of the
/// modelling language may become one of several types, and every operator that can meet doubles has
/// a second, double form.
enum class NodeType : std::uint8_t {
  Boolean = 0,
  Integer = 1,
  Float = 2,
  Abs = 3,
  And = 4,
  BooleanSum = 5,
  Constant = 6,
  Distance = 7,
  Divide = 8,
  Eq = 9,
  Geq = 10,
  Gt = 11,
  If = 12,
  Leq = 13,
  Lt = 14,
  Max = 15,
  Min = 16,
  Modulo = 17,
  Neq = 18,
  Not = 19,
  Or = 20,
  Product = 21,
  ScalarMax = 22,
  ScalarMin = 23,
  ScalarProduct = 24,
  ScalarSum = 25,
  Sum = 26,
  Xor = 27,
  Array = 28,
  ConstArray = 29,
  At = 30,
  DoubleAbs = 31,
  DoubleConstant = 32,
  DoubleDistance = 33,
  DoubleDivide = 34,
  DoubleEq = 35,
  DoubleGeq = 36,
  DoubleGt = 37,
  DoubleIf = 38,
  DoubleLeq = 39,
  DoubleLt = 40,
  DoubleMax = 41,
  DoubleMin = 42,
  DoubleNeq = 43,
  DoubleProduct = 44,
  DoubleScalarMax = 45,
  DoubleScalarMin = 46,
  DoubleScalarProduct = 47,
  DoubleScalarSum = 48,
  DoubleSum = 49,
  DoubleAt = 50,
  DoubleCeil = 51,
  DoubleFloor = 52,
  DoubleRound = 53,
  DoubleSqrt = 54,
  DoubleLog = 55,
  DoubleExp = 56,
  DoublePow = 57,
  DoubleCos = 58,
  DoubleSin = 59,
  DoubleTan = 60
};

inline constexpr std::uint32_t kNbNodeTypes = 61;

/// The domain of a node's value: it tells which member of OXValue is live.
enum Domain : std::uint8_t {
  kBooleanDomain = 0,
  kIntegerDomain = 1,
  kDoubleDomain = 2,
  kArrayDomain = 3
};

/// The decisions are the only nodes that a move writes.
constexpr bool isDecisionType(NodeType type) {
  return type == NodeType::Boolean || type == NodeType::Integer || type == NodeType::Float;
}

constexpr bool isConstantType(NodeType type) {
  return type == NodeType::Constant || type == NodeType::DoubleConstant ||
         type == NodeType::ConstArray;
}

/// "eq" and "double_eq", which the infeasibility counts apart.
constexpr bool isEqualityType(NodeType type) {
  return type == NodeType::Eq || type == NodeType::DoubleEq;
}

}  // namespace ombrix

#endif
