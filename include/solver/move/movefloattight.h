#ifndef OMBRIX_SOLVER_MOVE_MOVEFLOATTIGHT_H
#define OMBRIX_SOLVER_MOVE_MOVEFLOATTIGHT_H

#include <span>

#include "solver/move/move.h"

namespace ombrix {

/// Draws a comparison of doubles and one of its sides, and brings one of the first two nodes of the
/// Dag to the value of the other. The drawn side, 0 or 1, serves as the node number itself, and the
/// comparison only decides which of the two it is.
class MoveFloatTight : public Move {
public:
  /// comparisons are nodes that compare doubles by equality or by a bound they may reach.
  MoveFloatTight(Dag& workerDag, std::uint32_t& state, std::span<const std::uint32_t> comparisons);

  bool apply() override;

private:
  std::uint32_t pickSide();
  OXValue targetFor(std::uint32_t node, double value) const;

  std::span<const std::uint32_t> doubleComparisons;
};

}  // namespace ombrix

#endif
