#ifndef OMBRIX_SOLVER_MOVE_MOVEFILTERSTRATEGY_H
#define OMBRIX_SOLVER_MOVE_MOVEFILTERSTRATEGY_H

#include <cstdint>

#include "solver/kernel/cacheline.h"
#include "solver/kernel/heuristicstrategy.h"

namespace ombrix {

/// Shifts the weights of the pool, every period iterations, from moves that do not pay to moves
/// that do. Each pass gives every move a score from its counters since the last reset, and moves at
/// most one unit of weight per move that has too much, so a move drifts towards its due weight and
/// never jumps. The sum of the weights is constant. A move that lost all its weight gets a unit
/// back now and then, to prove itself. Settles no candidate; a pass costs O(number of moves).
class MoveFilterStrategy : public HeuristicStrategy {
public:
  explicit MoveFilterStrategy(Heuristic& owner) : HeuristicStrategy(owner) {}

  void reset() override { lastFilter = 0; }
  void beforeIteration() override;
  void printStatistics(std::ostream& out) const override;

  CacheLineVector<double> scores;    ///< one per move
  CacheLineVector<Move*> increased;  ///< the moves below their due weight
  CacheLineVector<Move*> decreased;  ///< the moves above it
  std::uint32_t period = 1000;       ///< iterations between two passes
  bool explorationEnabled = true;
  double infeasibleRatio = 0.99;  ///< a move that fails more often than that scores nothing
  std::uint32_t lastFilter = 0;   ///< iterations of the worker at the last pass

private:
  void filter();
  double computeScores();
  void sortByDueWeight(double totalScore);
  void shiftWeights();
  void explore();
  void revive(double share, double total, Move& heaviest);
};

}  // namespace ombrix

#endif
