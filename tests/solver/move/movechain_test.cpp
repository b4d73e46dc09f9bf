#include "solver/move/movechain.h"

#include <optional>

#include "common/failure.h"
#include "solver/kernel/random.h"
#include "tests/support/failures.h"
#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

/// The helpers of the base, called by hand.
class Chain : public MoveChain {
public:
  Chain(test::SearchGraph& graph, std::uint32_t length, std::uint32_t rate = 0)
      : MoveChain("Chain", *graph.dag, graph.rng, length, 1, rate, *graph.structure) {}
  bool apply() override { return false; }

  using MoveChain::anyStart;
  using MoveChain::closingDecision;
  using MoveChain::extendChain;
  using MoveChain::firstPosition;
  using MoveChain::flipDecision;
  using MoveChain::flipOperand;
  using MoveChain::forgetChain;
  using MoveChain::nbFlips;
  using MoveChain::nextLink;
  using MoveChain::pathStart;
  using MoveChain::randomStart;
  using MoveChain::targetedStart;
};

class MoveChainTest : public testing::Test {
protected:
  std::uint32_t list(const std::vector<std::uint32_t>& operands, bool isConstrained) {
    auto& builder = graph.builder;
    const auto sum = builder.node(NodeType::BooleanSum, operands);
    if (isConstrained) builder.constraint(builder.node(NodeType::Eq, {sum, builder.constant(2)}));
    return sum;
  }

  test::SearchGraph graph;
};

TEST_F(MoveChainTest, AChainOfOneIsRefused) {
  list(graph.builder.booleans(2), true);
  graph.start();
  EXPECT_NO_THROW(Chain(graph, 2));
  test::expectFailure(kInternal, "MoveChain::MoveChain", "Invalid k-chain. k must be >= 2",
                      [&] { Chain(graph, 1); });
}

TEST_F(MoveChainTest, RandomOtherEntryWalksOnCyclically) {
  const std::vector<std::uint32_t> lists{5, 7, 7, 9};
  std::uint32_t state = 3;
  EXPECT_EQ(MoveChain::randomOtherEntry(state, lists, 2, 2, 0), -1);
  EXPECT_EQ(state, 3u);
  EXPECT_EQ(MoveChain::randomOtherEntry(state, lists, 1, 3, 7), -1) << "only the excluded list";
  for (int i = 0; i < 50; ++i) {
    test::Draws draws(state);
    const std::uint32_t first = draws.index(4);
    const int expected = lists[first] == 7 ? 3 : static_cast<int>(first);
    EXPECT_EQ(MoveChain::randomOtherEntry(state, lists, 0, 4, 7), expected);
    EXPECT_EQ(state, draws.state);
  }
}

TEST_F(MoveChainTest, RandomStartTakesTheRarerSideOfAnyBooleanList) {
  const auto x = graph.builder.booleans(7);
  const auto first = list({x[0], x[1], x[2]}, true);
  const auto second = list({x[3], x[4], x[5], x[6]}, false);
  graph.start();
  graph.raise(x[3]);
  graph.raise(x[4]);
  Chain chain(graph, 2);
  std::set<std::uint32_t> reached;
  for (int i = 0; i < 20; ++i) {
    ChainLink link;
    chain.randomStart(link);
    reached.insert(link.list);
    EXPECT_EQ(link.side, link.list == second) << "two of four at 0 is at most half";
  }
  EXPECT_EQ(reached, (std::set<std::uint32_t>{first, second}));
}

TEST_F(MoveChainTest, TargetedStartPrefersConstrainedListsWhenThereAreTwo) {
  const auto x = graph.builder.booleans(4);
  const auto free = list({x[0], x[1], x[2]}, false);
  const auto one = list({x[1], x[0]}, true);
  const auto two = list({x[2], x[3], x[0]}, true);
  graph.start();
  graph.raise(x[0]);
  Chain chain(graph, 2);
  std::set<std::uint32_t> reachedFromTwo;
  std::set<std::uint32_t> reachedFromOne;
  for (int i = 0; i < 50; ++i) {
    ChainLink link;
    ASSERT_TRUE(chain.targetedStart(x[0], link));
    reachedFromTwo.insert(link.list);
    EXPECT_FALSE(link.side);
    EXPECT_EQ(chain.firstPosition, link.list == one ? 1 : 2);
    ASSERT_TRUE(chain.targetedStart(x[1], link));
    reachedFromOne.insert(link.list);
    EXPECT_TRUE(link.side);
  }
  EXPECT_EQ(reachedFromTwo, (std::set<std::uint32_t>{one, two}));
  EXPECT_EQ(reachedFromOne, (std::set<std::uint32_t>{free, one})) << "all of them count";
}

