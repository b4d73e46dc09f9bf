#ifndef OMBRIX_TESTS_SOLVER_MOVE_STRATEGIES_FIXTURE_H
#define OMBRIX_TESTS_SOLVER_MOVE_STRATEGIES_FIXTURE_H

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "solver/kernel/heuristic.h"
#include "tests/support/graphs.h"
#include "tests/support/scriptedmove.h"

namespace ombrix {

/// A worker without moves or strategies, for tests that call one strategy by hand.
class StrategyTest : public testing::Test {
protected:
  void start() {
    dag = builder.makeDag();
    heuristic = std::make_unique<Heuristic>(*dag, &rng);
    move =
        std::make_unique<test::ScriptedMove>(*dag, rng, std::vector<std::vector<std::uint32_t>>{});
  }

  /// What a strategy says of the candidate that flips these decisions; the candidate is dropped.
  std::optional<MoveStatus> verdict(HeuristicStrategy& strategy,
                                    const std::vector<std::uint32_t>& flips) {
    for (const auto decision : flips) move->flip(decision);
    return settle(strategy);
  }
  std::optional<MoveStatus> settle(HeuristicStrategy& strategy) {
    MoveStatus status = MoveStatus::Rejected;
    const bool isSettled = strategy.decide(status, *move);
    move->finish(MoveStatus::Rejected);
    if (!isSettled) return std::nullopt;
    return status;
  }

  test::GraphBuilder builder;
  std::unique_ptr<Dag> dag;
  std::uint32_t rng = 1;
  std::unique_ptr<Heuristic> heuristic;
  std::unique_ptr<test::ScriptedMove> move;
};

}  // namespace ombrix

#endif
