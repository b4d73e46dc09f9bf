// The passes at their place in the building of the graph: their keys, and what each sees of the
// others.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "builder/dagbuilder.h"
#include "support/models.h"

namespace ombrix {
namespace {

using test::graphText;
using test::TestModel;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

bool isFixed(TestModel& m, const OXExpression* e) {
  return m.builder().isFixed(static_cast<std::size_t>(e->getIndex()));
}

/// Whether a decision that a constraint forces is fixed, with these keys switched off.
bool isForcedDecisionFixed(const std::vector<std::string>& switchedOff) {
  TestModel m;
  for (const std::string& key : switchedOff) m.set(key, 0);
  OXExpression* a = m.boolean();
  m.constrain(m.make(OXOperator::And, a, m.boolean()));
  m.minimize(m.make(OXOperator::Sum, a, m.boolean()));
  m.close();
  return isFixed(m, a);
}

TEST(DagBuilderPasses, BoundsAreInferredUnlessSwitchedOff) {
  EXPECT_TRUE(isForcedDecisionFixed({}));
  EXPECT_TRUE(isForcedDecisionFixed({"computeBoundsEnabled", "findConstantsEnabled"}));
  EXPECT_FALSE(isForcedDecisionFixed({"inferBoundsEnabled"}));
  EXPECT_FALSE(isForcedDecisionFixed({"preprocessingEnabled"}));
}

/// Whether an element read at a constant position is fixed. Bounds alone do not tell it.
bool isElementFixed(const std::vector<std::string>& switchedOff) {
  TestModel m;
  for (const std::string& key : switchedOff) m.set(key, 0);
  OXExpression* e = m.make(OXOperator::At, m.array(7, 8, 9), 1);
  m.minimize(m.make(OXOperator::Sum, e, m.boolean()));
  m.close();
  return isFixed(m, e);
}

TEST(DagBuilderPasses, ConstantsAreFoundUnlessSwitchedOff) {
  EXPECT_TRUE(isElementFixed({}));
  EXPECT_TRUE(isElementFixed({"computeBoundsEnabled", "inferBoundsEnabled"}));
  EXPECT_FALSE(isElementFixed({"findConstantsEnabled"}));
  EXPECT_FALSE(isElementFixed({"preprocessingEnabled"}));
}

/// The graph of a sum of one decision.
std::vector<std::string> graphOfSingleSum(const std::vector<std::string>& switchedOff) {
  TestModel m;
  for (const std::string& key : switchedOff) m.set(key, 0);
  m.minimize(m.make(OXOperator::Sum, m.boolean()));
  return graphText(m.close());
}

TEST(DagBuilderPasses, DisguisesAreReplacedUnlessSwitchedOff) {
  EXPECT_THAT(graphOfSingleSum({}), ElementsAre("boolean"));
  EXPECT_THAT(graphOfSingleSum({"findUnariesEnabled"}), ElementsAre("boolean", "sum (0)"));
  EXPECT_THAT(graphOfSingleSum({"preprocessingEnabled"}), ElementsAre("boolean", "sum (0)"));
}

TEST(DagBuilderPasses, ConstantsSeeTheInferredBoundsAndDisguisesSeeTheConstants) {
  TestModel m;
  OXExpression* a = m.boolean();
  OXExpression* x = m.boolean();
  OXExpression* y = m.boolean();
  m.constrain(a);
  OXExpression* condition = m.make(OXOperator::And, a, a);
  m.minimize(m.make(OXOperator::Iif, condition, x, y));
  EXPECT_THAT(graphText(m.close()), ElementsAre("boolean"));
  EXPECT_TRUE(isFixed(m, condition));
  EXPECT_NE(m.nodeOf(x), kNone);
  EXPECT_EQ(m.nodeOf(y), kNone);
}

TEST(DagBuilderPasses, AConstraintKnownFalseLeavesNoGraph) {
  TestModel m;
  OXExpression* sum = m.make(OXOperator::Sum, m.boolean(), m.boolean());
  OXExpression* impossible = m.make(OXOperator::Gt, sum, 2);
  m.constrain(impossible);
  m.minimize(sum);
  EXPECT_EQ(m.close().nbNodes, 0U);
  EXPECT_TRUE(m.builder().isInconsistent());
  EXPECT_EQ(m.builder().conflicts().front(), impossible);
}

TEST(DagBuilderPasses, AConstraintKnownFalseStaysAsAConstantWithoutInference) {
  TestModel m;
  m.set("inferBoundsEnabled", 0);
  OXExpression* sum = m.make(OXOperator::Sum, m.boolean(), m.boolean());
  m.constrain(m.make(OXOperator::Gt, sum, 2));
  m.minimize(sum);
  EXPECT_THAT(graphText(m.close()), Contains("constant [0]"));
  EXPECT_FALSE(m.builder().isInconsistent());
}

TEST(DagBuilderPasses, AConstraintThatAlwaysHoldsIsDropped) {
  TestModel m;
  OXExpression* sum = m.make(OXOperator::Sum, m.boolean(), m.boolean());
  m.constrain(m.make(OXOperator::Geq, sum, 0));
  m.minimize(sum);
  const DagFixedFields& fields = m.close();
  EXPECT_TRUE(fields.constraints.empty());
  EXPECT_THAT(graphText(fields), Not(Contains(HasSubstr("geq"))));
}

TEST(DagBuilderPasses, AnIndexOutsideItsArrayFailsWhenItIsRead) {
  TestModel m;
  m.set("inferBoundsEnabled", 0);
  OXExpression* e = m.make(OXOperator::At, m.array(7, m.boolean()), 5);
  m.minimize(e);
  m.close();
  EXPECT_FALSE(isFixed(m, e));
  EXPECT_NE(m.nodeOf(e), kNone);
}

TEST(DagBuilderPasses, AnIndexOutsideItsArrayIsAContradictionWhenInferred) {
  TestModel m;
  m.minimize(m.make(OXOperator::At, m.array(7, m.boolean()), 5));
  m.close();
  EXPECT_TRUE(m.builder().isInconsistent());
}

}  // namespace
}  // namespace ombrix
