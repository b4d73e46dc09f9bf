#ifndef OMBRIX_SOLVER_KERNEL_HEURISTICSTRATEGY_H
#define OMBRIX_SOLVER_KERNEL_HEURISTICSTRATEGY_H

#include <iosfwd>

#include "solver/kernel/movestatus.h"

namespace ombrix {

class Heuristic;
class Move;

/// One link of the chain that decides the fate of each candidate. The loop of the Heuristic has no
/// policy of its own: what is searched for, and how, is the sum of its strategies. Every operation
/// but printStatistics runs once per iteration or more, so none may allocate.
class HeuristicStrategy {
public:
  explicit HeuristicStrategy(Heuristic& owner) : heuristic(owner) {}
  virtual ~HeuristicStrategy() = default;
  HeuristicStrategy(const HeuristicStrategy&) = delete;
  HeuristicStrategy& operator=(const HeuristicStrategy&) = delete;

  /// The start of a run.
  virtual void reset() {}
  /// Before each draw, for every strategy in chain order.
  virtual void beforeIteration() {}
  /// True if this strategy settles the fate of the candidate, with status set; false to pass it on.
  virtual bool decide(MoveStatus& status, Move& move);
  /// After a decided move was kept or rolled back, for every strategy in chain order.
  virtual void afterMove(MoveStatus status);
  /// The strategy's lines of the search report.
  virtual void printStatistics(std::ostream& out) const;

protected:
  Heuristic& heuristic;
};

}  // namespace ombrix

#endif
