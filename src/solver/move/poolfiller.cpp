#include "solver/move/poolfiller.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "solver/kernel/evaluationrisk.h"
#include "solver/move/basicmovefactory.h"
#include "solver/move/movebinpacking.h"
#include "solver/move/moveejectionchain.h"
#include "solver/move/movefloatbalance.h"
#include "solver/move/movefloatsimplekflip.h"
#include "solver/move/movefloattight.h"
#include "solver/move/movekmirror.h"
#include "solver/move/movekroll.h"
#include "solver/move/movekscramble.h"
#include "solver/move/movesequence.h"
#include "solver/move/movesetpartition.h"
#include "solver/move/movesimplekflip.h"

namespace ombrix {

namespace {

constexpr WeightTable kRollWeights = {4, 8, 8, 8, 8, 8, 8, 8, 8, 8};
constexpr WeightTable kScrambleWeights = {0, 0, 4, 8, 8, 4, 2, 1, 1, 1};
constexpr WeightTable kMirrorWeights = {4, 8, 8, 8, 8, 8, 8, 8, 8, 8};
constexpr auto kTableEnd = static_cast<std::uint32_t>(std::tuple_size_v<WeightTable>);

/// The weight of the large moves, whatever their size.
constexpr std::uint32_t kLargeWeight = 8;

/// Adds the moves of one worker, family by family.
class PoolFiller {
public:
  PoolFiller(Heuristic& target, BasicMoveStructure& lists, const PoolSettings& options,
             AutonomousStructure* constraintMirror)
      : heuristic(target),
        pool(target.movePool),
        structure(lists),
        planStructure(constraintMirror),
        settings(options),
        rate(options.targetingRate),
        dag(*lists.dag),
        rng(*lists.rng),
        analysis(*lists.constraintAnalysis),
        fields(*lists.dag->fixedFields),
        basicMoves(lists, rate) {}

  void fill(std::span<const std::uint32_t> doubleComparisons) {
    if (fields.nbBooleanVars > 0) {
      if (settings.tspMovesEnabled) addRunMoves();
      if (settings.advancedMovesEnabled) addAdvancedMoves();
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

  void addIf(bool isWanted, std::unique_ptr<Move> move) {
    if (isWanted && move != nullptr) pool.addMove(std::move(move));
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
    const std::uint32_t weight = weightAt(table, k);
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

  void addAdvancedMoves() {
    const bool hasMirror =
        planStructure != nullptr && !planStructure->moveAnalysis->staticNodes.empty();
    if (settings.moveSequenceEnabled) addSequences();
    if (settings.moveBinPackingEnabled && hasMirror) addPlanned<MoveBinPacking>();
    if (settings.moveEjectionChainEnabled && hasMirror) addPlanned<MoveEjectionChain>();
    if (settings.moveSetPartitionEnabled && analysis.nbExactlyOneLists > 0) {
      add<MoveSetPartition>(structure);
    }
  }

  void addSequences() {
    // Where the constraints are all that keeps an evaluation from failing, they stay active.
    const bool keepConstraintsOff = !canEvaluationFail(fields);
    for (const auto& [nbSteps, freeLevel] : {std::pair{2u, 0u}, {3u, 1u}, {4u, 2u}}) {
      auto move =
          std::make_unique<MoveSequence>(dag, rng, nbSteps, freeLevel, rate, heuristic, structure);
      move->keepConstraintsOff = keepConstraintsOff;
      pool.addMove(std::move(move));
    }
  }

  template <class M>
  void addPlanned() {
    add<M>(2u, 2u, 1u, rate, *planStructure);
    add<M>(3u, 3u, 1u, rate, *planStructure);
    add<M>(4u, 4u, 2u, rate, *planStructure);
  }

  void addBasicMoves() {
    for (std::uint32_t k = 1; k <= std::min(settings.neighborhoodSize, kTableEnd); ++k) {
      addIf(settings.moveBalanceEnabled, basicMoves.balance(k));
      addIf(settings.moveSwapEnabled, basicMoves.swap(k));
      addIf(settings.moveFlipEnabled, basicMoves.flip(k));
      addIf(settings.movePathEnabled, basicMoves.path(k));
      addIf(settings.moveCycleEnabled, basicMoves.cycle(k));
      addIf(settings.moveForkCycleEnabled, basicMoves.forkCycle(k, 2));
      addIf(settings.moveForkCycleEnabled, basicMoves.forkCycle(k, 3));
      addIf(settings.moveForkPathEnabled, basicMoves.forkPath(k, 2));
      addIf(settings.moveForkPathEnabled, basicMoves.forkPath(k, 3));
    }
    addLargeMoves();
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

  Heuristic& heuristic;
  MovePool& pool;
  BasicMoveStructure& structure;
  AutonomousStructure* planStructure;
  const PoolSettings& settings;
  const std::uint32_t rate;
  Dag& dag;
  std::uint32_t& rng;
  const ConstraintAnalysis& analysis;
  const DagFixedFields& fields;
  const BasicMoveFactory basicMoves;
};

}  // namespace

void fillMovePool(Heuristic& heuristic, BasicMoveStructure& structure,
                  std::span<const std::uint32_t> doubleComparisons, const PoolSettings& settings,
                  AutonomousStructure* mirror) {
  PoolFiller(heuristic, structure, settings, mirror).fill(doubleComparisons);
}

}  // namespace ombrix
