#ifndef OMBRIX_SOLVER_KERNEL_INTERVALS_H
#define OMBRIX_SOLVER_KERNEL_INTERVALS_H

#include <cstdint>
#include <optional>

#include "common/failure.h"

namespace ombrix {

/// Interval arithmetic: from the intervals of operands to the interval of the result, for every
/// operator that has a rule of its own. It knows neither models nor nodes; the bounds of
/// expressions and those of the kernel's nodes both come from here, so that they cannot differ.
///
/// Integer rules saturate at the 64-bit limits. Double rules are plain arithmetic and may give a
/// NaN, which the caller has to leave out. Intervals are not empty. Some rules are wider or
/// narrower than the values that can occur; they are what the search has always relied on.

struct IntInterval {
  std::int64_t low;
  std::int64_t high;
  friend bool operator==(const IntInterval&, const IntInterval&) = default;
};

struct DoubleInterval {
  double low;
  double high;
  friend bool operator==(const DoubleInterval&, const DoubleInterval&) = default;
};

/// The bounds converted one by one.
constexpr DoubleInterval toDouble(IntInterval x) {
  return {static_cast<double>(x.low), static_cast<double>(x.high)};
}

/// What intervals tell about a comparison.
enum class Truth { Unknown, False, True };

Truth isEqual(IntInterval a, IntInterval b);
Truth isGreaterOrEqual(IntInterval a, IntInterval b);
Truth isGreater(IntInterval a, IntInterval b);
/// The comparisons of doubles hold within tolerance.
Truth isEqual(DoubleInterval a, DoubleInterval b);
Truth isGreaterOrEqual(DoubleInterval a, DoubleInterval b);
Truth isGreater(DoubleInterval a, DoubleInterval b);
constexpr Truth negate(Truth truth) {
  if (truth == Truth::Unknown) return truth;
  return truth == Truth::True ? Truth::False : Truth::True;
}

/// The smallest interval that holds both.
IntInterval hull(IntInterval a, IntInterval b);
DoubleInterval hull(DoubleInterval a, DoubleInterval b);

IntInterval absInterval(IntInterval x);
DoubleInterval absInterval(DoubleInterval x);

/// |a - b|.
IntInterval distInterval(IntInterval a, IntInterval b);
DoubleInterval distInterval(DoubleInterval a, DoubleInterval b);

/// a / b. A divisor that can only be 0 fails at the given place with "Division by zero.".
IntInterval divInterval(IntInterval a, IntInterval b, const Where& where);
DoubleInterval divInterval(DoubleInterval a, DoubleInterval b, const Where& where);

/// The remainder of a / b; the upper end is wide on purpose when a sign is negative. A divisor that
/// can only be 0 fails at the given place with "Division by zero.".
IntInterval modInterval(IntInterval a, IntInterval b, const Where& where);

/// base to the power of an exponent that is boolean or integer; symmetric around 0.
DoubleInterval powInterval(DoubleInterval base, IntInterval exponent);
/// base to the power of a double exponent.
DoubleInterval powInterval(DoubleInterval base, DoubleInterval exponent);

/// A point between the integers goes up, down, or to the nearest one, with the tolerance of the
/// operations themselves; ends beyond the 64-bit range stand at its limits.
IntInterval ceilInterval(DoubleInterval x);
IntInterval floorInterval(DoubleInterval x);
/// The tolerance applies to the upper end only, and a lower end above the 64-bit range becomes the
/// smallest integer.
IntInterval roundInterval(DoubleInterval x);
/// One end of ceilInterval.
std::int64_t ceilEnd(double x);
/// One end of floorInterval.
std::int64_t floorEnd(double x);

DoubleInterval sqrtInterval(DoubleInterval x);
DoubleInterval logInterval(DoubleInterval x);
DoubleInterval expInterval(DoubleInterval x);
DoubleInterval cosInterval(DoubleInterval x);
DoubleInterval sinInterval(DoubleInterval x);
/// Nothing when the interval may reach a pole.
std::optional<DoubleInterval> tanInterval(DoubleInterval x);

/// The interval of a product, found in one pass: one running product takes the end of larger
/// magnitude of each factor, the other one the opposite end, and among the factors that span zero
/// the one with the largest opposite side in proportion tells how far the product reaches beyond 0.
class IntProduct {
public:
  explicit IntProduct(std::int64_t factor = 1) : largeEnds(factor), smallEnds(factor) {}
  void multiply(IntInterval x);
  IntInterval result() const;

private:
  std::int64_t largeEnds;
  std::int64_t smallEnds;
  std::int64_t numerator = 0;
  std::int64_t denominator = 1;
};

/// The same in double arithmetic; a factor with an infinite end makes the product unbounded.
class DoubleProduct {
public:
  explicit DoubleProduct(double factor = 1.0) : largeEnds(factor), smallEnds(factor) {}
  void multiply(DoubleInterval x);
  DoubleInterval result() const;

private:
  double largeEnds;
  double smallEnds;
  double numerator = 0.0;
  double denominator = 1.0;
  bool hasInfiniteEnd = false;
};

}  // namespace ombrix

#endif
