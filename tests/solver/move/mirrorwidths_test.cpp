#include <gmock/gmock.h>

#include <set>
#include <string>
#include <typeindex>

#include "solver/move/constraintnodecomparison.h"
#include "solver/move/constraintnodelogical.h"
#include "solver/move/constraintnodesum.h"
#include "tests/solver/move/randomplan.h"

namespace ombrix {
namespace {

using test::below;
using test::Draw;

constexpr NodeType kVariadicTypes[] = {NodeType::And,
                                       NodeType::Or,
                                       NodeType::Sum,
                                       NodeType::BooleanSum,
                                       NodeType::ScalarSum,
                                       NodeType::DoubleSum,
                                       NodeType::DoubleScalarSum};

/// One node of a type with exactly so many operands, in the lowest rank or over comparisons, and
/// what makes its graph four ranks deep.
class WidePlan {
public:
  WidePlan(std::uint32_t seed, NodeType type, std::uint32_t width, bool isLow) : draw(seed) {
    decisions = graph.builder.booleans(24);
    booleans = decisions;
    if (!isLow) addComparisons(add(NodeType::ScalarSum, decisions, 6), 3);
    // A sum over booleans knows no other operands.
    const auto wide = add(type, type == NodeType::BooleanSum ? decisions : booleans, width);
    if (type == NodeType::And || type == NodeType::Or) {
      booleans.assign(1, graph.builder.constraint(wide));
      booleans.insert(booleans.end(), decisions.begin(), decisions.end());
      addComparisons(wide, 1);
    } else {
      addComparisons(wide, width);
    }
    if (isLow) addComparisons(add(NodeType::Sum, booleans, 3), 2);
    graph.start(seed);
  }

  std::set<std::type_index> kinds() const {
    std::set<std::type_index> found;
    for (const DynamicConstraintNode* node : graph.structure->dynamicNodes) {
      found.insert(typeid(*node));
    }
    return found;
  }

  test::PlanGraph graph;
  std::vector<std::uint32_t> decisions;

private:
  std::uint32_t add(NodeType type, const std::vector<std::uint32_t>& from, std::uint32_t width) {
    std::vector<std::uint32_t> operands;
    std::vector<std::int64_t> scalars;
    std::vector<double> doubleScalars;
    for (std::uint32_t i = 0; i < width; ++i) {
      operands.push_back(from[below(draw, from.size())]);
      scalars.push_back(static_cast<std::int64_t>(below(draw, 5)) - 2);
      doubleScalars.push_back((static_cast<double>(below(draw, 9)) - 4.0) / 4.0);
    }
    if (type == NodeType::ScalarSum) return graph.builder.node(type, operands, scalars);
    if (type == NodeType::DoubleScalarSum) {
      return graph.builder.doubleNode(type, operands, doubleScalars);
    }
    return graph.builder.node(type, operands);
  }

  /// One of each kind, with bounds among the values of the node.
  void addComparisons(std::uint32_t node, std::uint32_t range) {
    auto& builder = graph.builder;
    const bool isDouble = builder.fields.types[node] == NodeType::DoubleSum ||
                          builder.fields.types[node] == NodeType::DoubleScalarSum;
    for (const NodeType type : {NodeType::DoubleEq, NodeType::DoubleLeq, NodeType::DoubleGeq,
                                NodeType::Eq, NodeType::Leq, NodeType::Geq}) {
      const bool isIntegral =
          type == NodeType::Eq || type == NodeType::Leq || type == NodeType::Geq;
      if (isIntegral && isDouble) continue;
      const auto value = static_cast<std::int64_t>(below(draw, range + 1));
      const auto bound = isIntegral ? builder.constant(value)
                                    : builder.doubleConstant(static_cast<double>(value) / 2.0);
      const auto left = below(draw, 2) == 0 ? node : bound;
      booleans.push_back(
          builder.constraint(builder.node(type, {left, left == node ? bound : node})));
    }
  }