TEST_F(MoveChainTest, TargetedStartNeedsABooleanList) {
  const auto x = graph.builder.boolean();
  list(graph.builder.booleans(2), true);
  graph.start();
  ChainLink link;
  EXPECT_FALSE(Chain(graph, 2).targetedStart(x, link));
}

TEST_F(MoveChainTest, NextLinkPrefersConstrainedListsAndFallsBackToFreeOnes) {
  const auto x = graph.builder.booleans(6);
  const auto here = list({x[0], x[1]}, true);
  const auto there = list({x[0], x[2]}, true);
  const auto free = list({x[0], x[1], x[3]}, false);
  graph.start();
  graph.raise(x[0]);
  Chain chain(graph, 2);
  for (int i = 0; i < 20; ++i) {
    ChainLink link{here, false};
    ASSERT_TRUE(chain.nextLink(link, 0));
    EXPECT_EQ(link.list, there);
    EXPECT_TRUE(link.side) << "the operand goes down, so another must go up";
  }
  ChainLink link{here, true};
  ASSERT_TRUE(chain.nextLink(link, 1));
  EXPECT_EQ(link.list, free);
  EXPECT_FALSE(link.side);
  link = {there, true};
  EXPECT_FALSE(chain.nextLink(link, 1)) << "an operand of one list leads nowhere";
}

TEST_F(MoveChainTest, ExtendChainBeginsAtTheChosenPositionOnlyOnce) {
  const auto x = graph.builder.booleans(6);
  const auto first = list({x[0], x[1], x[2]}, true);
  const auto second = list({x[1], x[3]}, true);
  const auto third = list({x[3], x[4]}, true);
  graph.start();
  graph.raise(x[3]);
  Chain chain(graph, 2);
  chain.forgetChain();
  chain.firstPosition = 1;
  ChainLink out;
  ASSERT_TRUE(chain.extendChain({first, true}, 2, out));
  EXPECT_EQ(graph.changed(), (std::set<std::uint32_t>{x[1], x[3]}));
  EXPECT_EQ(chain.nbFlips, 2u);
  EXPECT_EQ(out.list, third);
  EXPECT_TRUE(out.side);
  (void)second;
}

TEST_F(MoveChainTest, ExtendChainFailsWithoutAnOperandOrAWayOnAndKeepsTheFlips) {
  const auto x = graph.builder.booleans(3);
  const auto first = list({x[0], x[1]}, true);
  list({x[0], x[1], x[2]}, true);
  graph.start();
  Chain chain(graph, 2);
  chain.forgetChain();
  ChainLink out;
  EXPECT_FALSE(chain.extendChain({first, false}, 1, out)) << "no operand is at 1";
  EXPECT_EQ(out.list, kNone);
  EXPECT_FALSE(chain.extendChain({first, true}, 2, out)) << "the second list has none at 1";
  EXPECT_EQ(chain.nbFlips, 1u);
  EXPECT_EQ(graph.changed().size(), 1u);
  EXPECT_TRUE(chain.extendChain({first, true}, 0, out));
  EXPECT_EQ(out.list, first);
}

TEST_F(MoveChainTest, ADecisionIsNeverChangedTwice) {
  const auto x = graph.builder.booleans(2);
  const auto only = list(x, true);
  graph.start();
  Chain chain(graph, 2);
  EXPECT_TRUE(chain.flipDecision(x[0]));
  EXPECT_FALSE(chain.flipDecision(x[0]));
  EXPECT_FALSE(chain.flipOperand(only, 0));
  EXPECT_TRUE(chain.flipOperand(only, 1));
  EXPECT_EQ(chain.nbFlips, 2u);
}

TEST_F(MoveChainTest, APathBeginsInAFreeList) {
  const auto x = graph.builder.booleans(4);
  const auto free = list({x[0], x[1]}, false);
  list({x[2], x[3]}, true);
  graph.start();
  Chain chain(graph, 2);
  std::set<bool> sides;
  for (int i = 0; i < 20; ++i) {
    test::Draws draws(graph.rng);
    draws.step();  // the chance of targeting is drawn at rate 0 too
    const bool side = draws.step() <= 2147483647u;
    ChainLink link;
    ASSERT_TRUE(chain.pathStart(link));
    EXPECT_EQ(link.list, free);
    EXPECT_EQ(link.side, side);
    EXPECT_EQ(graph.rng, draws.state);
    EXPECT_EQ(chain.firstPosition, -1);
  }
}

TEST_F(MoveChainTest, APathBeginsAtATargetInAFreeList) {
  const auto x = graph.builder.booleans(3);
  const auto free = list(x, false);
  graph.builder.maximise(x[2]);
  graph.start();
  Chain chain(graph, 2, 100);
  ChainLink link;
  ASSERT_TRUE(chain.pathStart(link));
  EXPECT_EQ(link.list, free);
  EXPECT_EQ(chain.firstPosition, 2);
  EXPECT_TRUE(link.side);
}

