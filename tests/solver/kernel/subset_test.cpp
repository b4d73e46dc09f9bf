#include "solver/kernel/subset.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <type_traits>
#include <vector>

#include "solver/kernel/subsetbits.h"
#include "solver/kernel/subsetchoice.h"
#include "solver/kernel/subsetmask.h"

namespace ombrix {
namespace {

/// A subset type with the largest operand count that it serves.
template <typename S, std::uint32_t kLargest>
struct Kind {
  using Set = S;
  static constexpr std::uint32_t kMaxCount = kLargest;
};

template <typename KindOfSet>
class SubsetTest : public testing::Test {
protected:
  using Set = typename KindOfSet::Set;
  static constexpr std::uint32_t kMaxCount = KindOfSet::kMaxCount;

  static std::set<std::uint32_t> members(const Set& set, std::uint32_t n) {
    std::set<std::uint32_t> result;
    for (std::uint32_t i = set.first(n); i < n; i = set.next(i, n)) {
      EXPECT_TRUE(result.insert(i).second) << "seen twice: " << i;
    }
    return result;
  }

  /// Compares every way of reading the set with the expected members.
  static void expectMembers(const Set& set, std::uint32_t n,
                            const std::set<std::uint32_t>& expected) {
    ASSERT_EQ(set.size(), expected.size());
    EXPECT_EQ(members(set, n), expected);
    std::set<std::uint32_t> seen;
    set.forEach(n, [&](std::uint32_t i) { EXPECT_TRUE(seen.insert(i).second); });
    EXPECT_EQ(seen, expected);
    std::set<std::uint32_t> others;
    set.forEachNonMember(n, [&](std::uint32_t i) { EXPECT_TRUE(others.insert(i).second); });
    EXPECT_EQ(others.size(), n - expected.size());
    for (std::uint32_t i = 0; i < n; ++i) {
      EXPECT_EQ(set.contains(i, n), expected.contains(i)) << i;
      EXPECT_EQ(others.contains(i), !expected.contains(i)) << i;
    }
    std::set<std::uint32_t> atMembers;
    std::set<std::uint32_t> atOthers;
    for (std::uint32_t k = 0; k < n; ++k)
      (k < expected.size() ? atMembers : atOthers).insert(set.at(k, n));
    EXPECT_EQ(atMembers, expected);
    EXPECT_EQ(atOthers, others);
  }
};

using Kinds =
    testing::Types<Kind<SubsetMask<std::uint8_t>, 8>, Kind<SubsetMask<std::uint16_t>, 16>,
                   Kind<SubsetMask<std::uint32_t>, 32>, Kind<SubsetMask<std::uint64_t>, 64>,
                   Kind<SubsetBits<2>, 128>, Kind<SubsetBits<4>, 256>, Kind<SubsetBits<8>, 512>,
                   Kind<SubsetBits<16>, 1024>, Kind<Subset<std::uint16_t>, 1500>,
                   Kind<Subset<std::uint32_t>, 1500>>;
TYPED_TEST_SUITE(SubsetTest, Kinds);

TYPED_TEST(SubsetTest, OverNoOperandsIterationEndsAtOnceAndChoicesFail) {
  typename TestFixture::Set set;
  set.init(0);
  std::uint32_t rng = 7;
  EXPECT_EQ(set.first(0), 0U);
  EXPECT_EQ(set.randomMember(0, rng), kNone);
  EXPECT_EQ(set.randomNonMember(0, rng), kNone);
  EXPECT_EQ(rng, 7U);
  this->expectMembers(set, 0, {});
}

TYPED_TEST(SubsetTest, AddingAndRemovingTwiceCountsOnce) {
  typename TestFixture::Set set;
  set.init(5);
  set.add(3, 5);
  set.add(3, 5);
  EXPECT_EQ(set.size(), 1U);
  set.remove(3, 5);
  set.remove(3, 5);
  EXPECT_EQ(set.size(), 0U);
}

TYPED_TEST(SubsetTest, FullSetEndsAtTheLastPosition) {
  const std::uint32_t n = TestFixture::kMaxCount;
  typename TestFixture::Set set;
  set.init(n);
  set.fill(n, [](std::uint32_t) { return true; });
  EXPECT_EQ(set.size(), n);
  EXPECT_EQ(set.at(n - 1, n), n - 1);
  EXPECT_EQ(set.next(n - 1, n), n);
  std::uint32_t count = 0;
  for (std::uint32_t i = set.first(n); i < n; i = set.next(i, n)) ++count;
  EXPECT_EQ(count, n);
  std::uint32_t rng = 1;
  EXPECT_EQ(set.randomNonMember(n, rng), kNone);
}

TYPED_TEST(SubsetTest, RandomChangesKeepAllViewsEqualToAPlainSet) {
  for (const std::uint32_t n : {std::uint32_t{1}, TestFixture::kMaxCount / 2 + 1,
                                TestFixture::kMaxCount - 1, TestFixture::kMaxCount}) {
    typename TestFixture::Set set;
    set.init(n);
    std::set<std::uint32_t> expected;
    std::uint32_t rng = n;
    for (std::uint32_t round = 0; round < 12; ++round) {
      for (std::uint32_t k = 0; k < n; ++k) {
        const std::uint32_t position = randomIndex(rng, n);
        if (randomPercent(rng, 10 * round)) {
          set.add(position, n);
          expected.insert(position);
        } else {
          set.remove(position, n);
          expected.erase(position);
        }
      }
      this->expectMembers(set, n, expected);
    }
  }
}

TYPED_TEST(SubsetTest, ClearEmptiesWhateverOrderIsLeftOver) {
  const std::uint32_t n = TestFixture::kMaxCount;
  typename TestFixture::Set set;
  set.init(n);
  for (std::uint32_t i = n; i > 0; i -= 2) {
    set.add(i - 1, n);
    if (i < 3) break;
  }
  set.clear();
  this->expectMembers(set, n, {});
  set.add(n - 1, n);
  this->expectMembers(set, n, {n - 1});
}

TYPED_TEST(SubsetTest, FillReplacesTheMembersAndAgreesReadsItBackwards) {
  const std::uint32_t n = TestFixture::kMaxCount;
  const auto isThird = [](std::uint32_t i) { return i % 3 == 0; };
  typename TestFixture::Set set;
  set.init(n);
  set.add(1, n);
  set.fill(n, isThird);
  EXPECT_TRUE(set.agrees(n, isThird));
  set.remove(3, n);
  EXPECT_FALSE(set.agrees(n, isThird));
  set.add(3, n);
  set.add(1, n);
  EXPECT_FALSE(set.agrees(n, isThird));
}

TYPED_TEST(SubsetTest, AnyFindsAMemberAndStopsThere) {
  const std::uint32_t n = TestFixture::kMaxCount;
  typename TestFixture::Set set;
  set.init(n);
  set.add(2, n);
  set.add(n - 1, n);
  EXPECT_TRUE(set.any(n, [n](std::uint32_t i) { return i == n - 1; }));
  EXPECT_FALSE(set.any(n, [](std::uint32_t i) { return i == 1; }));
  std::uint32_t nbAsked = 0;
  EXPECT_TRUE(set.any(n, [&nbAsked](std::uint32_t) { return ++nbAsked == 1; }));
  EXPECT_EQ(nbAsked, 1U);
}

TYPED_TEST(SubsetTest, RemoveIfAndAddIfTouchOnlyTheirSide) {
  const std::uint32_t n = TestFixture::kMaxCount;
  typename TestFixture::Set set;
  set.init(n);
  set.fill(n, [](std::uint32_t i) { return i % 2 == 0; });
  set.removeIf(n, [](std::uint32_t i) { return i % 3 == 0; });
  set.addIf(n, [](std::uint32_t i) { return i % 5 == 0; });
  std::set<std::uint32_t> expected;
  for (std::uint32_t i = 0; i < n; ++i) {
    if ((i % 2 == 0 && i % 3 != 0) || i % 5 == 0) expected.insert(i);
  }
  this->expectMembers(set, n, expected);
}

TYPED_TEST(SubsetTest, ASingleMemberIsChosenWithoutADraw) {
  typename TestFixture::Set set;
  set.init(8);
  set.add(6, 8);
  std::uint32_t rng = 42;
  EXPECT_EQ(set.randomMember(8, rng), 6U);
  EXPECT_EQ(rng, 42U);
  set.fill(8, [](std::uint32_t i) { return i != 5; });
  EXPECT_EQ(set.randomNonMember(8, rng), 5U);
  EXPECT_EQ(rng, 42U);
}

TYPED_TEST(SubsetTest, AMemberAmongManyIsChosenWithOneDraw) {
  typename TestFixture::Set set;
  set.init(8);
  for (const std::uint32_t i : {1U, 3U, 4U, 7U}) set.add(i, 8);
  std::uint32_t rng = 42;
  std::uint32_t expectedRng = 42;
  const std::uint32_t index = randomIndex(expectedRng, 4);
  EXPECT_EQ(set.randomMember(8, rng), set.at(index, 8));
  EXPECT_EQ(rng, expectedRng);
  const std::uint32_t otherIndex = randomIndex(expectedRng, 4);
  EXPECT_EQ(set.randomNonMember(8, rng), set.at(4 + otherIndex, 8));
  EXPECT_EQ(rng, expectedRng);
}

TYPED_TEST(SubsetTest, PrintsEachMemberBehindASpace) {
  typename TestFixture::Set set;
  set.init(8);
  set.add(2, 8);
  set.add(5, 8);
  std::ostringstream out;
  set.print(out, 8);
  EXPECT_EQ(out.str(), " 2 5\n");
}

TEST(SubsetMaskTest, HoldsNothingButItsWord) {
  EXPECT_EQ(sizeof(SubsetMask<std::uint8_t>), 1U);
  EXPECT_EQ(sizeof(SubsetMask<std::uint16_t>), 2U);
  EXPECT_EQ(sizeof(SubsetMask<std::uint32_t>), 4U);
  EXPECT_EQ(sizeof(SubsetMask<std::uint64_t>), 8U);
}

TEST(SubsetMaskTest, IteratesInRisingOrder) {
  SubsetMask<std::uint64_t> set;
  for (const std::uint32_t i : {63U, 0U, 31U, 32U}) set.add(i, 64);
  std::vector<std::uint32_t> seen;
  set.forEach(64, [&seen](std::uint32_t i) { seen.push_back(i); });
  EXPECT_EQ(seen, (std::vector<std::uint32_t>{0, 31, 32, 63}));
  EXPECT_EQ(set.next(63, 64), 64U);
}

TEST(SubsetBitsTest, Position64IsTheFirstBitOfTheSecondWord) {
  SubsetBits<2> set;
  set.init(128);
  set.add(64, 128);
  EXPECT_TRUE(set.contains(64, 128));
  EXPECT_FALSE(set.contains(0, 128));
  EXPECT_EQ(set.first(128), 64U);
  EXPECT_EQ(set.at(0, 128), 64U);
  EXPECT_EQ(set.at(1, 128), 0U);
  EXPECT_EQ(set.at(64, 128), 63U);
  EXPECT_EQ(set.at(65, 128), 65U);
}

TEST(SubsetTest16, SizeReachesTheLargestCountWithoutOverflow) {
  const std::uint32_t n = 65534;
  Subset<std::uint16_t> set;
  set.init(n);
  for (std::uint32_t i = n; i > 0; --i) set.add(i - 1, n);
  EXPECT_EQ(set.size(), n);
  EXPECT_TRUE(set.contains(65533, n));
  EXPECT_EQ(set.next(set.at(n - 1, n), n), n);
  set.remove(0, n);
  EXPECT_EQ(set.size(), n - 1);
  EXPECT_EQ(set.at(n - 1, n), 0U);
}

TEST(SubsetTest16, WalksThatChangeTheSetStayOnWhatMovesIn) {
  const std::uint32_t n = 6;
  Subset<std::uint16_t> set;
  set.init(n);
  for (std::uint32_t i = 0; i < n; ++i) set.add(i, n);
  std::vector<std::uint32_t> asked;
  set.removeIf(n, [&asked](std::uint32_t i) {
    asked.push_back(i);
    return i % 2 == 0;
  });
  EXPECT_EQ(asked, (std::vector<std::uint32_t>{0, 5, 1, 2, 4, 3}));
  asked.clear();
  set.addIf(n, [&asked](std::uint32_t i) {
    asked.push_back(i);
    return i == 0;
  });
  EXPECT_EQ(asked, (std::vector<std::uint32_t>{0, 4, 2}));
  EXPECT_EQ(set.at(3, n), 0U);
}

TEST(SubsetChoiceTest, TheOperandCountChoosesTheType) {
  const auto sizeOf = [](std::uint32_t n) {
    return withSubset(n, [](auto subset) {
      using Set = typename decltype(subset)::type;
      return sizeof(Set);
    });
  };
  EXPECT_EQ(sizeOf(0), 1U);
  EXPECT_EQ(sizeOf(8), 1U);
  EXPECT_EQ(sizeOf(9), 2U);
  EXPECT_EQ(sizeOf(16), 2U);
  EXPECT_EQ(sizeOf(17), 4U);
  EXPECT_EQ(sizeOf(32), 4U);
  EXPECT_EQ(sizeOf(33), 8U);
  EXPECT_EQ(sizeOf(64), 8U);
  const auto isType = []<typename Expected>(std::uint32_t n, std::type_identity<Expected>) {
    return withSubset(
        n, [](auto subset) { return std::is_same_v<typename decltype(subset)::type, Expected>; });
  };
  EXPECT_TRUE(isType(65, std::type_identity<SubsetBits<2>>{}));
  EXPECT_TRUE(isType(128, std::type_identity<SubsetBits<2>>{}));
  EXPECT_TRUE(isType(129, std::type_identity<SubsetBits<4>>{}));
  EXPECT_TRUE(isType(256, std::type_identity<SubsetBits<4>>{}));
  EXPECT_TRUE(isType(257, std::type_identity<SubsetBits<8>>{}));
  EXPECT_TRUE(isType(512, std::type_identity<SubsetBits<8>>{}));
  EXPECT_TRUE(isType(513, std::type_identity<SubsetBits<16>>{}));
  EXPECT_TRUE(isType(1024, std::type_identity<SubsetBits<16>>{}));
  EXPECT_TRUE(isType(1025, std::type_identity<Subset<std::uint16_t>>{}));
  EXPECT_TRUE(isType(65534, std::type_identity<Subset<std::uint16_t>>{}));
  EXPECT_TRUE(isType(65535, std::type_identity<Subset<std::uint32_t>>{}));
}

}  // namespace
}  // namespace ombrix
