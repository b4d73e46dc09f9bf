#include "solver/kernel/saturating.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ombrix {
namespace {

constexpr std::int64_t k30 = std::int64_t{1} << 30;
constexpr std::int64_t k31 = std::int64_t{1} << 31;

TEST(Saturating, AProductOfFewBitsIsPlain) {
  EXPECT_EQ(saturatingMul(0, 0), 0);
  EXPECT_EQ(saturatingMul(-3, 7), -21);
  // 30 + 31 bits are still below 62.
  EXPECT_EQ(saturatingMul(k30 - 1, k31 - 1), (k30 - 1) * (k31 - 1));
}

TEST(Saturating, AProductOfManyBitsGoesToTheLimitOfItsSign) {
  // 31 + 31 bits saturate although the product would fit.
  EXPECT_EQ(saturatingMul(k30, k30), kIntMax);
  EXPECT_EQ(saturatingMul(-k30, -k30), kIntMax);
  EXPECT_EQ(saturatingMul(-k30, k30), kIntMin);
  EXPECT_EQ(saturatingMul(k30, -k30), kIntMin);
  EXPECT_EQ(saturatingMul(1, std::int64_t{1} << 61), kIntMax);
  EXPECT_EQ(saturatingMul(1, (std::int64_t{1} << 60) - 1), (std::int64_t{1} << 60) - 1);
}

TEST(Saturating, AZeroTimesAVeryLargeValueIsTheSmallestInteger) {
  EXPECT_EQ(saturatingMul(0, kIntMax), kIntMin);
  EXPECT_EQ(saturatingMul(kIntMin, 0), kIntMin);
  EXPECT_EQ(saturatingMul(0, std::int64_t{1} << 61), kIntMin);
  EXPECT_EQ(saturatingMul(0, (std::int64_t{1} << 61) - 1), 0);
}

TEST(Saturating, TheSmallestIntegerCountsAsTheLargestMagnitude) {
  EXPECT_EQ(significantBits(kIntMin), 63);
  EXPECT_EQ(significantBits(0), 0);
  EXPECT_EQ(significantBits(-4), 3);
  EXPECT_EQ(absSat(kIntMin), kIntMax);
  EXPECT_EQ(absSat(-5), 5);
  EXPECT_EQ(absSat(5), 5);
  EXPECT_EQ(saturatingMul(kIntMin, -1), kIntMax);
}

TEST(Saturating, SumsAndDifferencesClampAtTheLimits) {
  EXPECT_EQ(saturatingAdd(kIntMax, 1), kIntMax);
  EXPECT_EQ(saturatingAdd(kIntMin, -1), kIntMin);
  EXPECT_EQ(saturatingAdd(kIntMin, kIntMax), -1);
  EXPECT_EQ(saturatingSub(kIntMin, 1), kIntMin);
  EXPECT_EQ(saturatingSub(0, kIntMin), kIntMax);
  EXPECT_EQ(saturatingSub(kIntMin, kIntMin), 0);
  EXPECT_EQ(saturatingNegate(kIntMin), kIntMax);
  EXPECT_EQ(saturatingNegate(kIntMax), -kIntMax);
}

TEST(Saturating, ValuesWrapWithoutOverflow) {
  EXPECT_EQ(wrappingAdd(kIntMax, 1), kIntMin);
  EXPECT_EQ(wrappingSub(kIntMin, 1), kIntMax);
  EXPECT_EQ(wrappingMul(kIntMax, 2), -2);
  EXPECT_EQ(wrappingNegate(kIntMin), kIntMin);
  EXPECT_EQ(wrappingAbs(kIntMin), kIntMin);
  EXPECT_EQ(wrappingAbs(-7), 7);
}

TEST(Saturating, DivisionTruncatesTowardsZeroAndNeverTraps) {
  EXPECT_EQ(truncatingDiv(-7, 2), -3);
  EXPECT_EQ(truncatingMod(-7, 2), -1);
  EXPECT_EQ(truncatingMod(7, -2), 1);
  EXPECT_EQ(truncatingDiv(5, -1), -5);
  EXPECT_EQ(truncatingDiv(kIntMin, -1), kIntMin);
  EXPECT_EQ(truncatingMod(kIntMin, -1), 0);
}

TEST(Saturating, ADoubleIsClampedToTheIntegerLimits) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(clampToInt64(-2.9), -2);
  EXPECT_EQ(clampToInt64(infinity), kIntMax);
  EXPECT_EQ(clampToInt64(-infinity), kIntMin);
  EXPECT_EQ(clampToInt64(kIntLimit), kIntMax);
  EXPECT_EQ(clampToInt64(-kIntLimit), kIntMin);
  EXPECT_EQ(clampToInt64(std::nextafter(kIntLimit, 0.0)), kIntMax - 1023);
  EXPECT_EQ(clampToInt64(std::nan("")), kIntMin);
}

TEST(Saturating, TruncationOutsideTheRangeGivesTheSmallestInteger) {
  EXPECT_EQ(truncateToInt64(3.7), 3);
  EXPECT_EQ(truncateToInt64(kIntLimit), kIntMin);
  EXPECT_EQ(truncateToInt64(-1e300), kIntMin);
  EXPECT_EQ(truncateToInt64(std::nan("")), kIntMin);
}

}  // namespace
}  // namespace ombrix
