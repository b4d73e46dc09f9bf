#include <algorithm>
#include <numeric>

#include "solver/kernel/random.h"
#include "solver/move/movekmirror.h"
#include "solver/move/movekroll.h"
#include "solver/move/movekscramble.h"
#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

using Permutation = std::vector<std::uint32_t>;
using Neighbours = std::set<Permutation>;

/// The rows and columns of a permutation, every one of which holds exactly one decision.
class RunMovesTest : public testing::Test {
protected:
  void build(std::uint32_t size, std::uint32_t seed, bool columnsMakeRuns = true) {
    n = size;
    auto& builder = graph.builder;
    x = builder.booleans(n * n);
    for (const bool isRow : {true, false}) {
      for (std::uint32_t i = 0; i < n; ++i) {
        std::vector<std::uint32_t> operands;
        for (std::uint32_t j = 0; j < n; ++j) {
          operands.push_back(isRow ? x[i * n + j] : x[j * n + i]);
        }
        const auto list = builder.node(NodeType::BooleanSum, operands);
        const auto total = builder.constant(isRow || columnsMakeRuns ? 1 : 2);
        builder.constraint(builder.node(NodeType::Eq, {list, total}));
      }
    }
    graph.start(seed);
    start.resize(n);
    std::iota(start.begin(), start.end(), 0u);
    std::uint32_t state = seed;
    for (std::uint32_t i = n - 1; i > 0; --i) {
      std::swap(start[i], start[randomIndex(state, i + 1)]);
    }
    for (std::uint32_t i = 0; i < n; ++i) graph.raise(x[i * n + start[i]]);
  }

  /// The tentative table as a permutation; empty when it is none.
  Permutation present() const {
    Permutation result;
    for (std::uint32_t i = 0; i < n; ++i) {
      for (std::uint32_t j = 0; j < n; ++j) {
        if (graph.dag->tValues[x[i * n + j]].intValue == 1) result.push_back(j);
      }
    }
    Permutation sorted = result;
    std::sort(sorted.begin(), sorted.end());
    for (std::uint32_t i = 0; i < sorted.size(); ++i) {
      if (sorted[i] != i) return {};
    }
    return sorted.size() == n ? result : Permutation{};
  }

  static Permutation inverse(const Permutation& permutation) {
    Permutation result(permutation.size());
    for (std::uint32_t i = 0; i < permutation.size(); ++i) result[permutation[i]] = i;
    return result;
  }

  /// What a change of a run gives for every run of this length, over rows and over columns. A run
  /// is cut where the rows or columns end.
  template <typename Change>
  Neighbours overAllRuns(std::uint32_t length, const Change& change) const {
    Neighbours result;
    for (const bool overRows : {true, false}) {
      for (std::uint32_t first = 0; first < n; ++first) {
        for (const int direction : {1, -1}) {
          std::vector<std::uint32_t> places;
          for (std::uint32_t i = 0; i < length; ++i) {
            const int place = static_cast<int>(first) + direction * static_cast<int>(i);
            if (place < 0 || place >= static_cast<int>(n)) break;
            places.push_back(static_cast<std::uint32_t>(place));
          }
          if (places.size() < 2) continue;
          const Permutation from = overRows ? start : inverse(start);
          for (const Permutation& to : change(from, places)) {
            result.insert(overRows ? to : inverse(to));
          }
        }
      }
    }
    return result;
  }

  Neighbours reachedBy(Move& move, int nbAttempts) {
    Neighbours result;
    for (int i = 0; i < nbAttempts; ++i) {
      if (move.apply()) result.insert(present());
      move.finish(MoveStatus::Rejected);
    }
    EXPECT_TRUE(graph.changed().empty());
    test::expectConsistent(*graph.dag);
    return result;
  }

  template <class M, class... Sizes>
  M make(Sizes... sizes) {
    return M(*graph.dag, graph.rng, sizes..., 8, 50, *graph.structure);
  }

