#ifndef OMBRIX_SOLVER_MOVE_ANNEALINGSTRATEGY_H
#define OMBRIX_SOLVER_MOVE_ANNEALINGSTRATEGY_H

#include <cstdint>
#include <vector>

#include "solver/kernel/cacheline.h"
#include "solver/kernel/heuristicstrategy.h"

namespace ombrix {

/// The only strategy that keeps a worse candidate. There is no temperature: a candidate must not be
/// worse than the mean of the last improved values of the current objective, and between the latest
/// of them and that mean it is kept with a probability that falls from 1 to 1/e. So the tolerance
/// follows the step of the recent improvements and shrinks by itself as they get smaller; a search
/// that has not improved for plateauLength moves turns into pure descent until it does.
///
/// A decision costs O(1): the sums of the windows are kept incrementally, and only an improvement
/// pays for all objectives.
class AnnealingStrategy : public HeuristicStrategy {
public:
  explicit AnnealingStrategy(Heuristic& owner);

  /// Remembers size improvements; 1 gives pure descent.
  void setWindowSize(std::uint32_t size);

  void reset() override;
  void beforeIteration() override;
  bool decide(MoveStatus& status, Move& move) override;
  void afterMove(MoveStatus status) override;
  void printStatistics(std::ostream& out) const override;

  std::uint64_t plateauLength = 1000000;  ///< non-improving moves after which degradation stops
  std::uint32_t windowSize = 2;
  std::uint32_t nbImprovements = 0;  ///< since resetWindow; modulo windowSize the place of writing
  std::vector<CacheLineVector<double>> lastValues;  ///< per objective: the ring of improved values
  std::uint32_t nbSinceImprovement = 0;
  std::uint32_t nbDegradingMoves = 0;
  CacheLineVector<double> windowSums;  ///< per objective: the sum of its ring
  bool degradationActivated = true;
  std::uint32_t objectiveIndex = 0;  ///< the objective for which the window was last reset
  double lastProbability = 0;

private:
  void resetWindow();
  void updateWindow();
};

}  // namespace ombrix

#endif
