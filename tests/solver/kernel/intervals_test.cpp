#include "solver/kernel/intervals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "solver/kernel/mathdouble.h"
#include "solver/kernel/saturating.h"
#include "support/failures.h"
#include "support/intervalprinter.h"

namespace ombrix {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr DoubleInterval kEverything = {-kInf, kInf};

IntInterval ints(std::int64_t low, std::int64_t high) {
  return {low, high};
}
DoubleInterval doubles(double low, double high) {
  return {low, high};
}
Where here() {
  return OMBRIX_HERE("Test::here");
}

/// Every interval within [-3, 3].
template <typename Action>
void forSmallIntervals(const Action& action) {
  for (std::int64_t low = -3; low <= 3; ++low) {
    for (std::int64_t high = low; high <= 3; ++high) action(ints(low, high));
  }
}

/// Runs an action on all pairs of values of two intervals.
template <typename Action>
void forPairs(IntInterval a, IntInterval b, const Action& action) {
  for (std::int64_t x = a.low; x <= a.high; ++x) {
    for (std::int64_t y = b.low; y <= b.high; ++y) action(x, y);
  }
}

bool holds(IntInterval x, std::int64_t value) {
  return x.low <= value && value <= x.high;
}

TEST(Intervals, IntegerComparisonsAreDecidedExactlyWhenAllPairsAgree) {
  forSmallIntervals([](IntInterval a) {
    forSmallIntervals([a](IntInterval b) {
      int nbEqual = 0;
      int nbGreaterOrEqual = 0;
      int nbGreater = 0;
      int nbPairs = 0;
      forPairs(a, b, [&](std::int64_t x, std::int64_t y) {
        nbEqual += x == y;
        nbGreaterOrEqual += x >= y;
        nbGreater += x > y;
        ++nbPairs;
      });
      const auto truth = [nbPairs](int nbTrue) {
        if (nbTrue == 0) return Truth::False;
        return nbTrue == nbPairs ? Truth::True : Truth::Unknown;
      };
      EXPECT_EQ(isEqual(a, b), truth(nbEqual));
      EXPECT_EQ(isGreaterOrEqual(a, b), truth(nbGreaterOrEqual));
      EXPECT_EQ(isGreater(a, b), truth(nbGreater));
    });
  });
}

TEST(Intervals, DoubleComparisonsForgiveTheTolerance) {
  const DoubleInterval one = doubles(1.0, 1.0);
  const DoubleInterval almostOne = doubles(1.0 - 1e-7, 1.0 - 1e-7);
  EXPECT_EQ(isEqual(one, almostOne), Truth::True);
  EXPECT_EQ(isGreaterOrEqual(almostOne, one), Truth::True);
  EXPECT_EQ(isGreater(one, almostOne), Truth::False);
  EXPECT_EQ(isEqual(one, doubles(2.0, 3.0)), Truth::False);
  EXPECT_EQ(isEqual(doubles(2.0, 3.0), one), Truth::False);
  EXPECT_EQ(isEqual(doubles(0.0, 1.0), doubles(1.0 + 1e-7, 2.0)), Truth::Unknown);
  EXPECT_EQ(isGreaterOrEqual(one, doubles(2.0, 3.0)), Truth::False);
  EXPECT_EQ(isGreaterOrEqual(doubles(0.0, 2.0), one), Truth::Unknown);
  EXPECT_EQ(isGreater(doubles(2.0, 3.0), one), Truth::True);
  EXPECT_EQ(isGreater(doubles(0.0, 2.0), one), Truth::Unknown);
}

TEST(Intervals, TheTrueSideOfAComparisonIsTestedFirst) {
  // Next to zero both sides can hold: 0 and 9e-7 are within tolerance, 1e-7 and 8e-7 are not.
  EXPECT_EQ(isGreaterOrEqual(doubles(0.0, 1e-7), doubles(8e-7, 9e-7)), Truth::True);
  EXPECT_EQ(isGreater(doubles(8e-7, 9e-7), doubles(0.0, 1e-7)), Truth::True);
}

TEST(Intervals, NegationSwapsWhatIsKnown) {
  EXPECT_EQ(negate(Truth::True), Truth::False);
  EXPECT_EQ(negate(Truth::False), Truth::True);
  EXPECT_EQ(negate(Truth::Unknown), Truth::Unknown);
}

TEST(Intervals, HullHoldsBoth) {
  EXPECT_EQ(hull(ints(1, 2), ints(-5, -4)), ints(-5, 2));
  EXPECT_EQ(hull(doubles(1.0, 2.0), doubles(0.5, 3.0)), doubles(0.5, 3.0));
}

TEST(Intervals, AbsoluteValue) {
  forSmallIntervals([](IntInterval a) {
    std::int64_t least = 9;
    std::int64_t greatest = 0;
    for (std::int64_t x = a.low; x <= a.high; ++x) {
      least = std::min(least, std::abs(x));
      greatest = std::max(greatest, std::abs(x));
    }
    EXPECT_EQ(absInterval(a), ints(least, greatest));
    EXPECT_EQ(absInterval(toDouble(a)), toDouble(ints(least, greatest)));
  });
  EXPECT_EQ(absInterval(ints(kIntMin, -1)), ints(1, kIntMax));
  EXPECT_EQ(absInterval(kEverything), doubles(0.0, kInf));
}

TEST(Intervals, Distance) {
  forSmallIntervals([](IntInterval a) {
    forSmallIntervals([a](IntInterval b) {
      const IntInterval result = distInterval(a, b);
      forPairs(a, b, [&](std::int64_t x, std::int64_t y) {
        EXPECT_TRUE(holds(result, std::abs(x - y)));
      });
      EXPECT_GE(result.low, 0);
    });
  });
  EXPECT_EQ(distInterval(ints(0, 2), ints(5, 9)), ints(3, 9));
  EXPECT_EQ(distInterval(ints(5, 9), ints(0, 2)), ints(3, 9));
  EXPECT_EQ(distInterval(ints(0, 4), ints(2, 9)), ints(0, 9));
  EXPECT_EQ(distInterval(ints(3, 3), ints(3, 3)), ints(0, 0));
}

TEST(Intervals, DistanceSaturates) {
  EXPECT_EQ(distInterval(ints(kIntMin, kIntMax), ints(0, 0)), ints(0, kIntMax));
  EXPECT_EQ(distInterval(ints(kIntMin, kIntMin), ints(-1, -1)), ints(kIntMax, kIntMax));
  EXPECT_EQ(distInterval(ints(kIntMax, kIntMax), ints(kIntMin, kIntMin)), ints(kIntMax, kIntMax));
}

TEST(Intervals, DistanceOfDoubles) {
  EXPECT_EQ(distInterval(doubles(0.0, 2.0), doubles(5.0, 9.0)), doubles(3.0, 9.0));
  EXPECT_EQ(distInterval(doubles(5.0, 9.0), doubles(0.0, 2.0)), doubles(3.0, 9.0));
  EXPECT_EQ(distInterval(doubles(0.0, 4.0), doubles(2.0, 9.0)), doubles(0.0, 9.0));
  EXPECT_EQ(distInterval(kEverything, doubles(0.0, 1.0)), doubles(0.0, kInf));
  EXPECT_EQ(distInterval(doubles(kInf, kInf), doubles(kInf, kInf)), kEverything);
}

TEST(Intervals, IntegerQuotientsHoldAllValues) {
  forSmallIntervals([](IntInterval a) {
    forSmallIntervals([a](IntInterval b) {
      if (b == ints(0, 0)) return;
      const IntInterval result = divInterval(a, b, here());
      forPairs(a, b, [&](std::int64_t x, std::int64_t y) {
        if (y == 0) return;
        EXPECT_TRUE(holds(result, x / y)) << x << "/" << y;
      });
    });
  });
}

TEST(Intervals, IntegerQuotientLeavesTheZeroDivisorOut) {
  EXPECT_EQ(divInterval(ints(-7, 12), ints(0, 3), here()), ints(-7, 12));
  EXPECT_EQ(divInterval(ints(-7, 12), ints(-3, 0), here()), ints(-12, 7));
  EXPECT_EQ(divInterval(ints(-7, 5), ints(-2, 3), here()), ints(-7, 7));
  EXPECT_EQ(divInterval(ints(-7, 5), ints(2, 3), here()), ints(-3, 2));
  EXPECT_EQ(divInterval(ints(kIntMin, 0), ints(-2, 2), here()), ints(-kIntMax, kIntMax));
}

TEST(Intervals, TheSmallestIntegerByMinusOneDoesNotTrap) {
  EXPECT_EQ(divInterval(ints(kIntMin, kIntMin), ints(-1, -1), here()), ints(kIntMin, kIntMin));
}

TEST(Intervals, AZeroDivisorFailsAtThePlaceOfTheCaller) {
  test::expectFailure(5, "Test::here", "Division by zero.",
                      [] { divInterval(ints(1, 2), ints(0, 0), here()); });
  test::expectFailure(5, "Test::here", "Division by zero.",
                      [] { divInterval(doubles(1.0, 2.0), doubles(-0.0, 0.0), here()); });
  test::expectFailure(5, "Test::here", "Division by zero.",
                      [] { modInterval(ints(1, 2), ints(0, 0), here()); });
}

TEST(Intervals, DoubleQuotient) {
  EXPECT_EQ(divInterval(doubles(-1.0, 2.0), doubles(2.0, 4.0), here()), doubles(-0.5, 1.0));
  EXPECT_EQ(divInterval(doubles(-1.0, 2.0), doubles(-4.0, -2.0), here()), doubles(-1.0, 0.5));
  EXPECT_EQ(divInterval(doubles(1.0, 2.0), doubles(0.0, 4.0), here()), kEverything);
  EXPECT_EQ(divInterval(doubles(1.0, 2.0), doubles(-1.0, 1.0), here()), kEverything);
}

TEST(Intervals, ADoubleQuotientOfInfinitiesGoesBySigns) {
  EXPECT_EQ(divInterval(doubles(1.0, kInf), doubles(2.0, kInf), here()), doubles(0.0, kInf));
  EXPECT_EQ(divInterval(doubles(-kInf, 1.0), doubles(2.0, kInf), here()), doubles(-kInf, 0.0));
  EXPECT_EQ(divInterval(doubles(-kInf, 1.0), doubles(-kInf, -2.0), here()), doubles(0.0, kInf));
  EXPECT_EQ(divInterval(doubles(1.0, kInf), doubles(-kInf, -2.0), here()), doubles(-kInf, 0.0));
  // Only the lower ends are looked at: one that is 0 has both signs, and leaves nothing but 0.
  EXPECT_EQ(divInterval(doubles(0.0, kInf), doubles(2.0, kInf), here()), doubles(0.0, 0.0));
}

TEST(Intervals, RemainderOfNonNegativeOperands) {
  EXPECT_EQ(modInterval(ints(0, 10), ints(3, 3), here()), ints(0, 2));
  EXPECT_EQ(modInterval(ints(0, 1), ints(3, 5), here()), ints(0, 1));
  EXPECT_EQ(modInterval(ints(0, 10), ints(0, 4), here()), ints(0, 3));
}

TEST(Intervals, RemainderOfSignedOperandsIsWideAbove) {
  EXPECT_EQ(modInterval(ints(-10, 10), ints(3, 3), here()), ints(-2, 10));
  EXPECT_EQ(modInterval(ints(-1, 0), ints(3, 7), here()), ints(-1, 6));
  EXPECT_EQ(modInterval(ints(0, 4), ints(-3, 2), here()), ints(-2, 4));
  EXPECT_EQ(modInterval(ints(kIntMin, 0), ints(kIntMin, 1), here()), ints(1 - kIntMax, kIntMax));
}

TEST(Intervals, RemaindersHoldAllValues) {
  forSmallIntervals([](IntInterval a) {
    forSmallIntervals([a](IntInterval b) {
      if (b == ints(0, 0)) return;
      const IntInterval result = modInterval(a, b, here());
      forPairs(a, b, [&](std::int64_t x, std::int64_t y) {
        if (y == 0) return;
        EXPECT_TRUE(holds(result, x % y)) << x << "%" << y;
      });
    });
  });
}

TEST(Intervals, PowersWithIntegerExponentsAreSymmetric) {
  EXPECT_EQ(powInterval(doubles(-2.0, 3.0), ints(0, 2)), doubles(-9.0, 9.0));
  EXPECT_EQ(powInterval(doubles(-4.0, 3.0), ints(-3, 2)), doubles(-64.0, 64.0));
  EXPECT_EQ(powInterval(doubles(0.5, 0.5), ints(2, 2)), doubles(-0.25, 0.25));
  EXPECT_EQ(powInterval(kEverything, ints(0, 0)), doubles(-1.0, 1.0));
}

TEST(Intervals, PowersWithDoubleExponents) {
  EXPECT_EQ(powInterval(doubles(1.0, 2.0), doubles(2.0, 3.0)), doubles(1.0, 8.0));
  EXPECT_EQ(powInterval(doubles(0.5, 2.0), doubles(2.0, 3.0)), doubles(0.125, 8.0));
  EXPECT_EQ(powInterval(doubles(0.25, 0.5), doubles(2.0, 3.0)), doubles(0.015625, 0.25));
  EXPECT_EQ(powInterval(doubles(-1.0, 0.5), doubles(2.0, 3.0)), doubles(-kInf, 0.25));
  EXPECT_EQ(powInterval(doubles(-3.0, -2.0), doubles(2.0, 3.0)), kEverything);
}

TEST(Intervals, CeilAndFloorForgiveTheToleranceAndClamp) {
  EXPECT_EQ(ceilInterval(doubles(1.2, 3.0000005)), ints(2, 3));
  EXPECT_EQ(floorInterval(doubles(1.9999995, 3.7)), ints(2, 3));
  EXPECT_EQ(ceilInterval(kEverything), ints(kIntMin, kIntMax));
  EXPECT_EQ(floorInterval(kEverything), ints(kIntMin, kIntMax));
  EXPECT_EQ(ceilInterval(doubles(1e300, 1e300)), ints(kIntMax, kIntMax));
  EXPECT_EQ(floorInterval(doubles(-1e300, -1e300)), ints(kIntMin, kIntMin));
}

TEST(Intervals, RoundForgivesTheToleranceAboveOnly) {
  EXPECT_EQ(roundInterval(doubles(0.5, 0.5)), ints(1, 1));
  EXPECT_EQ(roundInterval(doubles(0.4999995, 0.4999995)), ints(0, 1));
  EXPECT_EQ(roundInterval(doubles(-1.7, 1.2)), ints(-2, 1));
  EXPECT_EQ(roundInterval(kEverything), ints(kIntMin, kIntMax));
  EXPECT_EQ(roundInterval(doubles(1e300, 1e300)), ints(kIntMin, kIntMax))
      << "the lower end is not clamped from above";
}

TEST(Intervals, FunctionsOfDoubles) {
  EXPECT_EQ(sqrtInterval(doubles(-4.0, 9.0)), doubles(0.0, 3.0));
  EXPECT_EQ(sqrtInterval(doubles(-4.0, -1.0)), doubles(0.0, 0.0));
  EXPECT_EQ(sqrtInterval(doubles(4.0, kInf)), doubles(2.0, kInf));
  EXPECT_EQ(logInterval(doubles(-1.0, 1.0)), doubles(-kInf, 0.0));
  EXPECT_EQ(expInterval(kEverything), doubles(0.0, kInf));
  EXPECT_EQ(cosInterval(doubles(0.0, 1.0)), doubles(-1.0, 1.0));
  EXPECT_EQ(cosInterval(doubles(0.0, 0.0)), doubles(1.0, 1.0));
  EXPECT_EQ(sinInterval(doubles(0.0, 1.0)), doubles(-1.0, 1.0));
  EXPECT_EQ(sinInterval(doubles(0.0, 0.0)), doubles(0.0, 0.0));
}

TEST(Intervals, ATangentIsBoundedAwayFromItsPoles) {
  EXPECT_EQ(tanInterval(doubles(-1.0, 1.0)),
            std::make_optional(doubles(std::tan(-1.0), std::tan(1.0))));
  EXPECT_EQ(tanInterval(doubles(2.0, 2.0)),
            std::make_optional(doubles(std::tan(2.0), std::tan(2.0))));
  EXPECT_EQ(tanInterval(doubles(1.0, 2.0)), std::nullopt);
  EXPECT_EQ(tanInterval(doubles(-1.5707963267948966, 0.0)), std::nullopt);
}

TEST(Intervals, ComputationsWithoutValueFailByTheirOwnName) {
  test::expectFailure(5, "MathDouble::cos", "Invalid cosine operation (NaN or infinity provided)",
                      [] { cosInterval(doubles(kInf, kInf)); });
}

IntInterval product(std::initializer_list<IntInterval> factors) {
  IntProduct result;
  for (const IntInterval& factor : factors) result.multiply(factor);
  return result.result();
}

DoubleInterval product(std::initializer_list<DoubleInterval> factors) {
  DoubleProduct result;
  for (const DoubleInterval& factor : factors) result.multiply(factor);
  return result.result();
}

TEST(Intervals, AProductWithoutFactorsIsItsScalarTwice) {
  EXPECT_EQ(IntProduct().result(), ints(1, 1));
  EXPECT_EQ(IntProduct(-4).result(), ints(-4, -4));
  EXPECT_EQ(DoubleProduct(2.5).result(), doubles(2.5, 2.5));
}

TEST(Intervals, AProductKeepsTheSpanOfLargestProportion) {
  EXPECT_EQ(product({ints(-2, 3), ints(-5, 1)}), ints(-15, 10));
  EXPECT_EQ(product({doubles(-2.0, 3.0), doubles(-5.0, 1.0)}), doubles(-15.0, 10.0));
}

TEST(Intervals, ProductsOfTwoFactorsAreTight) {
  forSmallIntervals([](IntInterval a) {
    forSmallIntervals([a](IntInterval b) {
      std::int64_t least = 99;
      std::int64_t greatest = -99;
      forPairs(a, b, [&](std::int64_t x, std::int64_t y) {
        least = std::min(least, x * y);
        greatest = std::max(greatest, x * y);
      });
      EXPECT_EQ(product({a, b}), ints(least, greatest)) << a.low << a.high << b.low << b.high;
      EXPECT_EQ(product({toDouble(a), toDouble(b)}), toDouble(ints(least, greatest)));
    });
  });
}

TEST(Intervals, ProductsSaturate) {
  EXPECT_EQ(product({ints(kIntMin, kIntMax), ints(1, 2)}), ints(kIntMin, kIntMax));
  EXPECT_EQ(product({ints(0, 0), ints(kIntMax, kIntMax)}), ints(kIntMin, kIntMin));
}

TEST(Intervals, AnInfiniteFactorMakesADoubleProductUnbounded) {
  EXPECT_EQ(product({doubles(1.0, 2.0), doubles(0.0, kInf)}), kEverything);
}

TEST(Intervals, AFractionSpansZeroInADoubleProduct) {
  EXPECT_EQ(product({doubles(-0.25, 0.5), doubles(2.0, 4.0)}), doubles(-1.0, 2.0));
}

}  // namespace
}  // namespace ombrix
