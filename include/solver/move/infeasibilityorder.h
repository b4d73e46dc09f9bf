#ifndef OMBRIX_SOLVER_MOVE_INFEASIBILITYORDER_H
#define OMBRIX_SOLVER_MOVE_INFEASIBILITYORDER_H

#include "solver/kernel/infeasibility.h"

namespace ombrix {

/// Whether the state b is closer to satisfying the constraints than a. Violated equalities
/// dominate: with the same number of them, above zero, neither state is better, whatever the other
/// numbers say.
inline bool isInfeasibilityBetter(const Infeasibility& a, const Infeasibility& b) {
  if (a.nbViolated == 0 && b.nbViolated == 0) return false;
  if (b.nbViolatedEqualities != a.nbViolatedEqualities) {
    return b.nbViolatedEqualities < a.nbViolatedEqualities;
  }
  if (b.nbViolatedEqualities > 0) return false;
  if (b.nbViolated != a.nbViolated) return b.nbViolated < a.nbViolated;
  return b.violationSum < a.violationSum;
}

/// The mirror of isInfeasibilityBetter.
inline bool isInfeasibilityWorse(const Infeasibility& a, const Infeasibility& b) {
  return isInfeasibilityBetter(b, a);
}

}  // namespace ombrix

#endif
