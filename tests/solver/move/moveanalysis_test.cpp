#include "solver/move/moveanalysis.h"

#include <gmock/gmock.h>

#include "solver/move/constraintnodecomparison.h"
#include "solver/move/constraintnodelogical.h"
#include "solver/move/constraintnodesum.h"
#include "tests/solver/move/plangraph.h"

namespace ombrix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MoveAnalysisTest : public testing::Test {
protected:
  std::uint32_t leq(std::uint32_t left, std::int64_t bound) {
    return graph.builder.node(NodeType::Leq, {left, graph.builder.constant(bound)});
  }
  std::uint32_t constrainedLeq(std::uint32_t left, std::int64_t bound) {
    return graph.builder.constraint(leq(left, bound));
  }
  std::string printed(std::uint32_t node) {
    testing::internal::CaptureStdout();
    graph.mirror(node).getStatic()->print(*graph.analysis);
    return testing::internal::GetCapturedStdout();
  }

  test::PlanGraph graph;
};

TEST_F(MoveAnalysisTest, NodesOfEveryKindStandInRankOrderUnderTheirConstraint) {
  const auto x = graph.builder.booleans(2);
  const auto sum = graph.builder.node(NodeType::BooleanSum, x);
  const auto bound = constrainedLeq(sum, 1);
  graph.start();
  std::vector<std::uint32_t> nodes;
  for (const StaticConstraintNode* node : graph.analysis->staticNodes) {
    EXPECT_EQ(graph.analysis->staticByNode[node->node], node->index);
    EXPECT_EQ(graph.analysis->staticNodes[node->index], node);
    nodes.push_back(node->node);
  }
  EXPECT_THAT(nodes, ElementsAre(x[0], x[1], sum, bound));
  EXPECT_EQ(graph.analysis->staticByDecision[1]->node, x[1]);
  EXPECT_EQ(graph.analysis->staticByDecision[1]->decision, 1u);
}

TEST_F(MoveAnalysisTest, AConstantHasNoStaticNodeAndIsNoFlatOperand) {
  const auto x = graph.builder.booleans(2);
  const auto five = graph.builder.constant(5);
  const auto sum = graph.builder.node(NodeType::Sum, {x[1], five, x[0]});
  constrainedLeq(sum, 6);
  graph.start();
  EXPECT_FALSE(graph.isMirrored(five));
  EXPECT_THAT(graph.analysis->flatOperands(*graph.mirror(sum).getStatic()), ElementsAre(1u, 0u));
}

TEST_F(MoveAnalysisTest, OnlyNodesOfRankOneAndDecisionsAreFlat) {
  const auto x = graph.builder.booleans(2);
  const auto sum = graph.builder.node(NodeType::BooleanSum, x);
  const auto equal =
      graph.builder.constraint(graph.builder.node(NodeType::Eq, {x[0], graph.builder.constant(1)}));
  const auto inner =
      graph.builder.constraint(graph.builder.node(NodeType::Eq, {sum, graph.builder.constant(1)}));
  const auto both = graph.builder.constraint(graph.builder.node(NodeType::And, {equal, inner}));
  graph.start();
  const auto isFlat = [this](std::uint32_t node) {
    return graph.mirror(node).getStatic()->isFlat(*graph.analysis);
  };
  EXPECT_TRUE(isFlat(x[0]));
  EXPECT_TRUE(isFlat(sum));
  EXPECT_FALSE(isFlat(equal));
  EXPECT_FALSE(isFlat(inner));
  EXPECT_FALSE(isFlat(both));
  EXPECT_THAT(graph.analysis->flatOperands(*graph.mirror(inner).getStatic()), IsEmpty());
  EXPECT_THAT(graph.analysis->flatOperands(*graph.mirror(x[0]).getStatic()), IsEmpty());
}

TEST_F(MoveAnalysisTest, ANodeThatNoConstraintNeedsIsLeftOut) {
  const auto x = graph.builder.booleans(3);
  const auto sum = graph.builder.node(NodeType::BooleanSum, {x[0], x[1]});
  constrainedLeq(sum, 1);
  const auto cost = graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, {x[1], x[2]}));
  graph.start();
  EXPECT_TRUE(graph.isMirrored(sum));
  EXPECT_FALSE(graph.isMirrored(cost));
  EXPECT_FALSE(graph.isMirrored(x[2]));
  EXPECT_EQ(graph.analysis->staticByDecision[2], nullptr);
}

