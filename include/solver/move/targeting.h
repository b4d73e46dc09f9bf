#ifndef OMBRIX_SOLVER_MOVE_TARGETING_H
#define OMBRIX_SOLVER_MOVE_TARGETING_H

#include <cstdint>

#include "solver/kernel/dag.h"

namespace ombrix {

/// A decision that should repair a violated constraint, drawn at random, or on a feasible state
/// improve the first objective that is not at the bound of its own node. Costs a walk down from
/// that node. False, with decision in an unspecified state, when there is no such decision or it is
/// a double.
bool pickTargetedBoolean(const Dag& dag, std::uint32_t& rng, std::uint32_t& decision);

/// The same for a decision of any kind, with the value that a double one should get.
bool pickTargetedDouble(const Dag& dag, std::uint32_t& rng, std::uint32_t& decision, double& value);

}  // namespace ombrix

#endif
