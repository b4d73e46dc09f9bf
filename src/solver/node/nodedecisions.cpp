#include "solver/node/nodedecisions.h"

#include "common/failure.h"
#include "solver/kernel/dag.h"

namespace ombrix {

namespace {

bool isIntegerDecisionConsistent(const Dag& dag, std::uint32_t id) {
  const std::int64_t value = dag.values[id].intValue;
  return value == dag.tValues[id].intValue && dag.fixedFields->minValues[id].intValue <= value &&
         value <= dag.fixedFields->maxValues[id].intValue;
}

void failCheck(const Where& where) {
  fail(kInternal, where, "Error in check of operator.");
}

}  // namespace

bool NodeBooleanVar::isConsistent(const Dag& dag, std::uint32_t id) const {
  return isIntegerDecisionConsistent(dag, id);
}

bool NodeBooleanVar::pickForTarget(const Dag& dag, std::uint32_t id, std::uint32_t& rng, OXValue&,
                                   std::uint32_t& decision, OXValue&) const {
  return pickToChange(dag, id, rng, decision);
}

bool NodeBooleanVar::pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t&,
                                    std::uint32_t& decision) const {
  if (dag.propagation.isTouched(id) || dag.values[id].intValue == 0) return false;
  decision = id;
  return true;
}

bool NodeBooleanVar::pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t&,
                                    std::uint32_t& decision) const {
  if (dag.propagation.isTouched(id) || dag.values[id].intValue == 1) return false;
  decision = id;
  return true;
}

bool NodeBooleanVar::pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t&,
                                  std::uint32_t& decision) const {
  if (dag.propagation.isTouched(id)) return false;
  decision = id;
  return true;
}

void NodeBooleanVar::init(Dag& dag, std::uint32_t id) {
  dag.tValues[id] = dag.values[id];
}

bool NodeIntegerVar::isConsistent(const Dag& dag, std::uint32_t id) const {
  return isIntegerDecisionConsistent(dag, id);
}

void NodeIntegerVar::check(const Dag& dag, std::uint32_t id) const {
  if (isConsistent(dag, id)) return;
  dump(dag, id);
  failCheck(OMBRIX_HERE("NodeIntegerVar::check"));
}

void NodeIntegerVar::dump(const Dag& dag, std::uint32_t id) const {
  dumpCommon(dag, id, "PosInNodes= ");
}

void NodeIntegerVar::init(Dag& dag, std::uint32_t id) {
  dag.tValues[id] = dag.values[id];
}

bool NodeFloatVar::isConsistent(const Dag& dag, std::uint32_t id) const {
  const double value = dag.values[id].doubleValue;
  const double min = dag.fixedFields->minValues[id].doubleValue;
  const double max = dag.fixedFields->maxValues[id].doubleValue;
  return approxEqual(value, dag.tValues[id].doubleValue) &&
         (min <= value || approxEqual(min, value)) && (value <= max || approxEqual(value, max));
}

void NodeFloatVar::check(const Dag& dag, std::uint32_t id) const {
  if (isConsistent(dag, id)) return;
  dump(dag, id);
  failCheck(OMBRIX_HERE("NodeFloatVar::check"));
}

void NodeFloatVar::dump(const Dag& dag, std::uint32_t id) const {
  dumpCommon(dag, id, "PosInNodes= ");
}

bool NodeFloatVar::pickForTarget(const Dag& dag, std::uint32_t id, std::uint32_t&, OXValue& target,
                                 std::uint32_t& decision, OXValue& decisionValue) const {
  if (dag.propagation.isTouched(id)) return false;
  const double min = dag.fixedFields->minValues[id].doubleValue;
  const double max = dag.fixedFields->maxValues[id].doubleValue;
  double value = target.doubleValue;
  if (value > max && !approxEqual(value, max)) value = max;
  if (min > value && !approxEqual(min, value)) value = min;
  decision = id;
  decisionValue = OXValue::ofDouble(value);
  return true;
}

void NodeFloatVar::init(Dag& dag, std::uint32_t id) {
  dag.tValues[id] = dag.values[id];
}

}  // namespace ombrix
