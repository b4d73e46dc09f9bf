#include "solver/node/nodeif.h"

#include <gtest/gtest.h>

#include "support/nodefixtures.h"

namespace ombrix {
namespace {

using test::acceptMove;
using test::afterDraws;
using test::expectNoPick;
using test::expectPick;
using test::GraphBuilder;
using test::OneNodeTest;

/// Both forms over three boolean decisions.
class NodeIfTest : public OneNodeTest, public testing::WithParamInterface<NodeType> {
protected:
  void make(std::uint32_t condition, std::uint32_t thenBranch, std::uint32_t elseBranch) {
    build(graph.node(GetParam(), {condition, thenBranch, elseBranch}));
  }
  void makeFree() {
    c = graph.boolean();
    t = graph.boolean();
    e = graph.boolean();
    make(c, t, e);
  }
  double value() const { return doubleValue(dag->fixedFields->domains[node], dag->values[node]); }

  std::uint32_t c = 0;
  std::uint32_t t = 0;
  std::uint32_t e = 0;
};

INSTANTIATE_TEST_SUITE_P(BothForms, NodeIfTest, testing::Values(NodeType::If, NodeType::DoubleIf),
                         [](const auto& tested) {
                           return tested.param == NodeType::If ? "Integer" : "Double";
                         });

TEST_P(NodeIfTest, SelectsItsBranch) {
  c = graph.boolean();
  make(c, graph.constant(7), graph.constant(-2));
  EXPECT_EQ(value(), -2);
  acceptMove(*dag, {{c, 1}});
  EXPECT_EQ(value(), 7);
  test::expectConsistent(*dag);
}

TEST_P(NodeIfTest, AtItsEndMovesNoFurther) {
  makeFree();
  expectNoPick(test::pickDown(*dag, node, 9), 9);
  acceptMove(*dag, {{e, 1}});
  expectNoPick(test::pickUp(*dag, node, 9), 9);
}

TEST_P(NodeIfTest, FlipsTheConditionOrMovesTheBranchByACoin) {
  makeFree();
  acceptMove(*dag, {{t, 1}});  // selected e = 0, other t = 1
  expectPick(test::pickUp(*dag, node, high), e, afterDraws(high, 1));
  expectPick(test::pickUp(*dag, node, low), c, afterDraws(low, 1));
  expectPick(test::pickAny(*dag, node, high), e, afterDraws(high, 1));
  expectPick(test::pickAny(*dag, node, low), c, afterDraws(low, 1));
  acceptMove(*dag, {{c, 1}});  // selected t = 1, other e = 0
  expectPick(test::pickDown(*dag, node, high), t, afterDraws(high, 1));
  expectPick(test::pickDown(*dag, node, low), c, afterDraws(low, 1));
  expectPick(test::pickAny(*dag, node, low), c, afterDraws(low, 1));
}

TEST_P(NodeIfTest, MovesTheBranchAloneIfASwitchDoesNotHelp) {
  makeFree();  // both branches at 0
  expectPick(test::pickUp(*dag, node, 9), e, 9);
  expectPick(test::pickAny(*dag, node, 9), e, 9);
  acceptMove(*dag, {{c, 1}, {t, 1}, {e, 1}});
  expectPick(test::pickDown(*dag, node, 9), t, 9);
}

TEST_P(NodeIfTest, FlipsTheConditionAloneIfTheBranchIsAtItsEnd) {
  c = graph.boolean();
  make(c, graph.constant(7), graph.constant(-2));
  expectPick(test::pickUp(*dag, node, 9), c, 9);
  expectPick(test::pickAny(*dag, node, 9), c, 9);
  expectNoPick(test::pickDown(*dag, node, 9), 9);
  acceptMove(*dag, {{c, 1}});
  expectPick(test::pickDown(*dag, node, 9), c, 9);
}

TEST_P(NodeIfTest, AFixedConditionIsNeverFlipped) {
  t = graph.boolean();
  e = graph.boolean();
  make(graph.constant(1), t, e);
  acceptMove(*dag, {{e, 1}});
  expectPick(test::pickUp(*dag, node, 9), t, 9);
  expectPick(test::pickAny(*dag, node, 9), t, 9);
}

TEST_P(NodeIfTest, HasNothingToChangeIfNothingCanMove) {
  make(graph.boolean(), graph.constant(7), graph.constant(7));
  expectNoPick(test::pickAny(*dag, node, 9), 9);
}

TEST(NodeDoubleIfTest, BranchesWithinToleranceAreNoReasonToSwitch) {
  GraphBuilder graph;
  const std::uint32_t c = graph.boolean();
  const std::uint32_t node = graph.minimise(graph.node(
      NodeType::DoubleIf, {c, graph.doubleConstant(1.0), graph.doubleConstant(1.0000001)}));
  const auto dag = graph.makeDag();
  expectNoPick(test::pickAny(*dag, node, 9), 9);
}

}  // namespace
}  // namespace ombrix
