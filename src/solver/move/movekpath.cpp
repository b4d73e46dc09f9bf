#include "solver/move/movekpath.h"

namespace ombrix {

MoveKPath::MoveKPath(Dag& workerDag, std::uint32_t& state, std::uint32_t length,
                     std::uint32_t moveWeight, std::uint32_t rate, BasicMoveStructure& lists)
    : MoveChain(formatMoveName(length, "Path"), workerDag, state, length, moveWeight, rate, lists) {
}

bool MoveKPath::apply() {
  forgetChain();
  ChainLink start;
  ChainLink end;
  if (!pathStart(start) || !extendChain(start, k - 1, end)) return false;
  const std::uint32_t last = randomOperand(end.list, end.side);
  if (last == kNone) return false;
  // The chain may end where it passed: then it is shorter by one.
  flipOperand(end.list, last);
  return nbFlips > 0;
}

}  // namespace ombrix
