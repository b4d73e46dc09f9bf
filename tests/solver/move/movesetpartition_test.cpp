#include "solver/move/movesetpartition.h"

#include <algorithm>
#include <map>
#include <set>

#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

using Decisions = std::set<std::uint32_t>;

class MoveSetPartitionTest : public testing::Test {
protected:
  /// Columns that cover elements; each element must be covered by exactly one of those chosen. An
  /// element is named by a letter.
  void startCover(const std::vector<std::string>& columns, const std::vector<std::size_t>& chosen) {
    x = graph.builder.booleans(static_cast<std::uint32_t>(columns.size()));
    std::map<char, std::vector<std::uint32_t>> lists;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      for (const char element : columns[i]) lists[element].push_back(x[i]);
    }
    for (const auto& [element, list] : lists) {
      const auto sum = graph.builder.node(NodeType::BooleanSum, list);
      graph.builder.constraint(graph.builder.node(NodeType::Eq, {sum, graph.builder.constant(1)}));
    }
    graph.start();
    for (const std::size_t i : chosen) graph.raise(x[i]);
    if (!chosen.empty()) graph.dag->propagation.activateAllConstraints();
  }

  MoveSetPartition make() { return MoveSetPartition(*graph.dag, graph.rng, *graph.structure); }

  /// The candidates of many draws; each keeps every list at one.
  std::set<Decisions> reach(MoveSetPartition& move, std::uint32_t nbDraws) {
    std::set<Decisions> reached;
    for (std::uint32_t i = 0; i < nbDraws && !HasFailure(); ++i) {
      graph.rng = i * 2654435761U;
      const bool isBuilt = move.apply();
      if (isBuilt) {
        reached.insert(graph.changed());
        EXPECT_TRUE(move.evaluate(0));
        EXPECT_EQ(graph.dag->propagation.tInfeasibility.nbViolated, 0);
      }
      move.finish(isBuilt ? MoveStatus::Rejected : MoveStatus::Infeasible);
      test::expectConsistent(*graph.dag);
    }
    return reached;
  }

  Decisions named(const std::vector<std::size_t>& indices) const {
    Decisions some;
    for (const std::size_t i : indices) some.insert(x[i]);
    return some;
  }

  test::SearchGraph graph;
  std::vector<std::uint32_t> x;
};

TEST_F(MoveSetPartitionTest, IsNamedAndWeighsOne) {
  startCover({"a", "a"}, {0});
  const auto move = make();
  EXPECT_EQ(move.name, "SetPartition");
  EXPECT_EQ(move.weight, 1u);
  EXPECT_EQ(move.getSelectionFactor(), 1.0);
}

TEST_F(MoveSetPartitionTest, OnAnInfeasibleStateThereIsNothingToExchange) {
  startCover({"a", "a"}, {});
  auto move = make();
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(graph.rng, 1u);
  EXPECT_TRUE(graph.changed().empty());
  move.finish(MoveStatus::Infeasible);
  test::expectConsistent(*graph.dag);
}

TEST_F(MoveSetPartitionTest, WithoutExactlyOneListsThereIsNothingToExchange) {
  x = graph.builder.booleans(3);
  graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, x));
  graph.start();
  auto move = make();
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(graph.rng, 1u);
}

TEST_F(MoveSetPartitionTest, InOneListAnyOtherDecisionIsChosen) {
  startCover({"a", "a", "a", "a"}, {1});
  auto move = make();
  EXPECT_EQ(reach(move, 300), (std::set<Decisions>{named({1, 0}), named({1, 2}), named({1, 3})}));
}

TEST_F(MoveSetPartitionTest, DrawsTheListTheConflictAndWhereToLook) {
  startCover({"a", "a", "a", "b", "b", "b"}, {1, 3});
  auto move = make();
  for (std::uint32_t i = 0; i < 200; ++i) {
    graph.rng = i * 2654435761U;
    test::Draws draws(graph.rng);
    ASSERT_TRUE(move.apply());
    const std::size_t offset = draws.index(2) == 0 ? 0 : 3;
    const std::size_t chosen = offset == 0 ? 1 : 3;
    draws.percent(80);
    std::size_t other = offset + draws.index(3);
    if (other == chosen) other = offset + (other - offset + 1) % 3;
    EXPECT_EQ(graph.changed(), named({chosen, other}));
    EXPECT_EQ(graph.rng, draws.state);
    move.finish(MoveStatus::Rejected);
  }
}

TEST_F(MoveSetPartitionTest, ListsThatShareNoDecisionChangeAlone) {
  startCover({"a", "a", "b", "b"}, {0, 2});
  auto move = make();
  EXPECT_EQ(reach(move, 300), (std::set<Decisions>{named({0, 1}), named({2, 3})}));
}