TEST_F(MoveAnalysisTest, WhatStandsOnANodeOfAnotherKindIsLeftOut) {
  const auto x = graph.builder.booleans(2);
  const auto product = graph.builder.node(NodeType::Product, x);
  const auto above = constrainedLeq(product, 0);
  const auto y = graph.builder.floating(0, 1);
  const auto mixed = graph.builder.node(NodeType::DoubleSum, {x[0], y});
  graph.builder.constraint(
      graph.builder.node(NodeType::DoubleLeq, {mixed, graph.builder.doubleConstant(1.5)}));
  graph.start();
  EXPECT_FALSE(graph.isMirrored(above));
  EXPECT_FALSE(graph.isMirrored(mixed));
  EXPECT_THAT(graph.analysis->staticNodes, IsEmpty());
}

TEST_F(MoveAnalysisTest, NothingAboveRankFourTakesPart) {
  const auto x = graph.builder.booleans(2);
  auto node = graph.builder.node(NodeType::BooleanSum, x);  // rank 1
  node = leq(node, 1);                                      // rank 2
  node = graph.builder.node(NodeType::Sum, {node, x[0]});   // rank 3
  const auto fourth = constrainedLeq(node, 1);              // rank 4
  const auto fifth = graph.builder.constraint(graph.builder.node(NodeType::Or, {fourth, x[1]}));
  graph.start();
  EXPECT_TRUE(graph.isMirrored(fourth));
  EXPECT_FALSE(graph.isMirrored(fifth));
}

TEST_F(MoveAnalysisTest, ATowerThatEndsAboveRankFourIsLeftOutWhole) {
  const auto x = graph.builder.booleans(2);
  auto node = leq(graph.builder.node(NodeType::BooleanSum, x), 1);
  node = leq(graph.builder.node(NodeType::Sum, {node, x[0]}), 1);
  graph.builder.constraint(graph.builder.node(NodeType::Or, {node, x[1]}));
  graph.start();
  EXPECT_THAT(graph.analysis->staticNodes, IsEmpty());
}

TEST_F(MoveAnalysisTest, ADecisionCanBeAConstraintItself) {
  const auto x = graph.builder.constraint(graph.builder.boolean());
  graph.start();
  EXPECT_TRUE(graph.isMirrored(x));
  EXPECT_TRUE(graph.isViolated(x));
}

TEST_F(MoveAnalysisTest, WithoutAdvancedMovesOnlyTheComparisonsOfDoublesAreGathered) {
  const auto x = graph.builder.boolean();
  const auto half = graph.builder.doubleConstant(0.5);
  std::vector<std::uint32_t> nodes;
  for (const NodeType type : {NodeType::DoubleLeq, NodeType::DoubleLt, NodeType::DoubleEq,
                              NodeType::DoubleGeq, NodeType::DoubleNeq}) {
    nodes.push_back(graph.builder.constraint(graph.builder.node(type, {x, half})));
  }
  const MoveAnalysis analysis(graph.builder.finish(), false);
  EXPECT_FALSE(analysis.advancedMovesOn);
  EXPECT_THAT(analysis.staticNodes, IsEmpty());
  EXPECT_THAT(analysis.doubleComparisons, ElementsAre(nodes[0], nodes[2], nodes[3]));
}

TEST_F(MoveAnalysisTest, AGraphWithoutNodesHasAnEmptyAnalysis) {
  DagFixedFields fields;
  fields.finish();
  const MoveAnalysis analysis(fields, true);
  EXPECT_THAT(analysis.staticNodes, IsEmpty());
}

