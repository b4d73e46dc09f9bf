#include "api/cycledetector.h"

#include <gtest/gtest.h>

#include <vector>

#include "api/ombrix.h"

namespace ombrix {
namespace {

/// Makes sums whose operands are the given indices.
std::vector<std::int32_t> trailOf(const std::vector<std::vector<std::int32_t>>& operands) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  for (std::size_t i = 0; i < operands.size(); ++i)
    ModelRecord::createRecord(model, OXOperator::Sum);
  for (std::size_t i = 0; i < operands.size(); ++i) {
    for (const std::int32_t operand : operands[i]) {
      ModelRecord::appendOperand(*model.getExpression(static_cast<int>(i)), operand);
    }
  }
  return CycleDetector(model).findCycle();
}

using Trail = std::vector<std::int32_t>;

TEST(CycleDetectorTest, AGraphWithoutCycleHasNoTrail) {
  EXPECT_EQ(trailOf({}), Trail());
  EXPECT_EQ(trailOf({{1, 2}, {3}, {3, 1}, {}}), Trail());
}

TEST(CycleDetectorTest, ARepeatedOperandIsNoCycle) {
  EXPECT_EQ(trailOf({{1, 1, 1}, {}}), Trail());
}

TEST(CycleDetectorTest, SearchesFromTheSmallestIndexInOrderOfOperands) {
  EXPECT_EQ(trailOf({{}, {2}, {3}, {1}}), (Trail{1, 2, 3}));
  EXPECT_EQ(trailOf({{1, 2}, {3}, {0}, {}}), (Trail{0, 2}));
}

TEST(CycleDetectorTest, TheTrailHoldsTheWayToTheCycle) {
  EXPECT_EQ(trailOf({{1}, {2}, {3}, {2}}), (Trail{0, 1, 2, 3}));
}

}  // namespace
}  // namespace ombrix
