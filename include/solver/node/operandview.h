#ifndef OMBRIX_SOLVER_NODE_OPERANDVIEW_H
#define OMBRIX_SOLVER_NODE_OPERANDVIEW_H

#include <cstdint>

#include "solver/kernel/dag.h"

namespace ombrix {

/// The operands of one node, read by position through local pointers: an evaluation loads the
/// arrays of the Dag once and not at every operand.
struct OperandView {
  const std::uint32_t* operands;
  std::uint32_t nbOperands;
  const OXValue* values;
  const OXValue* tValues;

  OperandView(const Dag& dag, std::uint32_t id)
      : operands(dag.fixedFields->operandsOf(id)),
        nbOperands(dag.fixedFields->nbOperands(id)),
        values(dag.values.data()),
        tValues(dag.tValues.data()) {}

  std::int64_t value(std::uint32_t position) const { return values[operands[position]].intValue; }
  std::int64_t tValue(std::uint32_t position) const { return tValues[operands[position]].intValue; }
};

/// The same with the bounds, for nodes that sort their operands by what they can still do.
struct BoundedOperandView : OperandView {
  const OXValue* minValues;
  const OXValue* maxValues;

  BoundedOperandView(const Dag& dag, std::uint32_t id)
      : OperandView(dag, id),
        minValues(dag.fixedFields->minValues.data()),
        maxValues(dag.fixedFields->maxValues.data()) {}

  std::int64_t min(std::uint32_t position) const { return minValues[operands[position]].intValue; }
  std::int64_t max(std::uint32_t position) const { return maxValues[operands[position]].intValue; }
};

/// The operands of a double node, of whatever domain, read as doubles.
struct DoubleOperandView {
  const std::uint32_t* operands;
  std::uint32_t nbOperands;
  const std::uint8_t* domains;
  const OXValue* values;
  const OXValue* tValues;

  DoubleOperandView(const Dag& dag, std::uint32_t id)
      : operands(dag.fixedFields->operandsOf(id)),
        nbOperands(dag.fixedFields->nbOperands(id)),
        domains(dag.fixedFields->domains.data()),
        values(dag.values.data()),
        tValues(dag.tValues.data()) {}

  double value(std::uint32_t position) const { return read(values, position); }
  double tValue(std::uint32_t position) const { return read(tValues, position); }

protected:
  double read(const OXValue* from, std::uint32_t position) const {
    const std::uint32_t operand = operands[position];
    return doubleValue(domains[operand], from[operand]);
  }
};

struct BoundedDoubleOperandView : DoubleOperandView {
  const OXValue* minValues;
  const OXValue* maxValues;

  BoundedDoubleOperandView(const Dag& dag, std::uint32_t id)
      : DoubleOperandView(dag, id),
        minValues(dag.fixedFields->minValues.data()),
        maxValues(dag.fixedFields->maxValues.data()) {}

  double min(std::uint32_t position) const { return read(minValues, position); }
  double max(std::uint32_t position) const { return read(maxValues, position); }
};

}  // namespace ombrix

#endif
