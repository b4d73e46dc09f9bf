#ifndef OMBRIX_SOLVER_NODE_ARITHMETIC_H
#define OMBRIX_SOLVER_NODE_ARITHMETIC_H

#include <cstdint>

#include "solver/kernel/dag.h"
#include "solver/node/operandview.h"

namespace ombrix {

/// How nodes read and compare numbers, so that what their integer and double forms share is written
/// once. The double form reads operands of every domain and compares
/// within the tolerance; a bound is reached at, beyond or within tolerance of it. Values are read
/// from those of a Dag or from an array of bounds.

struct IntArithmetic {
  using Number = std::int64_t;
  using Inner = NodeInner;
  using Operands = BoundedOperandView;

  template <typename Values>
  static Number read(const Dag&, const Values& values, std::uint32_t node) {
    return values[node].intValue;
  }
  static Number number(OXValue value) { return value.intValue; }
  static OXValue box(Number number) { return OXValue::ofInt(number); }

  static bool isLess(Number a, Number b) { return a < b; }
  static bool isEqual(Number a, Number b) { return a == b; }
  static bool isAtLeast(Number a, Number b) { return a >= b; }
};

struct DoubleArithmetic {
  using Number = double;
  using Inner = NodeDoubleInner;
  using Operands = BoundedDoubleOperandView;

  template <typename Values>
  static Number read(const Dag& dag, const Values& values, std::uint32_t node) {
    return doubleValue(dag.fixedFields->domains[node], values[node]);
  }
  static Number number(OXValue value) { return value.doubleValue; }
  static OXValue box(Number number) { return OXValue::ofDouble(number); }

  static bool isLess(Number a, Number b) { return a < b && !approxEqual(a, b); }
  static bool isEqual(Number a, Number b) { return approxEqual(a, b); }
  static bool isAtLeast(Number a, Number b) { return a >= b || approxEqual(a, b); }
};

/// The committed value of a node.
template <typename Arithmetic>
typename Arithmetic::Number committed(const Dag& dag, std::uint32_t node) {
  return Arithmetic::read(dag, dag.values, node);
}

template <typename Arithmetic>
bool isAtMin(const Dag& dag, std::uint32_t node) {
  return Arithmetic::isAtLeast(Arithmetic::read(dag, dag.fixedFields->minValues, node),
                               committed<Arithmetic>(dag, node));
}

template <typename Arithmetic>
bool isAtMax(const Dag& dag, std::uint32_t node) {
  return Arithmetic::isAtLeast(committed<Arithmetic>(dag, node),
                               Arithmetic::read(dag, dag.fixedFields->maxValues, node));
}

/// Whether the bounds leave a node one value only.
template <typename Arithmetic>
bool isFixed(const Dag& dag, std::uint32_t node) {
  return Arithmetic::isEqual(Arithmetic::read(dag, dag.fixedFields->minValues, node),
                             Arithmetic::read(dag, dag.fixedFields->maxValues, node));
}

}  // namespace ombrix

#endif
