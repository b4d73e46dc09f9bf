#ifndef OMBRIX_API_OXOPERATOR_H
#define OMBRIX_API_OXOPERATOR_H

#include <cstdint>

namespace ombrix {

/// The operators of the modelling language, each with its operands and what it gives. The numbers
/// are public: they cross the Java bridge and are what OXExpression::getOperator returns.
///
/// A number is a boolean (0 or 1), an integer of 64 bits or a double. Where nothing else is told,
/// an operator on numbers gives a double if an operand is one, else an integer. docs/semantics.md
/// tells where the values may surprise.
enum class OXOperator : std::int32_t {
  Bool = 0,     ///< a decision; no operands
  Const = 1,    ///< made by OXModel::createConstant; no operands
  Sum = 2,      ///< 1 or more numbers
  Prod = 3,     ///< 1 or more numbers
  Max = 4,      ///< 1 or more numbers
  Min = 5,      ///< 1 or more numbers
  Eq = 6,       ///< 2 numbers; boolean
  Neq = 7,      ///< 2 numbers; boolean
  Geq = 8,      ///< 2 numbers: first >= second; boolean
  Leq = 9,      ///< 2 numbers: first <= second; boolean
  Gt = 10,      ///< 2 numbers: first > second; boolean
  Lt = 11,      ///< 2 numbers: first < second; boolean
  Iif = 12,     ///< condition, then, else; boolean only if then and else are
  Not = 13,     ///< 1 boolean; boolean
  And = 14,     ///< 1 or more booleans; boolean
  Or = 15,      ///< 1 or more booleans; boolean
  Xor = 16,     ///< 1 or more booleans: whether an odd number holds; boolean
  Abs = 17,     ///< 1 number
  Dist = 18,    ///< 2 numbers: |first - second|
  Div = 19,     ///< 2 numbers; integers truncate towards zero (by a constant 1: docs/semantics.md)
  Mod = 20,     ///< 2 booleans or integers: the remainder of Div; integer
  Array = 21,   ///< 0 or more numbers; no value, only an operand of At and Scalar
  At = 22,      ///< array, index from 0 (boolean or integer); outside: code 5
  Scalar = 23,  ///< 2 arrays of one length: the sum of products
  Ceil = 24,    ///< 1 number; integer
  Floor = 25,   ///< 1 number; integer
  Round = 26,   ///< 1 number, half up; integer
  Sqrt = 27,    ///< 1 number; double
  Log = 28,     ///< 1 number, natural logarithm; double
  Exp = 29,     ///< 1 number; double
  Pow = 30,     ///< base, exponent; double
  Cos = 31,     ///< 1 number, in radians; double
  Sin = 32,     ///< 1 number, in radians; double
  Tan = 33      ///< 1 number, in radians; double
};

}  // namespace ombrix

#endif
