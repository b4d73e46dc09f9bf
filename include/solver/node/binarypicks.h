#ifndef OMBRIX_SOLVER_NODE_BINARYPICKS_H
#define OMBRIX_SOLVER_NODE_BINARYPICKS_H

#include "solver/kernel/random.h"
#include "solver/node/arithmetic.h"
#include "solver/node/picking.h"

namespace ombrix {

/// Raises one node or lowers the other. Where both can move, a coin decides.
template <typename Arithmetic>
bool raiseOrLower(const Dag& dag, std::uint32_t raised, std::uint32_t lowered, std::uint32_t& rng,
                  std::uint32_t& decision) {
  const bool raises = !isAtMax<Arithmetic>(dag, raised) &&
                      (isAtMin<Arithmetic>(dag, lowered) || !randomTopBit(rng));
  return raises ? pickUp(dag, raised, rng, decision) : pickDown(dag, lowered, rng, decision);
}

/// Moves the first operand of a binary node up against the second.
template <typename Arithmetic>
bool raiseFirstOrLowerSecond(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                             std::uint32_t& decision) {
  const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
  return raiseOrLower<Arithmetic>(dag, operands[0], operands[1], rng, decision);
}

/// Moves the second operand of a binary node up against the first.
template <typename Arithmetic>
bool raiseSecondOrLowerFirst(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                             std::uint32_t& decision) {
  const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
  return raiseOrLower<Arithmetic>(dag, operands[1], operands[0], rng, decision);
}

/// Moves the operands of a binary node towards each other.
template <typename Arithmetic>
bool closeGap(const Dag& dag, std::uint32_t id, std::uint32_t& rng, std::uint32_t& decision) {
  const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
  const bool isFirstAbove = Arithmetic::isAtLeast(committed<Arithmetic>(dag, operands[0]),
                                                  committed<Arithmetic>(dag, operands[1]));
  return isFirstAbove ? raiseSecondOrLowerFirst<Arithmetic>(dag, id, rng, decision)
                      : raiseFirstOrLowerSecond<Arithmetic>(dag, id, rng, decision);
}

}  // namespace ombrix

#endif
