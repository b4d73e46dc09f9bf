#include "solver/kernel/intervals.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "solver/kernel/mathdouble.h"
#include "solver/kernel/oxvalue.h"
#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kHalfPi = 1.5707963267948966;

template <typename Interval>
Interval hullOf(Interval a, Interval b) {
  return {std::min(a.low, b.low), std::max(a.high, b.high)};
}

template <typename Interval>
Interval ordered(Interval x) {
  if (x.low > x.high) std::swap(x.low, x.high);
  return x;
}

[[noreturn]] void failOnZeroDivisor(const Where& where) {
  fail(kComputation, where, "Division by zero.");
}

std::int64_t largestMagnitude(IntInterval x) {
  return std::max(absSat(x.low), absSat(x.high));
}

double largestMagnitude(DoubleInterval x) {
  return std::max(std::fabs(x.low), std::fabs(x.high));
}

DoubleInterval everything() {
  return {-kInfinity, kInfinity};
}

bool isPoint(DoubleInterval x) {
  return approxEqual(x.low, x.high);
}

bool isInsideHalfPi(double x) {
  return x > -kHalfPi && x < kHalfPi;
}

/// The ends of a quotient that has a corner without value (an infinity by an infinity): what the
/// signs alone tell.
DoubleInterval divBySigns(DoubleInterval a, DoubleInterval b) {
  const bool sameSign = (a.low >= 0.0 && b.low >= 0.0) || (a.low <= 0.0 && b.low <= 0.0);
  const bool oppositeSign = (a.low <= 0.0 && b.low >= 0.0) || (a.low >= 0.0 && b.low <= 0.0);
  return {sameSign ? 0.0 : -kInfinity, oppositeSign ? 0.0 : kInfinity};
}

double powUpperEnd(DoubleInterval base, DoubleInterval exponent) {
  if (base.high >= 1.0) return MathDouble::pow(base.high, exponent.high);
  if (base.high >= 0.0) return MathDouble::pow(base.high, exponent.low);
  return kInfinity;
}

}  // namespace

Truth isEqual(IntInterval a, IntInterval b) {
  if (a.high < b.low || b.high < a.low) return Truth::False;
  const bool isOnePoint = a.low == a.high && b.low == b.high && a.low == b.low;
  return isOnePoint ? Truth::True : Truth::Unknown;
}

Truth isGreaterOrEqual(IntInterval a, IntInterval b) {
  if (a.low >= b.high) return Truth::True;
  return a.high < b.low ? Truth::False : Truth::Unknown;
}

Truth isGreater(IntInterval a, IntInterval b) {
  if (a.low > b.high) return Truth::True;
  return a.high <= b.low ? Truth::False : Truth::Unknown;
}

Truth isEqual(DoubleInterval a, DoubleInterval b) {
  if (b.high < a.low && !approxEqual(b.high, a.low)) return Truth::False;
  if (b.low > a.high && !approxEqual(b.low, a.high)) return Truth::False;
  const bool isOnePoint = isPoint(a) && isPoint(b) && approxEqual(b.high, a.high);
  return isOnePoint ? Truth::True : Truth::Unknown;
}

Truth isGreaterOrEqual(DoubleInterval a, DoubleInterval b) {
  if (a.low >= b.high || approxEqual(b.high, a.low)) return Truth::True;
  return a.high < b.low && !approxEqual(a.high, b.low) ? Truth::False : Truth::Unknown;
}

Truth isGreater(DoubleInterval a, DoubleInterval b) {
  if (a.low > b.high && !approxEqual(b.high, a.low)) return Truth::True;
  return a.high <= b.low || approxEqual(a.high, b.low) ? Truth::False : Truth::Unknown;
}

IntInterval hull(IntInterval a, IntInterval b) {
  return hullOf(a, b);
}

DoubleInterval hull(DoubleInterval a, DoubleInterval b) {
  return hullOf(a, b);
}

IntInterval absInterval(IntInterval x) {
  if (x.low >= 0) return x;
  const std::int64_t a = absSat(x.low);
  if (x.high > 0) return {0, std::max(a, x.high)};
  return {absSat(x.high), a};
}

DoubleInterval absInterval(DoubleInterval x) {
  if (x.low >= 0.0) return x;
  if (x.high <= 0.0) return {-x.high, -x.low};
  return {0.0, std::max(-x.low, x.high)};
}

IntInterval distInterval(IntInterval a, IntInterval b) {
  if (a.high <= b.low) return {saturatingSub(b.low, a.high), saturatingSub(b.high, a.low)};
  if (b.high > a.low) {
    return {0, saturatingSub(std::max(a.high, b.high), std::min(a.low, b.low))};
  }
  return {saturatingSub(a.low, b.high), saturatingSub(a.high, b.low)};
}

DoubleInterval distInterval(DoubleInterval a, DoubleInterval b) {
  if (b.low > a.high) return {b.low - a.high, b.high - a.low};
  if (a.low > b.high) return {a.low - b.high, a.high - b.low};
  const DoubleInterval both = hullOf(a, b);
  if (both.low == both.high && std::isinf(both.low)) return everything();
  return {0.0, both.high - both.low};
}

IntInterval divInterval(IntInterval a, IntInterval b, const Where& where) {
  if (b.low == 0) {
    if (b.high == 0) failOnZeroDivisor(where);
    b.low = 1;
  }
  if (b.high == 0) b.high = -1;
  if (b.low < 0 && b.high > 0) {
    const std::int64_t m = largestMagnitude(a);
    return {-m, m};
  }
  const auto [least, greatest] =
      std::minmax({truncatingDiv(a.low, b.low), truncatingDiv(a.low, b.high),
                   truncatingDiv(a.high, b.low), truncatingDiv(a.high, b.high)});
  return {least, greatest};
}

