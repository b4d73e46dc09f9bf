#include "builder/dagbuilder.h"

#include <chrono>
#include <utility>

#include "builder/modelrecord.h"
#include "builder/preprocessor/boundscalculator.h"
#include "builder/preprocessor/boundsinferrer.h"
#include "builder/preprocessor/constantfinder.h"
#include "builder/preprocessor/nodecreator.h"
#include "builder/preprocessor/preprocessor.h"
#include "builder/preprocessor/unaryfinder.h"
#include "builder/solverrecord.h"
#include "common/failure.h"
#include "solver/kernel/clock.h"
#include "solver/kernel/heuristic.h"

namespace ombrix {

namespace {

bool isEnabled(const OXModel& model, const char* key) {
  return SolverRecord::advancedParam(ModelRecord::ombrix(model), key, 1) != 0;
}

/// Runs a pass and reports what it changed, from the counts before and after it.
template <typename Pass>
PassReport runPass(const char* name, Preprocessor& preprocessor) {
  preprocessor.counts = {};
  const std::size_t nbConflictsBefore = preprocessor.conflicts.size();
  const auto start = std::chrono::steady_clock::now();
  Pass(preprocessor).run();
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  return {name, preprocessor.counts, preprocessor.conflicts.size() - nbConflictsBefore,
          elapsed.count()};
}

/// The passes over the bounds, in the order in which each builds on what the ones before it found.
std::vector<PassReport> runPasses(Preprocessor& preprocessor) {
  std::vector<PassReport> reports;
  const OXModel& model = *preprocessor.model;
  if (!isEnabled(model, "preprocessingEnabled")) return reports;
  if (isEnabled(model, "computeBoundsEnabled")) {
    reports.push_back(runPass<BoundsCalculator>("computeBounds", preprocessor));
  }
  if (isEnabled(model, "inferBoundsEnabled")) {
    reports.push_back(runPass<BoundsInferrer>("inferBounds", preprocessor));
  }
  if (isEnabled(model, "findConstantsEnabled")) {
    reports.push_back(runPass<ConstantFinder>("findConstants", preprocessor));
  }
  if (isEnabled(model, "findUnariesEnabled")) {
    reports.push_back(runPass<UnaryFinder>("findUnaries", preprocessor));
  }
  return reports;
}

std::size_t indexOf(const OXExpression& e) {
  return static_cast<std::size_t>(ModelRecord::index(e));
}

}  // namespace

DagBuilder::DagBuilder(OXModel* closedModel) : model(closedModel) {
  if (!ModelRecord::closed(*model)) {
    fail(kInternal, OMBRIX_HERE("DagBuilder::DagBuilder"),
         "The model need to be closed to be transformed");
  }
  transform();
  analysis.emplace(fixedFields);
  plannedMoves.emplace(fixedFields, wantsAdvancedMoves());
}

void DagBuilder::transform() {
  Preprocessor preprocessor(*model, fixedFields);
  reports = runPasses(preprocessor);
  if (preprocessor.conflicts.empty()) {
    reports.push_back(runPass<NodeCreator>("createNodes", preprocessor));
  }
  nodeIds = std::move(preprocessor.nodeIds);
  lowers = std::move(preprocessor.lowerBounds);
  uppers = std::move(preprocessor.upperBounds);
  fixed = std::move(preprocessor.fixed);
  conflictingExpressions = std::move(preprocessor.conflicts);
  fixedFields.finish();
}

bool DagBuilder::wantsAdvancedMoves() const {
  return isEnabled(*model, "advancedMovesEnabled") &&
         (isEnabled(*model, "moveSequenceEnabled") ||
          isEnabled(*model, "moveEjectionChainEnabled") ||
          isEnabled(*model, "moveBinPackingEnabled"));
}

std::uint32_t DagBuilder::decisionNode(const OXExpression& decision) const {
  const std::uint32_t node = nodeIds[indexOf(decision)];
  return node != kNone && isDecisionType(fixedFields.types[node]) ? node : kNone;
}

void DagBuilder::loadDecisions(const std::vector<OXValue>& values, Heuristic& heuristic) const {
  Dag& dag = *heuristic.dag;
  Propagation& propagation = dag.propagation;
  propagation.activeConstraints.clear();
  for (const OXExpression* decision : ModelRecord::decisions(*model)) {
    const std::uint32_t node = decisionNode(*decision);
    if (node == kNone) continue;
    const OXValue value = values[indexOf(*decision)];
    if (fixedFields.domains[node] == kDoubleDomain) {
      propagation.setValue(dag, node, value.doubleValue);
    } else {
      propagation.setValue(dag, node, value.intValue);
    }
  }
  if (propagation.evaluateConstraints(dag)) {
    propagation.evaluateLevels(dag, propagation.activeLevel);
  }
  propagation.accept(dag);
  if (!propagation.activeConstraints.isFull() && propagation.infeasibility.nbViolated < 1) {
    propagation.activateAllConstraints();
  }
  heuristic.bestIteration = heuristic.nbIterations;
  heuristic.bestTime = clockSeconds() - heuristic.startTime;
  heuristic.bestSolution.save();
}

void DagBuilder::storeSolution(const Heuristic& heuristic, OXSolution& publicSolution) const {
  SolverRecord::setStatus(publicSolution, SolverRecord::kUnknownStatus);
  std::vector<bool>& evaluated = SolverRecord::evaluated(publicSolution);
  evaluated.assign(evaluated.size(), false);
  SolverRecord::setDirty(publicSolution, false);
  storeDecisions(heuristic, publicSolution);
  storeObjectives(heuristic, publicSolution);
  OXSolutionStatus status = OXSolutionStatus::Feasible;
  if (heuristic.bestSolution.nbViolated >= 1) {
    status = OXSolutionStatus::Infeasible;
  } else if (heuristic.isObjectiveBoundReached()) {
    status = OXSolutionStatus::Optimal;
  }
  SolverRecord::setStatus(publicSolution, static_cast<std::int32_t>(status));
}

void DagBuilder::storeDecisions(const Heuristic& heuristic, OXSolution& publicSolution) const {
  const auto& best = heuristic.bestSolution.decisionValues;
  for (const OXExpression* decision : ModelRecord::decisions(*model)) {
    const std::size_t index = indexOf(*decision);
    const std::uint32_t node = decisionNode(*decision);
    SolverRecord::values(publicSolution)[index] =
        node == kNone ? lowers[index] : best[fixedFields.posInGroups[node]];
    SolverRecord::evaluated(publicSolution)[index] = true;
  }
}

void DagBuilder::storeObjectives(const Heuristic& heuristic, OXSolution& publicSolution) const {
  const auto& objectives = ModelRecord::objectives(*model);
  for (std::size_t k = 0; k < objectives.size(); ++k) {
    const std::size_t index = indexOf(*objectives[k]);
    OXValue value = heuristic.bestSolution.objectiveValues[k];
    if (ModelRecord::valueType(*objectives[k]) == kDoubleType) {
      value = OXValue::ofDouble(doubleValue(fixedFields.domains[fixedFields.objectives[k]], value));
    }
    SolverRecord::values(publicSolution)[index] = value;
    SolverRecord::evaluated(publicSolution)[index] = true;
  }
}

}  // namespace ombrix
