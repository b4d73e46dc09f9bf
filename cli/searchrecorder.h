#ifndef OMBRIX_CLI_SEARCHRECORDER_H
#define OMBRIX_CLI_SEARCHRECORDER_H

#include <ombrix/ombrix.h>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <ostream>
#include <vector>

#include "cli/improvementlist.h"
#include "cli/workercounters.h"
#include "solver/kernel/searchlistener.h"

namespace ombrix::cli {

/// Follows the searches of a solver as long as it lives: the improvements of all workers merged
/// into one sequence, each strictly better than the one before, and what each worker did. The clock
/// starts with it. To be made over a closed model.
///
/// A worker starts a phase where the last one left it, which is not always its best solution, and
/// forgets the best one with that. The recorder keeps the best one of all phases and puts it back.
///
/// Workers report at the same time, so a mutex guards the sequence; everything else is touched only
/// while they are idle.
class SearchRecorder : public SearchListener {
public:
  /// With a stream given, an "o" line with the value of the first objective, an integer one, goes
  /// there for each feasible improvement at the moment when it is found.
  explicit SearchRecorder(Ombrix& solver, std::ostream* improvementLines = nullptr);
  ~SearchRecorder() override;
  SearchRecorder(const SearchRecorder&) = delete;
  SearchRecorder& operator=(const SearchRecorder&) = delete;

  void onImprovement(const Heuristic& heuristic) override;
  void onPhaseStart() override;
  void onSliceEnd() override;

  /// After the search: makes the best solution of all phases the public one.
  void restoreBest();

  const ImprovementList& getImprovements() const { return improvements; }
  /// None before the search starts.
  const std::vector<WorkerCounters>& getWorkers() const { return workers; }
  /// In seconds, as of the last time that all workers were idle.
  double getSearchTime() const { return searchTime; }

private:
  double secondsSinceStart() const;
  bool isBetter(const Solution& found) const;
  int compareToBest(const Solution& found) const;
  void record(const Heuristic& heuristic);
  void keepBest();
  std::size_t workerOf(const Heuristic& heuristic) const;
  std::vector<OXValue> modelValues(const Heuristic& heuristic) const;

  Ombrix& solver;
  std::ostream* lines;
  std::chrono::steady_clock::time_point start;
  std::vector<bool> isDouble;  ///< per objective of the model
  std::vector<WorkerCounters> workers;
  double searchTime = 0;
  std::vector<OXValue> keptValues;  ///< of the best solution as of the end of a phase, or empty
  std::uint64_t nbKept = 0;         ///< the improvements up to there

  std::mutex mutex;
  ImprovementList improvements;
  Infeasibility bestInfeasibility;
  std::vector<OXValue> bestObjectives;  ///< as the nodes count; empty as long as there is none
};

}  // namespace ombrix::cli

#endif
