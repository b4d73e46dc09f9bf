#include "cli/improvementlist.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

namespace ombrix::cli {
namespace {

Improvement improvementAt(double time, std::int64_t nbViolated = 0) {
  Improvement improvement;
  improvement.time = time;
  improvement.infeasibility.nbViolated = nbViolated;
  return improvement;
}

TEST(ImprovementList, KeepsAllWhileThereAreFew) {
  ImprovementList list(100);
  for (int i = 0; i < 100; ++i) list.add(improvementAt(1e-6 * i));
  EXPECT_EQ(list.getKept().size(), 100U);
  EXPECT_EQ(list.getCount(), 100U);
  EXPECT_EQ(list.getResolution(), 0);
}

TEST(ImprovementList, KeepsTheLastOneOfEachSpanBeyondItsCapacity) {
  ImprovementList list(100);
  for (int i = 0; i < 1000; ++i) list.add(improvementAt(i / 16384.0));
  EXPECT_EQ(list.getCount(), 1000U);
  const double resolution = list.getResolution();
  EXPECT_GT(resolution, 0);
  ASSERT_GT(list.getKept().size(), 10U);
  EXPECT_EQ(list.getKept().front().time, 0);
  EXPECT_EQ(list.getKept().back().time, 999 / 16384.0);
  for (std::size_t i = 2; i < list.getKept().size(); ++i) {
    const double former = list.getKept()[i - 1].time;
    EXPECT_GT(list.getKept()[i].time, former);
    if (i < list.getKept().size() - 1) {
      EXPECT_GT(list.getKept()[i].time - former, 0.9 * resolution);
    }
  }
}

TEST(ImprovementList, KeepsRareLateOnesBesideManyEarlyOnes) {
  ImprovementList list(100);
  for (int i = 0; i < 100'000; ++i) list.add(improvementAt(1e-6 * i));
  for (int i = 1; i <= 30; ++i) list.add(improvementAt(100.0 * i));
  ASSERT_GT(list.getKept().size(), 30U);
  for (int i = 1; i <= 30; ++i) {
    EXPECT_EQ(list.getKept()[list.getKept().size() - static_cast<std::size_t>(31 - i)].time,
              100.0 * i);
  }
}

TEST(ImprovementList, IsBoundedHoweverLongTheRun) {
  ImprovementList list(100);
  double time = 0;
  for (int i = 0; i < 200'000; ++i) {
    time += i % 1000 == 0 ? 10 : 1e-5;
    list.add(improvementAt(time));
    ASSERT_LE(list.getKept().size(), 100U);
  }
  EXPECT_EQ(list.getKept().back().time, time);
}

TEST(ImprovementList, KeepsTheFirstFeasibleOne) {
  ImprovementList list(10);
  for (int i = 0; i < 50; ++i) list.add(improvementAt(1e-7 * i, 100 - i));
  list.add(improvementAt(1e-5));
  for (int i = 1; i < 50; ++i) list.add(improvementAt(1e-5 + 1e-7 * i));
  const auto& kept = list.getKept();
  EXPECT_EQ(kept.front().infeasibility.nbViolated, 100);
  std::size_t first = 0;
  while (!kept[first].isFeasible()) ++first;
  EXPECT_EQ(kept[first].time, 1e-5);
  EXPECT_EQ(kept.back().time, 1e-5 + 1e-7 * 49);
}

}  // namespace
}  // namespace ombrix::cli
