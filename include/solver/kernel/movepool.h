#ifndef OMBRIX_SOLVER_KERNEL_MOVEPOOL_H
#define OMBRIX_SOLVER_KERNEL_MOVEPOOL_H

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <vector>

#include "solver/kernel/cacheline.h"
#include "solver/move/move.h"

namespace ombrix {

/// The moves of one Heuristic. A weight is a multiplicity: weightedMoves holds each move as many
/// times as its weight says, so a weighted draw is one multiplication and one array access whatever
/// the number of moves. A change of a weight takes effect at the next rebuild only; a move of
/// weight 0 stays in moves, where its counters live and from where it can come back.
class MovePool {
public:
  MovePool() = default;
  virtual ~MovePool() = default;
  MovePool(const MovePool&) = delete;
  MovePool& operator=(const MovePool&) = delete;

  /// Takes ownership; the draw is empty until the next rebuild.
  void addMove(std::unique_ptr<Move> move);
  /// Raises code 6 when there is no such move.
  Move* getMove(std::uint32_t index) const;
  std::uint32_t getNbMoves() const { return static_cast<std::uint32_t>(moves.size()); }
  void rebuild();
  /// Writes the table of the counters of all moves, in the order of addition.
  void printStatistics(std::ostream& out) const;

  std::vector<std::unique_ptr<Move>> moves;
  CacheLineVector<Move*> weightedMoves;
};

}  // namespace ombrix

#endif
