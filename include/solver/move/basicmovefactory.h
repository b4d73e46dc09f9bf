#ifndef OMBRIX_SOLVER_MOVE_BASICMOVEFACTORY_H
#define OMBRIX_SOLVER_MOVE_BASICMOVEFACTORY_H

#include <array>
#include <cstdint>
#include <memory>

#include "solver/move/basicmovestructure.h"
#include "solver/move/move.h"

namespace ombrix {

/// The weights of one kind of move for k = 1, 2, ...; beyond the table they are 0.
using WeightTable = std::array<std::uint32_t, 10>;

inline std::uint32_t weightAt(const WeightTable& table, std::uint32_t k) {
  return k - 1 < table.size() ? table[k - 1] : 0;
}

/// Makes the basic moves of each size with their weights, for the pool and for the moves that are
/// made of others. Every operation answers null where the weight is 0 or the model cannot feed the
/// move.
class BasicMoveFactory {
public:
  /// targetingRate is in percent; the lists outlive the moves.
  BasicMoveFactory(BasicMoveStructure& lists, std::uint32_t targetingRate)
      : structure(&lists), rate(targetingRate) {}

  std::unique_ptr<Move> balance(std::uint32_t k) const;
  std::unique_ptr<Move> swap(std::uint32_t k) const;
  std::unique_ptr<Move> flip(std::uint32_t k) const;
  std::unique_ptr<Move> path(std::uint32_t k) const;
  std::unique_ptr<Move> cycle(std::uint32_t k) const;
  /// nbBranches is 2 or 3.
  std::unique_ptr<Move> forkCycle(std::uint32_t k, std::uint32_t nbBranches) const;
  std::unique_ptr<Move> forkPath(std::uint32_t k, std::uint32_t nbBranches) const;

private:
  /// A move of the family that takes lists; more stands between the size and the weight.
  template <class M, class... More>
  std::unique_ptr<Move> make(const WeightTable& table, bool isFed, std::uint32_t k,
                             More... more) const;
  bool hasFreeLists() const { return structure->constraintAnalysis->nbFreeLists > 0; }
  bool hasLists() const { return !structure->constraintAnalysis->booleanLists.empty(); }

  BasicMoveStructure* structure;
  std::uint32_t rate;
};

}  // namespace ombrix

#endif
