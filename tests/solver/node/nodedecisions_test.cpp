#include "solver/node/nodedecisions.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/failures.h"
#include "support/graphs.h"
#include "support/picks.h"

namespace ombrix {
namespace {

using test::expectNoPick;
using test::expectPick;
using test::GraphBuilder;

TEST(NodeBooleanVarTest, OffersItselfOnlyInADirectionThatIsFree) {
  GraphBuilder graph;
  const std::uint32_t decision = graph.boolean();
  const auto dag = graph.makeDag();
  expectNoPick(test::pickDown(*dag, decision), 1);
  expectPick(test::pickUp(*dag, decision), decision, 1);
  expectPick(test::pickAny(*dag, decision), decision, 1);
  test::setAndAccept(*dag, decision, 1);
  expectPick(test::pickDown(*dag, decision), decision, 1);
  expectNoPick(test::pickUp(*dag, decision), 1);
  expectPick(test::pickAny(*dag, decision), decision, 1);
}

TEST(NodeBooleanVarTest, NeverOffersItselfOnceWrittenInTheMove) {
  GraphBuilder graph;
  const std::uint32_t decision = graph.boolean();
  const auto dag = graph.makeDag();
  test::flip(*dag, decision);
  const test::Pick up = test::pickUp(*dag, decision);
  expectNoPick(up, 1);
  EXPECT_EQ(up.decision, kNone);
  expectNoPick(test::pickDown(*dag, decision), 1);
  expectNoPick(test::pickAny(*dag, decision), 1);
  dag->propagation.reject(*dag);
  expectPick(test::pickUp(*dag, decision), decision, 1);
}

TEST(NodeBooleanVarTest, TakesATargetAsAnyChange) {
  GraphBuilder graph;
  const std::uint32_t decision = graph.boolean();
  const auto dag = graph.makeDag();
  std::uint32_t rng = 5;
  std::uint32_t found = kNone;
  OXValue target = OXValue::ofInt(0);
  OXValue value = OXValue::ofInt(77);
  EXPECT_TRUE(dag->nodes[decision]->pickForTarget(*dag, decision, rng, target, found, value));
  EXPECT_EQ(found, decision);
  EXPECT_EQ(value.intValue, 77);
  EXPECT_EQ(rng, 5U);
}

TEST(NodeBooleanVarTest, CheckRefusesAValueOutsideItsBounds) {
  GraphBuilder graph;
  const std::uint32_t decision = graph.boolean();
  const auto dag = graph.makeDag();
  EXPECT_NO_THROW(dag->nodes[decision]->check(*dag, decision));
  dag->values[decision] = dag->tValues[decision] = OXValue::ofInt(2);
  const std::string text = test::captured([&] {
    test::expectFailure(6, "Node::check", "Error in check of operator.",
                        [&] { dag->nodes[decision]->check(*dag, decision); });
  });
  EXPECT_EQ(text.find("Id= 0\nOperator= boolean\n"), 0U) << text;
}

TEST(NodeIntegerVarTest, NeverAnswersAPick) {
  GraphBuilder graph;
  const std::uint32_t decision = graph.integer();
  const auto dag = graph.makeDag();
  expectNoPick(test::pickDown(*dag, decision), 1);
  expectNoPick(test::pickUp(*dag, decision), 1);
  expectNoPick(test::pickAny(*dag, decision), 1);
  std::uint32_t rng = 5;
  std::uint32_t found = kNone;
  OXValue target = OXValue::ofInt(3);
  OXValue value = OXValue::ofInt(0);
  EXPECT_FALSE(dag->nodes[decision]->pickForTarget(*dag, decision, rng, target, found, value));
}

TEST(NodeIntegerVarTest, TakesEveryIntegerOfTheRange) {
  GraphBuilder graph;
  const std::uint32_t decision = graph.integer();
  const auto dag = graph.makeDag();
  for (const std::int64_t value :
       {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    test::setAndAccept(*dag, decision, value);
    EXPECT_EQ(dag->values[decision].intValue, value);
    EXPECT_TRUE(dag->nodes[decision]->isConsistent(*dag, decision));
  }
}

TEST(NodeIntegerVarTest, CheckFailsUnderItsOwnNameAndDumpsItsPosition) {
  GraphBuilder graph;
  graph.boolean();
  const std::uint32_t decision = graph.integer();
  const auto dag = graph.makeDag();
  dag->tValues[decision].intValue = 1;
  const std::string text = test::captured([&] {
    test::expectFailure(6, "NodeIntegerVar::check", "Error in check of operator.",
                        [&] { dag->nodes[decision]->check(*dag, decision); });
  });
  EXPECT_EQ(text.find("PosInNodes= 1\nOperator= integer\nisInit=0\nvalue=0\nt_value=1\n"), 0U)
      << text;
}

class NodeFloatVarTest : public testing::Test {
protected:
  NodeFloatVarTest() : decision(graph.floating(0.0, 1.0)), dag(graph.makeDag()) {}

  bool pickFor(double wanted) {
    OXValue target = OXValue::ofDouble(wanted);
    return dag->nodes[decision]->pickForTarget(*dag, decision, rng, target, found, value);
  }

  GraphBuilder graph;
  std::uint32_t decision;
  std::unique_ptr<Dag> dag;
  std::uint32_t rng = 5;
  std::uint32_t found = kNone;
  OXValue value = OXValue::ofDouble(-7.0);
};

TEST_F(NodeFloatVarTest, RefusesEveryDirection) {
  expectNoPick(test::pickDown(*dag, decision), 1);
  expectNoPick(test::pickUp(*dag, decision), 1);
  expectNoPick(test::pickAny(*dag, decision), 1);
}

TEST_F(NodeFloatVarTest, PassesATargetWithinItsBounds) {
  EXPECT_TRUE(pickFor(0.25));
  EXPECT_EQ(found, decision);
  EXPECT_EQ(value.doubleValue, 0.25);
  EXPECT_EQ(rng, 5U);
}

TEST_F(NodeFloatVarTest, PassesATargetThatIsOutsideByLessThanTheTolerance) {
  EXPECT_TRUE(pickFor(1 + 1e-7));
  EXPECT_EQ(value.doubleValue, 1 + 1e-7);
  EXPECT_TRUE(pickFor(-1e-7));
  EXPECT_EQ(value.doubleValue, -1e-7);
}

TEST_F(NodeFloatVarTest, ClampsATargetOutsideItsBounds) {
  EXPECT_TRUE(pickFor(2));
  EXPECT_EQ(value.doubleValue, 1.0);
  EXPECT_TRUE(pickFor(-2));
  EXPECT_EQ(value.doubleValue, 0.0);
}

TEST_F(NodeFloatVarTest, RefusesATargetOnceWrittenInTheMove) {
  dag->propagation.setValue(*dag, decision, 0.5);
  EXPECT_FALSE(pickFor(0.25));
  EXPECT_EQ(found, kNone);
  EXPECT_EQ(value.doubleValue, -7.0);
}

TEST_F(NodeFloatVarTest, IsConsistentWithinToleranceOfItsBounds) {
  const Node& node = *dag->nodes[decision];
  dag->values[decision] = dag->tValues[decision] = OXValue::ofDouble(1 + 1e-7);
  EXPECT_TRUE(node.isConsistent(*dag, decision));
  dag->tValues[decision] = OXValue::ofDouble(1.0);
  EXPECT_TRUE(node.isConsistent(*dag, decision));
  dag->tValues[decision] = OXValue::ofDouble(0.9);
  EXPECT_FALSE(node.isConsistent(*dag, decision));
  dag->values[decision] = dag->tValues[decision] = OXValue::ofDouble(1.1);
  const std::string text = test::captured([&] {
    test::expectFailure(6, "NodeFloatVar::check", "Error in check of operator.",
                        [&] { node.check(*dag, decision); });
  });
  EXPECT_EQ(text.find("PosInNodes= 2\nOperator= float\nisInit=1\nvalue=1.1\nt_value=1.1\n"
                      "min=0\nmax=1\n"),
            0U)
      << text;
}

}  // namespace
}  // namespace ombrix
