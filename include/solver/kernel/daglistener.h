#ifndef OMBRIX_SOLVER_KERNEL_DAGLISTENER_H
#define OMBRIX_SOLVER_KERNEL_DAGLISTENER_H

namespace ombrix {

/// Told of each accepted move before it is committed, while values and tValues both stand.
class DagListener {
public:
  virtual ~DagListener() = default;
  virtual void onAccept() = 0;
};

}  // namespace ombrix

#endif
