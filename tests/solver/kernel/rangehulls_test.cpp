#include "solver/kernel/rangehulls.h"

#include <gtest/gtest.h>

#include <vector>

namespace ombrix {
namespace {

class RangeHullsTest : public testing::Test {
protected:
  IntInterval of(std::size_t array, std::int64_t first, std::int64_t end) {
    return hulls.of(array, first, end, [this](std::int64_t i) {
      ++nbReads;
      return elements[static_cast<std::size_t>(i)];
    });
  }

  RangeHulls<IntInterval> hulls;
  std::vector<IntInterval> elements = {{3, 4}, {-7, 0}, {5, 9}};
  int nbReads = 0;
};

TEST_F(RangeHullsTest, EveryRangeHasItsHull) {
  EXPECT_EQ(of(0, 0, 3), (IntInterval{-7, 9}));
  EXPECT_EQ(of(0, 0, 1), (IntInterval{3, 4}));
  EXPECT_EQ(of(0, 1, 3), (IntInterval{-7, 9}));
  EXPECT_EQ(of(0, 0, 2), (IntInterval{-7, 4}));
}

TEST_F(RangeHullsTest, TheSameRangeAgainReadsNoElement) {
  of(0, 0, 3);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(of(0, 0, 3), (IntInterval{-7, 9}));
  EXPECT_EQ(nbReads, 3);
}

TEST_F(RangeHullsTest, ArraysAreToldApart) {
  of(4, 0, 3);
  elements = {{1, 1}, {2, 2}, {3, 3}};
  EXPECT_EQ(of(5, 0, 3), (IntInterval{1, 3}));
  EXPECT_EQ(of(4, 0, 3), (IntInterval{-7, 9}));
}

}  // namespace
}  // namespace ombrix
