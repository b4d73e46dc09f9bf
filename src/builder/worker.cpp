#include "builder/worker.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "builder/dagbuilder.h"
#include "builder/modelrecord.h"
#include "builder/solverrecord.h"
#include "solver/move/poolfiller.h"

namespace ombrix {

namespace {

std::uint32_t positiveParam(const Ombrix& solver, const char* key, std::int32_t defaultValue) {
  return static_cast<std::uint32_t>(
      std::max(SolverRecord::advancedParam(solver, key, defaultValue), 0));
}

bool isEnabled(const Ombrix& solver, const char* key) {
  return SolverRecord::advancedParam(solver, key, 1) != 0;
}

PoolSettings readPoolSettings(const Ombrix& solver) {
  PoolSettings settings;
  settings.targetingRate = positiveParam(solver, "targetingLevel", 5) * 10;
  settings.neighborhoodSize = positiveParam(solver, "neighborhoodSize", 8);
  settings.largeMirrorSize = positiveParam(solver, "largeMirrorSize", 50);
  settings.largeRollSize = positiveParam(solver, "largeRollSize", 50);
  settings.basicMovesEnabled = isEnabled(solver, "basicMovesEnabled");
  settings.advancedMovesEnabled = isEnabled(solver, "advancedMovesEnabled");
  settings.tspMovesEnabled = isEnabled(solver, "tspMovesEnabled");
  settings.moveBalanceEnabled = isEnabled(solver, "moveBalanceEnabled");
  settings.moveSwapEnabled = isEnabled(solver, "moveSwapEnabled");
  settings.moveFlipEnabled = isEnabled(solver, "moveFlipEnabled");
  settings.movePathEnabled = isEnabled(solver, "movePathEnabled");
  settings.moveCycleEnabled = isEnabled(solver, "moveCycleEnabled");
  settings.moveForkCycleEnabled = isEnabled(solver, "moveForkCycleEnabled");
  settings.moveForkPathEnabled = isEnabled(solver, "moveForkPathEnabled");
  settings.moveRollEnabled = isEnabled(solver, "moveRollEnabled");
  settings.moveScrambleEnabled = isEnabled(solver, "moveScrambleEnabled");
  settings.moveMirrorEnabled = isEnabled(solver, "moveMirrorEnabled");
  settings.moveSequenceEnabled = isEnabled(solver, "moveSequenceEnabled");
  settings.moveBinPackingEnabled = isEnabled(solver, "moveBinPackingEnabled");
  settings.moveEjectionChainEnabled = isEnabled(solver, "moveEjectionChainEnabled");
  settings.moveSetPartitionEnabled = isEnabled(solver, "moveSetPartitionEnabled");
  return settings;
}

/// The bound of a double objective whose node counts in integers: the last integer that reaches it.
OXValue integralBound(double bound, bool isMaximised) {
  constexpr double kEnd = 9223372036854775808.0;
  const double rounded = isMaximised ? std::ceil(bound) : std::floor(bound);
  if (rounded >= kEnd) return OXValue::ofInt(std::numeric_limits<std::int64_t>::max());
  if (rounded < -kEnd) return OXValue::ofInt(std::numeric_limits<std::int64_t>::min());
  return OXValue::ofInt(static_cast<std::int64_t>(rounded));
}

/// The bounds of the parameters, which follow the types of the expressions, as the nodes read them.
std::vector<OXValue> readObjectiveBounds(const OXParam& param, const DagFixedFields& fields) {
  std::vector<OXValue> bounds = SolverRecord::objectiveBounds(param);
  for (std::uint32_t i = 0; i < fields.nbObjectives(); ++i) {
    const bool isDouble = SolverRecord::objectiveTypes(param)[i] == kDoubleType;
    if (isDouble && fields.domains[fields.objectives[i]] != kDoubleDomain) {
      bounds[i] = integralBound(bounds[i].doubleValue, fields.directions[i] != 0);
    }
  }
  return bounds;
}

}  // namespace

Worker::Worker(Ombrix& owner) : solver(&owner) {
  const DagBuilder& builder = *ModelRecord::dagBuilder(SolverRecord::model(owner));
  dag = std::make_unique<Dag>(builder.getFixedFields());
  heuristic = std::make_unique<HeuristicAutoAnnealing>(*dag, &rng);
  autonomousStructure = std::make_unique<AutonomousStructure>(*dag, builder.moveAnalysis(), rng);
  if (builder.moveAnalysis().advancedMovesOn) autonomousStructure->rebuild();
  basicMoveStructure =
      std::make_unique<BasicMoveStructure>(*dag, builder.constraintAnalysis(), rng);
  heuristic->setRestartingRatio(positiveParam(owner, "restartingLevel", 3) * 10);
  heuristic->setMoveExploration(isEnabled(owner, "moveExplorationEnabled"));
  readParameters();
  fillMovePool(*heuristic, *basicMoveStructure, builder.moveAnalysis().doubleComparisons,
               readPoolSettings(owner), autonomousStructure.get());
}

Worker::~Worker() = default;

void Worker::readParameters() {
  const OXParam& param = SolverRecord::param(*solver);
  rng = static_cast<std::uint32_t>(SolverRecord::seed(param));
  heuristic->setAnnealingWindow(static_cast<std::uint32_t>(SolverRecord::annealingLevel(param)) +
                                1);
  heuristic->objectiveBounds = readObjectiveBounds(param, *dag->fixedFields);
}

}  // namespace ombrix
