#include "solver/move/moveklforkpath.h"

namespace ombrix {

MoveKLForkPath::MoveKLForkPath(Dag& workerDag, std::uint32_t& state, std::uint32_t length,
                               std::uint32_t nbBranches, std::uint32_t moveWeight,
                               std::uint32_t rate, BasicMoveStructure& lists)
    : MoveChain(formatMoveName(length, formatMoveName(nbBranches, "ForkPath")), workerDag, state,
                length, moveWeight, rate, lists),
      l(nbBranches) {}

bool MoveKLForkPath::apply() {
  forgetChain();
  ChainLink start;
  ChainLink end;
  if (!pathStart(start) || !extendChain(start, k - 2, end)) return false;
  firstPosition = -1;
  for (std::uint32_t i = 0; i < l; ++i) {
    if (!branchOff(end)) return false;
  }
  return nbFlips > 0;
}

bool MoveKLForkPath::branchOff(const ChainLink& end) {
  ChainLink branch;
  if (!extendChain(end, 1, branch)) return false;
  const std::uint32_t last = randomOperand(branch.list, branch.side);
  if (last == kNone) return false;
  flipOperand(branch.list, last);
  return true;
}

}  // namespace ombrix
