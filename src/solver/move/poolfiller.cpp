#include "solver/move/poolfiller.h"

#include <array>
#include <memory>

#include "solver/move/movefloatbalance.h"
#include "solver/move/movefloatsimplekflip.h"
#include "solver/move/movefloattight.h"
#include "solver/move/movekbalance.h"
#include "solver/move/movekflip.h"
#include "solver/move/movekswap.h"
#include "solver/move/movesimplekflip.h"

namespace ombrix {

namespace {

/// The weights of one kind of move for k = 1, 2, ...: small changes succeed most often, so they are
/// drawn most often.
using WeightTable = std::array<std::uint32_t, 10>;
constexpr WeightTable kBalanceWeights = {4, 2, 1, 1, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kSwapWeights = {4, 2, 1, 1, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kFlipWeights = {8, 8, 2, 1, 1, 1, 1, 1, 0, 0};

std::uint32_t weightOf(const WeightTable& table, std::uint32_t k) {
  return k >= 1 && k <= table.size() ? table[k - 1] : 0;
}

/// Adds the moves of one worker, family by family.
class PoolFiller {
public:
  PoolFiller(MovePool& target, BasicMoveStructure& lists, const PoolSettings& options)
      : pool(target),
        structure(lists),
        settings(options),
        dag(*lists.dag),
        rng(*lists.rng),
        analysis(*lists.constraintAnalysis),
        fields(*lists.dag->fixedFields) {}

  void fill(std::span<const std::uint32_t> doubleComparisons) {
    if (fields.nbBooleanVars > 0) {
      if (settings.basicMovesEnabled) addBasicMoves();
      addSimpleFlip();
    }
    if (fields.nbFloatVars > 0) addFloatMoves(doubleComparisons);
    if (pool.getNbMoves() == 0) addSimpleFlip();
  }

private:
  template <class M, class... Args>
  void add(Args&&... args) {
    pool.addMove(std::make_unique<M>(dag, rng, std::forward<Args>(args)...));
  }

  void addSimpleFlip() { add<MoveSimpleKFlip>(1u, 1u, settings.targetingRate); }

  void addFloatMoves(std::span<const std::uint32_t> doubleComparisons) {
    add<MoveFloatSimpleKFlip>(settings.targetingRate);
    if (!doubleComparisons.empty()) add<MoveFloatTight>(doubleComparisons);
    if (!analysis.floatLists.empty()) add<MoveFloatBalance>(settings.targetingRate, structure);
  }

  void addBasicMoves() {
    for (std::uint32_t k = 1; k <= settings.neighborhoodSize && k <= kFlipWeights.size(); ++k) {
      addBasicMoves(k);
    }
  }

  void addBasicMoves(std::uint32_t k) {
    const std::uint32_t rate = settings.targetingRate;
    if (const std::uint32_t weight = weightOf(kBalanceWeights, k);
        weight > 0 && settings.moveBalanceEnabled && k <= fields.nbInnerNodes) {
      add<MoveKBalance>(k, weight);
    }
    if (const std::uint32_t weight = weightOf(kSwapWeights, k);
        weight > 0 && settings.moveSwapEnabled && 2 * k <= analysis.swapDecisions.size()) {
      add<MoveKSwap>(k, weight, rate, structure);
    }
    if (const std::uint32_t weight = weightOf(kFlipWeights, k);
        weight > 0 && settings.moveFlipEnabled && k <= analysis.freeDecisions.size()) {
      add<MoveKFlip>(k, weight, rate, structure);
    }
  }

  MovePool& pool;
  BasicMoveStructure& structure;
  const PoolSettings& settings;
  Dag& dag;
  std::uint32_t& rng;
  const ConstraintAnalysis& analysis;
  const DagFixedFields& fields;
};

}  // namespace

void fillMovePool(MovePool& pool, BasicMoveStructure& structure,
                  std::span<const std::uint32_t> doubleComparisons, const PoolSettings& settings) {
  PoolFiller(pool, structure, settings).fill(doubleComparisons);
}

}  // namespace ombrix
