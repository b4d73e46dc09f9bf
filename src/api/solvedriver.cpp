#include <cerrno>
#include <cstddef>
#include <iostream>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "api/checks.h"
#include "api/ombrix.h"
#include "builder/dagbuilder.h"
#include "builder/modelrecord.h"
#include "builder/parallelizer.h"
#include "builder/solverrecord.h"
#include "builder/worker.h"
#include "common/failure.h"

namespace ombrix {

namespace {

/// The one place where the library writes to the standard output: whole texts, flushed.
void write(const std::string& text) {
  std::cout << text << std::flush;
}

bool isTraceEnabled(const Ombrix& solver) {
  return SolverRecord::advancedParam(solver, "traceEnabled", 0) != 0;
}

bool isVerbose(const Ombrix& solver) {
  return SolverRecord::verbosity(SolverRecord::param(solver)) > 0;
}

const DagBuilder& builderOf(const Ombrix& solver) {
  return *ModelRecord::dagBuilder(SolverRecord::model(solver));
}

/// "obj = (3, 2.5)": the value of each objective in the form of its type.
std::string objectiveValuesText(const Ombrix& solver) {
  const OXSolution& solution = SolverRecord::solution(solver);
  std::ostringstream text;
  const char* separator = "obj = (";
  for (OXExpression* objective : ModelRecord::objectives(SolverRecord::model(solver))) {
    text << separator;
    if (ModelRecord::valueType(*objective) == kDoubleType) {
      text << solution.getDoubleValue(objective);
    } else {
      text << solution.getIntValue(objective);
    }
    separator = ", ";
  }
  text << ")";
  return text.str();
}

/// "infeas = (1, 4)": violated equalities, then all violated constraints.
std::string infeasibilityText(const Parallelizer& search) {
  const Solution& best = search.getBestHeuristic().bestSolution;
  std::ostringstream text;
  text << "infeas = (" << best.nbViolatedEqualities << ", " << best.nbViolated << ")";
  return text.str();
}

bool isFeasible(OXSolutionStatus status) {
  return status == OXSolutionStatus::Feasible || status == OXSolutionStatus::Optimal;
}

std::string objectiveText(const Ombrix& solver, OXSolutionStatus status) {
  return isFeasible(status) ? objectiveValuesText(solver)
                            : infeasibilityText(*SolverRecord::parallelizer(solver));
}

std::string statusText(OXSolutionStatus status) {
  switch (status) {
    case OXSolutionStatus::Optimal:
      return "Optimal solution: ";
    case OXSolutionStatus::Feasible:
      return "Feasible solution: ";
    case OXSolutionStatus::Infeasible:
    case OXSolutionStatus::Inconsistent:
      break;
  }
  return "Infeasible solution: ";
}

std::string endReportText(const Ombrix& solver) {
  const OXStatistics& statistics = SolverRecord::statistics(solver);
  const OXSolutionStatus status = SolverRecord::solution(solver).getStatus();
  std::ostringstream text;
  text << statistics.getNbIterations() << " iterations, " << statistics.getNbMoves()
       << " moves performed in " << statistics.getRunningTime() << " seconds\n";
  if (status == OXSolutionStatus::Inconsistent) {
    text << "Inconsistent model.";
  } else {
    text << statusText(status) << objectiveText(solver, status);
  }
  return text.str();
}

std::string kernelText(const Ombrix& solver) {
  std::ostringstream text;
  builderOf(solver).getFixedFields().display(text);
  return text.str();
}

/// The counters of the moves and strategies of every worker.
std::string traceText(const Ombrix& solver) {
  std::ostringstream text;
  for (const auto& worker : SolverRecord::workers(solver)) {
    worker->heuristic->movePool.printStatistics(text);
    for (const HeuristicStrategy* strategy : worker->heuristic->strategies) {
      strategy->printStatistics(text);
    }
    text << "\n";
  }
  return text.str();
}

void resetCounters(Ombrix& solver) {
  SolverRecord::resetCounters(SolverRecord::statistics(solver));
  for (const auto& phase : SolverRecord::phases(solver)) {
    SolverRecord::resetCounters(SolverRecord::statistics(*phase));
  }
}

/// The best solution of the search becomes the public one.
void publishSolution(Ombrix& solver) {
  builderOf(solver).storeSolution(SolverRecord::parallelizer(solver)->getBestHeuristic(),
                                  SolverRecord::solution(solver));
}

/// Brings statistics and public solution up to date with the workers, all of which are idle.
void publish(Ombrix& solver) {
  const Parallelizer& search = *SolverRecord::parallelizer(solver);
  const OXPhase& phase = *SolverRecord::phases(solver)[search.getPhaseIndex()];
  SolverRecord::refresh(SolverRecord::statistics(phase), search.countPhase());
  SolverRecord::refreshTotals(SolverRecord::statistics(solver));
  publishSolution(solver);
}

/// What was found before the search failed is not lost: it can be read in state Paused.
void publishAfterFailure(Ombrix& solver) {
  try {
    publishSolution(solver);
  } catch (const std::exception&) {
    // The failure of the search is the one to tell.
  }
}

/// The parallelizer of the last solve lets go of surplus workers before they are destroyed.
void dropSurplusWorkers(Ombrix& solver, std::size_t nbKept) {
  auto& workers = SolverRecord::workers(solver);
  if (workers.size() <= nbKept) return;
  if (SolverRecord::started(solver)) SolverRecord::parallelizer(solver)->keepWorkers(nbKept);
  workers.resize(nbKept);
}

/// Brings the workers to the number asked for and gives them the decisions of the public solution.
void prepareWorkers(Ombrix& solver) {
  const OXParam& param = SolverRecord::param(solver);
  const auto nbThreads = static_cast<std::size_t>(SolverRecord::nbThreads(param));
  auto& workers = SolverRecord::workers(solver);
  dropSurplusWorkers(solver, nbThreads);
  // No computation may fail for an error number that the host left behind.
  errno = 0;
  while (workers.size() < nbThreads) workers.push_back(std::make_unique<Worker>(solver));
  const std::vector<OXValue>& values = SolverRecord::values(SolverRecord::solution(solver));
  for (const auto& worker : workers) {
    worker->readParameters();
    builderOf(solver).loadDecisions(values, *worker->heuristic);
  }
}

std::unique_ptr<Parallelizer> makeParallelizer(Ombrix& solver) {
  auto search = std::make_unique<Parallelizer>(solver);
  const auto& events = SolverRecord::callbackEvents(solver);
  for (std::size_t i = 0; i < events.size(); ++i) {
    search->addCallback(events[i], SolverRecord::callbackFunctions(solver)[i],
                        SolverRecord::callbackData(solver)[i]);
  }
  return search;
}

void prepareSearch(Ombrix& solver) {
  try {
    prepareWorkers(solver);
    SolverRecord::replaceParallelizer(solver, makeParallelizer(solver));
  } catch (...) {
    // A graph whose evaluation broke off is of no use to the next solve.
    SolverRecord::destroySearch(solver);
    throw;
  }
}

void runSearch(Ombrix& solver) {
  Parallelizer& search = *SolverRecord::parallelizer(solver);
  try {
    search.runGreedy();
    search.runPhases();
  } catch (...) {
    publishAfterFailure(solver);
    throw;
  }
}

}  // namespace

void SolverRecord::replaceParallelizer(Ombrix& solver, std::unique_ptr<Parallelizer> search) {
  std::lock_guard lock(solver.searchMutex);
  solver.parallelizer.swap(search);
}

void Ombrix::solve() {
  const Where where = OMBRIX_HERE("Ombrix::solve");
  checks::stoppedOnly(*this, where);
  checks::transformed(*this, where);
  if (SolverRecord::advancedParam(*this, "dumpEnabled", 0) != 0) saveEnvironment("dump.oxm.gz");
  stopRequested = 0;
  resetCounters(*this);
  if (phases.empty()) createPhase();
  if (isVerbose(*this)) write("\n" + toString() + "\n");
  if (builderOf(*this).isInconsistent()) {
    if (isVerbose(*this)) write("Inconsistent model.\n\n");
    return;
  }
  if (isVerbose(*this) && isTraceEnabled(*this)) write(kernelText(*this));
  prepareSearch(*this);
  runSearch(*this);
  if (isVerbose(*this)) write(endReportText(*this) + "\n\n");
}

void Ombrix::stop() {
  std::lock_guard lock(searchMutex);
  if (state == OXState::Stopped || !parallelizer) return;
  stopRequested = 1;
  parallelizer->requestStop();
}

void Ombrix::destroySearch() {
  SolverRecord::replaceParallelizer(*this, nullptr);
  workers.clear();
}

std::string Ombrix::getInfo() const {
  const Where where = OMBRIX_HERE("Ombrix::getInfo");
  checks::started(*this, where);
  checks::pausedOrStopped(*this, where);
  std::ostringstream text;
  text << "[" << statistics->getRunningTime() << " sec, " << statistics->getNbIterations()
       << " itr]: " << objectiveText(*this, solution->getStatus()) << ", " << statistics->getInfo()
       << "\n";
  return text.str();
}

void Ombrix::onPhaseStart(void* data) {
  Ombrix& solver = *static_cast<Ombrix*>(data);
  publish(solver);
  if (!isVerbose(solver)) return;
  const std::uint32_t index = solver.parallelizer->getPhaseIndex();
  write("\nPhase " + std::to_string(index) + ":\n" + solver.getInfo());
}

void Ombrix::onPhaseEnd(void* data) {
  Ombrix& solver = *static_cast<Ombrix*>(data);
  publish(solver);
  if (isVerbose(solver)) write("\n" + solver.getInfo());
}

void Ombrix::onTick(void* data) {
  Ombrix& solver = *static_cast<Ombrix*>(data);
  publish(solver);
  if (isVerbose(solver)) {
    write("\n" + solver.getInfo() + (isTraceEnabled(solver) ? traceText(solver) : ""));
  }
}

}  // namespace ombrix
