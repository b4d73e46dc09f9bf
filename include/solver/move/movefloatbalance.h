#ifndef OMBRIX_SOLVER_MOVE_MOVEFLOATBALANCE_H
#define OMBRIX_SOLVER_MOVE_MOVEFLOATBALANCE_H

#include "solver/move/basicmovestructure.h"
#include "solver/move/move.h"

namespace ombrix {

/// Moves two decisions of one linear sum against each other, as far as the bounds of both allow, so
/// that the sum holds.
class MoveFloatBalance : public Move {
public:
  MoveFloatBalance(Dag& workerDag, std::uint32_t& state, std::uint32_t rate,
                   BasicMoveStructure& lists);

  bool apply() override;

private:
  /// A term coefficient * decision of the sum.
  struct Term {
    double coefficient;
    std::uint32_t decision;
  };

  std::uint32_t pickDecision();
  std::uint32_t pickOtherPosition(std::uint32_t position, std::uint32_t nbOperands);
  Term termAt(std::uint32_t list, std::uint32_t position) const;
  double valueOf(std::uint32_t decision) const;
  double room(const Term& term, double direction) const;
  bool tryDirection(const Term& first, const Term& second, double direction);

  std::uint32_t targetingRate;  ///< percent
  BasicMoveStructure* structure;
};

}  // namespace ombrix

#endif
