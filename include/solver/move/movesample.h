#ifndef OMBRIX_SOLVER_MOVE_MOVESAMPLE_H
#define OMBRIX_SOLVER_MOVE_MOVESAMPLE_H

#include <string>
#include <vector>

#include "solver/move/distinctsampler.h"
#include "solver/move/move.h"

namespace ombrix {

/// The base of the moves that change a few decisions drawn from a fixed set of candidates, one of
/// which may be replaced by a decision that is aimed at. k is the number of draws.
class MoveSample : public Move {
protected:
  MoveSample(std::string moveName, Dag& workerDag, std::uint32_t& state, std::uint32_t nbDraws,
             std::uint32_t moveWeight, std::uint32_t rate);

  /// With the chance of the targeting rate, a decision to aim at; the state is not stepped when the
  /// rate is 0.
  bool drawTarget(std::uint32_t& decision);
  /// Fills sample with distinct indices below n: one fewer than k when a target takes a place.
  void drawSample(std::uint32_t n, bool hasTarget);

  std::uint32_t k;
  std::uint32_t targetingRate;  ///< percent
  CacheLineVector<std::uint32_t> sample;

private:
  DistinctSampler sampler;
};

}  // namespace ombrix

#endif
