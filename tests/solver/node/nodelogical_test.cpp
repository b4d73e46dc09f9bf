#include <gtest/gtest.h>

#include <vector>

#include "support/failures.h"
#include "support/nodefixtures.h"

namespace ombrix {
namespace {

using test::acceptMove;
using test::afterDraws;
using test::expectNoPick;
using test::expectPick;
using test::GraphBuilder;
using test::OneNodeTest;
using test::openMove;
using test::seedForTopBits;

/// A node over n boolean decisions numbered from 0, which start at the given values.
class NodeLogicalTest : public OneNodeTest {
protected:
  void make(NodeType type, const std::vector<int>& start) {
    const auto decisions = graph.booleans(static_cast<std::uint32_t>(start.size()));
    build(graph.node(type, decisions));
    for (std::uint32_t i = 0; i < start.size(); ++i)
      dag->propagation.setValue(*dag, i, static_cast<std::int64_t>(start[i]));
    acceptMove(*dag, {});
    test::expectConsistent(*dag);
  }

  std::int64_t value() const { return dag->values[node].intValue; }
  std::int64_t tValue() const { return dag->tValues[node].intValue; }
};

TEST_F(NodeLogicalTest, AndStaysFalseWhenOneOfManyZerosRises) {
  make(NodeType::And, std::vector<int>(1000, 0));
  acceptMove(*dag, {{500, 1}});
  EXPECT_EQ(value(), 0);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeLogicalTest, AndStaysFalseWhenItsOnlyZeroRisesAndAnotherOperandFalls) {
  make(NodeType::And, {0, 1, 1});
  acceptMove(*dag, {{0, 1}, {1, 0}});
  EXPECT_EQ(value(), 0);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeLogicalTest, AndFindsTheZeroAmongAsManyChangesAsZeros) {
  make(NodeType::And, {0, 0, 1});
  acceptMove(*dag, {{0, 1}, {2, 0}});
  EXPECT_EQ(value(), 0);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeLogicalTest, AndRisesWhenAllItsZerosRise) {
  make(NodeType::And, {0, 0, 1});
  acceptMove(*dag, {{0, 1}, {1, 1}});
  EXPECT_EQ(value(), 1);
  EXPECT_TRUE(isConsistent());
  acceptMove(*dag, {{1, 0}, {2, 0}});
  EXPECT_EQ(value(), 0);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeLogicalTest, OrFallsWhenItsOnlyOneFalls) {
  make(NodeType::Or, {0, 1, 0});
  acceptMove(*dag, {{1, 0}});
  EXPECT_EQ(value(), 0);
  EXPECT_TRUE(isConsistent());
  acceptMove(*dag, {{0, 1}, {2, 1}});
  EXPECT_EQ(value(), 1);
  EXPECT_TRUE(isConsistent());
  acceptMove(*dag, {{0, 0}, {1, 1}});
  EXPECT_EQ(value(), 1);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeLogicalTest, XorFollowsThreeFlipsAtOnce) {
  make(NodeType::Xor, {1, 1, 1});
  EXPECT_EQ(value(), 1);
  acceptMove(*dag, {{0, 0}, {1, 0}, {2, 0}});
  EXPECT_EQ(value(), 0);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeLogicalTest, ARejectedMoveLeavesNoTrace) {
  for (const NodeType type : {NodeType::And, NodeType::Or, NodeType::Xor}) {
    graph = GraphBuilder();
    make(type, {0, 1, 0});
    const std::int64_t before = value();
    openMove(*dag, {{0, 1}, {1, 0}});
    dag->propagation.reject(*dag);
    EXPECT_EQ(value(), before);
    EXPECT_EQ(tValue(), before);
    EXPECT_TRUE(isConsistent());
  }
}

TEST_F(NodeLogicalTest, CheckNoticesAStaleSet) {
  // The value stays right in each case: only the set tells.
  make(NodeType::And, {0, 0, 1});
  dag->values[0] = dag->tValues[0] = OXValue::ofInt(1);
  EXPECT_FALSE(isConsistent());
  for (const NodeType type : {NodeType::Or, NodeType::Xor}) {
    graph = GraphBuilder();
    make(type, {1, 1, 1});
    for (const std::uint32_t decision : {0U, 1U})
      dag->values[decision] = dag->tValues[decision] = OXValue::ofInt(0);
    EXPECT_FALSE(isConsistent());
  }
}

TEST_F(NodeLogicalTest, CheckNoticesAnOperandThatIsStillMarkedAsChanged) {
  for (const NodeType type : {NodeType::And, NodeType::Or, NodeType::Xor}) {
    graph = GraphBuilder();
    make(type, {0, 1, 1});
    dag->nodes[node]->operandChanged(1, *dag->fixedFields, node);
    EXPECT_FALSE(isConsistent());
    dag->nodes[node]->rollback(*dag, node);
    EXPECT_TRUE(isConsistent());
  }
}

TEST_F(NodeLogicalTest, DumpShowsTheSetBehindTheCommonLines) {
  make(NodeType::And, {0, 1, 0});
  const std::string text = test::captured([&] { dag->nodes[node]->dump(*dag, node); });
  EXPECT_EQ(text,
            "Id= 3\nOperator= and\nisInit=1\nvalue=0\nt_value=0\nmin=0\nmax=1\n"
            "childNode[0]= id=0 type=boolean value=0 t_value=0 min=0 max=1\n"
            "childNode[1]= id=1 type=boolean value=1 t_value=1 min=0 max=1\n"
            "childNode[2]= id=2 type=boolean value=0 t_value=0 min=0 max=1\n"
            "isZeroNodesInit= 1\nzeroNodes= 0 2\n");
  for (const NodeType type : {NodeType::Or, NodeType::Xor}) {
    graph = GraphBuilder();
    make(type, {0, 1, 0});
    const std::string other = test::captured([&] { dag->nodes[node]->dump(*dag, node); });
    EXPECT_NE(other.find("\nisOneNodesInit= 1\noneNodes= 1\n"), std::string::npos) << other;
  }
}

TEST_F(NodeLogicalTest, AFailedCheckDumpsTheNodeFirst) {
  make(NodeType::And, {0, 0, 1});
  dag->values[0] = dag->tValues[0] = OXValue::ofInt(1);
  const std::string text = test::captured([&] {
    test::expectFailure(6, "Node::check", "Error in check of operator.",
                        [&] { dag->nodes[node]->check(*dag, node); });
  });
  EXPECT_NE(text.find("isZeroNodesInit= 0\nzeroNodes= 0 1\n"), std::string::npos) << text;
}

// ---- picks

TEST_F(NodeLogicalTest, ATrueAndOfDecisionsOffersNoDecrease) {
  make(NodeType::And, {1, 1});
  expectNoPick(test::pickDown(*dag, node), 1);  // the first is at its maximum: no draw
  graph = GraphBuilder();
  make(NodeType::And, {1, 1, 1});
  expectNoPick(test::pickDown(*dag, node, 9), afterDraws(9, 1));
  graph = GraphBuilder();
  make(NodeType::And, {0, 1});
  expectNoPick(test::pickDown(*dag, node), 1);
}

TEST_F(NodeLogicalTest, AndRisesThroughARandomZero) {
  make(NodeType::And, {1, 0, 1, 0});
  expectPick(test::pickUp(*dag, node, low), 1, afterDraws(low, 1));
  expectPick(test::pickUp(*dag, node, high), 3, afterDraws(high, 1));
  expectPick(test::pickAny(*dag, node, low), 1, afterDraws(low, 1));
  acceptMove(*dag, {{1, 1}});
  expectPick(test::pickUp(*dag, node, 9), 3, 9);  // a single zero: no draw
  acceptMove(*dag, {{3, 1}});
  expectNoPick(test::pickUp(*dag, node), 1);
}

TEST_F(NodeLogicalTest, ATrueAndChangesThroughAnyOperandEitherWay) {
  make(NodeType::And, {1, 1});
  const std::uint32_t down = seedForTopBits({1, 1});
  expectPick(test::pickAny(*dag, node, down), 1, afterDraws(down, 2));
  const std::uint32_t up = seedForTopBits({0, 0});
  expectNoPick(test::pickAny(*dag, node, up), afterDraws(up, 2));
}

TEST_F(NodeLogicalTest, OrFallsThroughARandomOne) {
  make(NodeType::Or, {1, 0, 1, 0});
  expectPick(test::pickDown(*dag, node, low), 0, afterDraws(low, 1));
  expectPick(test::pickDown(*dag, node, high), 2, afterDraws(high, 1));
  expectPick(test::pickAny(*dag, node, high), 2, afterDraws(high, 1));
  expectNoPick(test::pickUp(*dag, node), 1);
}

TEST_F(NodeLogicalTest, AFalseOrRisesThroughARandomOperand) {
  make(NodeType::Or, {0, 0});
  expectPick(test::pickUp(*dag, node, low), 0, afterDraws(low, 1));
  expectPick(test::pickUp(*dag, node, high), 1, afterDraws(high, 1));
  expectPick(test::pickAny(*dag, node, high), 1, afterDraws(high, 1));
  expectNoPick(test::pickDown(*dag, node), 1);
}

TEST(NodeOrTest, OfTwoOperandsTheOneThatCanRiseIsChosenWithoutADraw) {
  GraphBuilder graph;
  const std::uint32_t decision = graph.boolean();
  const std::uint32_t zero = graph.constant(0);
  const std::uint32_t first = graph.minimise(graph.node(NodeType::Or, {zero, decision}));
  const std::uint32_t second = graph.minimise(graph.node(NodeType::Or, {decision, zero}));
  const auto dag = graph.makeDag();
  expectPick(test::pickUp(*dag, first, 9), decision, 9);
  expectPick(test::pickUp(*dag, second, 9), decision, 9);
}

TEST_F(NodeLogicalTest, OneOperandIsChosenWithoutADraw) {
  make(NodeType::Or, {0});
  expectPick(test::pickUp(*dag, node, 9), 0, 9);
}

TEST_F(NodeLogicalTest, XorPicksAnyOperandEitherWay) {
  make(NodeType::Xor, {1, 0});
  EXPECT_EQ(value(), 1);
  const std::uint32_t secondUp = seedForTopBits({1, 0});
  const std::uint32_t firstDown = seedForTopBits({0, 1});
  expectPick(test::pickDown(*dag, node, secondUp), 1, afterDraws(secondUp, 2));
  expectPick(test::pickAny(*dag, node, firstDown), 0, afterDraws(firstDown, 2));
  expectNoPick(test::pickUp(*dag, node), 1);
  acceptMove(*dag, {{0, 0}});
  expectPick(test::pickUp(*dag, node, secondUp), 1, afterDraws(secondUp, 2));
  expectNoPick(test::pickDown(*dag, node), 1);
}

TEST_F(NodeLogicalTest, ADecisionWrittenInTheMoveIsNotPicked) {
  make(NodeType::And, {0, 1});
  test::flip(*dag, 0);
  expectNoPick(test::pickUp(*dag, node, 9), 9);
}

TEST_F(NodeLogicalTest, NotReversesEveryDirection) {
  make(NodeType::Not, {0});
  EXPECT_EQ(value(), 1);
  expectPick(test::pickDown(*dag, node, 9), 0, 9);
  expectNoPick(test::pickUp(*dag, node, 9), 9);
  expectPick(test::pickAny(*dag, node, 9), 0, 9);
  acceptMove(*dag, {{0, 1}});
  EXPECT_EQ(value(), 0);
  EXPECT_TRUE(isConsistent());
  expectNoPick(test::pickDown(*dag, node, 9), 9);
  expectPick(test::pickUp(*dag, node, 9), 0, 9);
}

TEST_F(NodeLogicalTest, AViolatedConjunctionCountsOnce) {
  make(NodeType::And, {0, 0, 1});
  EXPECT_EQ(dag->nodes[node]->violation(*dag, node), 1);
  openMove(*dag, {{0, 1}, {1, 1}});
  EXPECT_EQ(dag->nodes[node]->violationDelta(*dag, node), -1);
  dag->propagation.accept(*dag);
  EXPECT_EQ(dag->nodes[node]->violation(*dag, node), 0);
}

}  // namespace
}  // namespace ombrix
