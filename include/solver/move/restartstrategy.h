#ifndef OMBRIX_SOLVER_MOVE_RESTARTSTRATEGY_H
#define OMBRIX_SOLVER_MOVE_RESTARTSTRATEGY_H

#include <cstdint>

#include "solver/kernel/heuristicstrategy.h"
#include "solver/kernel/oxvalue.h"

namespace ombrix {

/// Sees that a feasible search has stalled and forces a short random walk from where it stands: for
/// restartingSize accepted moves every candidate is taken that the constraints and the earlier
/// objectives allow, however bad for the current one. A run is the stretch of search between two
/// such restarts; it has stalled when its last improvement lies too far back in it. While the
/// solution is infeasible all counters stand still.
class RestartStrategy : public HeuristicStrategy {
public:
  explicit RestartStrategy(Heuristic& owner) : HeuristicStrategy(owner) {}

  void reset() override;
  /// Another objective starts another run.
  void beforeIteration() override;
  bool decide(MoveStatus& status, Move& move) override;
  void afterMove(MoveStatus status) override;
  void printStatistics(std::ostream& out) const override;

  /// Percent of a run: a restart begins when the last improvement lies below this share of it.
  std::uint32_t restartingRatio = 5;
  std::uint64_t minIterationsBetweenRestarts = 100000;
  std::uint64_t restartingSize = 200;  ///< accepted moves per restart

  // The present run.
  std::uint64_t nbIterations = 0;
  std::uint64_t lastImprovement = 0;  ///< the iteration of the run at which bestValue improved
  bool isRestarting = false;
  std::uint64_t nbAccepted = 0;           ///< in the present restart
  OXValue bestValue = OXValue::ofInt(0);  ///< of the current objective in this run
  std::uint32_t objectiveIndex = 0;       ///< the objective that bestValue refers to

  // What the report says.
  std::uint64_t nbRestarts = 0;
  std::uint64_t nbRestartingIterations = 0;
  OXValue startValue = OXValue::ofInt(0);  ///< of the objective when the last restart began
  OXValue endValue = OXValue::ofInt(0);    ///< and when it ended
  std::uint32_t lastRunObjective = 0;
  std::uint64_t lastRunBest = 0;
  std::uint64_t lastRunLength = 0;

private:
  void startRun();
  void followRestart(MoveStatus status);
  void followRun();
  bool hasStalled() const;
  void beginRestart();
  OXValue presentValue() const;
  void printValue(std::ostream& out, OXValue value) const;
};

}  // namespace ombrix

#endif
