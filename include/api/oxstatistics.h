#ifndef OMBRIX_API_OXSTATISTICS_H
#define OMBRIX_API_OXSTATISTICS_H

#include <cstdint>
#include <string>

namespace ombrix {

class Ombrix;
class OXPhase;
struct SearchCounters;

/// The counters of one phase, owned by it, or the totals over all phases, owned by the Ombrix.
/// Unless told otherwise the operations are allowed in states Paused and Stopped.
///
/// Moves are summed over all threads; iterations are those of the thread that holds the best
/// solution. Every solve sets all counters to 0 but the running time, which it takes into account
/// for the limits and counts afresh as its phases run.
class OXStatistics {
public:
  OXStatistics(const OXStatistics&) = delete;
  OXStatistics& operator=(const OXStatistics&) = delete;
  ~OXStatistics();

  /// The solver that owns the statistics. Any state.
  Ombrix* getOmbrix() const;

  /// The time spent searching, in whole seconds.
  int getRunningTime() const;
  /// The iterations of the thread that holds the best solution.
  long long getNbIterations() const;
  /// The moves of all threads: each iteration of a thread tries one.
  long long getNbMoves() const;
  /// Moves that were kept.
  long long getNbAcceptedMoves() const;
  /// Moves that were kept and made the solution better.
  long long getNbImprovingMoves() const;
  /// Moves that were not kept, those of getNbInfeasibleMoves included.
  long long getNbRejectedMoves() const;
  /// Moves that were given up because they violate constraints.
  long long getNbInfeasibleMoves() const;

  /// The counts above in percent of the moves; 0.0 when there are no moves.
  double getPercentAcceptedMoves() const;
  double getPercentImprovingMoves() const;
  double getPercentRejectedMoves() const;
  double getPercentInfeasibleMoves() const;

  /// All counters in three lines.
  std::string toString() const;

  /// The moves in one piece of a line. Once a search has begun since the model was closed (an
  /// inconsistent model is not searched), else code 0.
  std::string getInfo() const;

private:
  friend class Ombrix;
  friend class OXPhase;
  friend struct SolverRecord;

  /// The statistics of a phase, or the totals of the solver if the phase is null.
  OXStatistics(Ombrix* owner, const OXPhase* counted);

  double percentOfMoves(std::int64_t count) const;
  void resetCounters();
  void refresh(const SearchCounters& counters);
  void refreshTotals();

  Ombrix* ombrix;
  const OXPhase* phase;
  std::int32_t runningTime = 0;
  std::int64_t nbIterations = 0;
  std::int64_t nbMoves = 0;
  std::int64_t nbAcceptedMoves = 0;
  std::int64_t nbImprovingMoves = 0;
  std::int64_t nbInfeasibleMoves = 0;
};

}  // namespace ombrix

#endif
