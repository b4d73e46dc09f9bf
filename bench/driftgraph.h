#ifndef OMBRIX_BENCH_DRIFTGRAPH_H
#define OMBRIX_BENCH_DRIFTGRAPH_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <span>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/node.h"

/// Graphs whose doubles are hard to keep: what a walk over them has lost against a computation from
/// nothing is the drift.
namespace ombrix::bench {

/// A graph with every node type, the families over position sets once for every given number of
/// operands, each number with decisions of its own. The weights of the double sums lie over a given
/// number of decades, and neighbours nearly cancel; constants lie within the tolerance of what the
/// sums reach; conditionals and quotients become infinite.
///
/// What is not continuous (comparisons, roundings) or infinite feeds nothing continuous, so that
/// the continuous nodes show rounding and nothing else.
class DriftGraph {
public:
  DriftGraph(std::uint32_t seed, const std::vector<std::uint32_t>& widths, double decades)
      : random(seed), spread(decades) {
    one = constant(1);
    doubleOne = real(1.0);
    for (const std::uint32_t width : widths) addFamily(width);
    const std::vector<std::uint32_t> operands = goals;
    fields.addObjective(add(NodeType::DoubleSum, operands), kMinimise);
    fields.finish();
  }

  /// Writes some decisions, of one family for the most part: the wider the family, the more its
  /// nodes cost, so the wide ones are moved more seldom.
  void move(Dag& dag) {
    const auto& family = families[drawFamily()];
    for (std::uint32_t n = 1 + below(3); n > 0; --n) write(dag, family[below(sizeOf(family))]);
    if (dag.propagation.evaluateConstraints(dag)) dag.propagation.evaluateLevels(dag, 1);
    dag.propagation.accept(dag);
  }

  DagFixedFields fields;
  std::vector<std::uint32_t> continuous;  ///< what drifts by rounding alone

private:
  using Ids = std::vector<std::uint32_t>;

  std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(random() % n); }
  double unit() { return static_cast<double>(random()) / 4294967296.0; }
  static std::uint32_t sizeOf(const Ids& ids) { return static_cast<std::uint32_t>(ids.size()); }
  std::uint32_t among(const Ids& ids) { return ids[below(sizeOf(ids))]; }

  std::uint32_t drawFamily() {
    const std::uint32_t family = below(static_cast<std::uint32_t>(families.size()));
    const bool isWide = widthOfFamily[family] > 1024;
    return isWide && below(20) != 0 ? 0 : family;
  }

  void write(Dag& dag, std::uint32_t decision) {
    switch (fields.types[decision]) {
      case NodeType::Boolean:
        return dag.propagation.setValue(dag, decision,
                                        std::int64_t{1} - dag.values[decision].intValue);
      case NodeType::Integer:
        return dag.propagation.setValue(dag, decision, std::int64_t{below(19)} - 9);
      default:
        return dag.propagation.setValue(dag, decision, 5.0 * unit() - 2.0);
    }
  }

  std::uint32_t add(NodeType type, const Ids& operands, const std::vector<OXValue>& scalars = {}) {
    return fields.addNode(type, std::span(operands), std::span(scalars));
  }
  std::uint32_t constant(std::int64_t value) {
    return add(NodeType::Constant, {}, {OXValue::ofInt(value)});
  }
  std::uint32_t real(double value) {
    return add(NodeType::DoubleConstant, {}, {OXValue::ofDouble(value)});
  }
  std::uint32_t addContinuous(NodeType type, const Ids& operands,
                              const std::vector<OXValue>& scalars = {}) {
    continuous.push_back(add(type, operands, scalars));
    return continuous.back();
  }

  /// Over the given number of decades, each second one nearly the opposite of the one before.
  std::vector<OXValue> weights(std::uint32_t width) {
    std::vector<OXValue> result;
    for (std::uint32_t i = 0; i < width; ++i) {
      const double size = std::pow(10.0, spread * (unit() - 0.5));
      const bool isCancelling = i % 2 == 1 && below(2) == 0;
      const double weight =
          isCancelling ? -result.back().doubleValue * (1.0 - 1e-9) : (below(2) == 0 ? size : -size);
      result.push_back(OXValue::ofDouble(weight));
    }
    return result;
  }
  /// From -3 to 3 without 0, by which the bounds of an unbounded decision become meaningless.
  std::vector<OXValue> integers(std::uint32_t width) {
    std::vector<OXValue> result;
    for (std::uint32_t i = 0; i < width; ++i) {
      const std::int64_t drawn = std::int64_t{below(6)} - 3;
      result.push_back(OXValue::ofInt(drawn >= 0 ? drawn + 1 : drawn));
    }
    return result;
  }
  Ids drawn(const Ids& from, std::uint32_t width) {
    Ids result;
    for (std::uint32_t i = 0; i < width; ++i) result.push_back(among(from));
    return result;
  }
  /// Ones but for a few, so that the product stays small and is not always 0.
  Ids factors(const Ids& from, std::uint32_t neutral, std::uint32_t width) {
    Ids result(width, neutral);
    for (std::uint32_t i = 0; i < std::min(width, 4U); ++i) result[below(width)] = among(from);
    return result;
  }

