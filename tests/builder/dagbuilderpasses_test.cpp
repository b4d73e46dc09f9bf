// The passes at their place in the building of the graph: their keys, and what each sees of the
// others.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
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

/// The report of one pass over a closed model.
const PassReport& reportOf(TestModel& m, const std::string& name) {
  for (const PassReport& report : m.builder().passReports()) {
    if (report.name == name) return report;
  }
  throw std::runtime_error("no report of " + name);
}

std::vector<std::string> reportedPasses(TestModel& m) {
  std::vector<std::string> names;
  for (const PassReport& report : m.builder().passReports()) names.push_back(report.name);
  return names;
}

TEST(DagBuilderPasses, EachPassThatRunsReportsInItsPlace) {
  TestModel all;
  all.minimize(all.boolean());
  all.close();
  EXPECT_THAT(reportedPasses(all), ElementsAre("computeBounds", "inferBounds", "findConstants",
                                               "findUnaries", "createNodes"));
  TestModel some;
  some.set("inferBoundsEnabled", 0);
  some.minimize(some.boolean());
  some.close();
  EXPECT_THAT(reportedPasses(some),
              ElementsAre("computeBounds", "findConstants", "findUnaries", "createNodes"));
  TestModel none;
  none.set("preprocessingEnabled", 0);
  none.minimize(none.boolean());
  none.close();
  EXPECT_THAT(reportedPasses(none), ElementsAre("createNodes"));
}

TEST(DagBuilderPasses, ReportsCountWhatThePassItselfChanged) {
  TestModel m;
  OXExpression* a = m.boolean();
  OXExpression* b = m.boolean();
  m.constrain(m.make(OXOperator::And, a, b));
  OXExpression* forced = m.make(OXOperator::Sum, a, b);
  m.minimize(m.make(OXOperator::Sum, forced, m.make(OXOperator::Max, m.boolean())));
  m.close();
  // The sums and the maximum leave the widest interval of an integer; the two decisions and the
  // constraint become 1; the sum of the two follows from them; the maximum is its operand.
  EXPECT_EQ(reportOf(m, "computeBounds").counts.nbNarrowed, 3);
  EXPECT_EQ(reportOf(m, "computeBounds").counts.nbFixed, 0);
  EXPECT_EQ(reportOf(m, "inferBounds").counts.nbNarrowed, 3);
  EXPECT_EQ(reportOf(m, "inferBounds").counts.nbFixed, 2);
  EXPECT_EQ(reportOf(m, "findConstants").counts.nbFixed, 2);
  EXPECT_EQ(reportOf(m, "findConstants").counts.nbReplaced, 0);
  EXPECT_EQ(reportOf(m, "findUnaries").counts.nbReplaced, 1);
  EXPECT_EQ(reportOf(m, "findUnaries").counts.nbNarrowed, 0);
  for (const PassReport& report : m.builder().passReports()) {
    EXPECT_EQ(report.nbConflicts, 0U) << report.name;
    EXPECT_GE(report.seconds, 0.0) << report.name;
  }
}

TEST(DagBuilderPasses, ADoubleIntervalIsNarrowedOnlyWhenItShrinks) {
  TestModel m;
  OXExpression* x = m.make(OXOperator::Prod, 2.5, m.boolean());
  m.constrain(m.make(OXOperator::Leq, x, 3.0));
  m.minimize(x);
  m.close();
  // The product and the comparison, which holds for every x: nothing is left to narrow.
  EXPECT_EQ(reportOf(m, "computeBounds").counts.nbNarrowed, 2);
  EXPECT_EQ(reportOf(m, "inferBounds").counts.nbNarrowed, 0);
}

TEST(DagBuilderPasses, AContradictionIsReportedByThePassThatMeetsIt) {
  TestModel m;
  OXExpression* tooMuch =
      m.make(OXOperator::Geq, m.make(OXOperator::Sum, m.boolean(), m.boolean()), 3);
  m.constrain(tooMuch);
  m.minimize(m.boolean());
  m.close();
  EXPECT_EQ(reportOf(m, "computeBounds").nbConflicts, 0U);
  EXPECT_GE(reportOf(m, "inferBounds").nbConflicts, 1U);
  EXPECT_THAT(m.builder().conflicts(), Contains(tooMuch));
  EXPECT_THAT(reportedPasses(m), Not(Contains("createNodes")));
}

}  // namespace
}  // namespace ombrix
