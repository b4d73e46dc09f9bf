#ifndef OMBRIX_SOLVER_MOVE_MOVECHAIN_H
#define OMBRIX_SOLVER_MOVE_MOVECHAIN_H

#include <cstdint>
#include <span>
#include <string>

#include "solver/kernel/dagfixedfields.h"
#include "solver/move/basicmovestructure.h"
#include "solver/move/move.h"

namespace ombrix {

/// Where a chain stands: in this list, the next flip must raise an operand that is at 0 (side true)
/// or lower one that is at 1 (side false).
struct ChainLink {
  std::uint32_t list = kNone;
  bool side = false;
};

/// The base of the moves that walk from list to list. When a decision goes up in a list, another
/// one of the list must go down for the sum to hold; that one lies in another list, where in turn
/// one must go up, and so on. All states of operands are committed ones; a decision that was
/// changed in the open move is never changed again: the chain fails there. The operands of a list
/// must be sorted by node number, or common decisions are missed.
class MoveChain : public Move {
public:
  /// An entry of lists from begin below end that is not exclude: the first from a random one on,
  /// cyclically; -1 when there is none.
  static int randomOtherEntry(std::uint32_t& state, std::span<const std::uint32_t> lists,
                              std::uint32_t begin, std::uint32_t end, std::uint32_t exclude);

protected:
  /// Raises code 6 when length is below 2.
  MoveChain(std::string moveName, Dag& workerDag, std::uint32_t& state, std::uint32_t length,
            std::uint32_t moveWeight, std::uint32_t rate, BasicMoveStructure& lists);

  /// To be called first in every apply.
  void forgetChain();

  /// A list among all boolean ones, with the side of which it has fewer operands.
  void randomStart(ChainLink& link);
  /// A list of the decision, with a chain that begins there. False when all its lists hold doubles.
  bool targetedStart(std::uint32_t decision, ChainLink& link);
  /// A free list, of a decision that is aimed at or any. False when there is none.
  bool pathStart(ChainLink& link);
  /// With the chance of the targeting rate targetedStart, otherwise randomStart. False without
  /// lists.
  bool anyStart(ChainLink& link);
  /// Whether a decision to aim at was drawn; the draw is made also at rate 0.
  bool drawTarget(std::uint32_t& decision);
  /// Begins the chain in the list of one of the decision's entries, with the decision itself.
  void startAt(std::uint32_t decision, std::uint32_t entry, ChainLink& link);

  /// Moves on to another list of the operand at a position. False when it has none.
  bool nextLink(ChainLink& link, std::uint32_t position);
  /// Flips and moves on so many times, from start to out. On failure out has no list; what was
  /// flipped stays, for finish to reject.
  bool extendChain(const ChainLink& start, std::uint32_t steps, ChainLink& out);
  /// A random position of an operand that fits the side, or kNone.
  std::uint32_t randomOperand(std::uint32_t list, bool side);
  /// A decision in both lists that fits the side of each, or kNone.
  std::uint32_t closingDecision(std::uint32_t listA, std::uint32_t listB, bool sideA, bool sideB);
  /// False when the decision was changed in this move.
  bool flipOperand(std::uint32_t list, std::uint32_t position);
  bool flipDecision(std::uint32_t decision);

  const ConstraintAnalysis& analysis() const { return *structure->constraintAnalysis; }
  const Node& node(std::uint32_t list) const { return *dag->nodes[list]; }
  bool fits(std::uint32_t list, std::uint32_t position, bool side) const {
    return node(list).isNotMaxNode(*dag, list, position) == side;
  }

  std::uint32_t k;                  ///< the length of the chain
  std::uint32_t targetingRate;      ///< percent
  std::int32_t firstPosition = -1;  ///< of a chosen first operand in the first list
  BasicMoveStructure* structure;
  std::uint32_t nbFlips = 0;  ///< decisions changed by the present apply

private:
  bool hasSingleOperand(std::uint32_t list, bool side) const;
  std::uint32_t singleOperandIfCommon(std::uint32_t list, bool side, std::uint32_t other,
                                      bool otherSide) const;
  std::uint32_t firstCommon(std::uint32_t listA, std::uint32_t begin, std::uint32_t end,
                            std::uint32_t listB, bool sideA, bool sideB) const;
};

}  // namespace ombrix

#endif
