#ifndef OMBRIX_BUILDER_VALUETYPE_H
#define OMBRIX_BUILDER_VALUETYPE_H

#include <cstdint>

namespace ombrix {

/// A set of kinds of value, as a bit mask. A typed expression holds exactly one of the four bits;
/// unions are the answers of OperatorTools; 0 means not yet typed.
using ValueType = std::int8_t;

inline constexpr ValueType kNoType = 0;
inline constexpr ValueType kBoolType = 1;
inline constexpr ValueType kIntType = 2;
inline constexpr ValueType kDoubleType = 4;
inline constexpr ValueType kArrayType = 8;

/// Boolean or integer: the value lives in the integer member of OXValue.
constexpr bool isIntegral(ValueType type) {
  return (type & (kBoolType | kIntType)) != 0;
}

}  // namespace ombrix

#endif
