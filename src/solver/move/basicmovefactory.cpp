#include "solver/move/basicmovefactory.h"

#include "solver/move/movekbalance.h"
#include "solver/move/movekcycle.h"
#include "solver/move/movekflip.h"
#include "solver/move/moveklforkcycle.h"
#include "solver/move/moveklforkpath.h"
#include "solver/move/movekpath.h"
#include "solver/move/movekswap.h"

namespace ombrix {

namespace {

constexpr WeightTable kBalanceWeights = {4, 2, 1, 1, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kSwapWeights = {4, 2, 1, 1, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kFlipWeights = {8, 8, 2, 1, 1, 1, 1, 1, 0, 0};
constexpr WeightTable kPathWeights = {0, 6, 6, 8, 8, 4, 2, 1, 0, 0};
constexpr WeightTable kCycleWeights = {0, 2, 4, 8, 8, 4, 2, 1, 0, 0};
constexpr WeightTable kForkCycle2Weights = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kForkCycle3Weights = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kForkPath2Weights = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kForkPath3Weights = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0};

}  // namespace

template <class M, class... More>
std::unique_ptr<Move> BasicMoveFactory::make(const WeightTable& table, bool isFed, std::uint32_t k,
                                             More... more) const {
  const std::uint32_t weight = weightAt(table, k);
  if (weight == 0 || !isFed) return nullptr;
  return std::make_unique<M>(*structure->dag, *structure->rng, k, more..., weight, rate,
                             *structure);
}

std::unique_ptr<Move> BasicMoveFactory::balance(std::uint32_t k) const {
  const std::uint32_t weight = weightAt(kBalanceWeights, k);
  if (weight == 0 || k > structure->dag->fixedFields->nbInnerNodes) return nullptr;
  return std::make_unique<MoveKBalance>(*structure->dag, *structure->rng, k, weight);
}

std::unique_ptr<Move> BasicMoveFactory::swap(std::uint32_t k) const {
  const std::size_t nbCandidates = structure->constraintAnalysis->swapDecisions.size();
  return make<MoveKSwap>(kSwapWeights, std::size_t{2} * k <= nbCandidates, k);
}

std::unique_ptr<Move> BasicMoveFactory::flip(std::uint32_t k) const {
  return make<MoveKFlip>(kFlipWeights, k <= structure->constraintAnalysis->freeDecisions.size(), k);
}

std::unique_ptr<Move> BasicMoveFactory::path(std::uint32_t k) const {
  return make<MoveKPath>(kPathWeights, k >= 2 && hasFreeLists(), k);
}

std::unique_ptr<Move> BasicMoveFactory::cycle(std::uint32_t k) const {
  return make<MoveKCycle>(kCycleWeights, k >= 2 && hasLists(), k);
}

std::unique_ptr<Move> BasicMoveFactory::forkCycle(std::uint32_t k, std::uint32_t nbBranches) const {
  const WeightTable& table = nbBranches == 2 ? kForkCycle2Weights : kForkCycle3Weights;
  return make<MoveKLForkCycle>(table, k >= 3 && hasLists(), k, nbBranches);
}

std::unique_ptr<Move> BasicMoveFactory::forkPath(std::uint32_t k, std::uint32_t nbBranches) const {
  const WeightTable& table = nbBranches == 2 ? kForkPath2Weights : kForkPath3Weights;
  return make<MoveKLForkPath>(table, k >= 3 && hasFreeLists(), k, nbBranches);
}

}  // namespace ombrix
