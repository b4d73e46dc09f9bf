#include "solver/move/movekbalance.h"

#include <utility>

#include "tests/solver/move/reachedneighbours.h"
#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

using Decisions = std::set<std::uint32_t>;

class MoveKBalanceTest : public testing::Test {
protected:
  MoveKBalance make(std::uint32_t k) { return MoveKBalance(*graph.dag, graph.rng, k, 4); }

  test::SearchGraph graph;
};

TEST_F(MoveKBalanceTest, FlipsOneDecisionDownAndOneUpBelowANode) {
  const auto x = graph.builder.booleans(4);
  const auto sum = graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, x));
  graph.start(21);
  graph.raise(x[0]);
  graph.raise(x[1]);
  auto move = make(1);
  EXPECT_EQ(move.name, "1-Balance");
  EXPECT_EQ(move.weight, 4u);
  std::set<Decisions> reached;
  for (int i = 0; i < 200; ++i) {
    ASSERT_TRUE(move.apply());
    reached.insert(graph.changed());
    graph.dag->propagation.evaluateConstraints(*graph.dag);
    graph.dag->propagation.evaluateLevels(*graph.dag, 1);
    EXPECT_EQ(graph.dag->tValues[sum].intValue, 2);
    graph.reject();
  }
  EXPECT_EQ(reached, (std::set<Decisions>{{x[0], x[2]}, {x[0], x[3]}, {x[1], x[2]}, {x[1], x[3]}}));
}

TEST_F(MoveKBalanceTest, ANodeWithAllOperandsAtOneOffersNoPair) {
  const auto x = graph.builder.booleans(2);
  graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, x));
  graph.start();
  graph.raise(x[0]);
  graph.raise(x[1]);
  auto move = make(1);
  EXPECT_FALSE(move.apply());
  EXPECT_TRUE(graph.changed().empty());
}

TEST_F(MoveKBalanceTest, NodesAboveTheActiveLevelAreSkipped) {
  const auto x = graph.builder.booleans(2);
  graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, x));
  graph.start();
  graph.raise(x[0]);
  graph.dag->propagation.activeLevel = 0;
  auto move = make(1);
  EXPECT_FALSE(move.apply());
  graph.dag->propagation.activeLevel = 1;
  EXPECT_TRUE(move.apply());
}

TEST_F(MoveKBalanceTest, NeedsAsManyInnerNodesAsItDraws) {
  const auto x = graph.builder.booleans(2);
  graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, x));
  graph.start();
  graph.raise(x[0]);
  EXPECT_FALSE(make(2).apply());
  EXPECT_EQ(graph.rng, 1u);
}

TEST_F(MoveKBalanceTest, OneBalancedNodeIsEnough) {
  const auto x = graph.builder.booleans(4);
  graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, {x[0], x[1]}));
  graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, {x[2], x[3]}));
  graph.start();
  graph.raise(x[2]);
  ASSERT_TRUE(make(2).apply());
  EXPECT_EQ(graph.changed(), (Decisions{x[2], x[3]}));
}

/// Two balances below every two of the given sums, one after the other: the second sum is left as
/// it is when it draws a decision that the first one has changed.
test::Neighbours twoBalances(const std::vector<std::vector<std::uint32_t>>& sums,
                             const Decisions& raised) {
  using Pair = std::pair<std::uint32_t, std::uint32_t>;
  const auto pairsBelow = [&](const std::vector<std::uint32_t>& operands) {
    std::vector<Pair> pairs;
    for (const auto down : operands) {
      for (const auto up : operands) {
        if (raised.contains(down) && !raised.contains(up)) pairs.emplace_back(down, up);
      }
    }
    return pairs;
  };
  test::Neighbours result;
  for (const auto& first : sums) {
    for (const auto& second : sums) {
      if (first == second) continue;
      const auto firstPairs = pairsBelow(first);
      const auto secondPairs = pairsBelow(second);
      if (secondPairs.empty()) {
        for (const auto& [down, up] : firstPairs) result.insert({down, up});
      }
      for (const auto& [down, up] : firstPairs) {
        for (const auto& [secondDown, secondUp] : secondPairs) {
          const bool isMet = secondDown == down || secondUp == up;
          result.insert(isMet ? Decisions{down, up} : Decisions{down, up, secondDown, secondUp});
        }
      }
    }
  }
  return result;
}

TEST_F(MoveKBalanceTest, TwoBalancesReachEveryTwoPairsBelowTwoNodes) {
  const auto x = graph.builder.booleans(9);
  const std::vector<std::vector<std::uint32_t>> sums = {
      {x[0], x[1], x[2], x[3]}, {x[2], x[3], x[4], x[5]}, {x[1], x[4], x[6]}, {x[7], x[8]}};
  for (const auto& operands : sums) {
    graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, operands));
  }
  graph.start();
  const Decisions raised = {x[0], x[2], x[5], x[6]};
  for (const auto decision : raised) graph.raise(decision);
  auto move = make(2);
  EXPECT_EQ(test::reachedBy(move, graph), twoBalances(sums, raised));
}

}  // namespace
}  // namespace ombrix
