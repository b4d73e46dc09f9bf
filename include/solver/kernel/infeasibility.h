#ifndef OMBRIX_SOLVER_KERNEL_INFEASIBILITY_H
#define OMBRIX_SOLVER_KERNEL_INFEASIBILITY_H

#include <cstdint>

namespace ombrix {

/// How far a state is from satisfying the constraints that are not active.
struct Infeasibility {
  std::int64_t nbViolated = 0;            ///< constraints with the value 0
  std::int64_t nbViolatedEqualities = 0;  ///< those of them of type "eq" or "double_eq"
  std::int64_t violationSum = 0;          ///< sum of the violations of all constraints

  friend bool operator==(const Infeasibility&, const Infeasibility&) = default;
};

}  // namespace ombrix

#endif
