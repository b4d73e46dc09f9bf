#include "solver/kernel/oxvalue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/failures.h"
#include "support/swappedlocale.h"

namespace ombrix {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::nan("");

TEST(ApproxEqual, EqualValuesAndInfinitiesAreEqual) {
  EXPECT_TRUE(approxEqual(3.5, 3.5));
  EXPECT_TRUE(approxEqual(kInf, kInf));
  EXPECT_FALSE(approxEqual(kInf, -kInf));
  EXPECT_FALSE(approxEqual(kInf, 1e300));
  EXPECT_TRUE(approxEqual(0.0, -0.0));
}

TEST(ApproxEqual, IsAbsoluteNextToZeroAndRelativeElsewhere) {
  EXPECT_TRUE(approxEqual(0.0, 1e-7));
  EXPECT_FALSE(approxEqual(0.0, 1e-6));
  EXPECT_FALSE(approxEqual(1e-7, 2e-7));
  EXPECT_TRUE(approxEqual(1e12, 1e12 + 1e6));
  EXPECT_FALSE(approxEqual(1e12, 1e12 + 3e6));
}

TEST(ApproxEqual, DividesByTheSumOfBothMagnitudes) {
  EXPECT_TRUE(approxEqual(1.0, 1.0 + 1.9e-6));
  EXPECT_FALSE(approxEqual(1.0, 1.0 + 2.1e-6));
  EXPECT_FALSE(approxEqual(-1.0, 1.0));
}

TEST(ApproxEqual, ANaNEqualsNothing) {
  EXPECT_FALSE(approxEqual(kNan, kNan));
  EXPECT_FALSE(approxEqual(kNan, 0.0));
  EXPECT_FALSE(approxEqual(1.0, kNan));
}

TEST(ApproxEqual, AProductThatUnderflowsCountsAsZero) {
  EXPECT_TRUE(approxEqual(1e-200, -1e-200));
  EXPECT_FALSE(approxEqual(1e-150, -1e-150));
}

TEST(IsDoubleLiteral, APointOrAnExponentMakesADouble) {
  for (const char* text : {"1e5", ".5", "1.", "-1.5E-3", "+2e+7", "1e", ".", "-.", "+-1.0"}) {
    EXPECT_TRUE(isDoubleLiteral(text)) << text;
  }
}

TEST(IsDoubleLiteral, TheFourWordsAreDoubles) {
  for (const char* text : {"inf", "nan", "+inf", "-inf"}) EXPECT_TRUE(isDoubleLiteral(text));
  for (const char* text : {"+nan", "-nan", "Inf", "infinity", "NaN"}) {
    EXPECT_FALSE(isDoubleLiteral(text)) << text;
  }
}

TEST(IsDoubleLiteral, OtherTextsAreNot) {
  for (const char* text : {"", "15", "-3", "e5", ".e5", "1.2.3", "1e5.0", "1e2e3", "1-2.0", "1e5-",
                           "1.5f", " 1.5", "0x1.8", "1,5"}) {
    EXPECT_FALSE(isDoubleLiteral(text)) << text;
  }
}

void expectNoInt(const std::string& text) {
  test::expectFailure(6, "castToOxInt",
                      "Cannot cast '" + text +
                          "' to int (max value allowed : 9223372036854775807, min value allowed : "
                          "-9223372036854775808).",
                      [&] { castToOxInt(text); });
}

void expectNoDouble(const std::string& text) {
  test::expectFailure(6, "castToOxDouble", "Cannot cast '" + text + "' to double.",
                      [&] { castToOxDouble(text); });
}

TEST(CastToOxInt, ReadsASignAndDigitsUpToTheLimits) {
  EXPECT_EQ(castToOxInt("0"), 0);
  EXPECT_EQ(castToOxInt("+12"), 12);
  EXPECT_EQ(castToOxInt("-0012"), -12);
  EXPECT_EQ(castToOxInt("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(castToOxInt("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
}

TEST(CastToOxInt, RefusesEverythingElse) {
  for (const char* text : {"", "+", "-", "1.0", "1e3", " 1", "1 ", "0x10", "1,000", "--1", "a",
                           "9223372036854775808", "-9223372036854775809"}) {
    expectNoInt(text);
  }
  expectNoInt(std::string("1\0", 2));
}

TEST(CastToOxDouble, ReadsDecimalsAndTheWords) {
  EXPECT_EQ(castToOxDouble("15"), 15.0);
  EXPECT_EQ(castToOxDouble("-.5"), -0.5);
  EXPECT_EQ(castToOxDouble("1."), 1.0);
  EXPECT_EQ(castToOxDouble("+1.25E-2"), 0.0125);
  EXPECT_EQ(castToOxDouble("0.1"), 0.1);
  EXPECT_EQ(castToOxDouble("4.9406564584124654e-324"), 4.9406564584124654e-324);
  EXPECT_EQ(castToOxDouble("1e-400"), 0.0);
  EXPECT_EQ(castToOxDouble("inf"), kInf);
  EXPECT_EQ(castToOxDouble("+inf"), kInf);
  EXPECT_EQ(castToOxDouble("-inf"), -kInf);
  EXPECT_TRUE(std::isnan(castToOxDouble("nan")));
}

TEST(CastToOxDouble, RefusesEverythingElse) {
  for (const char* text : {"",    ".",    "+",     "1e",    "1e+",    "e5",       "1.5f",
                           " 1",  "1 ",   "0x1p3", "1e400", "-1e400", "infinity", "INF",
                           "NaN", "+nan", "-nan",  "nan()", "1,5",    "1.2.3",    "++1"}) {
    expectNoDouble(text);
  }
  expectNoDouble(std::string("1.5\0", 4));
}

TEST(Cast, DoesNotDependOnTheLocaleOfTheHost) {
  const test::SwappedLocale swapped;
  EXPECT_EQ(castToOxDouble("1234.5"), 1234.5);
  EXPECT_EQ(castToOxInt("1234567"), 1234567);
  expectNoInt("1.234");
  expectNoDouble("1,5");
}

}  // namespace
}  // namespace ombrix
