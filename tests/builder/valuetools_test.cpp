#include "builder/valuetools.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/failures.h"

namespace ombrix {
namespace {

int compareDoubles(double a, double b) {
  return ValueTools::compare(kDoubleType, OXValue::ofDouble(a), OXValue::ofDouble(b));
}

TEST(ValueTools, IntegersCompareExactly) {
  for (const ValueType type : {kBoolType, kIntType}) {
    EXPECT_EQ(ValueTools::compare(type, OXValue::ofInt(0), OXValue::ofInt(1)), -1);
    EXPECT_EQ(ValueTools::compare(type, OXValue::ofInt(1), OXValue::ofInt(1)), 0);
    EXPECT_EQ(ValueTools::compare(type, OXValue::ofInt(1), OXValue::ofInt(0)), 1);
  }
  // Two integers that are the same double.
  EXPECT_EQ(ValueTools::compare(kIntType, OXValue::ofInt(9007199254740993),
                                OXValue::ofInt(9007199254740992)),
            1);
}

TEST(ValueTools, DoublesCompareWithTolerance) {
  EXPECT_EQ(compareDoubles(1.0, 1.0000001), 0);
  EXPECT_EQ(compareDoubles(1.0, 1.00001), -1);
  EXPECT_EQ(compareDoubles(1.00001, 1.0), 1);
  EXPECT_EQ(compareDoubles(1e-12, 0.0), 0);
}

TEST(ValueTools, ANaNComparesAsEqualToEverything) {
  EXPECT_EQ(compareDoubles(std::nan(""), 5.0), 0);
  EXPECT_EQ(compareDoubles(5.0, std::nan("")), 0);
}

TEST(ValueTools, OneIsTheOneOfTheType) {
  EXPECT_EQ(ValueTools::one(kBoolType).intValue, 1);
  EXPECT_EQ(ValueTools::one(kIntType).intValue, 1);
  EXPECT_EQ(ValueTools::one(kDoubleType).doubleValue, 1.0);
}

TEST(ValueTools, ZeroAndOneAreExact) {
  EXPECT_TRUE(ValueTools::isZero(kIntType, OXValue::ofInt(0)));
  EXPECT_FALSE(ValueTools::isZero(kIntType, OXValue::ofInt(-1)));
  EXPECT_TRUE(ValueTools::isOne(kBoolType, OXValue::ofInt(1)));
  EXPECT_FALSE(ValueTools::isOne(kBoolType, OXValue::ofInt(0)));
  EXPECT_TRUE(ValueTools::isZero(kDoubleType, OXValue::ofDouble(-0.0)));
  EXPECT_FALSE(ValueTools::isZero(kDoubleType, OXValue::ofDouble(1e-12)));
  EXPECT_FALSE(ValueTools::isZero(kDoubleType, OXValue::ofDouble(std::nan(""))));
  EXPECT_TRUE(ValueTools::isOne(kDoubleType, OXValue::ofDouble(1.0)));
  EXPECT_FALSE(ValueTools::isOne(kDoubleType, OXValue::ofDouble(1.0 + 1e-12)));
  EXPECT_FALSE(ValueTools::isOne(kDoubleType, OXValue::ofDouble(std::nan(""))));
}

TEST(ValueTools, OtherTypesAreRefused) {
  const OXValue zero = OXValue::ofInt(0);
  for (const ValueType type : {ValueType{0}, ValueType{3}, ValueType{6}, kArrayType}) {
    test::expectFailure(6, "ValueTools::compare", "ValueType not supported",
                        [&] { ValueTools::compare(type, zero, zero); });
    test::expectFailure(6, "ValueTools::one", "one not supported for the given ValueType",
                        [&] { ValueTools::one(type); });
    test::expectFailure(6, "ValueTools::isZero", "isZero not supported for the given ValueType",
                        [&] { ValueTools::isZero(type, zero); });
    test::expectFailure(6, "ValueTools::isOne", "isOne not supported for the given ValueType",
                        [&] { ValueTools::isOne(type, zero); });
  }
}

}  // namespace
}  // namespace ombrix