TEST_F(MoveAnalysisTest, PrintsANodeWithItsOperands) {
  const auto x = graph.builder.booleans(2);
  const auto three = graph.builder.constant(3);
  const auto scalar = graph.builder.node(NodeType::ScalarSum, {x[0], x[1]}, {4, -7});
  const auto sum = graph.builder.node(NodeType::Sum, {x[1], three});
  const auto less = graph.builder.node(NodeType::Leq, {scalar, sum});
  const auto either = graph.builder.constraint(graph.builder.node(NodeType::Or, {less, x[0]}));
  graph.start();
  EXPECT_EQ(printed(x[1]), "bool{1}");
  EXPECT_EQ(printed(either),
            "or(leq(scalarsum(4 bool{0} , -7 bool{1}) , sum(bool{1} , 3)) , bool{0})");
}

TEST_F(MoveAnalysisTest, EveryTextStartsWithTheNameOfItsKind) {
  const auto x = graph.builder.booleans(2);
  const auto add = [this](std::uint32_t node) { return graph.builder.constraint(node); };
  const auto total = graph.builder.node(NodeType::DoubleSum, x);
  const auto weighted = graph.builder.doubleNode(NodeType::DoubleScalarSum, x, {0.5, 1.5});
  std::vector<std::uint32_t> nodes;
  for (const NodeType type : {NodeType::And, NodeType::Eq, NodeType::Geq}) {
    nodes.push_back(add(graph.builder.node(type, x)));
  }
  for (const NodeType type : {NodeType::DoubleEq, NodeType::DoubleLeq, NodeType::DoubleGeq}) {
    nodes.push_back(add(graph.builder.node(type, {total, weighted})));
  }
  graph.start();
  const std::string pair = "bool{0} , bool{1})";
  const std::string sums = "doublesum(" + pair + " , doublescalarsum(0.5 bool{0} , 1.5 bool{1}))";
  EXPECT_EQ(printed(nodes[0]), "and(" + pair);
  EXPECT_EQ(printed(nodes[1]), "eq(" + pair);
  EXPECT_EQ(printed(nodes[2]), "geq(" + pair);
  EXPECT_EQ(printed(nodes[3]), "doubleeq(" + sums);
  EXPECT_EQ(printed(nodes[4]), "doubleleq(" + sums);
  EXPECT_EQ(printed(nodes[5]), "doublegeq(" + sums);
}

template <typename S>
void expectSubset(std::uint32_t nbOperands) {
  test::PlanGraph graph;
  const auto x = graph.builder.booleans(nbOperands);
  const auto sum =
      graph.builder.node(NodeType::ScalarSum, x, std::vector<std::int64_t>(nbOperands, 2));
  graph.builder.constraint(
      graph.builder.node(NodeType::Leq, {sum, graph.builder.constant(nbOperands)}));
  const auto either = graph.builder.constraint(graph.builder.node(NodeType::Or, x));
  graph.start();
  EXPECT_NE(dynamic_cast<DynamicConstraintNodeScalarSum<S>*>(&graph.mirror(sum)), nullptr)
      << nbOperands;
  EXPECT_NE(dynamic_cast<DynamicConstraintNodeOr<S>*>(&graph.mirror(either)), nullptr)
      << nbOperands;
}

TEST_F(MoveAnalysisTest, TheSetsOfAMirroredNodeFitItsWidth) {
  expectSubset<SubsetMask<std::uint8_t>>(8);
  expectSubset<SubsetMask<std::uint16_t>>(9);
  expectSubset<SubsetMask<std::uint16_t>>(16);
  expectSubset<SubsetMask<std::uint32_t>>(17);
  expectSubset<SubsetMask<std::uint32_t>>(32);
  expectSubset<SubsetMask<std::uint64_t>>(33);
  expectSubset<SubsetMask<std::uint64_t>>(64);
  expectSubset<SubsetBits<2>>(65);
  expectSubset<SubsetBits<2>>(128);
  expectSubset<SubsetBits<4>>(129);
  expectSubset<SubsetBits<4>>(256);
  expectSubset<SubsetBits<8>>(257);
  expectSubset<SubsetBits<8>>(512);
  expectSubset<SubsetBits<16>>(513);
  expectSubset<SubsetBits<16>>(1024);
  expectSubset<Subset<std::uint16_t>>(1025);
  expectSubset<Subset<std::uint32_t>>(65536);
}

}  // namespace
}  // namespace ombrix
