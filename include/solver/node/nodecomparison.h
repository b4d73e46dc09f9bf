#ifndef OMBRIX_SOLVER_NODE_NODECOMPARISON_H
#define OMBRIX_SOLVER_NODE_NODECOMPARISON_H

#include <algorithm>

#include "solver/kernel/saturating.h"
#include "solver/node/comparisonpicks.h"

namespace ombrix {

/// A comparison of two integers. As a constraint it is violated by as much as an operand would have
/// to move.
class NodeComparison : public NodeInner {
public:
  virtual bool compare(OXValue a, OXValue b) const = 0;

  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
    return compare(dag.values[operands[0]], dag.values[operands[1]]) ? 1 : 0;
  }
};

/// A comparison by its rule: when it holds, and how far two numbers are from that. The evaluation
/// has the rule inlined.
template <typename Rule, typename Picks>
class NodeComparisonBy final : public Picks {
public:
  bool compare(OXValue a, OXValue b) const override { return Rule::holds(a.intValue, b.intValue); }

  void eval(Dag& dag, std::uint32_t id) const override {
    const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
    const NodeCell* const cells = dag.cells.data();
    const bool holds =
        Rule::holds(cells[operands[0]].tValue.intValue, cells[operands[1]].tValue.intValue);
    dag.tValues[id].intValue = holds ? 1 : 0;
  }

  std::int64_t violation(const Dag& dag, std::uint32_t id) const override {
    return violationOn(dag, id, dag.values);
  }

  std::int64_t violationDelta(const Dag& dag, std::uint32_t id) const override {
    return wrappingSub(violationOn(dag, id, dag.tValues), violationOn(dag, id, dag.values));
  }

private:
  static std::int64_t violationOn(const Dag& dag, std::uint32_t id, const NodeValues& values) {
    const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
    return Rule::violation(values[operands[0]].intValue, values[operands[1]].intValue);
  }
};

struct EqRule {
  static bool holds(std::int64_t a, std::int64_t b) { return a == b; }
  static std::int64_t violation(std::int64_t a, std::int64_t b) {
    return wrappingAbs(wrappingSub(a, b));
  }
};

struct NeqRule {
  static bool holds(std::int64_t a, std::int64_t b) { return a != b; }
  static std::int64_t violation(std::int64_t a, std::int64_t b) { return a == b ? 1 : 0; }
};

struct LeqRule {
  static bool holds(std::int64_t a, std::int64_t b) { return a <= b; }
  static std::int64_t violation(std::int64_t a, std::int64_t b) {
    return std::max<std::int64_t>(0, wrappingSub(a, b));
  }
};

struct LtRule {
  static bool holds(std::int64_t a, std::int64_t b) { return a < b; }
  static std::int64_t violation(std::int64_t a, std::int64_t b) {
    return std::max<std::int64_t>(0, wrappingAdd(wrappingSub(a, b), 1));
  }
};

struct GeqRule {
  static bool holds(std::int64_t a, std::int64_t b) { return a >= b; }
  static std::int64_t violation(std::int64_t a, std::int64_t b) { return LeqRule::violation(b, a); }
};

struct GtRule {
  static bool holds(std::int64_t a, std::int64_t b) { return a > b; }
  static std::int64_t violation(std::int64_t a, std::int64_t b) { return LtRule::violation(b, a); }
};

using NodeEq = NodeComparisonBy<EqRule, EqualPicks<NodeComparison, IntArithmetic>>;
using NodeNeq = NodeComparisonBy<NeqRule, NotEqualPicks<NodeComparison, IntArithmetic>>;
using NodeLeq = NodeComparisonBy<LeqRule, OrderPicks<NodeComparison, IntArithmetic, true>>;
using NodeLt = NodeComparisonBy<LtRule, OrderPicks<NodeComparison, IntArithmetic, true>>;
using NodeGeq = NodeComparisonBy<GeqRule, OrderPicks<NodeComparison, IntArithmetic, false>>;
using NodeGt = NodeComparisonBy<GtRule, OrderPicks<NodeComparison, IntArithmetic, false>>;

}  // namespace ombrix

#endif
