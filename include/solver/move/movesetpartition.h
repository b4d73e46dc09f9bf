#ifndef OMBRIX_SOLVER_MOVE_MOVESETPARTITION_H
#define OMBRIX_SOLVER_MOVE_MOVESETPARTITION_H

#include <cstdint>
#include <span>
#include <vector>

#include "solver/kernel/cacheline.h"
#include "solver/kernel/sparseset.h"
#include "solver/move/basicmovestructure.h"
#include "solver/move/move.h"

namespace ombrix {

/// Exchanges decisions of exactly-one lists and keeps every such list at one: it clears a decision
/// that is set, and then repairs the lists that lack one or have two, a decision at a time, until
/// none is left. So it finds the exchanges of decisions that lie in several lists at once, as the
/// columns of a partition do, where a chain from list to list would have to fork.
///
/// A list is a set here and a decision an item of its sets. No decision can change twice in a move,
/// so a set loses one item and gets one, in either order, or stays as it is; an item that would
/// come second is never taken. Costs a bounded walk, with a look at a bounded number of items per
/// step.
class MoveSetPartition : public Move {
public:
  MoveSetPartition(Dag& workerDag, std::uint32_t& state, BasicMoveStructure& lists);

  bool apply() override;

private:
  enum Change : std::uint8_t { kUnchanged = 0, kCleared = 1, kFilled = 2, kExchanged = 3 };

  bool exchange();
  bool clearItem(std::uint32_t set);
  bool fill(std::uint32_t set);
  void change(std::uint32_t item, Change how);
  bool hasChange(std::uint32_t item, Change how) const;
  int nbConflictsAdded(std::uint32_t item) const;
  void forgetChanges();

  /// The set of a list, or kNone when it is not an exactly-one list.
  std::uint32_t setOf(std::uint32_t list) const;
  template <class Visit>
  void forEachSet(std::uint32_t item, Visit visit) const;

  std::uint32_t maxAttempts = 30;
  BasicMoveStructure* structure;
  std::span<const std::uint32_t> sets;    ///< the list of each set, ascending
  CacheLineVector<std::uint8_t> changes;  ///< per set: what the open move did to it
  SparseSet conflictingSets;              ///< those that were cleared or filled, but not both
};

}  // namespace ombrix

#endif
