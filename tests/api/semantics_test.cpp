// The surprises that docs/semantics.md tells users of, each met as a user meets it: in what a
// search says of a model and what the model says of itself. They stand because the engine is
// required to read these models so; who changes one changes what existing models mean.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "api/ombrix.h"
#include "support/models.h"

namespace ombrix {
namespace {

using test::TestModel;

/// A model with the words to search it and to read it back.
class SurprisingModel : public TestModel {
public:
  OXSolutionStatus solve() {
    model().close();
    solver.getParam()->setVerbosity(0);
    solver.createPhase()->setIterationLimit(3000);
    solver.solve();
    return solver.getSolution()->getStatus();
  }

  /// What the expressions of the model give for the decisions of the solution. A decision that is
  /// set again makes the solution forget the values that the search left.
  long long ownInt(OXExpression* e) {
    setDecisionsAgain();
    return e->getIntValue();
  }
  double ownDouble(OXExpression* e) {
    setDecisionsAgain();
    return e->getDoubleValue();
  }

private:
  void setDecisionsAgain() {
    for (int i = 0; i < model().getNbDecisions(); ++i) {
      OXExpression* decision = model().getDecision(i);
      decision->setValue(decision->getIntValue());
    }
  }
};

bool isFeasible(OXSolutionStatus status) {
  return status == OXSolutionStatus::Feasible || status == OXSolutionStatus::Optimal;
}

// A quotient by the constant 1.

/// The value that a search gives to the minimum of (a + b + 5) / 1.
long long searchQuotientByOne(bool hasReplacements) {
  SurprisingModel m;
  m.set("findUnariesEnabled", hasReplacements ? 1 : 0);
  OXExpression* dividend = m.make(OXOperator::Sum, m.boolean(), m.boolean(), 5);
  OXExpression* quotient = m.make(OXOperator::Div, dividend, 1);
  m.minimize(quotient);
  EXPECT_TRUE(isFeasible(m.solve()));
  const long long found = quotient->getIntValue();
  EXPECT_EQ(m.ownInt(quotient), m.ownInt(dividend));
  return found;
}

// The replacement of a quotient by one is its divisor, not its dividend.
TEST(Semantics, TheSearchTakesAQuotientByOneForOne) {
  EXPECT_EQ(searchQuotientByOne(true), 1);
}

TEST(Semantics, AQuotientByOneIsItsDividendWithoutReplacements) {
  EXPECT_EQ(searchQuotientByOne(false), 5);
}

// The same rule for doubles, with a divisor that only a constraint makes one.
TEST(Semantics, TheSearchTakesADoubleQuotientByAProvedOneForOne) {
  SurprisingModel m;
  OXExpression* divisor = m.boolean();
  m.constrain(m.make(OXOperator::And, divisor, divisor));
  OXExpression* dividend = m.make(OXOperator::Sum, m.boolean(), 4.5);
  OXExpression* rest = m.boolean();
  m.minimize(m.make(OXOperator::Sum, m.make(OXOperator::Div, dividend, divisor), rest));
  ASSERT_TRUE(isFeasible(m.solve()));
  OXExpression* objective = m.model().getObjective(0);
  EXPECT_EQ(objective->getDoubleValue(), 1.0);
  EXPECT_EQ(m.ownDouble(objective), 4.5 + static_cast<double>(rest->getIntValue()) +
                                        static_cast<double>(m.model().getDecision(1)->getValue()));
}

// A double quotient by an integer constant, in a double sum.

/// The value that a search gives to sqrt(a) / divisor + b at its largest.
template <typename Divisor>
double searchHalfInSum(Divisor divisor) {
  SurprisingModel m;
  OXExpression* root = m.make(OXOperator::Sqrt, m.boolean());
  OXExpression* sum = m.make(OXOperator::Sum, m.make(OXOperator::Div, root, divisor), m.boolean());
  m.maximize(sum);
  EXPECT_TRUE(isFeasible(m.solve()));
  const double found = sum->getDoubleValue();
  EXPECT_EQ(m.ownDouble(sum), 1.5);
  return found;
}

// The coefficient is made of the bytes of the double reciprocal of the divisor, read as an integer.
TEST(Semantics, AnIntegerDivisorInADoubleSumGetsAMeaninglessCoefficient) {
  EXPECT_GT(searchHalfInSum(2), 1e18);
}

TEST(Semantics, ADoubleDivisorInADoubleSumIsACoefficient) {
  EXPECT_EQ(searchHalfInSum(2.0), 1.5);
}

// A constraint that decides itself.

/// Builds "3 * and(x, y) <= 2, maximise x + y" and returns the sum after the search.
long long searchSelfDecided(SurprisingModel& m, bool isInnerPosted) {
  OXExpression* x = m.boolean();
  OXExpression* y = m.boolean();
  OXExpression* both = m.make(OXOperator::And, x, y);
  m.constrain(m.make(OXOperator::Leq, m.make(OXOperator::Prod, 3, both), 2));
  if (isInnerPosted) m.constrain(m.make(OXOperator::Not, both));
  OXExpression* sum = m.make(OXOperator::Sum, x, y);
  m.maximize(sum);
  EXPECT_TRUE(isFeasible(m.solve()));
  return m.ownInt(sum);
}

// The constraint proves the inner "and" to be 0, is then true by that proof, and dropped.
TEST(Semantics, AConstraintThatForcesAnInnerExpressionIsLost) {
  SurprisingModel m;
  EXPECT_EQ(searchSelfDecided(m, false), 2);
  EXPECT_EQ(m.model().getConstraint(0)->getIntValue(), 0);
}

TEST(Semantics, TheLostConstraintStandsWithoutTheSearchForConstants) {
  SurprisingModel m;
  m.set("findConstantsEnabled", 0);
  EXPECT_EQ(searchSelfDecided(m, false), 1);
  EXPECT_EQ(m.model().getConstraint(0)->getIntValue(), 1);
}

TEST(Semantics, TheLostConstraintStandsIfTheInnerConditionIsPosted) {
  SurprisingModel m;
  EXPECT_EQ(searchSelfDecided(m, true), 1);
  EXPECT_EQ(m.model().getConstraint(0)->getIntValue(), 1);
}

// Constraints over constants.

// The constraint has told the "xor" to be 0 before anyone evaluates it, and a value once told is
// not asked again.
TEST(Semantics, AContradictionBetweenConstantsMayPass) {
  SurprisingModel m;
  OXExpression* constraint = m.make(OXOperator::Not, m.make(OXOperator::Xor, 0, 1));
  m.constrain(constraint);
  m.minimize(m.boolean());
  EXPECT_TRUE(isFeasible(m.solve()));
  EXPECT_EQ(m.ownInt(constraint), 0);
}

// The interval of "at".

/// The value that a search gives to the maximum of (1, 5, 9)[1 + a].
long long searchLastElement(const std::string& key) {
  SurprisingModel m;
  if (!key.empty()) m.set(key, 0);
  OXExpression* index = m.make(OXOperator::Sum, m.boolean(), 1);
  m.maximize(m.make(OXOperator::At, m.array(1, 5, 9), index));
  m.solve();
  return m.model().getObjective(0)->getIntValue();
}

// The interval leaves the element at the largest index out: here only the 5 is left, which is then
// taken for a constant.
TEST(Semantics, TheElementAtTheLargestIndexIsNotSeen) {
  EXPECT_EQ(searchLastElement(""), 5);
}

TEST(Semantics, TheElementAtTheLargestIndexIsSeenWithoutComputedBounds) {
  EXPECT_EQ(searchLastElement("computeBoundsEnabled"), 9);
}

TEST(Semantics, TheElementAtTheLargestIndexIsSeenIfTheIndexMightLieBeyondTheArray) {
  SurprisingModel m;
  OXExpression* beyond = m.boolean();
  m.constrain(m.make(OXOperator::Not, beyond));
  OXExpression* index = m.make(OXOperator::Sum, m.boolean(), 1, beyond);
  m.maximize(m.make(OXOperator::At, m.array(1, 5, 9), index));
  ASSERT_TRUE(isFeasible(m.solve()));
  EXPECT_EQ(m.model().getObjective(0)->getIntValue(), 9);
}

// The index is narrowed to the positions of the array, which a constant outside cannot be.
TEST(Semantics, AConstantIndexOutsideItsArrayMakesTheModelInconsistent) {
  SurprisingModel m;
  m.minimize(m.make(OXOperator::Sum, m.make(OXOperator::At, m.array(1, 5, 9), 3), m.boolean()));
  EXPECT_EQ(m.solve(), OXSolutionStatus::Inconsistent);
}

// The interval of "pow".

/// "0.5 to the power of 2 a is at least 0.5", which a = 0 satisfies.
template <typename Factor>
OXSolutionStatus searchPower(Factor factor) {
  SurprisingModel m;
  OXExpression* exponent = m.make(OXOperator::Prod, factor, m.boolean());
  m.constrain(m.make(OXOperator::Geq, m.make(OXOperator::Pow, 0.5, exponent), 0.5));
  m.minimize(m.boolean());
  return m.solve();
}

// With an integer exponent the interval goes by the largest exponent, which gives the smallest
// power of a base below 1.
TEST(Semantics, PowersOfSmallBasesByIntegersAreTakenForSmall) {
  EXPECT_EQ(searchPower(2), OXSolutionStatus::Inconsistent);
}

TEST(Semantics, PowersOfSmallBasesByDoublesHaveTheirInterval) {
  EXPECT_TRUE(isFeasible(searchPower(2.0)));
}

// What constraints tell.

/// The upper end of a + b after "e <= 1" was posted on it.
long long upperEndOfSum(OXOperator op) {
  SurprisingModel m;
  OXExpression* sum = m.make(OXOperator::Sum, m.boolean(), m.boolean());
  OXExpression* e = op == OXOperator::Sum ? sum : m.make(op, sum);
  m.constrain(m.make(OXOperator::Leq, e, 1));
  m.minimize(sum);
  m.close();
  return m.builder().upperBounds()[static_cast<std::size_t>(sum->getIndex())].intValue;
}

// The rule narrows the "abs" itself and leaves its operand.
TEST(Semantics, AbsTellsNothingAboutItsOperand) {
  EXPECT_EQ(upperEndOfSum(OXOperator::Abs), 2);
  EXPECT_EQ(upperEndOfSum(OXOperator::Sum), 1);
}

/// Whether "not c", "b <= c" and "a <= b", posted in this order or the other way round, prove a to
/// be 0.
bool isProvedByChain(bool isReasonFirst) {
  SurprisingModel m;
  OXExpression* a = m.boolean();
  OXExpression* b = m.boolean();
  OXExpression* c = m.boolean();
  if (isReasonFirst) {
    m.constrain(m.make(OXOperator::Not, c));
    m.constrain(m.make(OXOperator::Leq, b, c));
    m.constrain(m.make(OXOperator::Leq, a, b));
  } else {
    m.constrain(m.make(OXOperator::Leq, a, b));
    m.constrain(m.make(OXOperator::Leq, b, c));
    m.constrain(m.make(OXOperator::Not, c));
  }
  m.minimize(m.make(OXOperator::Sum, a, m.boolean()));
  m.close();
  return m.builder().isFixed(static_cast<std::size_t>(a->getIndex()));
}

// There is one sweep, in the order of the constraints, which meets each of these twice: what the
// last one tells reaches the one before it and no further.
TEST(Semantics, BoundsArePushedInOneSweep) {
  EXPECT_TRUE(isProvedByChain(true));
  EXPECT_FALSE(isProvedByChain(false));
}

}  // namespace
}  // namespace ombrix
