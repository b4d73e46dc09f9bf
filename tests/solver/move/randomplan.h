#ifndef OMBRIX_TESTS_SOLVER_MOVE_RANDOMPLAN_H
#define OMBRIX_TESTS_SOLVER_MOVE_RANDOMPLAN_H

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "tests/solver/move/plangraph.h"

namespace ombrix::test {

using Draw = std::mt19937;

inline std::uint32_t below(Draw& draw, std::size_t n) {
  return static_cast<std::uint32_t>(draw() % n);
}

/// Random autonomous graphs of up to four ranks; the widest node has nbWide operands.
class RandomPlan {
public:
  RandomPlan(std::uint32_t seed, std::uint32_t nbWide) : draw(seed), width(nbWide) {
    decisions = graph.builder.booleans(nbWide < 12 ? 6 + below(draw, 6) : nbWide);
    constants = {graph.builder.constant(0), graph.builder.constant(1), graph.builder.constant(3),
                 graph.builder.doubleConstant(0.5), graph.builder.doubleConstant(-1.25)};
    logic = decisions;
    addRank(true);
    addComparisons();
    addRank(false);
    addComparisons();
    addObjective();
    graph.start(seed);
  }

  PlanGraph graph;
  std::vector<std::uint32_t> decisions;

private:
  std::uint32_t pick(const std::vector<std::uint32_t>& from) {
    return from[below(draw, from.size())];
  }
  std::vector<std::uint32_t> operands(const std::vector<std::uint32_t>& from, std::uint32_t count) {
    std::vector<std::uint32_t> some;
    for (std::uint32_t i = 0; i < count; ++i) some.push_back(pick(from));
    return some;
  }
  std::uint32_t count(bool isWide) { return isWide ? width : 1 + below(draw, 5); }

  /// One node of each variadic kind; the integer ones have integer constants only.
  void addRank(bool isWide) {
    std::vector<std::uint32_t> integers = logic;
    integers.insert(integers.end(), constants.begin(), constants.begin() + 3);
    std::vector<std::uint32_t> numbers = logic;
    numbers.insert(numbers.end(), constants.begin(), constants.end());
    std::vector<std::int64_t> scalars;
    std::vector<double> doubleScalars;
    const auto ints = operands(integers, count(isWide));
    const auto doubles = operands(numbers, count(isWide));
    for (std::size_t i = 0; i < ints.size(); ++i) {
      scalars.push_back(static_cast<std::int64_t>(below(draw, 7)) - 3);
    }
    for (std::size_t i = 0; i < doubles.size(); ++i) {
      doubleScalars.push_back((static_cast<double>(below(draw, 9)) - 4.0) / 4.0);
    }
    auto& builder = graph.builder;
    sums = {builder.node(NodeType::BooleanSum, operands(decisions, 3)),
            builder.node(NodeType::Sum, operands(integers, count(isWide))),
            builder.node(NodeType::ScalarSum, ints, scalars)};
    doubleSums = {builder.node(NodeType::DoubleSum, operands(numbers, count(isWide))),
                  builder.doubleNode(NodeType::DoubleScalarSum, doubles, doubleScalars)};
    const auto both = builder.node(NodeType::And, operands(logic, 1 + below(draw, 3)));
    const auto either = builder.node(NodeType::Or, operands(logic, count(isWide)));
    logic.push_back(both);
    logic.push_back(either);
    builder.constraint(isWide ? either : both);
  }

  void addComparisons() {
    std::vector<std::uint32_t> all = sums;
    all.insert(all.end(), doubleSums.begin(), doubleSums.end());
    for (const NodeType type : {NodeType::Eq, NodeType::Leq, NodeType::Geq}) {
      addComparison(type, pick(sums), below(draw, 2) == 0 ? pick(sums) : constants[below(draw, 3)]);
    }
    for (const NodeType type : {NodeType::DoubleEq, NodeType::DoubleLeq, NodeType::DoubleGeq}) {
      addComparison(type, pick(all), below(draw, 2) == 0 ? pick(all) : pick(constants));
    }
  }
  void addComparison(NodeType type, std::uint32_t left, std::uint32_t right) {
    if (below(draw, 2) == 0) std::swap(left, right);
    logic.push_back(graph.builder.constraint(graph.builder.node(type, {left, right})));
  }

  void addObjective() {
    std::vector<std::int64_t> costs;
    for (std::size_t i = 0; i < decisions.size(); ++i) {
      costs.push_back(static_cast<std::int64_t>(below(draw, 9)) - 4);
    }
    graph.builder.minimise(graph.builder.node(NodeType::ScalarSum, decisions, costs));
  }

  Draw draw;
  std::uint32_t width;
  std::vector<std::uint32_t> constants;
  std::vector<std::uint32_t> logic;
  std::vector<std::uint32_t> sums;
  std::vector<std::uint32_t> doubleSums;
};

}  // namespace ombrix::test

#endif
