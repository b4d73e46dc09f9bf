#ifndef OMBRIX_SOLVER_MOVE_MOVERUN_H
#define OMBRIX_SOLVER_MOVE_MOVERUN_H

#include <string>
#include <utility>

#include "solver/move/movechain.h"

namespace ombrix {

/// The base of the moves on a run of exactly-one lists: consecutive rows of the table that a
/// permutation or a tour takes in a model. The content of a row is its one decision at 1, told by
/// the other list of that decision, its column.
class MoveRun : public MoveChain {
protected:
  using MoveChain::MoveChain;

  /// A run of at most so many rows, from its first to its last index in booleanLists; the order
  /// tells the direction. Two equal ends mean that there is none.
  std::pair<std::uint32_t, std::uint32_t> pickRun(std::uint32_t length);
  /// The length of a run between smallest and k.
  std::uint32_t drawLength(std::uint32_t smallest);
  /// Clears the content of a row and tells its column. False when it was cleared in this move.
  bool takeContent(std::uint32_t row, ChainLink& column);
  /// Sets the decision of a row that lies in a column.
  bool putContent(std::uint32_t row, const ChainLink& column);
  std::uint32_t rowAt(std::uint32_t index) const { return analysis().booleanLists[index]; }

private:
  bool sharesAnEnd(std::uint32_t row, std::uint32_t other) const;
};

/// A larger run counts less when weights are shifted.
double selectionFactorOfRun(std::uint32_t length);

}  // namespace ombrix

#endif