DoubleInterval divInterval(DoubleInterval a, DoubleInterval b, const Where& where) {
  if (b.low == 0.0 && b.high == 0.0) failOnZeroDivisor(where);
  if (b.low <= 0.0 && b.high >= 0.0) return everything();
  const std::array<double, 4> quotients = {a.low / b.low, a.low / b.high, a.high / b.low,
                                           a.high / b.high};
  for (const double quotient : quotients) {
    if (std::isnan(quotient)) return divBySigns(a, b);
  }
  const auto [least, greatest] = std::minmax_element(quotients.begin(), quotients.end());
  return {*least, *greatest};
}

IntInterval modInterval(IntInterval a, IntInterval b, const Where& where) {
  if (b.low == 0 && b.high == 0) failOnZeroDivisor(where);
  if (a.low >= 0 && b.low >= 0) return {0, std::min(a.high, b.high - 1)};
  const std::int64_t n = largestMagnitude(a);
  const std::int64_t m = largestMagnitude(b);
  return {std::max(-n, 1 - m), std::max(n, m - 1)};
}

DoubleInterval powInterval(DoubleInterval base, IntInterval exponent) {
  const double x = MathDouble::pow(largestMagnitude(base), largestMagnitude(toDouble(exponent)));
  return {-x, x};
}

DoubleInterval powInterval(DoubleInterval base, DoubleInterval exponent) {
  if (base.low >= 1.0) {
    return {MathDouble::pow(base.low, exponent.low), MathDouble::pow(base.high, exponent.high)};
  }
  const double low = base.low < 0.0 ? -kInfinity : MathDouble::pow(base.low, exponent.high);
  return {low, powUpperEnd(base, exponent)};
}

std::int64_t ceilEnd(double x) {
  return clampToInt64(std::ceil(x - kTolerance));
}

std::int64_t floorEnd(double x) {
  return clampToInt64(std::floor(x + kTolerance));
}

IntInterval ceilInterval(DoubleInterval x) {
  return {ceilEnd(x.low), ceilEnd(x.high)};
}

IntInterval floorInterval(DoubleInterval x) {
  return {floorEnd(x.low), floorEnd(x.high)};
}

IntInterval roundInterval(DoubleInterval x) {
  return {truncateToInt64(std::floor(x.low + 0.5)),
          clampToInt64(std::floor(x.high + 0.5 + kTolerance))};
}

DoubleInterval sqrtInterval(DoubleInterval x) {
  return {x.low > 0.0 ? MathDouble::sqrt(x.low) : 0.0,
          x.high > 0.0 ? MathDouble::sqrt(x.high) : 0.0};
}

DoubleInterval logInterval(DoubleInterval x) {
  return {MathDouble::log(std::max(x.low, 0.0)), MathDouble::log(std::max(x.high, 0.0))};
}

DoubleInterval expInterval(DoubleInterval x) {
  return {MathDouble::exp(x.low), MathDouble::exp(x.high)};
}

DoubleInterval cosInterval(DoubleInterval x) {
  if (!isPoint(x)) return {-1.0, 1.0};
  const double value = MathDouble::cos(x.low);
  return {value, value};
}

DoubleInterval sinInterval(DoubleInterval x) {
  if (!isPoint(x)) return {-1.0, 1.0};
  const double value = MathDouble::sin(x.low);
  return {value, value};
}

std::optional<DoubleInterval> tanInterval(DoubleInterval x) {
  if (isInsideHalfPi(x.low) && isInsideHalfPi(x.high)) {
    return DoubleInterval{MathDouble::tan(x.low), MathDouble::tan(x.high)};
  }
  if (!isPoint(x)) return std::nullopt;
  const double value = MathDouble::tan(x.low);
  return DoubleInterval{value, value};
}

void IntProduct::multiply(IntInterval x) {
  const std::int64_t lowSize = absSat(x.low);
  const std::int64_t highSize = absSat(x.high);
  const bool isHighLarger = highSize > lowSize;
  largeEnds = saturatingMul(largeEnds, isHighLarger ? x.high : x.low);
  smallEnds = saturatingMul(smallEnds, isHighLarger ? x.low : x.high);
  if (x.low >= 0 || x.high < 1) return;
  const auto [small, large] = std::minmax(lowSize, highSize);
  if (saturatingMul(small, denominator) > saturatingMul(large, numerator)) {
    numerator = small;
    denominator = large;
  }
}

IntInterval IntProduct::result() const {
  std::int64_t low = smallEnds;
  if (numerator >= 1) {
    std::int64_t reach = saturatingMul(largeEnds, numerator);
    if (reach != kIntMin && reach != kIntMax) reach /= denominator;
    low = saturatingNegate(reach);
  }
  return ordered(IntInterval{low, largeEnds});
}

void DoubleProduct::multiply(DoubleInterval x) {
  hasInfiniteEnd = hasInfiniteEnd || std::isinf(x.low) || std::isinf(x.high);
  const double lowSize = std::fabs(x.low);
  const double highSize = std::fabs(x.high);
  const bool isHighLarger = highSize > lowSize;
  largeEnds *= isHighLarger ? x.high : x.low;
  smallEnds *= isHighLarger ? x.low : x.high;
  if (x.low >= 0.0 || x.high <= 0.0) return;
  const auto [small, large] = std::minmax(lowSize, highSize);
  if (small * denominator > large * numerator) {
    numerator = small;
    denominator = large;
  }
}

DoubleInterval DoubleProduct::result() const {
  if (hasInfiniteEnd) return everything();
  const double low = numerator > 0.0 ? -(numerator * largeEnds / denominator) : smallEnds;
  return ordered(DoubleInterval{low, largeEnds});
}

}  // namespace ombrix
