#ifndef OMBRIX_SOLVER_KERNEL_CONSTRAINTVALUE_H
#define OMBRIX_SOLVER_KERNEL_CONSTRAINTVALUE_H

#include <bit>
#include <cstdint>

#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/oxvalue.h"
#include "solver/kernel/saturating.h"

namespace ombrix {

static_assert(std::bit_cast<std::int64_t>(-0.0) == kIntMin);

/// Whether a constraint with that value is violated: it is 0. Nearly all constraints are booleans,
/// but a conditional over doubles can be posted too, and a 0 of theirs may bear a sign. The domain
/// is asked for only where that would show.
inline bool isViolated(const DagFixedFields& fields, std::uint32_t constraint, OXValue value) {
  return value.intValue == 0 ||
         (value.intValue == kIntMin && fields.domains[constraint] == kDoubleDomain);
}

}  // namespace ombrix

#endif
