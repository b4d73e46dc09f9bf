#include "solver/kernel/sparseset.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>

namespace ombrix {
namespace {

TEST(SparseSet, startsEmptyWithAllNumbersInTheComplement) {
  const SparseSet set(4);
  EXPECT_EQ(set.size(), 0u);
  EXPECT_EQ(set.capacity(), 4u);
  for (std::uint32_t i = 0; i < 4; ++i) {
    EXPECT_EQ(set[i], i);
    EXPECT_FALSE(set.contains(i));
  }
}

TEST(SparseSet, addExchangesWithTheFirstNonMember) {
  SparseSet set(4);
  set.add(2);
  EXPECT_EQ(set[0], 2u);
  EXPECT_EQ(set[2], 0u);
  EXPECT_EQ(set.position(0), 2u);
}

TEST(SparseSet, addingAndRemovingTwiceCountsOnce) {
  SparseSet set(3);
  set.add(1);
  set.add(1);
  EXPECT_EQ(set.size(), 1u);
  set.remove(1);
  set.remove(1);
  EXPECT_EQ(set.size(), 0u);
}

TEST(SparseSet, settingTheSizeToTheCapacityFillsIt) {
  SparseSet set(3);
  set.add(2);
  set.setSize(set.capacity());
  EXPECT_TRUE(set.isFull());
  for (std::uint32_t i = 0; i < 3; ++i) EXPECT_TRUE(set.contains(i));
}

RC_GTEST_PROP(SparseSet, holdsWhatWasAddedAndNotRemoved, ()) {
  const auto capacity = *rc::gen::inRange<std::uint32_t>(1, 40);
  const auto steps = *rc::gen::container<std::vector<std::pair<bool, std::uint32_t>>>(
      rc::gen::pair(rc::gen::arbitrary<bool>(), rc::gen::inRange<std::uint32_t>(0, capacity)));
  SparseSet set(capacity);
  std::set<std::uint32_t> expected;
  for (const auto& [adds, x] : steps) {
    if (adds) {
      set.add(x);
      expected.insert(x);
    } else {
      set.remove(x);
      expected.erase(x);
    }
  }
  RC_ASSERT(set.size() == expected.size());
  std::set<std::uint32_t> listed;
  for (std::uint32_t i = 0; i < capacity; ++i) {
    RC_ASSERT(set[set.position(i)] == i);
    RC_ASSERT(set.contains(i) == (expected.count(i) == 1));
    if (i < set.size()) listed.insert(set[i]);
  }
  RC_ASSERT(listed == expected);
}

}  // namespace
}  // namespace ombrix
