#ifndef OMBRIX_TESTS_SOLVER_MOVE_REACHEDNEIGHBOURS_H
#define OMBRIX_TESTS_SOLVER_MOVE_REACHEDNEIGHBOURS_H

#include <cstdint>
#include <set>
#include <vector>

#include "solver/move/move.h"
#include "tests/support/searchgraph.h"

namespace ombrix::test {

/// Candidates from one state, each as the set of decisions that it changes.
using Neighbours = std::set<std::set<std::uint32_t>>;

/// All candidates that a move builds from the present state. It is drawn until it has brought
/// nothing new for seven times as many attempts as it took to find the last one.
inline Neighbours reachedBy(Move& move, SearchGraph& graph) {
  Neighbours reached;
  int lastNew = 500;
  for (int nbAttempts = 1; nbAttempts < 8 * lastNew; ++nbAttempts) {
    if (move.apply() && reached.insert(graph.changed()).second && nbAttempts > lastNew) {
      lastNew = nbAttempts;
    }
    move.finish(MoveStatus::Rejected);
  }
  EXPECT_TRUE(graph.changed().empty());
  expectConsistent(*graph.dag);
  return reached;
}

/// Every two of these decisions.
inline Neighbours pairsOf(const std::vector<std::uint32_t>& decisions) {
  Neighbours pairs;
  for (const auto first : decisions) {
    for (const auto second : decisions) {
      if (first != second) pairs.insert({first, second});
    }
  }
  return pairs;
}

}  // namespace ombrix::test

#endif
