#ifndef OMBRIX_API_OXPHASE_H
#define OMBRIX_API_OXPHASE_H

#include <cstdint>
#include <memory>
#include <string>

#include "oxstatistics.h"

namespace ombrix {

class Ombrix;

/// One phase of a search: its limits, the objective that it optimises and its statistics. Phases
/// run in order of creation; Ombrix::createPhase makes them and their Ombrix owns them.
///
/// During a phase the objectives before the optimised one are kept and those behind it are ignored.
class OXPhase {
public:
  OXPhase(const OXPhase&) = delete;
  OXPhase& operator=(const OXPhase&) = delete;
  ~OXPhase();

  /// The solver that owns the phase. In state Stopped only.
  Ombrix* getOmbrix() const;

  /// The time limit of the phase in seconds, at least 1, else code 0; 2147483647, the value at
  /// first, means none. In state Stopped only.
  ///
  /// Time that an earlier phase left unused is added to this phase, and the running time told by
  /// the statistics of this phase and of those before it is taken off, so a second solve continues
  /// with what is left. An earlier phase without a limit makes this one unlimited too.
  void setTimeLimit(int timeLimit);
  /// The time limit in seconds. In states Paused and Stopped.
  int getTimeLimit() const;

  /// The limit of each worker's iterations, at least 1, else code 0; 9223372036854775807, the value
  /// at first, means none. It adds up with the phases before as the time limit does; every solve
  /// counts from 0 again. In state Stopped only.
  void setIterationLimit(long long iterationLimit);
  /// The iteration limit. In states Paused and Stopped.
  long long getIterationLimit() const;

  /// The index of the objective to optimise; at first the last one of the model. Code 0: there is
  /// no such objective. In state Stopped only.
  void setOptimizedObjective(int optimizedObjective);
  /// The index of the objective to optimise. In states Paused and Stopped.
  int getOptimizedObjective() const;

  /// The statistics of the phase, owned by it. In states Paused and Stopped.
  OXStatistics* getStatistics() const;

  /// The limits and the objective in one line. Any state.
  std::string toString() const;

private:
  friend class Ombrix;
  friend struct SolverRecord;

  explicit OXPhase(Ombrix* owner);

  Ombrix* ombrix;
  std::unique_ptr<OXStatistics> statistics;
  std::int32_t timeLimit;
  std::int64_t iterationLimit;
  std::int32_t optimizedObjective;
};

}  // namespace ombrix

#endif
