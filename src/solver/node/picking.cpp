#include "solver/node/picking.h"

#include "solver/kernel/random.h"

namespace ombrix {

namespace {

bool isNoFloat(const Dag& dag, std::uint32_t decision) {
  return dag.fixedFields->domains[decision] != kDoubleDomain;
}

bool isAtMax(const Dag& dag, std::uint32_t node) {
  return dag.values[node].intValue >= dag.fixedFields->maxValues[node].intValue;
}

}  // namespace

bool pickDown(const Dag& dag, std::uint32_t node, std::uint32_t& rng, std::uint32_t& decision) {
  return dag.nodes[node]->pickToDecrease(dag, node, rng, decision) && isNoFloat(dag, decision);
}

bool pickUp(const Dag& dag, std::uint32_t node, std::uint32_t& rng, std::uint32_t& decision) {
  return dag.nodes[node]->pickToIncrease(dag, node, rng, decision) && isNoFloat(dag, decision);
}

bool pickAny(const Dag& dag, std::uint32_t node, std::uint32_t& rng, std::uint32_t& decision) {
  return dag.nodes[node]->pickToChange(dag, node, rng, decision) && isNoFloat(dag, decision);
}

bool pickOperandToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                           std::uint32_t& decision) {
  const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
  const std::uint32_t nbOperands = dag.fixedFields->nbOperands(id);
  if (nbOperands == 2 && isAtMax(dag, operands[0])) return pickUp(dag, operands[1], rng, decision);
  if (nbOperands == 2 && isAtMax(dag, operands[1])) return pickUp(dag, operands[0], rng, decision);
  return pickUp(dag, operands[randomIndex(rng, nbOperands)], rng, decision);
}

bool pickOperandAnyWay(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                       std::uint32_t& decision) {
  const std::uint32_t position = randomIndex(rng, dag.fixedFields->nbOperands(id));
  const std::uint32_t operand = dag.fixedFields->operand(id, position);
  return randomTopBit(rng) ? pickDown(dag, operand, rng, decision)
                           : pickUp(dag, operand, rng, decision);
}

}  // namespace ombrix