TEST_F(MoveChainTest, WithoutListsOfItsKindNothingBegins) {
  graph.builder.booleans(3);
  graph.start();
  Chain chain(graph, 2);
  ChainLink link;
  EXPECT_FALSE(chain.pathStart(link));
  EXPECT_FALSE(chain.anyStart(link));
  EXPECT_EQ(graph.rng, 1u);
}

// ---- closing

/// The first common decision from the drawn position on, by plain search.
std::uint32_t expectedClosing(const test::SearchGraph& graph, std::uint32_t a, std::uint32_t b,
                              bool sideA, bool sideB) {
  const Dag& dag = *graph.dag;
  const DagFixedFields& fields = *dag.fixedFields;
  const auto isFit = [&](std::uint32_t decision, bool side) {
    return (dag.values[decision].intValue == 0) == side;
  };
  const auto isIn = [&](std::uint32_t list, std::uint32_t decision) {
    for (std::uint32_t i = 0; i < fields.nbOperands(list); ++i) {
      if (fields.operand(list, i) == decision) return true;
    }
    return false;
  };
  std::uint32_t rng = graph.rng;
  const std::uint32_t begin = sideA ? dag.nodes[a]->randomNotMaxNode(dag, a, rng)
                                    : dag.nodes[a]->randomNotMinNode(dag, a, rng);
  if (begin == kNone) return kNone;
  const std::uint32_t n = fields.nbOperands(a);
  for (std::uint32_t i = 0; i < n; ++i) {
    const std::uint32_t decision = fields.operand(a, (begin + i) % n);
    if (isFit(decision, sideA) && isFit(decision, sideB) && isIn(b, decision)) return decision;
  }
  return kNone;
}

TEST_F(MoveChainTest, ClosingDecisionFindsTheFirstCommonOneThatFitsBoth) {
  std::uint32_t state = 7;
  int nbFound = 0;
  for (int round = 0; round < 300; ++round) {
    test::SearchGraph own;
    const auto x = own.builder.booleans(40);
    std::vector<std::uint32_t> a;
    std::vector<std::uint32_t> b;
    for (const auto decision : x) {
      if (randomPercent(state, 10 + round % 60)) a.push_back(decision);
      if (randomPercent(state, 10 + round % 35)) b.push_back(decision);
    }
    if (a.size() < 2 || b.size() < 2) continue;
    const auto listA = own.builder.node(NodeType::BooleanSum, a);
    const auto listB = own.builder.node(NodeType::BooleanSum, b);
    own.start(state);
    for (const auto decision : x) {
      if (randomPercent(state, round % 100)) own.raise(decision);
    }
    Chain chain(own, 2);
    for (const bool side : {false, true}) {
      const auto expected = expectedClosing(own, listA, listB, side, side);
      EXPECT_EQ(chain.closingDecision(listA, listB, side, side), expected) << round;
      EXPECT_EQ(chain.closingDecision(listA, listB, side, !side), kNone) << "no state fits both";
      if (expected != kNone) ++nbFound;
    }
  }
  EXPECT_GT(nbFound, 100);
}

TEST_F(MoveChainTest, ClosingOnTheSameListTakesARandomOperandIfTheSidesAgree) {
  const auto x = graph.builder.booleans(5);
  const auto only = list(x, true);
  graph.start();
  graph.raise(x[4]);
  Chain chain(graph, 2);
  EXPECT_EQ(chain.closingDecision(only, only, true, false), kNone);
  EXPECT_EQ(chain.closingDecision(only, only, false, false), x[4]);
  std::set<std::uint32_t> reached;
  for (int i = 0; i < 50; ++i) reached.insert(chain.closingDecision(only, only, true, true));
  EXPECT_EQ(reached, (std::set<std::uint32_t>(x.begin(), x.begin() + 4)));
}

TEST_F(MoveChainTest, ASingleFittingOperandOfEitherListSettlesWithoutADraw) {
  const auto x = graph.builder.booleans(6);
  const auto a = list({x[0], x[1], x[2], x[3]}, true);
  const auto b = list({x[2], x[3], x[4], x[5]}, true);
  graph.start();
  graph.raise(x[2]);
  Chain chain(graph, 2);
  EXPECT_EQ(chain.closingDecision(a, b, false, false), x[2]);
  graph.raise(x[0]);
  EXPECT_EQ(chain.closingDecision(a, b, false, false), x[2]) << "the single one of the second list";
  test::setAndAccept(*graph.dag, x[2], 0);
  EXPECT_EQ(chain.closingDecision(a, b, false, false), kNone) << "x[0] lies in one list only";
  EXPECT_EQ(graph.rng, 1u);
}

}  // namespace
}  // namespace ombrix
