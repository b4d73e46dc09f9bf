#include "solver/node/nodedoublecomparison.h"

namespace ombrix {

namespace {

/// Far enough beyond a value for the tolerance to tell the two apart next to zero.
constexpr double kBreakingStep = 2e-6;

bool isNumber(const Dag& dag, std::uint32_t node) {
  const NodeType type = dag.fixedFields->types[node];
  return type == NodeType::Constant || type == NodeType::DoubleConstant;
}

/// The committed value of one node in the domain of another, moved by a direction of -1, 0 or 1.
OXValue valueBeside(const Dag& dag, std::uint32_t node, std::uint32_t other, int direction) {
  const DagFixedFields& fields = *dag.fixedFields;
  if (fields.domains[node] == kDoubleDomain) {
    const double value = DoubleArithmetic::read(dag, dag.values, other);
    return OXValue::ofDouble(value + direction * kBreakingStep);
  }
  const std::int64_t value = fields.domains[other] == kDoubleDomain
                                 ? truncateToInt64(dag.values[other].doubleValue)
                                 : dag.values[other].intValue;
  return OXValue::ofInt(wrappingAdd(value, direction));
}

int breakingDirection(TargetRule rule, bool isFirst, std::uint32_t& rng) {
  if (rule == TargetRule::BrokenEitherWay) return randomTopBit(rng) ? 1 : -1;
  return (rule == TargetRule::BrokenAbove) == isFirst ? 1 : -1;
}

}  // namespace

bool pickComparisonForTarget(const Dag& dag, std::uint32_t id, TargetRule rule, std::uint32_t& rng,
                             const OXValue& target, std::uint32_t& decision,
                             OXValue& decisionValue) {
  if (dag.values[id].intValue == target.intValue) return false;
  const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
  bool isFirst = !randomTopBit(rng);
  if (isNumber(dag, operands[isFirst ? 0 : 1])) isFirst = !isFirst;
  const std::uint32_t chosen = operands[isFirst ? 0 : 1];
  const std::uint32_t rest = operands[isFirst ? 1 : 0];
  const int direction = target.intValue != 0 ? 0 : breakingDirection(rule, isFirst, rng);
  OXValue operandTarget = valueBeside(dag, chosen, rest, direction);
  return dag.nodes[chosen]->pickForTarget(dag, chosen, rng, operandTarget, decision, decisionValue);
}

}  // namespace ombrix