  static std::vector<Permutation> mirrored(const Permutation& from,
                                           const std::vector<std::uint32_t>& places) {
    Permutation to = from;
    for (std::size_t i = 0; i < places.size(); ++i) {
      to[places[i]] = from[places[places.size() - 1 - i]];
    }
    return {to};
  }

  static Permutation rolled(const Permutation& from, const std::vector<std::uint32_t>& places,
                            std::size_t shift) {
    Permutation to = from;
    for (std::size_t i = 0; i < places.size(); ++i) {
      to[places[(i + shift) % places.size()]] = from[places[i]];
    }
    return to;
  }

  test::SearchGraph graph;
  std::uint32_t n = 0;
  std::vector<std::uint32_t> x;
  Permutation start;
};

// ---- mirror

TEST_F(RunMovesTest, AMirrorTurnsEveryRunOfItsLengthAround) {
  build(6, 4);
  for (const std::uint32_t k : {2u, 3u, 4u, 6u}) {
    auto move = make<MoveKMirror>(k, k);
    EXPECT_EQ(reachedBy(move, 1000), overAllRuns(k, mirrored)) << k;
  }
}

TEST_F(RunMovesTest, ALargeMirrorDrawsItsLength) {
  build(6, 4);
  auto move = make<MoveKMirror>(4u, 2u);
  Neighbours expected;
  for (const std::uint32_t length : {2u, 3u, 4u}) expected.merge(overAllRuns(length, mirrored));
  EXPECT_EQ(reachedBy(move, 3000), expected);
}

TEST_F(RunMovesTest, ASmallestLengthAboveTheLargestGivesTheLargest) {
  build(6, 4);
  auto move = make<MoveKMirror>(3u, 5u);
  EXPECT_EQ(reachedBy(move, 1000), overAllRuns(3, mirrored));
}

TEST_F(RunMovesTest, ASmallestLengthOfZeroStaysWithinTheRows) {
  build(6, 4);
  auto move = make<MoveKMirror>(4u, 0u);
  Neighbours expected;
  for (const std::uint32_t length : {2u, 3u, 4u}) expected.merge(overAllRuns(length, mirrored));
  EXPECT_EQ(reachedBy(move, 3000), expected);
}

// ---- roll

TEST_F(RunMovesTest, ARollMovesTheContentsOn) {
  build(7, 4);
  for (const std::uint32_t k : {2u, 3u, 5u, 6u}) {
    for (const std::uint32_t l : {1u, 2u, 3u}) {
      auto move = make<MoveKRoll>(k, k, l);
      const auto expected =
          overAllRuns(k, [&](const Permutation& from, const std::vector<std::uint32_t>& places) {
            const std::size_t shift = std::min<std::size_t>(l, (places.size() + 1) / 2);
            return std::vector<Permutation>{rolled(from, places, shift)};
          });
      EXPECT_EQ(reachedBy(move, 1500), expected) << k << " " << l;
    }
  }
}

TEST_F(RunMovesTest, ALongRollDrawsItsShift) {
  build(7, 4);
  auto move = make<MoveKRoll>(7u, 7u, 25u);
  const auto expected =
      overAllRuns(7, [&](const Permutation& from, const std::vector<std::uint32_t>& places) {
        std::vector<Permutation> all;
        for (std::size_t shift = 1; shift <= (places.size() + 1) / 2; ++shift) {
          all.push_back(rolled(from, places, shift));
        }
        return all;
      });
  EXPECT_EQ(reachedBy(move, 8000), expected);
}

// ---- scramble

TEST_F(RunMovesTest, AScramblePermutesARun) {
  build(5, 4);
  auto move = make<MoveKScramble>(3u);
  EXPECT_EQ(move.name, "3-Scramble");
  const auto expected =
      overAllRuns(3, [&](const Permutation& from, const std::vector<std::uint32_t>& places) {
        std::vector<std::uint32_t> order = places;
        std::sort(order.begin(), order.end());
        std::vector<Permutation> all;
        do {
          Permutation to = from;
          for (std::size_t i = 0; i < places.size(); ++i) to[order[i]] = from[places[i]];
          if (to != from) all.push_back(to);
        } while (std::next_permutation(order.begin(), order.end()));
        return all;
      });
  EXPECT_EQ(reachedBy(move, 4000), expected);
}