  void addFamily(std::uint32_t width) {
    Ids booleans;
    for (std::uint32_t i = 0; i < std::clamp(width, 12U, 2000U); ++i) {
      booleans.push_back(add(NodeType::Boolean, {}));
    }
    Ids whole = booleans;
    Ids decisions = booleans;
    const Ids ends = {real(-2.0), real(3.0)};
    for (int i = 0; i < 3; ++i) {
      whole.push_back(add(NodeType::Integer, {}));
      decisions.push_back(whole.back());
      decisions.push_back(add(NodeType::Float, ends));
    }
    families.push_back(decisions);
    widthOfFamily.push_back(width);
    addLogic(booleans, width);
    addWholeNumbers(booleans, whole, width);
    addDoubles(booleans, decisions, width);
  }

  void addLogic(const Ids& booleans, std::uint32_t width) {
    for (const NodeType type : {NodeType::And, NodeType::Or, NodeType::Xor}) {
      add(NodeType::Not, {add(type, drawn(booleans, width))});
    }
  }

  void addWholeNumbers(const Ids& booleans, const Ids& whole, std::uint32_t width) {
    const std::uint32_t count = add(NodeType::BooleanSum, drawn(booleans, width));
    const std::uint32_t sum = add(NodeType::Sum, drawn(booleans, width));
    const std::uint32_t scalarSum =
        add(NodeType::ScalarSum, drawn(booleans, width), integers(width));
    for (const NodeType type : {NodeType::Max, NodeType::Min}) add(type, drawn(whole, width));
    for (const NodeType type : {NodeType::ScalarMax, NodeType::ScalarMin}) {
      add(type, drawn(whole, width), integers(width));
    }
    add(NodeType::Product, factors(whole, one, width));
    add(NodeType::ScalarProduct, factors(whole, one, width), {OXValue::ofInt(-2)});
    const std::uint32_t size = add(NodeType::Abs, {scalarSum});
    const std::uint32_t divisor = add(NodeType::Sum, {size, one});
    add(NodeType::Distance, {scalarSum, count});
    add(NodeType::Divide, {sum, divisor});
    add(NodeType::Modulo, {sum, divisor});
    add(NodeType::If, {among(booleans), sum, scalarSum});
    for (const NodeType type :
         {NodeType::Eq, NodeType::Neq, NodeType::Geq, NodeType::Gt, NodeType::Leq, NodeType::Lt}) {
      add(type, {scalarSum, count});
    }
    const std::uint32_t index = add(NodeType::BooleanSum, drawn(booleans, width - 1));
    add(NodeType::At, {add(NodeType::Array, drawn(whole, width)), index});
    const Ids elements = {add(NodeType::ConstArray, {}, integers(width))};
    add(NodeType::At, {elements.front(), index});
  }

  void addDoubles(const Ids& booleans, const Ids& decisions, std::uint32_t width) {
    const std::vector<OXValue> scalars = weights(width);
    const Ids operands = drawn(decisions, width);
    const std::uint32_t sum = addContinuous(NodeType::DoubleScalarSum, operands, scalars);
    const std::uint32_t plain = addContinuous(NodeType::DoubleSum, terms(decisions, width));
    goals.push_back(sum);
    goals.push_back(plain);
    for (const NodeType type : {NodeType::DoubleMax, NodeType::DoubleMin}) {
      addContinuous(type, drawn(decisions, width));
    }
    for (const NodeType type : {NodeType::DoubleScalarMax, NodeType::DoubleScalarMin}) {
      addContinuous(type, drawn(decisions, width), weights(width));
    }
    addContinuous(NodeType::DoubleProduct, factors(nearOne(decisions), doubleOne, width));
    addContinuous(NodeType::DoubleScalarProduct, factors(nearOne(decisions), doubleOne, width),
                  {OXValue::ofDouble(-0.3)});
    addFunctions(booleans, decisions, sum);
    addArrays(booleans, decisions, width);
    addEdges(booleans, sum, scalars);
  }

  /// Sums of few terms, so that a wide sum stands over inner nodes too.
  Ids terms(const Ids& decisions, std::uint32_t width) {
    Ids result = drawn(decisions, width);
    for (std::uint32_t i = 0; i < std::min(width, 4U); ++i) {
      result[below(width)] =
          addContinuous(NodeType::DoubleScalarSum, drawn(decisions, 3), weights(3));
    }
    return result;
  }
  Ids nearOne(const Ids& decisions) {
    Ids result;
    for (int i = 0; i < 6; ++i) {
      const std::vector<OXValue> scalars = {OXValue::ofDouble(1.0),
                                            OXValue::ofDouble(0.1 * unit())};
      result.push_back(
          addContinuous(NodeType::DoubleScalarSum, {doubleOne, among(decisions)}, scalars));
    }
    return result;
  }

