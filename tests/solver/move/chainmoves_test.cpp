#include <algorithm>
#include <map>

#include "solver/kernel/random.h"
#include "solver/move/movekcycle.h"
#include "solver/move/moveklforkcycle.h"
#include "solver/move/moveklforkpath.h"
#include "solver/move/movekpath.h"
#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

using Sums = std::vector<std::int64_t>;

/// Families of lists in which every decision lies in two lists, of two different families.
class ChainMovesTest : public testing::Test {
protected:
  /// Rows and columns of a table.
  void buildGrid(std::uint32_t nbRows, std::uint32_t nbColumns, bool rowsAreFree) {
    auto& builder = graph.builder;
    x = builder.booleans(nbRows * nbColumns);
    for (std::uint32_t r = 0; r < nbRows; ++r) {
      std::vector<std::uint32_t> row;
      for (std::uint32_t c = 0; c < nbColumns; ++c) row.push_back(x[r * nbColumns + c]);
      addList(row, !rowsAreFree);
    }
    for (std::uint32_t c = 0; c < nbColumns; ++c) {
      std::vector<std::uint32_t> column;
      for (std::uint32_t r = 0; r < nbRows; ++r) column.push_back(x[r * nbColumns + c]);
      addList(column, true);
    }
  }

  /// Three families of n lists, any two of which meet in n * n decisions of their own.
  void buildTriangle(std::uint32_t n) {
    x = graph.builder.booleans(3 * n * n);
    const auto at = [&](std::uint32_t pair, std::uint32_t i, std::uint32_t j) {
      return x[pair * n * n + i * n + j];
    };
    for (std::uint32_t family = 0; family < 3; ++family) {
      for (std::uint32_t i = 0; i < n; ++i) {
        std::vector<std::uint32_t> operands;
        for (std::uint32_t pair = 0; pair < 3; ++pair) {
          if (pair == (family + 1) % 3) continue;  // the pair of the other two families
          for (std::uint32_t j = 0; j < n; ++j) {
            operands.push_back(pair == family ? at(pair, i, j) : at(pair, j, i));
          }
        }
        std::sort(operands.begin(), operands.end());
        addList(operands, true);
      }
    }
  }

  void addList(const std::vector<std::uint32_t>& operands, bool isConstrained) {
    auto& builder = graph.builder;
    lists.push_back(builder.node(NodeType::BooleanSum, operands));
    if (!isConstrained) return;
    builder.constraint(builder.node(NodeType::Eq, {lists.back(), builder.constant(3)}));
  }

  void startAtRandom(std::uint32_t seed, std::uint32_t percent) {
    graph.start(seed);
    std::uint32_t state = seed;
    for (const auto decision : x) {
      if (randomPercent(state, percent)) graph.raise(decision);
    }
  }

  /// The sums of all lists under the open move, less the committed ones; only those that changed.
  std::map<std::uint32_t, std::int64_t> deltas() const {
    std::map<std::uint32_t, std::int64_t> result;
    const Dag& dag = *graph.dag;
    for (const auto list : lists) {
      std::int64_t delta = 0;
      for (std::uint32_t i = 0; i < dag.fixedFields->nbOperands(list); ++i) {
        const auto operand = dag.fixedFields->operand(list, i);
        delta += dag.tValues[operand].intValue - dag.values[operand].intValue;
      }
      if (delta != 0) result[list] = delta;
    }
    return result;
  }

  /// Applies so many times and calls check on each success. Every attempt leaves no trace.
  template <typename Check>
  int countSuccesses(Move& move, int nbAttempts, const Check& check) {
    int nbSuccesses = 0;
    for (int i = 0; i < nbAttempts; ++i) {
      if (move.apply()) {
        ++nbSuccesses;
        check();
      }
      move.finish(MoveStatus::Rejected);
      EXPECT_TRUE(graph.changed().empty());
    }
    test::expectConsistent(*graph.dag);
    return nbSuccesses;
  }

  template <class M, class... Sizes>
  M make(std::uint32_t rate, Sizes... sizes) {
    return M(*graph.dag, graph.rng, sizes..., 8, rate, *graph.structure);
  }

  test::SearchGraph graph;
  std::vector<std::uint32_t> x;
  std::vector<std::uint32_t> lists;
};

// ---- paths

