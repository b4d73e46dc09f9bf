#ifndef OMBRIX_SOLVER_KERNEL_MOVESTATUS_H
#define OMBRIX_SOLVER_KERNEL_MOVESTATUS_H

#include <cstdint>

namespace ombrix {

/// The fate of a candidate. Accepted and Improved are kept, the others rolled back.
enum class MoveStatus : std::int32_t {
  Rejected = 0,    ///< refused
  Infeasible = 1,  ///< no candidate could be built, or a constraint was broken
  Accepted = 2,    ///< kept, no improvement
  Improved = 3     ///< kept, and strictly better
};

}  // namespace ombrix

#endif
