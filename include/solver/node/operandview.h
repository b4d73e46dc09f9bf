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
  const NodeCell* cells;

  OperandView(const Dag& dag, std::uint32_t id)
      : operands(dag.fixedFields->linkedOperandsOf(id)),
        nbOperands(dag.fixedFields->linksOf(id)[kNbOperands]),
        cells(dag.cells.data()) {}

  std::int64_t value(std::uint32_t position) const {
    return cells[operands[position]].value.intValue;
  }
  std::int64_t tValue(std::uint32_t position) const {
    return cells[operands[position]].tValue.intValue;
  }
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
  const NodeCell* cells;

  DoubleOperandView(const Dag& dag, std::uint32_t id)
      : operands(dag.fixedFields->linkedOperandsOf(id)),
        nbOperands(dag.fixedFields->linksOf(id)[kNbOperands]),
        domains(dag.fixedFields->domains.data()),
        cells(dag.cells.data()) {}

  double value(std::uint32_t position) const {
    const std::uint32_t operand = operands[position];
    return doubleValue(domains[operand], cells[operand].value);
  }
  double tValue(std::uint32_t position) const {
    const std::uint32_t operand = operands[position];
    return doubleValue(domains[operand], cells[operand].tValue);
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

private:
  double read(const OXValue* from, std::uint32_t position) const {
    const std::uint32_t operand = operands[position];
    return doubleValue(domains[operand], from[operand]);
  }
};

}  // namespace ombrix

#endif