TEST_F(ChainMovesTest, APathOfTwoShiftsOneDecisionBetweenTwoFreeLists) {
  buildGrid(4, 5, true);
  startAtRandom(3, 40);
  auto move = make<MoveKPath>(0, 2u);
  EXPECT_EQ(move.name, "2-Path");
  EXPECT_EQ(move.weight, 8u);
  const int nbSuccesses = countSuccesses(move, 300, [&] {
    if (graph.changed().size() == 1) return;  // the end met the beginning
    ASSERT_EQ(graph.changed().size(), 2u);
    const auto changes = deltas();
    EXPECT_EQ(changes.size(), 2u);
    for (const auto& [list, delta] : changes) EXPECT_LT(list, lists[4]) << "columns hold";
  });
  EXPECT_GT(nbSuccesses, 200);
}

TEST_F(ChainMovesTest, ALongerPathKeepsTheSumsBetweenItsEnds) {
  buildGrid(4, 5, true);
  startAtRandom(9, 50);
  auto move = make<MoveKPath>(0, 4u);
  int nbLong = 0;
  countSuccesses(move, 500, [&] {
    if (graph.changed().size() < 4) return;
    ++nbLong;
    for (const auto& [list, delta] : deltas()) EXPECT_LT(list, lists[4]);
    EXPECT_LE(deltas().size(), 2u);
  });
  EXPECT_GT(nbLong, 50);
}

TEST_F(ChainMovesTest, WithoutAFreeListThereIsNoPath) {
  buildGrid(3, 3, false);
  startAtRandom(1, 50);
  EXPECT_FALSE(make<MoveKPath>(50, 2u).apply());
  EXPECT_FALSE(make<MoveKLForkPath>(50, 3u, 2u).apply());
  EXPECT_TRUE(graph.changed().empty());
}

TEST_F(ChainMovesTest, ATargetedPathBeginsWithItsTarget) {
  buildGrid(3, 4, true);
  graph.builder.maximise(x[5]);
  graph.start();
  for (const auto column : {0u, 1u, 2u, 3u}) graph.raise(x[column]);
  graph.dag->propagation.activeLevel = 1;
  auto move = make<MoveKPath>(100, 2u);
  // The columns are violated, so the target raises one of them.
  countSuccesses(move, 50, [&] {
    bool raises = false;
    for (const auto decision : graph.changed()) {
      raises = raises || graph.dag->tValues[decision].intValue == 1;
    }
    EXPECT_TRUE(raises);
  });
}

TEST_F(ChainMovesTest, AForkPathOfTwoShiftsFromOneListToOthers) {
  buildGrid(4, 6, true);
  startAtRandom(5, 50);
  auto move = make<MoveKLForkPath>(0, 2u, 2u);
  EXPECT_EQ(move.name, "2-2-ForkPath");
  int nbWhole = 0;
  countSuccesses(move, 300, [&] {
    if (graph.changed().size() != 4) return;
    ++nbWhole;
    std::int64_t total = 0;
    bool hasOrigin = false;
    for (const auto& [list, delta] : deltas()) {
      EXPECT_LT(list, lists[4]) << "columns hold";
      total += delta;
      hasOrigin = hasOrigin || delta == 2 || delta == -2;
    }
    EXPECT_EQ(total, 0);
    EXPECT_TRUE(hasOrigin || deltas().empty());
  });
  EXPECT_GT(nbWhole, 30);
}

TEST_F(ChainMovesTest, AForkPathFlipsItsChainAndTwoDecisionsForEachBranch) {
  buildGrid(5, 7, true);
  startAtRandom(5, 50);
  auto move = make<MoveKLForkPath>(0, 3u, 3u);
  std::size_t largest = 0;
  countSuccesses(move, 500, [&] { largest = std::max(largest, graph.changed().size()); });
  EXPECT_EQ(largest, 7u);
}

// ---- cycles

TEST_F(ChainMovesTest, ACycleOfFourKeepsEverySum) {
  buildGrid(5, 6, false);
  startAtRandom(2, 30);
  auto move = make<MoveKCycle>(0, 4u);
  EXPECT_EQ(move.name, "4-Cycle");
  const int nbSuccesses = countSuccesses(move, 500, [&] {
    EXPECT_EQ(graph.changed().size(), 4u);
    EXPECT_TRUE(deltas().empty());
  });
  EXPECT_GT(nbSuccesses, 100);
}

