#ifndef OMBRIX_SOLVER_KERNEL_SATURATING_H
#define OMBRIX_SOLVER_KERNEL_SATURATING_H

#include <bit>
#include <cstdint>
#include <limits>

namespace ombrix {

/// Integer arithmetic that has an answer for every pair of 64-bit integers. Bounds saturate: an
/// interval that leaves the 64-bit range ends at its limits. Values wrap: what an evaluation or a
/// node computes is taken modulo 2^64. Nothing here traps or is undefined.

inline constexpr std::int64_t kIntMin = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t kIntMax = std::numeric_limits<std::int64_t>::max();

/// The magnitude of x, with the largest integer for the smallest one.
constexpr std::int64_t absSat(std::int64_t x) {
  if (x == kIntMin) return kIntMax;
  return x < 0 ? -x : x;
}

/// The number of significant bits of the magnitude: 0 for 0.
constexpr int significantBits(std::int64_t x) {
  return static_cast<int>(std::bit_width(static_cast<std::uint64_t>(absSat(x))));
}

/// The product, or the limit on its side when the factors have too many bits to be sure of the
/// range. The test looks at the bits alone, so a zero times a very large integer is the smallest
/// integer.
constexpr std::int64_t saturatingMul(std::int64_t a, std::int64_t b) {
  if (significantBits(a) + significantBits(b) < 62) return a * b;
  const bool isPositive = (a > 0 && b > 0) || (a < 0 && b < 0);
  return isPositive ? kIntMax : kIntMin;
}

/// The sum, clamped to the 64-bit limits.
constexpr std::int64_t saturatingAdd(std::int64_t a, std::int64_t b) {
  std::int64_t sum = 0;
  if (!__builtin_add_overflow(a, b, &sum)) return sum;
  return a > 0 ? kIntMax : kIntMin;
}

/// -x, with the largest integer for the smallest one.
constexpr std::int64_t saturatingNegate(std::int64_t x) {
  return x == kIntMin ? kIntMax : -x;
}

/// a - b, clamped to the 64-bit limits.
constexpr std::int64_t saturatingSub(std::int64_t a, std::int64_t b) {
  std::int64_t difference = 0;
  if (!__builtin_sub_overflow(a, b, &difference)) return difference;
  return b < 0 ? kIntMax : kIntMin;
}

constexpr std::int64_t wrappingAdd(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

constexpr std::int64_t wrappingSub(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

constexpr std::int64_t wrappingMul(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

constexpr std::int64_t wrappingNegate(std::int64_t x) {
  return wrappingSub(0, x);
}

/// The magnitude of x; the smallest integer stays as it is.
constexpr std::int64_t wrappingAbs(std::int64_t x) {
  return x < 0 ? wrappingNegate(x) : x;
}

/// a / b towards zero, for b other than 0; the smallest integer by -1 is the smallest integer.
constexpr std::int64_t truncatingDiv(std::int64_t a, std::int64_t b) {
  return b == -1 ? wrappingNegate(a) : a / b;
}

/// The remainder of truncatingDiv, with the sign of a, for b other than 0.
constexpr std::int64_t truncatingMod(std::int64_t a, std::int64_t b) {
  return b == -1 ? 0 : a % b;
}

/// 2^63, the first double above the 64-bit range; its opposite is the smallest integer.
inline constexpr double kIntLimit = 9223372036854775808.0;

/// Towards zero, where the integer part fits; otherwise, for a NaN too, the smallest integer, as
/// the conversion of the processor gives.
constexpr std::int64_t truncateToInt64(double x) {
  return x > -kIntLimit && x < kIntLimit ? static_cast<std::int64_t>(x) : kIntMin;
}

/// Towards zero, with values beyond the 64-bit range at its limits.
constexpr std::int64_t clampToInt64(double x) {
  return x >= kIntLimit ? kIntMax : truncateToInt64(x);
}

}  // namespace ombrix

#endif
