#ifndef OMBRIX_TESTS_SUPPORT_NODEFIXTURES_H
#define OMBRIX_TESTS_SUPPORT_NODEFIXTURES_H

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "support/graphs.h"
#include "support/picks.h"

namespace ombrix::test {

/// A graph in which one node is looked at.
class OneNodeTest : public testing::Test {
protected:
  /// Makes the Dag with this node as its objective. For another graph, assign a new one first.
  void build(std::uint32_t root) {
    node = graph.minimise(root);
    dag = graph.makeDag();
  }

  bool isConsistent() const { return dag->nodes[node]->isConsistent(*dag, node); }
  std::string dump() const {
    return captured([this] { dag->nodes[node]->dump(*dag, node); });
  }

  const std::uint32_t low = seedForTopBits({0});   ///< a random state whose next top bit is 0
  const std::uint32_t high = seedForTopBits({1});  ///< and one whose next top bit is 1
  GraphBuilder graph;
  std::uint32_t node = 0;
  std::unique_ptr<Dag> dag;
};

/// Constraints over the same operands, looked at side by side.
class ConstraintsTest : public testing::Test {
protected:
  using Numbers = std::vector<std::int64_t>;

  /// Makes the Dag with a constraint of each type over a and b.
  void build(std::span<const NodeType> types, std::uint32_t a, std::uint32_t b) {
    for (const NodeType type : types) nodes.push_back(graph.constraint(graph.node(type, {a, b})));
    dag = graph.makeDag();
  }

  Numbers values() const {
    Numbers result;
    for (const std::uint32_t node : nodes) result.push_back(dag->values[node].intValue);
    return result;
  }
  Numbers violations() const {
    Numbers result;
    for (const std::uint32_t node : nodes)
      result.push_back(dag->nodes[node]->violation(*dag, node));
    return result;
  }
  Numbers deltas() const {
    Numbers result;
    for (const std::uint32_t node : nodes)
      result.push_back(dag->nodes[node]->violationDelta(*dag, node));
    return result;
  }

  GraphBuilder graph;
  std::vector<std::uint32_t> nodes;
  std::unique_ptr<Dag> dag;
};

}  // namespace ombrix::test

#endif
