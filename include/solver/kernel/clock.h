#ifndef OMBRIX_SOLVER_KERNEL_CLOCK_H
#define OMBRIX_SOLVER_KERNEL_CLOCK_H

#include <time.h>

#include <cstdint>

namespace ombrix {

/// Whole seconds of a steady clock. The search asks once per iteration, so the coarse clock is
/// read: its few milliseconds of lag mean nothing at this resolution, and it costs a tenth of the
/// exact one.
inline std::int64_t clockSeconds() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return static_cast<std::int64_t>(now.tv_sec);
}

}  // namespace ombrix

#endif
