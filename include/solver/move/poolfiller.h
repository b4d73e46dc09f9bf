#ifndef OMBRIX_SOLVER_MOVE_POOLFILLER_H
#define OMBRIX_SOLVER_MOVE_POOLFILLER_H

#include <cstdint>
#include <span>

#include "solver/kernel/heuristic.h"
#include "solver/move/autonomousstructure.h"
#include "solver/move/basicmovestructure.h"

namespace ombrix {

/// Which moves a worker gets. The defaults are those of the parameters of the same names.
struct PoolSettings {
  std::uint32_t targetingRate = 50;    ///< percent; ten times the level of the parameter
  std::uint32_t neighborhoodSize = 8;  ///< largest number of decisions of a move
  std::uint32_t largeMirrorSize = 50;  ///< rows that a large mirror turns at most
  std::uint32_t largeRollSize = 50;
  bool basicMovesEnabled = true;
  bool advancedMovesEnabled = true;  ///< the moves that plan, and those made of others
  bool tspMovesEnabled = true;       ///< the moves on runs of exactly-one lists
  bool moveBalanceEnabled = true;
  bool moveSwapEnabled = true;  ///< the large mirrors too
  bool moveFlipEnabled = true;
  bool movePathEnabled = true;
  bool moveCycleEnabled = true;
  bool moveForkCycleEnabled = true;
  bool moveForkPathEnabled = true;
  bool moveRollEnabled = true;
  bool moveScrambleEnabled = true;
  bool moveMirrorEnabled = true;
  bool moveSequenceEnabled = true;
  bool moveBinPackingEnabled = true;
  bool moveEjectionChainEnabled = true;
  bool moveSetPartitionEnabled = true;
};

/// Fills the pool of a worker with the moves that suit its model, in a fixed order and with fixed
/// weights. Without a mirror of the constraints there are no moves that plan. doubleComparisons are
/// the nodes that compare doubles by equality or by a bound they may reach; the span, the structure
/// and the mirror outlive the pool.
void fillMovePool(Heuristic& heuristic, BasicMoveStructure& structure,
                  std::span<const std::uint32_t> doubleComparisons, const PoolSettings& settings,
                  AutonomousStructure* mirror = nullptr);

}  // namespace ombrix

#endif
