#include "solver/move/movekflip.h"

#include "common/failure.h"

namespace ombrix {

MoveKFlip::MoveKFlip(Dag& workerDag, std::uint32_t& state, std::uint32_t nbFlips,
                     std::uint32_t moveWeight, std::uint32_t rate, BasicMoveStructure& lists)
    : MoveKFlip("Flip", workerDag, state, nbFlips, moveWeight, rate, lists) {}

MoveKFlip::MoveKFlip(const std::string& baseName, Dag& workerDag, std::uint32_t& state,
                     std::uint32_t nbFlips, std::uint32_t moveWeight, std::uint32_t rate,
                     BasicMoveStructure& lists)
    : MoveSample(formatMoveName(nbFlips, baseName), workerDag, state, nbFlips, moveWeight, rate),
      structure(&lists) {
  if (rate > 100) {
    fail(kInternal, OMBRIX_HERE("MoveKFlip::MoveKFlip"),
         "Targeting rate must be smaller than 100.");
  }
}

bool MoveKFlip::apply() {
  const std::vector<std::uint32_t>& candidates = analysis().freeDecisions;
  if (k > candidates.size()) return false;
  std::uint32_t target = kNone;
  bool hasTarget = drawTarget(target);
  if (hasTarget) {
    const DecisionIncidence own = analysis().incidence(target);
    hasTarget = own.size() == own.nbFree;
  }
  drawSample(static_cast<std::uint32_t>(candidates.size()), hasTarget);
  if (hasTarget) flip(target);
  for (const std::uint32_t index : sample) flip(candidates[index]);
  return true;
}

}  // namespace ombrix
