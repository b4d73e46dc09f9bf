#ifndef OMBRIX_SOLVER_MOVE_MOVEKSWAP_H
#define OMBRIX_SOLVER_MOVE_MOVEKSWAP_H

#include "solver/move/movekflip.h"

namespace ombrix {

/// Flips pairs of decisions within one list, one up and one down, so that the sum of the list
/// holds. The candidates lie in at most one list that is not free, which a pair leaves as it is.
class MoveKSwap : public MoveKFlip {
public:
  /// Raises code 6 when rate is above 100.
  MoveKSwap(Dag& workerDag, std::uint32_t& state, std::uint32_t nbPairs, std::uint32_t moveWeight,
            std::uint32_t rate, BasicMoveStructure& lists);

  bool apply() override;

private:
  bool isCandidate(std::uint32_t decision) const;
  void swap(std::uint32_t decision);
};

}  // namespace ombrix

#endif
