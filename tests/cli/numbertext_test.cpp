#include "cli/numbertext.h"

#include <gtest/gtest.h>

#include <limits>

namespace ombrix::cli {
namespace {

TEST(NumberText, BringsTheSameNumberBack) {
  EXPECT_EQ(numberText(1234567.891), "1234567.891");
  EXPECT_EQ(numberText(0.1), "0.1");
  EXPECT_EQ(numberText(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(numberText(-3.0), "-3");
}

TEST(NumberText, NamesWhatIsNoFiniteNumber) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(numberText(kInfinity), "inf");
  EXPECT_EQ(numberText(-kInfinity), "-inf");
  EXPECT_EQ(numberText(std::numeric_limits<double>::quiet_NaN()), "nan");
  EXPECT_EQ(numberText(-std::numeric_limits<double>::quiet_NaN()), "nan");
}

}  // namespace
}  // namespace ombrix::cli