  Draw draw;
  std::vector<std::uint32_t> booleans;
};

/// Accepted and rejected moves, planned and not, with a comparison after each.
void run(WidePlan& wide, std::uint32_t seed, std::uint32_t nbMoves) {
  test::PlanGraph& graph = wide.graph;
  Draw draw(seed);
  graph.expectAgrees(graph.dag->values);
  for (std::uint32_t i = 0; i < nbMoves && !testing::Test::HasFailure(); ++i) {
    if (i % 2 == 0) {
      auto& nodes = graph.structure->dynamicNodes;
      for (std::uint32_t j = 0; j < 5; ++j) {
        DynamicConstraintNode& node = *nodes[nodes.size() - 1 - below(draw, nodes.size())];
        if (below(draw, 2) == 0) {
          node.increase(graph.rng, below(draw, 2) == 0);
        } else {
          node.decrease(graph.rng, below(draw, 2) == 0);
        }
      }
      graph.applyPlan();
    } else {
      for (std::uint32_t j = 0; j < 3; ++j) {
        test::flip(*graph.dag, wide.decisions[below(draw, wide.decisions.size())]);
      }
    }
    graph.dag->propagation.evaluateConstraints(*graph.dag);
    if (i % 2 == 0) graph.expectAgrees(graph.dag->tValues);
    if (i % 4 < 2) {
      graph.dag->propagation.accept(*graph.dag);
    } else {
      graph.dag->propagation.reject(*graph.dag);
      graph.structure->dropAllPending();
    }
    EXPECT_EQ(graph.nbPending(), 0u);
    graph.expectAgrees(graph.dag->values);
  }
}

template <typename S>
std::set<std::type_index> variadicKinds() {
  return {
      typeid(DynamicConstraintNodeAnd<S>),       typeid(DynamicConstraintNodeOr<S>),
      typeid(DynamicConstraintNodeSum<S>),       typeid(DynamicConstraintNodeScalarSum<S>),
      typeid(DynamicConstraintNodeDoubleSum<S>), typeid(DynamicConstraintNodeDoubleScalarSum<S>)};
}

/// Every kind of node that is mirrored, with the sets of one width.
template <typename S>
std::set<std::type_index> kindsOf() {
  std::set<std::type_index> all = variadicKinds<S>();
  all.merge(std::set<std::type_index>{
      typeid(DynamicConstraintNodeBool), typeid(DynamicConstraintNodeEq),
      typeid(DynamicConstraintNodeLeq), typeid(DynamicConstraintNodeGeq),
      typeid(DynamicConstraintNodeDoubleEq), typeid(DynamicConstraintNodeDoubleLeq),
      typeid(DynamicConstraintNodeDoubleGeq)});
  return all;
}

/// The mirror agrees with the graph whatever kind of node has so many operands.
template <typename S>
void expectAgreesAt(std::uint32_t width, std::uint32_t nbSeeds, std::uint32_t nbMoves) {
  std::set<std::type_index> met;
  for (const NodeType type : kVariadicTypes) {
    for (std::uint32_t seed = 1; seed <= nbSeeds; ++seed) {
      SCOPED_TRACE(std::to_string(width) + " operands, seed " + std::to_string(seed));
      WidePlan wide(seed, type, width, seed % 2 == 1);
      EXPECT_LE(wide.graph.builder.fields.nodesByRank.size(), 5u);
      met.merge(wide.kinds());
      run(wide, seed, nbMoves);
      if (testing::Test::HasFailure()) return;
    }
  }
  EXPECT_THAT(met, testing::IsSupersetOf(kindsOf<S>()));
}

TEST(MirrorWidths, EveryKindOfNodeAgreesWithSetsInOneWord) {
  expectAgreesAt<SubsetMask<std::uint8_t>>(1, 6, 24);
  expectAgreesAt<SubsetMask<std::uint8_t>>(8, 6, 24);
  expectAgreesAt<SubsetMask<std::uint16_t>>(9, 4, 24);
  expectAgreesAt<SubsetMask<std::uint16_t>>(16, 4, 24);
  expectAgreesAt<SubsetMask<std::uint32_t>>(17, 4, 24);
  expectAgreesAt<SubsetMask<std::uint32_t>>(32, 4, 24);
  expectAgreesAt<SubsetMask<std::uint64_t>>(33, 4, 24);
  expectAgreesAt<SubsetMask<std::uint64_t>>(64, 4, 24);
}

TEST(MirrorWidths, EveryKindOfNodeAgreesWithSetsInSomeWords) {
  expectAgreesAt<SubsetBits<2>>(65, 2, 16);
  expectAgreesAt<SubsetBits<2>>(128, 2, 16);
  expectAgreesAt<SubsetBits<4>>(129, 2, 16);
  expectAgreesAt<SubsetBits<4>>(256, 2, 16);
  expectAgreesAt<SubsetBits<8>>(257, 2, 16);
  expectAgreesAt<SubsetBits<8>>(512, 2, 16);
  expectAgreesAt<SubsetBits<16>>(513, 2, 16);
  expectAgreesAt<SubsetBits<16>>(1024, 2, 16);
}

TEST(MirrorWidths, EveryKindOfNodeAgreesWithSetsInArrays) {
  expectAgreesAt<Subset<std::uint16_t>>(1025, 2, 12);
  expectAgreesAt<Subset<std::uint16_t>>(65534, 1, 4);
  expectAgreesAt<Subset<std::uint32_t>>(65535, 2, 4);
}

}  // namespace
}  // namespace ombrix