  void addFunctions(const Ids& booleans, const Ids& decisions, std::uint32_t sum) {
    std::vector<OXValue> scalars;
    for (int i = 0; i < 8; ++i) scalars.push_back(OXValue::ofDouble(unit() - 0.5));
    const std::uint32_t small =
        addContinuous(NodeType::DoubleScalarSum, drawn(booleans, 8), scalars);
    const std::uint32_t size = addContinuous(NodeType::DoubleAbs, {sum});
    const std::uint32_t positive = addContinuous(NodeType::DoubleSum, {size, doubleOne});
    const std::uint32_t angle =
        addContinuous(NodeType::DoubleScalarSum, {small}, {OXValue::ofDouble(0.2)});
    for (const NodeType type : {NodeType::DoubleSqrt, NodeType::DoubleLog}) {
      addContinuous(type, {positive});
    }
    for (const NodeType type : {NodeType::DoubleExp, NodeType::DoubleCos, NodeType::DoubleSin}) {
      addContinuous(type, {small});
    }
    addContinuous(NodeType::DoubleTan, {angle});
    addContinuous(NodeType::DoubleDivide, {small, positive});
    addContinuous(NodeType::DoubleDistance, {sum, small});
    addContinuous(NodeType::DoubleIf, {among(booleans), sum, small});
    const std::uint32_t exponent = add(NodeType::BooleanSum, drawn(booleans, 2));
    addContinuous(NodeType::DoublePow, {nearOne(decisions).front(), exponent});
    for (const NodeType type :
         {NodeType::DoubleCeil, NodeType::DoubleFloor, NodeType::DoubleRound}) {
      add(type, {small});
    }
  }

  void addArrays(const Ids& booleans, const Ids& decisions, std::uint32_t width) {
    const std::uint32_t index = add(NodeType::BooleanSum, drawn(booleans, width - 1));
    const std::uint32_t array = add(NodeType::Array, drawn(decisions, width));
    addContinuous(NodeType::DoubleAt, {array, index});
    const std::uint32_t numbers = add(NodeType::ConstArray, {}, weights(width));
    addContinuous(NodeType::DoubleAt, {numbers, index});
  }

  /// Comparisons with what the sum reaches, exactly or nearly, and with infinities.
  void addEdges(const Ids& booleans, std::uint32_t sum, const std::vector<OXValue>& scalars) {
    static constexpr NodeType kComparisons[] = {NodeType::DoubleEq,  NodeType::DoubleNeq,
                                                NodeType::DoubleGeq, NodeType::DoubleGt,
                                                NodeType::DoubleLeq, NodeType::DoubleLt};
    const double reached = scalars.front().doubleValue;
    const std::uint32_t infinite = add(
        NodeType::DoubleIf, {among(booleans), real(std::numeric_limits<double>::infinity()), sum});
    const std::uint32_t quotient = add(NodeType::DoubleDivide, {doubleOne, among(booleans)});
    for (const NodeType type : kComparisons) {
      for (const double value : {reached, reached * (1.0 + 9e-7), reached + 9e-7, 0.0}) {
        fields.constraints.push_back(add(type, {sum, real(value)}));
      }
      add(type, {infinite, quotient});
    }
    add(NodeType::DoubleAbs, {infinite});
  }

  std::mt19937 random;
  double spread;
  std::uint32_t one = 0;
  std::uint32_t doubleOne = 0;
  Ids goals;
  std::vector<Ids> families;  ///< the decisions of each
  std::vector<std::uint32_t> widthOfFamily;
};

/// What the continuous nodes have lost, and how many nodes no longer pass their own check.
struct Drift {
  double largest = 0.0;   ///< absolute
  double relative = 0.0;  ///< to the sum of both magnitudes, or to 1 for values next to 0
  int nbBeyond = 0;       ///< values that are no longer equal within the engine's tolerance
  int nbInconsistent = 0;
};

inline Drift measureDrift(const Dag& dag, const DriftGraph& graph) {
  const DagFixedFields& fields = graph.fields;
  Dag fresh(fields);
  for (std::uint32_t i = 0; i < fields.firstInnerNode; ++i) {
    const std::uint32_t decision = fields.nodesByGroup[i];
    fresh.values[decision] = fresh.tValues[decision] = dag.values[decision];
  }
  for (std::size_t rank = 1; rank < fields.nodesByRank.size(); ++rank) {
    for (const std::uint32_t id : fields.nodesByRank[rank]) fresh.nodes[id]->init(fresh, id);
  }
  Drift drift;
  for (const std::uint32_t id : graph.continuous) {
    const double kept = dag.values[id].doubleValue;
    const double exact = fresh.values[id].doubleValue;
    const double difference = std::fabs(kept - exact);
    drift.largest = std::max(drift.largest, difference);
    drift.relative =
        std::max(drift.relative, difference / std::max(1.0, std::fabs(kept) + std::fabs(exact)));
    if (!approxEqual(kept, exact)) ++drift.nbBeyond;
  }
  for (std::uint32_t id = 0; id < fields.nbNodes; ++id) {
    if (!dag.nodes[id]->isConsistent(dag, id)) ++drift.nbInconsistent;
  }
  return drift;
}

}  // namespace ombrix::bench

#endif
