#include "solver/move/constraintanalysis.h"

#include <gtest/gtest.h>

#include "tests/support/graphs.h"

namespace ombrix {
namespace {

using Numbers = std::vector<std::uint32_t>;

class ConstraintAnalysisTest : public testing::Test {
protected:
  std::uint32_t sum(const Numbers& operands) {
    return builder.node(NodeType::BooleanSum, operands);
  }
  std::uint32_t equalTo(std::uint32_t node, std::int64_t value) {
    return builder.constraint(builder.node(NodeType::Eq, {node, builder.constant(value)}));
  }
  ConstraintAnalysis analyse() { return ConstraintAnalysis(builder.finish()); }

  static Numbers listsOf(const ConstraintAnalysis& analysis, std::uint32_t decision) {
    const auto span = analysis.listsOf(decision);
    return {span.begin(), span.end()};
  }
  static Numbers positionsOf(const ConstraintAnalysis& analysis, std::uint32_t decision) {
    const auto span = analysis.positionsOf(decision);
    return {span.begin(), span.end()};
  }

  test::GraphBuilder builder;
};

TEST_F(ConstraintAnalysisTest, GroupsFollowEachOtherEachInNodeOrder) {
  const auto x = builder.booleans(8);
  const auto one1 = sum({x[0], x[1]});
  const auto two = sum({x[2], x[3]});
  const auto free1 = sum({x[4], x[5]});
  const auto one2 = sum({x[1], x[2], x[6]});
  const auto free2 = builder.node(NodeType::ScalarSum, {x[5], x[6], x[7]}, {1, 2, 3});
  equalTo(one2, 1);
  equalTo(two, 2);
  equalTo(one1, 1);
  builder.constraint(builder.node(NodeType::Leq, {free1, builder.constant(1)}));
  builder.minimise(free2);
  const auto analysis = analyse();
  EXPECT_EQ(analysis.booleanLists, (Numbers{free1, free2, two, one1, one2}));
  EXPECT_EQ(analysis.nbFreeLists, 2u);
  EXPECT_EQ(analysis.nbExactlyOneLists, 2u);
  EXPECT_EQ(analysis.floatLists, (Numbers{one1, two, free1, one2, free2}));
  EXPECT_EQ(analysis.lists,
            (Numbers{free1, free2, two, one1, one2, one1, two, free1, one2, free2}));
}

TEST_F(ConstraintAnalysisTest, EveryKindOfSumIsAListFromTwoOperandsOn) {
  const auto x = builder.booleans(2);
  const auto y = builder.floating(0, 1);
  const auto plain = builder.node(NodeType::Sum, x);
  builder.node(NodeType::Sum, {x[0]});
  builder.node(NodeType::Max, x);
  builder.node(NodeType::Sum, {x[0], builder.constant(1)});
  builder.node(NodeType::Sum, {x[0], plain});
  const auto weighted = builder.node(NodeType::ScalarSum, x, {2, 3});
  const auto analysis = analyse();
  (void)y;
  EXPECT_EQ(analysis.booleanLists, (Numbers{plain, weighted}));
}

TEST_F(ConstraintAnalysisTest, OnlyAnEqualityThatIsAConstraintBindsAList) {
  const auto x = builder.booleans(2);
  const auto list = sum(x);
  const auto equality = builder.node(NodeType::Eq, {list, builder.constant(1)});
  builder.constraint(builder.node(NodeType::Or, {equality, x[0]}));
  builder.constraint(builder.node(NodeType::Neq, {list, builder.constant(1)}));
  const auto analysis = analyse();
  EXPECT_EQ(analysis.nbFreeLists, 1u);
}

TEST_F(ConstraintAnalysisTest, TheConstantOneMayStandOnEitherSideBesideOtherEqualities) {
  const auto x = builder.booleans(6);
  const auto left = sum({x[0], x[1]});
  const auto right = sum({x[2], x[3]});
  const auto other = sum({x[4], x[5]});
  builder.constraint(builder.node(NodeType::Eq, {builder.constant(1), left}));
  builder.constraint(builder.node(NodeType::Eq, {right, other}));
  builder.constraint(builder.node(NodeType::DoubleEq, {right, builder.doubleConstant(1.0)}));
  const auto analysis = analyse();
  EXPECT_EQ(analysis.booleanLists, (Numbers{other, left, right}));
  EXPECT_EQ(analysis.nbFreeLists, 0u);
  EXPECT_EQ(analysis.nbExactlyOneLists, 2u);
}

TEST_F(ConstraintAnalysisTest, IncidenceTellsFreeListsThenConstrainedOnesWithPositions) {
  const auto x = builder.booleans(4);
  const auto one = sum({x[0], x[1]});
  const auto two = sum({x[2], x[1], x[3]});
  const auto free = sum({x[3], x[0], x[1]});
  equalTo(one, 1);
  equalTo(two, 2);
  const auto analysis = analyse();
  EXPECT_EQ(listsOf(analysis, x[1]), (Numbers{free, two, one}));
  EXPECT_EQ(positionsOf(analysis, x[1]), (Numbers{2, 1, 1}));
  EXPECT_EQ(analysis.nbFree(x[1]), 1u);
  EXPECT_EQ(analysis.nbConstrained(x[1]), 3u);
  EXPECT_EQ(listsOf(analysis, x[2]), (Numbers{two}));
  EXPECT_EQ(analysis.nbFree(x[2]), 0u);
  EXPECT_EQ(analysis.nbConstrained(x[2]), 1u);
}

TEST_F(ConstraintAnalysisTest, FreeDecisionsLieInFreeListsOnlyOrInNone) {
  const auto x = builder.booleans(4);
  equalTo(sum({x[0], x[1]}), 1);
  sum({x[1], x[2]});
  const auto analysis = analyse();
  EXPECT_EQ(analysis.freeDecisions, (Numbers{x[2], x[3]}));
}

TEST_F(ConstraintAnalysisTest, SwapDecisionsLieInAListAndInAtMostOneConstrainedOne) {
  const auto x = builder.booleans(5);
  equalTo(sum({x[0], x[1]}), 1);
  equalTo(sum({x[1], x[2]}), 1);
  sum({x[2], x[3]});
  const auto analysis = analyse();
  EXPECT_EQ(analysis.swapDecisions, (Numbers{x[0], x[2], x[3]}));
}

TEST_F(ConstraintAnalysisTest, DecisionsOfOtherKindsAreInNoDerivedSet) {
  builder.integer();
  builder.floating(0, 1);
  const auto x = builder.boolean();
  const auto analysis = analyse();
  EXPECT_EQ(analysis.freeDecisions, (Numbers{x}));
  EXPECT_TRUE(analysis.swapDecisions.empty());
}

TEST_F(ConstraintAnalysisTest, AChainHasAnExitWithoutConstrainedListsOrThroughAFreeList) {
  {
    test::GraphBuilder free;
    free.node(NodeType::BooleanSum, free.booleans(2));
    EXPECT_TRUE(ConstraintAnalysis(free.finish()).hasFreeOrMixed);
  }
  {
    test::GraphBuilder closed;
    const auto list = closed.node(NodeType::BooleanSum, closed.booleans(2));
    closed.constraint(closed.node(NodeType::Eq, {list, closed.constant(1)}));
    EXPECT_FALSE(ConstraintAnalysis(closed.finish()).hasFreeOrMixed);
  }
  for (const int nbConstrained : {1, 2}) {
    test::GraphBuilder mixed;
    const auto x = mixed.booleans(2);
    mixed.node(NodeType::BooleanSum, x);
    for (int i = 0; i < nbConstrained; ++i) {
      const auto list = mixed.node(NodeType::BooleanSum, x);
      mixed.constraint(mixed.node(NodeType::Eq, {list, mixed.constant(1)}));
    }
    EXPECT_EQ(ConstraintAnalysis(mixed.finish()).hasFreeOrMixed, nbConstrained == 1);
  }
}

TEST_F(ConstraintAnalysisTest, ListsWithDoublesComeLastAndAreNeitherFreeNorConstrained) {
  const auto x = builder.booleans(3);
  const auto y = builder.floating(0, 1);
  const auto mixed = builder.doubleNode(NodeType::DoubleScalarSum, {x[0], y, x[1]}, {1, 2, 3});
  const auto boolean = builder.doubleNode(NodeType::DoubleSum, {x[0], x[2]});
  const auto analysis = analyse();
  EXPECT_EQ(analysis.booleanLists, (Numbers{boolean}));
  EXPECT_EQ(analysis.floatLists, (Numbers{mixed, boolean}));
  EXPECT_EQ(listsOf(analysis, x[0]), (Numbers{boolean, mixed})) << "a boolean list counts once";
  EXPECT_EQ(analysis.nbConstrained(x[0]), 1u);
  EXPECT_EQ(listsOf(analysis, y), (Numbers{mixed}));
  EXPECT_EQ(positionsOf(analysis, y), (Numbers{1}));
  EXPECT_EQ(analysis.freeDecisions, (Numbers{x[2]}));
  EXPECT_EQ(analysis.swapDecisions, x);
}

TEST_F(ConstraintAnalysisTest, AModelWithoutDecisionsHasNothing) {
  const auto analysis = analyse();
  EXPECT_TRUE(analysis.lists.empty());
  EXPECT_TRUE(analysis.freeDecisions.empty());
  EXPECT_TRUE(analysis.hasFreeOrMixed);
}

}  // namespace
}  // namespace ombrix
