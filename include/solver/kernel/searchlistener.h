#ifndef OMBRIX_SOLVER_KERNEL_SEARCHLISTENER_H
#define OMBRIX_SOLVER_KERNEL_SEARCHLISTENER_H

namespace ombrix {

class Heuristic;

/// Follows a search on several workers while it runs, at no cost to an iteration that records no
/// best solution. It reads the workers and changes nothing.
class SearchListener {
public:
  virtual ~SearchListener() = default;

  /// The worker has saved a better solution than its best one before; it may still be behind that
  /// of another worker. Called on the thread of the worker, so by several at a time.
  virtual void onImprovement(const Heuristic& heuristic) = 0;
  /// All workers are ready for a phase: their counters are at 0 and the solution that they start
  /// from is their best one. On the thread that called solve, like onSliceEnd.
  virtual void onPhaseStart() = 0;
  /// All workers are idle: at every display, synchronisation and end of a phase.
  virtual void onSliceEnd() = 0;
};

}  // namespace ombrix

#endif
