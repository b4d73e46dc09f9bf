#ifndef OMBRIX_SOLVER_MOVE_CONSTRAINTPARENTS_H
#define OMBRIX_SOLVER_MOVE_CONSTRAINTPARENTS_H

#include <cstdint>
#include <span>

#include "solver/kernel/dagfixedfields.h"

namespace ombrix {

/// The parents of a node on which some constraint depends, and the position of the node in each.
struct ConstraintParents {
  std::span<const std::uint32_t> nodes;
  std::span<const std::uint32_t> positions;
};

inline ConstraintParents constraintParentsOf(const DagFixedFields& fields, std::uint32_t node) {
  const std::uint32_t begin = fields.parentOffsets[node];
  const std::uint32_t count = fields.parentEndsOf(node)[0];
  return {{fields.parents.data() + begin, count}, {fields.parentPositions.data() + begin, count}};
}

}  // namespace ombrix

#endif
