#ifndef OMBRIX_SOLVER_KERNEL_OXVALUE_H
#define OMBRIX_SOLVER_KERNEL_OXVALUE_H

#include <cmath>
#include <cstdint>
#include <string>

namespace ombrix {

/// Eight bytes that hold a boolean, an integer or a double. There is no tag: the type travels with
/// the owner of the slot, an expression or a node. A boolean is the integer 0 or 1.
union OXValue {
  std::int64_t intValue;
  double doubleValue;

  static OXValue ofInt(std::int64_t value) {
    OXValue result;
    result.intValue = value;
    return result;
  }
  static OXValue ofDouble(double value) {
    OXValue result;
    result.doubleValue = value;
    return result;
  }
};
static_assert(sizeof(OXValue) == 8);

/// The absolute and relative tolerance of every comparison of doubles.
inline constexpr double kTolerance = 1e-6;

/// The tolerance of all comparisons of doubles: absolute next to zero, otherwise relative to the
/// sum of both magnitudes. A NaN equals nothing. The test for zero is on the product, so two values
/// so small that it underflows are compared absolutely as well.
inline bool approxEqual(double a, double b) {
  if (a == b) return true;
  const double difference = std::fabs(a - b);
  if (a * b == 0.0) return difference < kTolerance;
  return difference / (std::fabs(a) + std::fabs(b)) < kTolerance;
}

/// Whether a number in a text file is written as a double; looks at the form only.
bool isDoubleLiteral(const char* text);

/// The integer that a text spells; code 6 if it spells none or leaves the 64-bit range.
std::int64_t castToOxInt(const std::string& text);

/// The double that a text spells, "inf", "+inf", "-inf" and "nan" included; code 6 if it spells
/// none. The decimal point is "." whatever the locale of the host.
double castToOxDouble(const std::string& text);

}  // namespace ombrix

#endif
