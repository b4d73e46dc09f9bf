#include "solver/node/nodeconstants.h"

#include "solver/kernel/dag.h"

namespace ombrix {

void NodeConstantBase::commit(Dag&, std::uint32_t) {}

void NodeConstantBase::rollback(Dag&, std::uint32_t) {}

bool NodeConstant::isConsistent(const Dag& dag, std::uint32_t id) const {
  const std::int64_t value = dag.values[id].intValue;
  return value == dag.tValues[id].intValue && value == dag.fixedFields->minValues[id].intValue &&
         value == dag.fixedFields->maxValues[id].intValue;
}

void NodeConstant::init(Dag& dag, std::uint32_t id) {
  dag.values[id] = dag.tValues[id] = *dag.fixedFields->scalarsOf(id);
}

bool NodeDoubleConstant::isConsistent(const Dag& dag, std::uint32_t id) const {
  const double value = dag.values[id].doubleValue;
  return approxEqual(value, dag.tValues[id].doubleValue) &&
         approxEqual(value, dag.fixedFields->minValues[id].doubleValue) &&
         approxEqual(value, dag.fixedFields->maxValues[id].doubleValue);
}

void NodeDoubleConstant::init(Dag& dag, std::uint32_t id) {
  dag.values[id] = dag.tValues[id] = *dag.fixedFields->scalarsOf(id);
}

bool NodeConstArray::isConsistent(const Dag&, std::uint32_t) const {
  return true;
}

void NodeConstArray::init(Dag&, std::uint32_t) {}

}  // namespace ombrix
