#include "solver/move/targeting.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/graphs.h"
#include "tests/support/scriptedmove.h"

namespace ombrix {
namespace {

class TargetingTest : public testing::Test {
protected:
  void start() { dag = builder.makeDag(); }
  std::uint32_t pickBoolean() {
    std::uint32_t decision = kNone;
    return pickTargetedBoolean(*dag, rng, decision) ? decision : kNone;
  }

  test::GraphBuilder builder;
  std::unique_ptr<Dag> dag;
  std::uint32_t rng = 1;
};

TEST_F(TargetingTest, AViolatedConstraintIsDrawnAndRaised) {
  const auto x = builder.booleans(3);
  builder.constraint(x[0]);
  builder.constraint(builder.node(NodeType::Not, {x[1]}));
  builder.constraint(x[2]);
  start();
  test::Draws draws(rng);
  std::set<std::uint32_t> picked;
  for (int i = 0; i < 20; ++i) {
    draws.index(2);
    picked.insert(pickBoolean());
  }
  EXPECT_EQ(picked, (std::set<std::uint32_t>{x[0], x[2]}));
  EXPECT_EQ(rng, draws.state);
}

TEST_F(TargetingTest, OnAFeasibleStateTheFirstOpenObjectiveIsAimedAt) {
  const auto x = builder.booleans(3);
  builder.minimise(x[0]);
  builder.maximise(x[1]);
  builder.maximise(x[2]);
  start();
  EXPECT_EQ(pickBoolean(), x[1]) << "the first is at its own bound";
  test::setAndAccept(*dag, x[1], 1);
  EXPECT_EQ(pickBoolean(), x[2]);
  test::setAndAccept(*dag, x[0], 1);
  EXPECT_EQ(pickBoolean(), x[0]);
  EXPECT_EQ(rng, 1u);
}

TEST_F(TargetingTest, ObjectivesThatNobodyFollowsAreNotAimedAt) {
  const auto x = builder.boolean();
  builder.maximise(x);
  start();
  dag->propagation.activeLevel = 0;
  EXPECT_EQ(pickBoolean(), kNone);
}

TEST_F(TargetingTest, ADoubleObjectiveIsAtItsBoundWithinTheTolerance) {
  const auto y = builder.floating(0, 10);
  const auto x = builder.boolean();
  builder.minimise(y);
  builder.maximise(x);
  start();
  test::setAndAccept(*dag, y, 1e-7);
  EXPECT_EQ(pickBoolean(), x);
  test::setAndAccept(*dag, y, 1.0);
  EXPECT_EQ(pickBoolean(), kNone) << "a double answers no boolean pick";
}

TEST_F(TargetingTest, ADoubleDecisionGetsTheNextValueOfItsObjective) {
  const auto y = builder.floating(0, 10);
  const auto z = builder.floating(0, 10);
  builder.minimise(y);
  builder.maximise(z);
  start();
  std::uint32_t decision = kNone;
  double value = 0;
  test::setAndAccept(*dag, y, 4.0);
  ASSERT_TRUE(pickTargetedDouble(*dag, rng, decision, value));
  EXPECT_EQ(decision, y);
  EXPECT_EQ(value, 3.0);
  test::setAndAccept(*dag, y, 0.0);
  test::setAndAccept(*dag, z, 9.5);
  ASSERT_TRUE(pickTargetedDouble(*dag, rng, decision, value));
  EXPECT_EQ(decision, z);
  EXPECT_EQ(value, 10.0) << "cut to the bound";
  test::setAndAccept(*dag, z, 10.0);
  EXPECT_FALSE(pickTargetedDouble(*dag, rng, decision, value));
}

TEST_F(TargetingTest, AnyDecisionOfAViolatedConstraintAnswersForADouble) {
  const auto x = builder.boolean();
  builder.constraint(x);
  start();
  std::uint32_t decision = kNone;
  double value = 0;
  EXPECT_TRUE(pickTargetedDouble(*dag, rng, decision, value));
  EXPECT_EQ(decision, x);
}

}  // namespace
}  // namespace ombrix
