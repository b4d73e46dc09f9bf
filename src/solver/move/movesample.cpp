#include "solver/move/movesample.h"

#include <algorithm>
#include <utility>

#include "solver/kernel/random.h"
#include "solver/move/targeting.h"

namespace ombrix {

MoveSample::MoveSample(std::string moveName, Dag& workerDag, std::uint32_t& state,
                       std::uint32_t nbDraws, std::uint32_t moveWeight, std::uint32_t rate)
    : Move(std::move(moveName), workerDag, state, moveWeight), k(nbDraws), targetingRate(rate) {
  // A move can wait for a long time at weight 0: its first apply must not allocate either.
  const std::uint32_t nbDrawn = std::min(k, dag->fixedFields->firstInnerNode);
  sample.reserve(nbDrawn);
  sampler.reserve(nbDrawn);
}

bool MoveSample::drawTarget(std::uint32_t& decision) {
  return targetingRate != 0 && randomPercent(*rng, targetingRate) &&
         pickTargetedBoolean(*dag, *rng, decision);
}

void MoveSample::drawSample(std::uint32_t n, bool hasTarget) {
  sampler.sample(*rng, n, hasTarget ? k - 1 : k, sample);
}

}  // namespace ombrix
