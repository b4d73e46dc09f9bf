#ifndef OMBRIX_SOLVER_KERNEL_HEURISTICCALLBACK_H
#define OMBRIX_SOLVER_KERNEL_HEURISTICCALLBACK_H

namespace ombrix {

/// Observes the loop of a Heuristic, on the thread that runs it. The only way out of a worker: a
/// callback ends the run by setting stopRequested, and is called once per iteration, so it must be
/// cheap.
class HeuristicCallback {
public:
  virtual ~HeuristicCallback() = default;
  virtual void onStart() = 0;
  virtual void onEnd() = 0;
  virtual void onIteration() = 0;
};

}  // namespace ombrix

#endif
