#include "solver/move/poolfiller.h"

#include <algorithm>
#include <array>
#include <memory>
#include <tuple>
#include <utility>

#include "solver/move/movebinpacking.h"
#include "solver/move/moveejectionchain.h"
#include "solver/move/movefloatbalance.h"
#include "solver/move/movefloatsimplekflip.h"
#include "solver/move/movefloattight.h"
#include "solver/move/movekbalance.h"
#include "solver/move/movekcycle.h"
#include "solver/move/movekflip.h"
#include "solver/move/moveklforkcycle.h"
#include "solver/move/moveklforkpath.h"
#include "solver/move/movekmirror.h"
#include "solver/move/movekpath.h"
#include "solver/move/movekroll.h"
#include "solver/move/movekscramble.h"
#include "solver/move/movekswap.h"
#include "solver/move/movesimplekflip.h"

namespace ombrix {

namespace {

/// The weights of one kind of move for k = 1, 2, ...; beyond the table they are 0.
using WeightTable = std::array<std::uint32_t, 10>;
constexpr WeightTable kBalanceWeights = {4, 2, 1, 1, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kSwapWeights = {4, 2, 1, 1, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kFlipWeights = {8, 8, 2, 1, 1, 1, 1, 1, 0, 0};
constexpr WeightTable kPathWeights = {0, 6, 6, 8, 8, 4, 2, 1, 0, 0};
constexpr WeightTable kCycleWeights = {0, 2, 4, 8, 8, 4, 2, 1, 0, 0};
constexpr WeightTable kForkCycle2Weights = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kForkCycle3Weights = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kForkPath2Weights = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kForkPath3Weights = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
constexpr WeightTable kRollWeights = {4, 8, 8, 8, 8, 8, 8, 8, 8, 8};
constexpr WeightTable kScrambleWeights = {0, 0, 4, 8, 8, 4, 2, 1, 1, 1};
constexpr WeightTable kMirrorWeights = {4, 8, 8, 8, 8, 8, 8, 8, 8, 8};
constexpr auto kTableEnd = static_cast<std::uint32_t>(std::tuple_size_v<WeightTable>);

/// The weight of the large moves, whatever their size.
constexpr std::uint32_t kLargeWeight = 8;

/// Adds the moves of one worker, family by family.
class PoolFiller {
public:
  PoolFiller(MovePool& target, BasicMoveStructure& lists, const PoolSettings& options,
             AutonomousStructure* constraintMirror)
      : pool(target),
        structure(lists),
        planStructure(constraintMirror),
        settings(options),
        rate(options.targetingRate),
        dag(*lists.dag),
        rng(*lists.rng),
        analysis(*lists.constraintAnalysis),
        fields(*lists.dag->fixedFields) {}

  void fill(std::span<const std::uint32_t> doubleComparisons) {
    if (fields.nbBooleanVars > 0) {
      if (settings.tspMovesEnabled) addRunMoves();
      if (settings.advancedMovesEnabled && planStructure != nullptr) addPlannedMoves();
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

  void addSimpleFlip() { add<MoveSimpleKFlip>(1u, 1u, rate); }

  void addFloatMoves(std::span<const std::uint32_t> doubleComparisons) {
    add<MoveFloatSimpleKFlip>(rate);
    if (!doubleComparisons.empty()) add<MoveFloatTight>(doubleComparisons);
    if (!analysis.floatLists.empty()) add<MoveFloatBalance>(rate, structure);
  }

  /// Adds a move of size k if its weight is above 0 and it is wanted.
  template <class M, class... Args>
  void addSized(const WeightTable& table, std::uint32_t k, bool isWanted, Args&&... args) {
    const std::uint32_t weight = table[k - 1];
    if (weight > 0 && isWanted) add<M>(std::forward<Args>(args)..., weight, rate, structure);
  }

  void addRunMoves() {
    const std::uint32_t nbRows = analysis.nbExactlyOneLists;
    for (std::uint32_t k = 2; k <= std::min({settings.neighborhoodSize, kTableEnd, nbRows}); ++k) {
      for (const std::uint32_t distance : {1u, 2u, 3u}) {
        const bool isRolled = settings.moveRollEnabled && evenPart(k) >= 2 * distance;
        addSized<MoveKRoll>(kRollWeights, k, isRolled, k, k, distance);
      }
      addSized<MoveKScramble>(kScrambleWeights, k, settings.moveScrambleEnabled && k >= 4, k);
      addSized<MoveKMirror>(kMirrorWeights, k, settings.moveMirrorEnabled, k, k);
    }
  }

  void addPlannedMoves() {
    if (planStructure->moveAnalysis->staticNodes.empty()) return;
    if (settings.moveBinPackingEnabled) addPlanned<MoveBinPacking>();
    if (settings.moveEjectionChainEnabled) addPlanned<MoveEjectionChain>();
  }

  template <class M>
  void addPlanned() {
    add<M>(2u, 2u, 1u, rate, *planStructure);
    add<M>(3u, 3u, 1u, rate, *planStructure);
    add<M>(4u, 4u, 2u, rate, *planStructure);
  }

  void addBasicMoves() {
    for (std::uint32_t k = 1; k <= std::min(settings.neighborhoodSize, kTableEnd); ++k) {
      addFlipMoves(k);
      if (k >= 2) addChainMoves(k);
    }
    addLargeMoves();
  }

  void addFlipMoves(std::uint32_t k) {
    const std::uint32_t balanceWeight = kBalanceWeights[k - 1];
    if (balanceWeight > 0 && settings.moveBalanceEnabled && k <= fields.nbInnerNodes) {
      add<MoveKBalance>(k, balanceWeight);
    }
    const bool isSwapped = settings.moveSwapEnabled && 2 * k <= analysis.swapDecisions.size();
    addSized<MoveKSwap>(kSwapWeights, k, isSwapped, k);
    const bool isFlipped = settings.moveFlipEnabled && k <= analysis.freeDecisions.size();
    addSized<MoveKFlip>(kFlipWeights, k, isFlipped, k);
  }

  void addChainMoves(std::uint32_t k) {
    const bool hasFreeLists = analysis.nbFreeLists > 0;
    const bool hasLists = !analysis.booleanLists.empty();
    const bool forksCycle = settings.moveForkCycleEnabled && k >= 3 && hasLists;
    const bool forksPath = settings.moveForkPathEnabled && k >= 3 && hasFreeLists;
    addSized<MoveKPath>(kPathWeights, k, settings.movePathEnabled && hasFreeLists, k);
    addSized<MoveKCycle>(kCycleWeights, k, settings.moveCycleEnabled && hasLists, k);
    addSized<MoveKLForkCycle>(kForkCycle2Weights, k, forksCycle, k, 2u);
    addSized<MoveKLForkCycle>(kForkCycle3Weights, k, forksCycle, k, 3u);
    addSized<MoveKLForkPath>(kForkPath2Weights, k, forksPath, k, 2u);
    addSized<MoveKLForkPath>(kForkPath3Weights, k, forksPath, k, 3u);
  }

  /// The moves on long runs, of a size between the neighborhood and their own.
  void addLargeMoves() {
    const std::uint32_t largestRun = analysis.nbExactlyOneLists;
    const std::uint32_t smallest = settings.neighborhoodSize;
    const std::uint32_t mirror = std::min(settings.largeMirrorSize, largestRun);
    if (settings.moveSwapEnabled && mirror >= 2) {
      add<MoveKMirror>(mirror, smallest, kLargeWeight, rate, structure);
    }
    const std::uint32_t roll = std::min(settings.largeRollSize, largestRun);
    for (const std::uint32_t distance : {1u, 2u, 3u, 25u}) {
      if (!settings.moveRollEnabled || evenPart(roll) < 2 * distance) continue;
      add<MoveKRoll>(roll, smallest, distance, kLargeWeight, rate, structure);
    }
  }

  static std::uint32_t evenPart(std::uint32_t size) { return size - size % 2; }

  MovePool& pool;
  BasicMoveStructure& structure;
  AutonomousStructure* planStructure;
  const PoolSettings& settings;
  const std::uint32_t rate;
  Dag& dag;
  std::uint32_t& rng;
  const ConstraintAnalysis& analysis;
  const DagFixedFields& fields;
};

}  // namespace

void fillMovePool(MovePool& pool, BasicMoveStructure& structure,
                  std::span<const std::uint32_t> doubleComparisons, const PoolSettings& settings,
                  AutonomousStructure* mirror) {
  PoolFiller(pool, structure, settings, mirror).fill(doubleComparisons);
}

}  // namespace ombrix