TEST_F(ChainMovesTest, ACycleStartsOnEitherSideWhenAChainCanLeaveTheConstrainedLists) {
  buildGrid(5, 6, false);
  const auto spare = graph.builder.booleans(2);
  lists.push_back(graph.builder.node(NodeType::BooleanSum, spare));
  startAtRandom(2, 30);
  ASSERT_TRUE(graph.analysis->hasFreeOrMixed);
  auto move = make<MoveKCycle>(0, 6u);
  const int nbSuccesses = countSuccesses(move, 1000, [&] {
    EXPECT_EQ(graph.changed().size(), 6u);
    EXPECT_TRUE(deltas().empty());
  });
  EXPECT_GT(nbSuccesses, 20);
}

TEST_F(ChainMovesTest, AnOddCycleNeverCloses) {
  buildTriangle(3);
  startAtRandom(2, 40);
  auto move = make<MoveKCycle>(0, 3u);
  EXPECT_EQ(countSuccesses(move, 200, [] {}), 0);
}

TEST_F(ChainMovesTest, ACycleNeedsAListThatIsNotFree) {
  auto& builder = graph.builder;
  x = builder.booleans(4);
  addList(x, false);
  graph.start();
  ASSERT_TRUE(graph.analysis->hasFreeOrMixed);
  EXPECT_FALSE(make<MoveKCycle>(0, 2u).apply());
  EXPECT_EQ(graph.rng, 1u);
}

TEST_F(ChainMovesTest, ATargetedCycleFlipsItsTarget) {
  buildGrid(4, 4, false);
  graph.builder.maximise(x[6]);
  graph.start();
  for (const auto r : {0u, 1u, 2u, 3u}) graph.raise(x[5 * r]);
  graph.dag->propagation.infeasibility.nbViolated = 0;  // aim at the objective
  auto move = make<MoveKCycle>(100, 4u);
  int nbSuccesses = 0;
  for (int i = 0; i < 100; ++i) {
    if (move.apply()) {
      ++nbSuccesses;
      EXPECT_TRUE(graph.changed().contains(x[6]));
      EXPECT_TRUE(deltas().empty());
    }
    graph.reject();
  }
  EXPECT_GT(nbSuccesses, 0);
}

// ---- fork cycles

TEST_F(ChainMovesTest, TheBranchesOfAForkCycleCloseOnAlternatingSidesOfTheFirstList) {
  // The chain raises d, each branch lowers a p. The first branch closes by raising c1, and the
  // second one by lowering c2, which its own list must count negatively.
  auto& builder = graph.builder;
  x = builder.booleans(7);
  const auto d = x[0], p1 = x[1], p2 = x[2], c1 = x[3], c2 = x[4];
  addList({d, c1, c2, x[5], x[6]}, true);
  addList({d, p1, p2}, true);
  addList({p1, c1}, true);
  lists.push_back(builder.node(NodeType::ScalarSum, {p2, c2}, {1, -1}));
  builder.constraint(builder.node(NodeType::Eq, {lists.back(), builder.constant(1)}));
  graph.start(6);
  for (const auto decision : {p1, p2, c2, x[5], x[6]}) graph.raise(decision);
  auto move = make<MoveKLForkCycle>(0, 3u, 2u);
  EXPECT_EQ(move.name, "3-2-ForkCycle");
  const int nbSuccesses = countSuccesses(move, 1000, [&] {
    EXPECT_EQ(graph.changed(), (std::set<std::uint32_t>{d, p1, p2, c1, c2}));
  });
  EXPECT_GT(nbSuccesses, 10);
}

TEST_F(ChainMovesTest, AForkCycleOverPlainListsClosesOneBranchOnly) {
  buildTriangle(4);
  startAtRandom(6, 50);
  auto move = make<MoveKLForkCycle>(0, 3u, 2u);
  EXPECT_EQ(countSuccesses(move, 1000, [] {}), 0);
  auto single = make<MoveKLForkCycle>(0, 3u, 1u);
  EXPECT_GT(countSuccesses(single, 1000, [&] { EXPECT_EQ(graph.changed().size(), 3u); }), 100);
}

TEST_F(ChainMovesTest, WithoutAListThereIsNoForkCycle) {
  x = graph.builder.booleans(3);
  graph.start();
  EXPECT_FALSE(make<MoveKLForkCycle>(0, 3u, 2u).apply());
}

}  // namespace
}  // namespace ombrix
