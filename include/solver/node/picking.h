#ifndef OMBRIX_SOLVER_NODE_PICKING_H
#define OMBRIX_SOLVER_NODE_PICKING_H

#include <cstdint>

#include "solver/kernel/dag.h"

namespace ombrix {

/// The steps of a chain of picks from a node down to a decision. Each goes on from an operand and
/// refuses what the chain found if it is a float: only a target value moves a float.

using PickFunction = bool (*)(const Dag& dag, std::uint32_t node, std::uint32_t& rng,
                              std::uint32_t& decision);

bool pickDown(const Dag& dag, std::uint32_t node, std::uint32_t& rng, std::uint32_t& decision);
bool pickUp(const Dag& dag, std::uint32_t node, std::uint32_t& rng, std::uint32_t& decision);
bool pickAny(const Dag& dag, std::uint32_t node, std::uint32_t& rng, std::uint32_t& decision);

/// Raises a boolean operand of the node: of two, the one that is not at its maximum; otherwise one
/// at random, also when it cannot rise.
bool pickOperandToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                           std::uint32_t& decision);

/// An operand at random, up or down at random.
bool pickOperandAnyWay(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                       std::uint32_t& decision);

/// Goes on from the operand at a position; false for kNone.
inline bool pickAtPosition(const Dag& dag, std::uint32_t id, std::uint32_t position,
                           PickFunction pick, std::uint32_t& rng, std::uint32_t& decision) {
  if (position == kNone) return false;
  return pick(dag, dag.fixedFields->operand(id, position), rng, decision);
}

/// Goes on from a random member of a set of positions; false if it is empty.
template <typename S>
bool pickInSet(const S& set, const Dag& dag, std::uint32_t id, PickFunction pick,
               std::uint32_t& rng, std::uint32_t& decision) {
  const std::uint32_t position = set.randomMember(dag.fixedFields->nbOperands(id), rng);
  return pickAtPosition(dag, id, position, pick, rng, decision);
}

}  // namespace ombrix

#endif
