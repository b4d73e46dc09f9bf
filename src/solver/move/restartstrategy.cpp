#include "solver/move/restartstrategy.h"

#include <ostream>

#include "solver/kernel/heuristic.h"

namespace ombrix {

void RestartStrategy::reset() {
  nbRestartingIterations = 0;
  nbRestarts = 0;
  startRun();
}

void RestartStrategy::startRun() {
  nbIterations = 0;
  lastImprovement = 0;
  nbAccepted = 0;
  isRestarting = false;
  objectiveIndex = heuristic.objectiveIndex;
  const Dag& dag = *heuristic.dag;
  bestValue = dag.values[dag.fixedFields->objectives[objectiveIndex]];
}

void RestartStrategy::beforeIteration() {
  if (heuristic.objectiveIndex != objectiveIndex) startRun();
}

bool RestartStrategy::decide(MoveStatus& status, Move& move) {
  if (!isRestarting) return false;
  const std::uint32_t objective = heuristic.objectiveIndex;
  move.evaluate(objective + 1);
  status = move.isObjectiveBetter(objective) ? MoveStatus::Improved : MoveStatus::Accepted;
  return true;
}

void RestartStrategy::afterMove(MoveStatus status) {
  if (heuristic.dag->propagation.infeasibility.nbViolated > 0) return;
  if (isRestarting) {
    followRestart(status);
  } else {
    followRun();
  }
}

void RestartStrategy::followRestart(MoveStatus status) {
  ++nbRestartingIterations;
  if (status == MoveStatus::Accepted || status == MoveStatus::Improved) ++nbAccepted;
  if (nbAccepted < restartingSize) return;
  endValue = presentValue();
  startRun();
}

void RestartStrategy::followRun() {
  if (heuristic.dag->isBetterThan(heuristic.objectiveIndex, bestValue)) {
    bestValue = presentValue();
    lastImprovement = nbIterations;
  } else if (hasStalled()) {
    beginRestart();
  }
  ++nbIterations;
}

bool RestartStrategy::hasStalled() const {
  return nbIterations > minIterationsBetweenRestarts &&
         lastImprovement * 100 / nbIterations < restartingRatio;
}

void RestartStrategy::beginRestart() {
  ++nbRestarts;
  isRestarting = true;
  startValue = presentValue();
  lastRunObjective = heuristic.objectiveIndex;
  lastRunBest = lastImprovement;
  lastRunLength = nbIterations;
}

OXValue RestartStrategy::presentValue() const {
  const Dag& dag = *heuristic.dag;
  return dag.tValues[dag.fixedFields->objectives[heuristic.objectiveIndex]];
}

void RestartStrategy::printStatistics(std::ostream& out) const {
  out << "Restarting ratio: " << restartingRatio
      << ", min iterations between restarts: " << minIterationsBetweenRestarts
      << ", restarting size: " << restartingSize << '\n';
  if (nbRestarts == 0) {
    out << "0 restart\n";
    return;
  }
  out << nbRestarts << " restarts with " << nbRestartingIterations << " restarting iterations, \n"
      << "last run: " << lastRunLength << " iterations, while best was obtained at iteration #"
      << lastRunBest << '\n'
      << "last climbing path: ";
  printValue(out, startValue);
  out << " --> ";
  printValue(out, endValue);
  out << '\n';
}

void RestartStrategy::printValue(std::ostream& out, OXValue value) const {
  const DagFixedFields& fields = *heuristic.dag->fixedFields;
  switch (fields.domains[fields.objectives[lastRunObjective]]) {
    case kBooleanDomain:
    case kIntegerDomain:
      out << value.intValue;
      break;
    case kDoubleDomain:
      out << value.doubleValue;
      break;
    default:
      out << "(unknown)";
  }
}

}  // namespace ombrix
