#ifndef OMBRIX_API_OXOPERATOR_H
#define OMBRIX_API_OXOPERATOR_H

#include <cstdint>

namespace ombrix {

/// The operators of the modelling language. The numbers are public: they cross the Java bridge and
/// are what OXExpression::getOperator returns.
enum class OXOperator : std::int32_t {
  Bool = 0,
  Const = 1,
  Sum = 2,
  Prod = 3,
  Max = 4,
  Min = 5,
  Eq = 6,
  Neq = 7,
  Geq = 8,
  Leq = 9,
  Gt = 10,
  Lt = 11,
  Iif = 12,
  Not = 13,
  And = 14,
  Or = 15,
  Xor = 16,
  Abs = 17,
  Dist = 18,
  Div = 19,
  Mod = 20,
  Array = 21,
  At = 22,
  Scalar = 23,
  Ceil = 24,
  Floor = 25,
  Round = 26,
  Sqrt = 27,
  Log = 28,
  Exp = 29,
  Pow = 30,
  Cos = 31,
  Sin = 32,
  Tan = 33
};

}  // namespace ombrix

#endif