// ---- runs

TEST_F(RunMovesTest, ARunStopsAtARowWithTwoContents) {
  build(5, 4, false);
  graph.raise(x[2 * 5 + (start[2] + 1) % 5]);
  auto move = make<MoveKMirror>(5u, 5u);
  std::set<std::set<std::uint32_t>> reached;
  for (int i = 0; i < 200; ++i) {
    if (move.apply()) {
      std::set<std::uint32_t> rows;
      for (const auto decision : graph.changed()) rows.insert((decision - x[0]) / 5);
      reached.insert(rows);
    }
    graph.reject();
  }
  EXPECT_EQ(reached, (std::set<std::set<std::uint32_t>>{{0, 1}, {3, 4}}));
}

TEST_F(RunMovesTest, OneExactlyOneListGivesNoRun) {
  auto& builder = graph.builder;
  x = builder.booleans(3);
  const auto list = builder.node(NodeType::BooleanSum, x);
  builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(1)}));
  graph.start();
  graph.raise(x[0]);
  EXPECT_FALSE(make<MoveKMirror>(2u, 2u).apply());
  EXPECT_FALSE(make<MoveKRoll>(2u, 2u, 1u).apply());
  EXPECT_FALSE(make<MoveKScramble>(4u).apply());
  EXPECT_EQ(graph.rng, 1u);
}

TEST_F(RunMovesTest, RowsWithoutColumnsEndTheMove) {
  auto& builder = graph.builder;
  for (int i = 0; i < 3; ++i) {
    const auto row = builder.booleans(2);
    x.insert(x.end(), row.begin(), row.end());
    const auto list = builder.node(NodeType::BooleanSum, row);
    builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(1)}));
  }
  graph.start();
  for (const std::uint32_t i : {0u, 2u, 4u}) graph.raise(x[i]);
  auto mirror = make<MoveKMirror>(2u, 2u);
  auto roll = make<MoveKRoll>(2u, 2u, 1u);
  auto scramble = make<MoveKScramble>(3u);
  for (int i = 0; i < 30; ++i) {
    for (Move* move : {static_cast<Move*>(&mirror), static_cast<Move*>(&roll)}) {
      EXPECT_FALSE(move->apply());
      move->finish(MoveStatus::Infeasible);
    }
    EXPECT_FALSE(scramble.apply());
    scramble.finish(MoveStatus::Infeasible);
  }
  test::expectConsistent(*graph.dag);
}

TEST_F(RunMovesTest, NamesAndFactors) {
  build(9, 1);
  EXPECT_EQ(make<MoveKMirror>(5u, 5u).name, "5-Mirror");
  EXPECT_EQ(make<MoveKMirror>(9u, 8u).name, "8-9-Mirror");
  EXPECT_EQ(make<MoveKRoll>(5u, 5u, 2u).name, "5-2-Roll");
  EXPECT_EQ(make<MoveKRoll>(50u, 8u, 25u).name, "8-50-25-Roll");
  EXPECT_EQ(make<MoveKRoll>(7u, 7u, 1u).getSelectionFactor(), 1.0);
  EXPECT_EQ(make<MoveKRoll>(8u, 8u, 1u).getSelectionFactor(), 1.0);
  EXPECT_EQ(make<MoveKRoll>(16u, 8u, 1u).getSelectionFactor(), 0.5);
  EXPECT_EQ(make<MoveKMirror>(32u, 8u).getSelectionFactor(), 0.25);
  EXPECT_EQ(make<MoveKScramble>(16u).getSelectionFactor(), 1.0);
}

}  // namespace
}  // namespace ombrix