TEST_F(MoveSetPartitionTest, OfAPermutationEveryOtherPermutationIsReached) {
  startCover({"ad", "ae", "af", "bd", "be", "bf", "cd", "ce", "cf"}, {0, 4, 8});
  auto move = make();
  EXPECT_EQ(reach(move, 3000),
            (std::set<Decisions>{named({0, 4, 1, 3}), named({0, 8, 2, 6}), named({4, 8, 5, 7}),
                                 named({0, 4, 8, 1, 5, 6}), named({0, 4, 8, 2, 3, 7})}));
}

TEST_F(MoveSetPartitionTest, OfACoverEveryExchangeThatDoesNotFallApartIsReached) {
  startCover({"ab", "cd", "a", "b", "c", "d", "ac", "bd", "abcd"}, {0, 1});
  auto move = make();
  // To the single columns alone it takes two moves.
  EXPECT_EQ(
      reach(move, 4000),
      (std::set<Decisions>{named({0, 2, 3}), named({1, 4, 5}), named({0, 1, 8}),
                           named({0, 1, 6, 7}), named({0, 1, 2, 4, 7}), named({0, 1, 3, 5, 6})}));
}

TEST_F(MoveSetPartitionTest, WhereNoOtherCoverExistsNoneIsBuilt) {
  startCover({"ab", "ac", "bc", "c"}, {0, 3});
  auto move = make();
  EXPECT_TRUE(reach(move, 200).empty());
  EXPECT_EQ(move.nbInfeasibles, 200u);
}

TEST_F(MoveSetPartitionTest, AFailedWalkLeavesNothingBehindForTheNext) {
  // Only "d" has a substitute.
  startCover({"ab", "ac", "bc", "c", "d", "d"}, {0, 3, 4});
  auto move = make();
  EXPECT_EQ(reach(move, 500), (std::set<Decisions>{named({4, 5})}));
  EXPECT_GT(move.nbInfeasibles, 100u);
}

TEST_F(MoveSetPartitionTest, OtherListsOfADecisionArePassedOver) {
  x = graph.builder.booleans(4);
  const auto& b = graph.builder.booleans(2);
  auto& builder = graph.builder;
  for (const std::size_t i : {std::size_t{0}, std::size_t{2}}) {
    const auto row = builder.node(NodeType::BooleanSum, {x[i], x[i + 1]});
    builder.constraint(builder.node(NodeType::Eq, {row, builder.constant(1)}));
  }
  const auto two = builder.node(NodeType::BooleanSum, {x[0], x[2], b[0]});
  builder.constraint(builder.node(NodeType::Eq, {two, builder.constant(2)}));
  builder.minimise(builder.node(NodeType::BooleanSum, {x[1], x[3], b[1]}));
  graph.start();
  graph.raise(x[0]);
  graph.raise(x[2]);
  auto move = make();
  int nbBuilt = 0;
  for (int i = 0; i < 100; ++i) {
    if (move.apply()) {
      ++nbBuilt;
      EXPECT_TRUE(graph.changed() == named({0, 1}) || graph.changed() == named({2, 3}));
    }
    move.finish(MoveStatus::Rejected);
  }
  EXPECT_EQ(nbBuilt, 100);
}

TEST_F(MoveSetPartitionTest, ListsOfOtherCountsAreJudgedByTheEvaluation) {
  auto& builder = graph.builder;
  x = builder.booleans(4);
  const auto difference = builder.node(NodeType::ScalarSum, x, {2, -1, 1, -1});
  builder.constraint(builder.node(NodeType::Eq, {difference, builder.constant(1)}));
  graph.start();
  graph.raise(x[0]);
  graph.raise(x[1]);
  auto move = make();
  for (std::uint32_t i = 0; i < 200; ++i) {
    graph.rng = i * 2654435761U;
    if (move.apply()) {
      EXPECT_GE(graph.changed().size(), 2u);
      move.evaluate(0);
    }
    move.finish(MoveStatus::Rejected);
    test::expectConsistent(*graph.dag);
  }
}

TEST_F(MoveSetPartitionTest, AnAcceptedExchangeStays) {
  startCover({"ad", "ae", "af", "bd", "be", "bf", "cd", "ce", "cf"}, {0, 4, 8});
  auto move = make();
  std::set<std::uint32_t> chosen;
  for (int i = 0; i < 200; ++i) {
    const bool isBuilt = move.apply();
    move.finish(isBuilt ? MoveStatus::Accepted : MoveStatus::Infeasible);
    EXPECT_EQ(graph.dag->propagation.infeasibility.nbViolated, 0);
    for (const auto decision : x) {
      if (graph.dag->values[decision].intValue == 1) chosen.insert(decision);
    }
  }
  EXPECT_GT(move.nbAccepted, 100u);
  EXPECT_EQ(chosen.size(), 9u);
  test::expectConsistent(*graph.dag);
}

}  // namespace
}  // namespace ombrix
