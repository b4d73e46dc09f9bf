#include "solver/kernel/node.h"

#include <iostream>

#include "common/failure.h"
#include "solver/kernel/constraintvalue.h"
#include "solver/kernel/dag.h"

namespace ombrix {

namespace {

/// An array has no value; its entries are shown as the integers that stand there.
struct Printed {
  std::uint8_t domain;
  OXValue value;

  friend std::ostream& operator<<(std::ostream& out, const Printed& printed) {
    if (printed.domain == kDoubleDomain) return out << printed.value.doubleValue;
    return out << printed.value.intValue;
  }
};

bool isSettled(const Dag& dag, std::uint32_t id) {
  if (dag.fixedFields->domains[id] == kDoubleDomain)
    return approxEqual(dag.values[id].doubleValue, dag.tValues[id].doubleValue);
  return dag.values[id].intValue == dag.tValues[id].intValue;
}

void dumpOperand(std::ostream& out, const Dag& dag, std::uint32_t position, std::uint32_t operand) {
  const DagFixedFields& fields = *dag.fixedFields;
  const std::uint8_t domain = fields.domains[operand];
  out << "childNode[" << position << "]="
      << " id=" << operand << " type=" << fields.getTypeName(operand)
      << " value=" << Printed{domain, dag.values[operand]}
      << " t_value=" << Printed{domain, dag.tValues[operand]}
      << " min=" << Printed{domain, fields.minValues[operand]}
      << " max=" << Printed{domain, fields.maxValues[operand]} << '\n';
}

}  // namespace

void Node::check(const Dag& dag, std::uint32_t id) const {
  if (isConsistent(dag, id)) return;
  dump(dag, id);
  fail(kInternal, OMBRIX_HERE("Node::check"), "Error in check of operator.");
}

void Node::dump(const Dag& dag, std::uint32_t id) const {
  dumpCommon(dag, id, "Id= ");
}

void Node::dumpCommon(const Dag& dag, std::uint32_t id, const char* numberLabel) {
  const DagFixedFields& fields = *dag.fixedFields;
  const std::uint8_t domain = fields.domains[id];
  std::ostream& out = std::cout;
  out << numberLabel << id << '\n'
      << "Operator= " << fields.getTypeName(id) << '\n'
      << "isInit=" << isSettled(dag, id) << '\n'
      << "value=" << Printed{domain, dag.values[id]} << '\n'
      << "t_value=" << Printed{domain, dag.tValues[id]} << '\n'
      << "min=" << Printed{domain, fields.minValues[id]} << '\n'
      << "max=" << Printed{domain, fields.maxValues[id]} << '\n';
  for (std::uint32_t position = 0; position < fields.nbOperands(id); ++position)
    dumpOperand(out, dag, position, fields.operand(id, position));
}

bool Node::pickForTarget(const Dag&, std::uint32_t, std::uint32_t&, OXValue&, std::uint32_t&,
                         OXValue&) const {
  return false;
}

std::int64_t Node::violation(const Dag& dag, std::uint32_t id) const {
  return isViolated(*dag.fixedFields, id, dag.values[id]) ? 1 : 0;
}

std::int64_t Node::violationDelta(const Dag& dag, std::uint32_t id) const {
  return (isViolated(*dag.fixedFields, id, dag.tValues[id]) ? 1 : 0) - violation(dag, id);
}

std::uint32_t Node::nbNotMaxNodes(const Dag&, std::uint32_t) const {
  return 0;
}

std::uint32_t Node::nbNotMinNodes(const Dag&, std::uint32_t) const {
  return 0;
}

std::uint32_t Node::notMaxNodeAt(const Dag&, std::uint32_t, std::uint32_t) const {
  return 0;
}

std::uint32_t Node::notMinNodeAt(const Dag&, std::uint32_t, std::uint32_t) const {
  return 0;
}

bool Node::isNotMaxNode(const Dag&, std::uint32_t, std::uint32_t) const {
  return false;
}

bool Node::isNotMinNode(const Dag&, std::uint32_t, std::uint32_t) const {
  return false;
}

std::uint32_t Node::randomNotMaxNode(const Dag&, std::uint32_t, std::uint32_t&) const {
  return 0;
}

std::uint32_t Node::randomNotMinNode(const Dag&, std::uint32_t, std::uint32_t&) const {
  return 0;
}

void Node::eval(Dag&, std::uint32_t) const {}

void Node::commit(Dag& dag, std::uint32_t id) {
  dag.values[id] = dag.tValues[id];
}

void Node::rollback(Dag& dag, std::uint32_t id) {
  dag.tValues[id] = dag.values[id];
}

void Node::operandChanged(std::uint32_t, const DagFixedFields&, std::uint32_t) {}

bool NodeInner::isConsistent(const Dag& dag, std::uint32_t id) const {
  const std::int64_t value = dag.values[id].intValue;
  return value == dag.tValues[id].intValue && dag.fixedFields->minValues[id].intValue <= value &&
         value <= dag.fixedFields->maxValues[id].intValue && value == computeValue(dag, id);
}

void NodeInner::init(Dag& dag, std::uint32_t id) {
  dag.values[id] = dag.tValues[id] = OXValue::ofInt(computeValue(dag, id));
}

bool NodeDoubleInner::isConsistent(const Dag& dag, std::uint32_t id) const {
  const double value = dag.values[id].doubleValue;
  const double min = dag.fixedFields->minValues[id].doubleValue;
  const double max = dag.fixedFields->maxValues[id].doubleValue;
  return approxEqual(value, dag.tValues[id].doubleValue) &&
         (min <= value || approxEqual(min, value)) && (value <= max || approxEqual(value, max)) &&
         approxEqual(value, computeValue(dag, id));
}

void NodeDoubleInner::dump(const Dag& dag, std::uint32_t id) const {
  Node::dump(dag, id);
  const double computed = computeValue(dag, id);
  std::cout << "isValueInit=" << approxEqual(dag.values[id].doubleValue, computed) << '\n'
            << "computedValue=" << computed << '\n';
}

void NodeDoubleInner::init(Dag& dag, std::uint32_t id) {
  dag.values[id] = dag.tValues[id] = OXValue::ofDouble(computeValue(dag, id));
}

}  // namespace ombrix
