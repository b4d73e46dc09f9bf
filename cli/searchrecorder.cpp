#include "cli/searchrecorder.h"

#include <algorithm>
#include <utility>

#include "builder/modelrecord.h"
#include "builder/parallelizer.h"
#include "builder/solverrecord.h"
#include "builder/valuetype.h"
#include "builder/worker.h"

namespace ombrix::cli {

SearchRecorder::SearchRecorder(Ombrix& observed, std::ostream* improvementLines)
    : solver(observed), lines(improvementLines), start(std::chrono::steady_clock::now()) {
  for (const OXExpression* objective : ModelRecord::objectives(*solver.getModel())) {
    isDouble.push_back(ModelRecord::valueType(*objective) == kDoubleType);
  }
  SolverRecord::setSearchListener(solver, this);
}

SearchRecorder::~SearchRecorder() {
  SolverRecord::setSearchListener(solver, nullptr);
}

void SearchRecorder::onImprovement(const Heuristic& heuristic) {
  const std::lock_guard guard(mutex);
  if (isBetter(heuristic.bestSolution)) record(heuristic);
}

void SearchRecorder::onPhaseStart() {
  if (workers.empty()) {
    for (const auto& worker : SolverRecord::workers(solver)) {
      workers.emplace_back(*worker->heuristic);
    }
  }
  keepBest();
  for (WorkerCounters& worker : workers) {
    worker.startPhase();
    onImprovement(*worker.source);
  }
}

void SearchRecorder::onSliceEnd() {
  for (WorkerCounters& worker : workers) worker.update();
  searchTime = secondsSinceStart();
}

/// The public solution is that of the end of the phase before, the best one if it improved there.
void SearchRecorder::keepBest() {
  if (improvements.getCount() == nbKept) return;
  nbKept = improvements.getCount();
  keptValues = SolverRecord::values(SolverRecord::solution(solver));
}

void SearchRecorder::restoreBest() {
  if (bestObjectives.empty()) return;
  const Heuristic& last = SolverRecord::parallelizer(solver)->getBestHeuristic();
  if (compareToBest(last.bestSolution) >= 0) return;
  OXSolution& solution = *solver.getSolution();
  for (OXExpression* decision : ModelRecord::decisions(*solver.getModel())) {
    const auto index = static_cast<std::size_t>(decision->getIndex());
    if (SolverRecord::values(solution)[index].intValue == keptValues[index].intValue) continue;
    solution.setIntValue(decision, keptValues[index].intValue);
  }
}

double SearchRecorder::secondsSinceStart() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

bool SearchRecorder::isBetter(const Solution& found) const {
  return bestObjectives.empty() || compareToBest(found) > 0;
}

/// By the order that the workers themselves keep; between infeasible solutions the objectives say
/// nothing.
int SearchRecorder::compareToBest(const Solution& found) const {
  const int lastLevel = static_cast<int>(bestObjectives.size()) - 1;
  const int level = bestInfeasibility.nbViolated < 1 ? lastLevel : -1;
  return found.compareTo(bestInfeasibility, bestObjectives, level);
}

void SearchRecorder::record(const Heuristic& heuristic) {
  bestInfeasibility = heuristic.bestSolution.getInfeasibility();
  const auto& objectives = heuristic.bestSolution.objectiveValues;
  bestObjectives.assign(objectives.begin(), objectives.end());
  Improvement improvement;
  improvement.time = secondsSinceStart();
  improvement.worker = workerOf(heuristic);
  improvement.iteration = workers[improvement.worker].countIterations();
  improvement.infeasibility = bestInfeasibility;
  improvement.objectives = modelValues(heuristic);
  if (lines != nullptr && improvement.isFeasible()) {
    *lines << "o " << improvement.objectives.front().intValue << std::endl;
  }
  improvements.add(std::move(improvement));
}

std::size_t SearchRecorder::workerOf(const Heuristic& heuristic) const {
  const auto found =
      std::find_if(workers.begin(), workers.end(),
                   [&](const WorkerCounters& worker) { return worker.source == &heuristic; });
  return static_cast<std::size_t>(found - workers.begin());
}

std::vector<OXValue> SearchRecorder::modelValues(const Heuristic& heuristic) const {
  const DagFixedFields& fields = *heuristic.dag->fixedFields;
  const auto& objectives = heuristic.bestSolution.objectiveValues;
  std::vector<OXValue> values(objectives.begin(), objectives.end());
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!isDouble[i]) continue;
    values[i] = OXValue::ofDouble(doubleValue(fields.domains[fields.objectives[i]], values[i]));
  }
  return values;
}

}  // namespace ombrix::cli
