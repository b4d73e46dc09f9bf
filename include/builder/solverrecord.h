#ifndef OMBRIX_BUILDER_SOLVERRECORD_H
#define OMBRIX_BUILDER_SOLVERRECORD_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "api/ombrix.h"
#include "solver/kernel/oxvalue.h"

namespace ombrix {

/// The limits of a phase that mean that there is none.
inline constexpr std::int32_t kNoTimeLimit = 2147483647;
inline constexpr std::int64_t kNoIterationLimit = 9223372036854775807;

/// The raw counters of one phase, as the search objects tell them.
struct SearchCounters {
  std::int32_t runningTime = 0;
  std::int64_t nbIterations = 0;
  std::int64_t nbMoves = 0;
  std::int64_t nbAcceptedMoves = 0;
  std::int64_t nbImprovingMoves = 0;
  std::int64_t nbInfeasibleMoves = 0;
};

/// The builder's direct view of a solver and of its parameters, phases, solution and statistics: no
/// state check, no failure. Only code below the public interface may use it; the records of model
/// and expressions are reached through ModelRecord.
struct SolverRecord {
  /// The status of a solution whose status is not known yet.
  static constexpr std::int32_t kUnknownStatus = 2147483647;

  static OXState state(const Ombrix& solver) { return solver.state.load(); }
  static void setState(Ombrix& solver, OXState state) { solver.state.store(state); }
  static bool stopRequested(const Ombrix& solver) { return solver.stopRequested.load() != 0; }
  static void setStopRequested(Ombrix& solver, bool requested) {
    solver.stopRequested.store(requested ? 1 : 0);
  }
  static OXModel& model(const Ombrix& solver) { return *solver.model; }
  static OXParam& param(const Ombrix& solver) { return *solver.param; }
  static OXSolution& solution(const Ombrix& solver) { return *solver.solution; }
  static OXStatistics& statistics(const Ombrix& solver) { return *solver.statistics; }
  static const std::vector<std::unique_ptr<OXPhase>>& phases(const Ombrix& solver) {
    return solver.phases;
  }
  static std::vector<std::unique_ptr<Worker>>& workers(Ombrix& solver) { return solver.workers; }
  static const std::vector<std::unique_ptr<Worker>>& workers(const Ombrix& solver) {
    return solver.workers;
  }
  static std::unique_ptr<Parallelizer>& parallelizer(Ombrix& solver) { return solver.parallelizer; }
  static const std::unique_ptr<Parallelizer>& parallelizer(const Ombrix& solver) {
    return solver.parallelizer;
  }
  /// The old one dies outside the lock; a stop from another thread never meets it.
  static void replaceParallelizer(Ombrix& solver, std::unique_ptr<Parallelizer> search);
  /// Whether solve has made its search objects at least once since the model was closed.
  static bool started(const Ombrix& solver) { return solver.parallelizer != nullptr; }
  /// Destroys the parallelizer and the workers, which hang on the kernel of the closed model.
  static void destroySearch(Ombrix& solver) { solver.destroySearch(); }
  static OXPhase& appendPhase(Ombrix& solver);
  /// Forgets all phases; only while no search runs, and with no pointer to them left.
  static void clearPhases(Ombrix& solver) { solver.phases.clear(); }

  static const std::vector<std::int32_t>& callbackEvents(const Ombrix& solver) {
    return solver.callbackEvents;
  }
  static const std::vector<void (*)(void*)>& callbackFunctions(const Ombrix& solver) {
    return solver.callbackFunctions;
  }
  static const std::vector<void*>& callbackData(const Ombrix& solver) {
    return solver.callbackData;
  }

  /// The listener follows every search of the solver. Null, the value at first, for none; set it
  /// while no search runs.
  static void setSearchListener(Ombrix& solver, SearchListener* listener) {
    solver.searchListener = listener;
  }
  static SearchListener* searchListener(const Ombrix& solver) { return solver.searchListener; }

