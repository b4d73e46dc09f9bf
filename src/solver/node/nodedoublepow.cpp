#include "solver/kernel/random.h"
#include "solver/node/nodedoublefunction.h"

namespace ombrix {

namespace {

/// A power rises with its exponent from a base of 1 on, and falls with it below.
bool risesWithExponent(const Dag& dag, std::uint32_t base) {
  return DoubleArithmetic::isAtLeast(committed<DoubleArithmetic>(dag, base), 1.0);
}

double power(const Dag& dag, const NodeValues& values, std::uint32_t id) {
  return MathDouble::pow(DoubleArithmetic::read(dag, values, dag.fixedFields->operand(id, 0)),
                         DoubleArithmetic::read(dag, values, dag.fixedFields->operand(id, 1)));
}

bool canMove(const Dag& dag, std::uint32_t operand, bool isUp) {
  return isUp ? !isAtMax<DoubleArithmetic>(dag, operand) : !isAtMin<DoubleArithmetic>(dag, operand);
}

bool move(const Dag& dag, std::uint32_t operand, bool isUp, std::uint32_t& rng,
          std::uint32_t& decision) {
  return isUp ? pickUp(dag, operand, rng, decision) : pickDown(dag, operand, rng, decision);
}

/// A coin offers the exponent, which goes its way if it can; otherwise the base has to move.
bool pickTowards(const Dag& dag, std::uint32_t id, bool isUp, std::uint32_t& rng,
                 std::uint32_t& decision) {
  const std::uint32_t base = dag.fixedFields->operand(id, 0);
  const std::uint32_t exponent = dag.fixedFields->operand(id, 1);
  if (randomTopBit(rng)) {
    const bool isExponentUp = risesWithExponent(dag, base) == isUp;
    if (canMove(dag, exponent, isExponentUp))
      return move(dag, exponent, isExponentUp, rng, decision);
  }
  return canMove(dag, base, isUp) && move(dag, base, isUp, rng, decision);
}

}  // namespace

double NodeDoublePow::computeValue(const Dag& dag, std::uint32_t id) const {
  return power(dag, dag.values, id);
}

void NodeDoublePow::eval(Dag& dag, std::uint32_t id) const {
  dag.tValues[id].doubleValue = power(dag, dag.tValues, id);
}

bool NodeDoublePow::pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                                   std::uint32_t& decision) const {
  return pickTowards(dag, id, false, rng, decision);
}

bool NodeDoublePow::pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                                   std::uint32_t& decision) const {
  return pickTowards(dag, id, true, rng, decision);
}

bool NodeDoublePow::pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                                 std::uint32_t& decision) const {
  const std::uint32_t base = dag.fixedFields->operand(id, 0);
  const std::uint32_t exponent = dag.fixedFields->operand(id, 1);
  if (randomTopBit(rng) && !isFixed<DoubleArithmetic>(dag, base))
    return pickAny(dag, base, rng, decision);
  return !isFixed<DoubleArithmetic>(dag, exponent) && pickAny(dag, exponent, rng, decision);
}

}  // namespace ombrix
