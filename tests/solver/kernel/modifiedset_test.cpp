#include "solver/kernel/modifiedset.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "solver/kernel/subsetbits.h"
#include "solver/kernel/subsetmask.h"

namespace ombrix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kWidth = 2000;

std::vector<std::uint32_t> membersOf(const ModifiedList<std::uint16_t>& set) {
  std::vector<std::uint32_t> members;
  set.forEach(kWidth, [&](std::uint32_t i) { members.push_back(i); });
  return members;
}

class ModifiedListTest : public testing::Test {
protected:
  ModifiedListTest() { set.init(kWidth); }

  ModifiedList<std::uint16_t> set;
};

TEST_F(ModifiedListTest, keepsTheOrderOfAddition) {
  for (std::uint32_t i : {1999u, 0u, 64u, 63u}) set.add(i, kWidth);
  EXPECT_THAT(membersOf(set), ElementsAre(1999, 0, 64, 63));
  EXPECT_EQ(set.size(), 4u);
}

TEST_F(ModifiedListTest, aSecondAdditionIsIgnored) {
  for (std::uint32_t i : {7u, 8u, 7u, 8u}) set.add(i, kWidth);
  EXPECT_THAT(membersOf(set), ElementsAre(7, 8));
}

TEST_F(ModifiedListTest, clearForgetsAllMembers) {
  for (std::uint32_t i : {3u, 5u, 700u}) set.add(i, kWidth);
  set.clear();
  EXPECT_THAT(membersOf(set), IsEmpty());
  for (std::uint32_t i : {3u, 5u, 700u}) EXPECT_FALSE(set.contains(i, kWidth));
  set.add(5, kWidth);
  EXPECT_THAT(membersOf(set), ElementsAre(5));
}

TEST_F(ModifiedListTest, takesEveryPosition) {
  for (std::uint32_t i = 0; i < kWidth; ++i) set.add(i, kWidth);
  EXPECT_EQ(set.size(), kWidth);
  EXPECT_TRUE(set.any(kWidth, [](std::uint32_t i) { return i == kWidth - 1; }));
  EXPECT_FALSE(set.any(kWidth, [](std::uint32_t i) { return i == kWidth; }));
}

TEST(ModifiedSet, onlyWidePermutationsAreReplaced) {
  EXPECT_TRUE((std::is_same_v<ModifiedSet<SubsetMask<std::uint8_t>>, SubsetMask<std::uint8_t>>));
  EXPECT_TRUE((std::is_same_v<ModifiedSet<SubsetBits<16>>, SubsetBits<16>>));
  EXPECT_TRUE((std::is_same_v<ModifiedSet<Subset<std::uint32_t>>, ModifiedList<std::uint32_t>>));
}

}  // namespace
}  // namespace ombrix
