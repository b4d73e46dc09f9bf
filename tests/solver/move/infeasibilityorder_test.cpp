#include "solver/move/infeasibilityorder.h"

#include <gtest/gtest.h>

namespace ombrix {
namespace {

void expectOrder(const Infeasibility& a, const Infeasibility& b, bool better, bool worse) {
  EXPECT_EQ(isInfeasibilityBetter(a, b), better);
  EXPECT_EQ(isInfeasibilityWorse(a, b), worse);
}

TEST(InfeasibilityOrder, FeasibleStatesAreEqual) {
  expectOrder({0, 0, 5}, {0, 0, 2}, false, false);
}

TEST(InfeasibilityOrder, ViolatedEqualitiesDominate) {
  expectOrder({3, 2, 10}, {9, 1, 99}, true, false);
  expectOrder({9, 1, 99}, {3, 2, 10}, false, true);
}

TEST(InfeasibilityOrder, WithTheSameViolatedEqualitiesNeitherIsBetter) {
  expectOrder({3, 1, 10}, {5, 1, 2}, false, false);
  expectOrder({5, 1, 2}, {3, 1, 10}, false, false);
}

TEST(InfeasibilityOrder, WithoutViolatedEqualitiesTheCountDecidesThenTheSum) {
  expectOrder({3, 0, 10}, {2, 0, 99}, true, false);
  expectOrder({3, 0, 10}, {4, 0, 1}, false, true);
  expectOrder({3, 0, 10}, {3, 0, 2}, true, false);
  expectOrder({3, 0, 2}, {3, 0, 10}, false, true);
  expectOrder({3, 0, 2}, {3, 0, 2}, false, false);
}

TEST(InfeasibilityOrder, LeavingFeasibilityIsWorse) {
  expectOrder({0, 0, 0}, {1, 0, 1}, false, true);
  expectOrder({1, 0, 1}, {0, 0, 0}, true, false);
}

}  // namespace
}  // namespace ombrix
