#include "solver/move/moveklforkcycle.h"

namespace ombrix {

MoveKLForkCycle::MoveKLForkCycle(Dag& workerDag, std::uint32_t& state, std::uint32_t length,
                                 std::uint32_t nbBranches, std::uint32_t moveWeight,
                                 std::uint32_t rate, BasicMoveStructure& lists)
    : MoveChain(formatMoveName(length, formatMoveName(nbBranches, "ForkCycle")), workerDag, state,
                length, moveWeight, rate, lists),
      l(nbBranches) {}

bool MoveKLForkCycle::apply() {
  forgetChain();
  ChainLink start;
  ChainLink end;
  if (!anyStart(start) || !extendChain(start, k - 2, end)) return false;
  bool side = start.side;
  for (std::uint32_t i = 0; i < l; ++i) {
    ChainLink branch;
    if (!extendChain(end, 1, branch)) return false;
    const std::uint32_t decision = closingDecision(start.list, branch.list, side, branch.side);
    if (decision == kNone || !flipDecision(decision)) return false;
    // What one branch does in the first list, the next one undoes.
    side = !side;
  }
  return nbFlips > 0;
}

}  // namespace ombrix
