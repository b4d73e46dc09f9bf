#include "cli/searchrun.h"

#include <iostream>

#include "cli/program.h"
#include "cli/statisticstext.h"

namespace ombrix::cli {

void SearchRun::openFiles() {
  if (line.solutionFile) solutionFile.emplace(*line.solutionFile);
  if (line.environmentFile) environmentFile.emplace(*line.environmentFile);
  if (line.statisticsFile) statisticsFile.emplace(*line.statisticsFile);
}

void SearchRun::setAdvancedParams() {
  for (const auto& [key, value] : line.advancedParams) {
    solver.getParam()->setAdvancedParam(key, value);
  }
}

void SearchRun::search(std::ostream* improvementLines) {
  recorder.emplace(solver, improvementLines);
  stopper.emplace(solver);
  solver.solve();
  recorder->restoreBest();
  status = solver.getSolution()->getStatus();
}

bool SearchRun::hasSolution() const {
  return status == OXSolutionStatus::Feasible || status == OXSolutionStatus::Optimal;
}

void SearchRun::printStatus() const {
  switch (status) {
    case OXSolutionStatus::Optimal:
      std::cout << "Status: optimal\n";
      break;
    case OXSolutionStatus::Feasible:
      std::cout << "Status: feasible\n";
      break;
    case OXSolutionStatus::Inconsistent:
      std::cout << "Status: inconsistent, the model has no solution\n";
      break;
    case OXSolutionStatus::Infeasible:
      std::cout << "Status: infeasible, no solution was found\n";
      break;
  }
}

void SearchRun::writeStatistics() {
  // What still waits in a buffer would be lost with a signal behind the end of the run.
  std::cout.flush();
  if (!statisticsFile) return;
  statisticsFile->commit(statisticsText(line.model, solver, *recorder));
}

int SearchRun::exitStatus() const {
  if (hasSolution()) return kSolutionFound;
  return status == OXSolutionStatus::Inconsistent ? kInconsistent : kNoSolution;
}

}  // namespace ombrix::cli
