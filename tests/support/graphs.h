#ifndef OMBRIX_TESTS_SUPPORT_GRAPHS_H
#define OMBRIX_TESTS_SUPPORT_GRAPHS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/dagfixedfields.h"

namespace ombrix::test {

/// Describes a kernel graph node by node, finishes its fixed fields and makes Dags over them. The
/// builder must outlive its Dags. A graph that is told no objective minimises the constant 0, since
/// no Dag goes without.
class GraphBuilder {
public:
  std::uint32_t boolean() { return fields.addNode(NodeType::Boolean); }
  std::uint32_t integer() { return fields.addNode(NodeType::Integer); }
  std::uint32_t floating(double min, double max) {
    const std::uint32_t low = doubleConstant(min);
    const std::uint32_t high = doubleConstant(max);
    return fields.addNode(NodeType::Float, {low, high});
  }
  std::vector<std::uint32_t> booleans(std::uint32_t count) {
    std::vector<std::uint32_t> ids;
    for (std::uint32_t i = 0; i < count; ++i) ids.push_back(boolean());
    return ids;
  }

  std::uint32_t constant(std::int64_t value) {
    return fields.addNode(NodeType::Constant, {}, {OXValue::ofInt(value)});
  }
  std::uint32_t doubleConstant(double value) {
    return fields.addNode(NodeType::DoubleConstant, {}, {OXValue::ofDouble(value)});
  }
  std::uint32_t constArray(const std::vector<std::int64_t>& elements) {
    return node(NodeType::ConstArray, {}, elements);
  }
  std::uint32_t doubleConstArray(const std::vector<double>& elements) {
    return doubleNode(NodeType::ConstArray, {}, elements);
  }

  /// Any type, with integer scalars.
  std::uint32_t node(NodeType type, const std::vector<std::uint32_t>& operands,
                     const std::vector<std::int64_t>& scalars = {}) {
    std::vector<OXValue> numbers;
    for (std::int64_t scalar : scalars) numbers.push_back(OXValue::ofInt(scalar));
    return fields.addNode(type, std::span(operands), std::span<const OXValue>(numbers));
  }
  /// Any type, with double scalars.
  std::uint32_t doubleNode(NodeType type, const std::vector<std::uint32_t>& operands,
                           const std::vector<double>& scalars = {}) {
    std::vector<OXValue> numbers;
    for (double scalar : scalars) numbers.push_back(OXValue::ofDouble(scalar));
    return fields.addNode(type, std::span(operands), std::span<const OXValue>(numbers));
  }

  /// Both return the node, so that a graph can be written as one expression.
  std::uint32_t constraint(std::uint32_t id) {
    fields.constraints.push_back(id);
    return id;
  }
  std::uint32_t minimise(std::uint32_t id) {
    fields.addObjective(id, kMinimise);
    return id;
  }
  std::uint32_t maximise(std::uint32_t id) {
    fields.addObjective(id, kMaximise);
    return id;
  }

  /// Closes the graph; done by the first makeDag if it was not done before.
  const DagFixedFields& finish() {
    if (!finished) {
      if (fields.objectives.empty()) minimise(constant(0));
      fields.finish();
      finished = true;
    }
    return fields;
  }
  std::unique_ptr<Dag> makeDag() { return std::make_unique<Dag>(finish()); }

  DagFixedFields fields;

private:
  bool finished = false;
};

/// One whole move of one decision: written, evaluated at all levels that the Dag follows, accepted.
template <typename Value>
void setAndAccept(Dag& dag, std::uint32_t decision, Value value) {
  if constexpr (std::is_floating_point_v<Value>) {
    dag.propagation.setValue(dag, decision, static_cast<double>(value));
  } else {
    dag.propagation.setValue(dag, decision, static_cast<std::int64_t>(value));
  }
  dag.propagation.accept(dag);
}

/// Writes the opposite value of a boolean decision, and leaves the move open.
inline void flip(Dag& dag, std::uint32_t decision) {
  dag.propagation.setValue(dag, decision, std::int64_t{1} - dag.values[decision].intValue);
}

/// A Dag over the same fields with the same decisions, in which every node was computed from
/// nothing.
inline std::unique_ptr<Dag> recompute(const Dag& dag) {
  const DagFixedFields& fields = *dag.fixedFields;
  auto fresh = std::make_unique<Dag>(fields);
  for (std::uint32_t i = 0; i < fields.firstInnerNode; ++i) {
    const std::uint32_t decision = fields.nodesByGroup[i];
    fresh->values[decision] = dag.values[decision];
  }
  for (const auto& nodes : fields.nodesByRank) {
    for (std::uint32_t id : nodes) fresh->nodes[id]->init(*fresh, id);
  }
  fresh->propagation.init(*fresh);
  return fresh;
}

inline bool sameValue(std::uint8_t domain, OXValue a, OXValue b) {
  if (domain == kArrayDomain) return true;
  if (domain != kDoubleDomain) return a.intValue == b.intValue;
  return approxEqual(a.doubleValue, b.doubleValue) ||
         (std::isnan(a.doubleValue) && std::isnan(b.doubleValue));
}

/// For a Dag without an open move and without stale nodes: every node passes its check, and all
/// values, violations and the infeasibility are those of a Dag computed from nothing.
inline void expectConsistent(const Dag& dag) {
  const DagFixedFields& fields = *dag.fixedFields;
  EXPECT_NO_THROW(dag.check());
  const auto fresh = recompute(dag);
  for (std::uint32_t id = 0; id < fields.nbNodes; ++id) {
    const std::uint8_t domain = fields.domains[id];
    EXPECT_TRUE(sameValue(domain, dag.values[id], fresh->values[id]))
        << "value of node " << id << " (" << fields.getTypeName(id) << ")";
    EXPECT_TRUE(sameValue(domain, dag.tValues[id], dag.values[id]))
        << "tentative value of node " << id << " (" << fields.getTypeName(id) << ")";
    EXPECT_FALSE(dag.propagation.isTouched(id)) << "node " << id;
  }
  for (std::uint32_t id : fields.constraints) {
    EXPECT_EQ(dag.nodes[id]->violation(dag, id), fresh->nodes[id]->violation(*fresh, id))
        << "violation of node " << id << " (" << fields.getTypeName(id) << ")";
  }
  // The sum does not follow the violation of a double equality, so with one it is not comparable.
  const auto isDoubleEquality = [&](std::uint32_t id) {
    return fields.types[id] == NodeType::DoubleEq;
  };
  Infeasibility expected = fresh->propagation.infeasibility;
  if (std::any_of(fields.constraints.begin(), fields.constraints.end(), isDoubleEquality)) {
    expected.violationSum = dag.propagation.infeasibility.violationSum;
  }
  EXPECT_EQ(dag.propagation.infeasibility, expected);
  EXPECT_EQ(dag.propagation.tInfeasibility, dag.propagation.infeasibility);
}

}  // namespace ombrix::test

#endif