  static std::int32_t seed(const OXParam& param) { return param.seed; }
  static void setSeed(OXParam& param, std::int32_t seed) { param.seed = seed; }
  static std::int32_t nbThreads(const OXParam& param) { return param.nbThreads; }
  static void setNbThreads(OXParam& param, std::int32_t nb) { param.nbThreads = nb; }
  static std::int32_t annealingLevel(const OXParam& param) { return param.annealingLevel; }
  static void setAnnealingLevel(OXParam& param, std::int32_t level) {
    param.annealingLevel = level;
  }
  static std::int32_t verbosity(const OXParam& param) { return param.verbosity; }
  static void setVerbosity(OXParam& param, std::int32_t verbosity) { param.verbosity = verbosity; }
  static std::int32_t timeBetweenDisplays(const OXParam& param) {
    return param.timeBetweenDisplays;
  }
  static void setTimeBetweenDisplays(OXParam& param, std::int32_t seconds) {
    param.timeBetweenDisplays = seconds;
  }
  static std::int64_t iterationLimit(const OXParam& param) { return param.iterationLimit; }
  static std::int32_t timeLimit(const OXParam& param) { return param.timeLimit; }
  /// One bound per objective, in the member of the type of the objective.
  static const std::vector<OXValue>& objectiveBounds(const OXParam& param) {
    return param.objectiveBounds;
  }
  static std::vector<OXValue>& objectiveBounds(OXParam& param) { return param.objectiveBounds; }
  static const std::vector<std::int8_t>& objectiveTypes(const OXParam& param) {
    return param.objectiveTypes;
  }
  static const std::map<std::string, std::int32_t>& advancedParams(const OXParam& param) {
    return param.advancedParams;
  }
  static void setAdvancedParam(OXParam& param, const std::string& key, std::int32_t value) {
    param.advancedParams[key] = value;
  }
  static std::int32_t advancedParam(const OXParam& param, const std::string& key,
                                    std::int32_t defaultValue) {
    const auto found = param.advancedParams.find(key);
    return found == param.advancedParams.end() ? defaultValue : found->second;
  }
  static std::int32_t advancedParam(const Ombrix& solver, const std::string& key,
                                    std::int32_t defaultValue) {
    return advancedParam(*solver.param, key, defaultValue);
  }

  static std::int32_t timeLimit(const OXPhase& phase) { return phase.timeLimit; }
  static void setTimeLimit(OXPhase& phase, std::int32_t seconds) { phase.timeLimit = seconds; }
  static std::int64_t iterationLimit(const OXPhase& phase) { return phase.iterationLimit; }
  static void setIterationLimit(OXPhase& phase, std::int64_t limit) {
    phase.iterationLimit = limit;
  }
  static std::int32_t optimizedObjective(const OXPhase& phase) { return phase.optimizedObjective; }
  static void setOptimizedObjective(OXPhase& phase, std::int32_t objective) {
    phase.optimizedObjective = objective;
  }
  static OXStatistics& statistics(const OXPhase& phase) { return *phase.statistics; }

  static SearchCounters counters(const OXStatistics& statistics);
  /// Writes the counters of a phase.
  static void refresh(OXStatistics& statistics, const SearchCounters& counters) {
    statistics.refresh(counters);
  }
  /// Makes the totals of the solver the sums over its phases.
  static void refreshTotals(OXStatistics& statistics) { statistics.refreshTotals(); }
  /// Resets all counters but the running time, which keeps its value until the first refresh.
  static void resetCounters(OXStatistics& statistics) { statistics.resetCounters(); }
  static std::int32_t runningTime(const OXStatistics& statistics) { return statistics.runningTime; }
  static std::int64_t nbIterations(const OXStatistics& statistics) {
    return statistics.nbIterations;
  }

  /// One value per expression, by expression index.
  static std::vector<OXValue>& values(OXSolution& solution) { return solution.values; }
  static const std::vector<OXValue>& values(const OXSolution& solution) { return solution.values; }
  /// Per expression, whether its entry in values holds.
  static std::vector<bool>& evaluated(OXSolution& solution) { return solution.evaluated; }
  static const std::vector<bool>& evaluated(const OXSolution& solution) {
    return solution.evaluated;
  }
  /// An OXSolutionStatus, or kUnknownStatus.
  static std::int32_t status(const OXSolution& solution) { return solution.status; }
  static void setStatus(OXSolution& solution, std::int32_t status) { solution.status = status; }
  static bool isDirty(const OXSolution& solution) { return solution.dirty; }
  static void setDirty(OXSolution& solution, bool dirty) { solution.dirty = dirty; }
};

}  // namespace ombrix

#endif
