#ifndef OMBRIX_API_OXSOLUTIONSTATUS_H
#define OMBRIX_API_OXSOLUTIONSTATUS_H

#include <cstdint>

namespace ombrix {

/// What is known of the public solution.
enum class OXSolutionStatus : std::int32_t {
  Inconsistent = 0,  ///< the model was proved to have no solution
  Infeasible = 1,    ///< some constraint is violated
  Feasible = 2,      ///< every constraint holds
  Optimal = 3        ///< every constraint holds and every objective has reached its bound
};

}  // namespace ombrix

#endif
