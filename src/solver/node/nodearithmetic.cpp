#include "solver/node/nodearithmetic.h"

#include <cmath>

#include "common/failure.h"
#include "solver/kernel/mathdouble.h"
#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

using Values = NodeValues;

template <typename Arithmetic>
typename Arithmetic::Number operandIn(const Dag& dag, const Values& values, std::uint32_t id,
                                      std::uint32_t position) {
  return Arithmetic::read(dag, values, dag.fixedFields->operand(id, position));
}

std::int64_t absolute(const Dag& dag, const Values& values, std::uint32_t id) {
  return wrappingAbs(operandIn<IntArithmetic>(dag, values, id, 0));
}

double doubleAbsolute(const Dag& dag, const Values& values, std::uint32_t id) {
  return std::fabs(operandIn<DoubleArithmetic>(dag, values, id, 0));
}

std::int64_t distance(const Dag& dag, const Values& values, std::uint32_t id) {
  return wrappingAbs(wrappingSub(operandIn<IntArithmetic>(dag, values, id, 1),
                                 operandIn<IntArithmetic>(dag, values, id, 0)));
}

double doubleDistance(const Dag& dag, const Values& values, std::uint32_t id) {
  return MathDouble::dist(operandIn<DoubleArithmetic>(dag, values, id, 0),
                          operandIn<DoubleArithmetic>(dag, values, id, 1));
}

std::int64_t divisor(const Dag& dag, const Values& values, std::uint32_t id, const Where& where) {
  const std::int64_t value = operandIn<IntArithmetic>(dag, values, id, 1);
  if (value == 0) fail(kComputation, where, "Division by zero.");
  return value;
}

std::int64_t quotient(const Dag& dag, const Values& values, std::uint32_t id, const Where& where) {
  const std::int64_t by = divisor(dag, values, id, where);
  return truncatingDiv(operandIn<IntArithmetic>(dag, values, id, 0), by);
}

std::int64_t remainder(const Dag& dag, const Values& values, std::uint32_t id, const Where& where) {
  const std::int64_t by = divisor(dag, values, id, where);
  return truncatingMod(operandIn<IntArithmetic>(dag, values, id, 0), by);
}

double doubleQuotient(const Dag& dag, const Values& values, std::uint32_t id) {
  return operandIn<DoubleArithmetic>(dag, values, id, 0) /
         operandIn<DoubleArithmetic>(dag, values, id, 1);
}

/// A zero dividend moves up or down; any other leaves both operands to chance.
bool pickForRemainder(const Dag& dag, std::uint32_t id, bool isUp, std::uint32_t& rng,
                      std::uint32_t& decision) {
  const std::uint32_t dividend = dag.fixedFields->operand(id, 0);
  if (dag.values[dividend].intValue != 0) return pickOperandAnyWay(dag, id, rng, decision);
  return isUp ? pickUp(dag, dividend, rng, decision) : pickDown(dag, dividend, rng, decision);
}

bool isDivisorPositive(const Dag& dag, std::uint32_t id) {
  return dag.values[dag.fixedFields->operand(id, 1)].intValue >= 1;
}

}  // namespace

std::int64_t NodeAbs::computeValue(const Dag& dag, std::uint32_t id) const {
  return absolute(dag, dag.values, id);
}

void NodeAbs::eval(Dag& dag, std::uint32_t id) const {
  dag.tValues[id].intValue = absolute(dag, dag.tValues, id);
}

double NodeDoubleAbs::computeValue(const Dag& dag, std::uint32_t id) const {
  return doubleAbsolute(dag, dag.values, id);
}

void NodeDoubleAbs::eval(Dag& dag, std::uint32_t id) const {
  dag.tValues[id].doubleValue = doubleAbsolute(dag, dag.tValues, id);
}

std::int64_t NodeDistance::computeValue(const Dag& dag, std::uint32_t id) const {
  return distance(dag, dag.values, id);
}

void NodeDistance::eval(Dag& dag, std::uint32_t id) const {
  dag.tValues[id].intValue = distance(dag, dag.tValues, id);
}

double NodeDoubleDistance::computeValue(const Dag& dag, std::uint32_t id) const {
  return doubleDistance(dag, dag.values, id);
}

void NodeDoubleDistance::eval(Dag& dag, std::uint32_t id) const {
  dag.tValues[id].doubleValue = doubleDistance(dag, dag.tValues, id);
}

std::int64_t NodeDivide::computeValue(const Dag& dag, std::uint32_t id) const {
  return quotient(dag, dag.values, id, OMBRIX_HERE("NodeDivide::computeValue"));
}

void NodeDivide::eval(Dag& dag, std::uint32_t id) const {
  dag.tValues[id].intValue = quotient(dag, dag.tValues, id, OMBRIX_HERE("NodeDivide::eval"));
}

double NodeDoubleDivide::computeValue(const Dag& dag, std::uint32_t id) const {
  return doubleQuotient(dag, dag.values, id);
}

void NodeDoubleDivide::eval(Dag& dag, std::uint32_t id) const {
  dag.tValues[id].doubleValue = doubleQuotient(dag, dag.tValues, id);
}

std::int64_t NodeModulo::computeValue(const Dag& dag, std::uint32_t id) const {
  return remainder(dag, dag.values, id, OMBRIX_HERE("NodeModulo::computeValue"));
}

void NodeModulo::eval(Dag& dag, std::uint32_t id) const {
  dag.tValues[id].intValue = remainder(dag, dag.tValues, id, OMBRIX_HERE("NodeModulo::eval"));
}

bool NodeModulo::pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                                std::uint32_t& decision) const {
  return pickForRemainder(dag, id, !isDivisorPositive(dag, id), rng, decision);
}

bool NodeModulo::pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                                std::uint32_t& decision) const {
  return pickForRemainder(dag, id, isDivisorPositive(dag, id), rng, decision);
}

bool NodeModulo::pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                              std::uint32_t& decision) const {
  return pickDividendIfZero<IntArithmetic>(dag, id, rng, decision);
}

}  // namespace ombrix
