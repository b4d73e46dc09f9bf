// The surprises that docs/semantics.md tells users of, each met as a user meets it: in what a
// search says of a model and what the model says of itself. They stand because the engine is
// required to read these models so; who changes one changes what existing models mean.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

#include "api/ombrix.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/intervals.h"
#include "support/intervalprinter.h"
#include "support/models.h"

namespace ombrix {
namespace {

using test::TestModel;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr long long kLowest = std::numeric_limits<long long>::min();
constexpr long long kHighest = std::numeric_limits<long long>::max();

/// The failure of an action, as code and text, or "" if there was none.
template <typename Action>
std::string failureOf(const Action& action) {
  try {
    action();
    return "";
  } catch (const OXException& failure) {
    return std::to_string(failure.getCode()) + " " + failure.getExplanation();
  }
}

/// A model with the words to search it and to read it back.
class SurprisingModel : public TestModel {
public:
  OXSolutionStatus solve() {
    if (solver.getState() == OXState::Modeling) close();
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

  OXSolutionStatus ownStatus() {
    setDecisionsAgain();
    return solver.getSolution()->getStatus();
  }

  void setDecisions(int first, int second) {
    model().getDecision(0)->setValue(first);
    model().getDecision(1)->setValue(second);
  }

  /// The intervals that closing gave an expression.
  IntInterval intBounds(OXExpression* e) {
    const auto index = static_cast<std::size_t>(e->getIndex());
    return {builder().lowerBounds()[index].intValue, builder().upperBounds()[index].intValue};
  }
  DoubleInterval doubleBounds(OXExpression* e) {
    const auto index = static_cast<std::size_t>(e->getIndex());
    return {builder().lowerBounds()[index].doubleValue, builder().upperBounds()[index].doubleValue};
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

// A double that is only an integer.

TEST(Semantics, AnIntegerInDisguiseIsComparedExactly) {
  for (const int isReplaced : {0, 1}) {
    SurprisingModel m;
    m.set("findUnariesEnabled", isReplaced);
    OXExpression* sum = m.make(OXOperator::Sum, m.make(OXOperator::Prod, 1000000, m.boolean()),
                               m.make(OXOperator::Prod, 2000000, m.boolean()));
    m.constrain(m.make(OXOperator::Gt, m.make(OXOperator::Sum, sum, 0.0), 999999));
    m.minimize(sum);
    ASSERT_TRUE(isFeasible(m.solve()));
    EXPECT_EQ(sum->getIntValue(), isReplaced ? 1000000 : 2000000);
    EXPECT_EQ(isFeasible(m.ownStatus()), !isReplaced);
  }
}

// Doubles that the tolerance takes for constants.

TEST(Semantics, ADoubleAsNarrowAsTheToleranceIsTakenForItsLowerEnd) {
  for (const int isComputed : {0, 1}) {
    SurprisingModel m;
    m.set("computeBoundsEnabled", isComputed);
    OXExpression* large = m.make(OXOperator::Sum, 2000000.0, m.boolean());
    OXExpression* e = m.make(OXOperator::Sum, large, -2000000.0);
    m.maximize(e);
    ASSERT_TRUE(isFeasible(m.solve()));
    EXPECT_EQ(m.ownDouble(e), isComputed ? 0.0 : 1.0);
  }
}

TEST(Semantics, AProductWithATinyConstantIsTakenForZero) {
  for (const int isFound : {0, 1}) {
    SurprisingModel m;
    m.set("findConstantsEnabled", isFound);
    OXExpression* large = m.make(OXOperator::Prod, 1000000000, m.boolean());
    OXExpression* e = m.make(OXOperator::Prod, 1e-7, large);
    m.maximize(e);
    ASSERT_TRUE(isFeasible(m.solve()));
    EXPECT_EQ(m.ownDouble(e), isFound ? 0.0 : 100.0);
  }
}

TEST(Semantics, AQuotientByALargeConstantIsNot) {
  SurprisingModel m;
  OXExpression* large = m.make(OXOperator::Prod, 1000000000, m.boolean());
  OXExpression* e = m.make(OXOperator::Div, large, 1e7);
  m.maximize(e);
  ASSERT_TRUE(isFeasible(m.solve()));
  EXPECT_EQ(m.ownDouble(e), 100.0);
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

// Values.

// The tolerance is 1e-6, next to zero as it is, elsewhere relative to both magnitudes together.
TEST(Semantics, DoublesAreComparedWithinTolerance) {
  SurprisingModel m;
  const auto compare = [&m](OXOperator op, double a, double b) {
    return m.make(op, m.constant(a), m.constant(b));
  };
  OXExpression* nextToZero = compare(OXOperator::Eq, 0.0, 9e-7);
  OXExpression* awayFromZero = compare(OXOperator::Eq, 0.0, 1.1e-6);
  OXExpression* large = compare(OXOperator::Eq, 1000.0, 1000.0019);
  OXExpression* tooLarge = compare(OXOperator::Eq, 1000.0, 1000.0021);
  OXExpression* atMost = compare(OXOperator::Leq, 1000.001, 1000.0);
  OXExpression* below = compare(OXOperator::Lt, 1000.0, 1000.001);
  m.minimize(m.boolean());
  m.close();
  for (OXExpression* e : {nextToZero, large, atMost}) EXPECT_EQ(e->getIntValue(), 1);
  for (OXExpression* e : {awayFromZero, tooLarge, below}) EXPECT_EQ(e->getIntValue(), 0);
}

TEST(Semantics, IntegersWrapAndTheirBoundsDoNot) {
  SurprisingModel m;
  OXExpression* huge = m.model().createConstant(kHighest);
  OXExpression* sum = m.make(OXOperator::Sum, huge, m.boolean(), 1);
  m.minimize(sum);
  m.close();
  EXPECT_EQ(sum->getIntValue(), kLowest);
  EXPECT_EQ(m.intBounds(sum).high, kHighest);
}

TEST(Semantics, IntegerQuotientsTruncateTowardsZero) {
  SurprisingModel m;
  OXExpression* lowest = m.model().createConstant(kLowest);
  OXExpression* quotient = m.make(OXOperator::Div, -7, 2);
  OXExpression* remainder = m.make(OXOperator::Mod, -7, 2);
  OXExpression* opposite = m.make(OXOperator::Div, lowest, -1);
  OXExpression* noRemainder = m.make(OXOperator::Mod, lowest, -1);
  m.minimize(m.boolean());
  m.close();
  EXPECT_EQ(quotient->getIntValue(), -3);
  EXPECT_EQ(remainder->getIntValue(), -1);
  EXPECT_EQ(opposite->getIntValue(), kLowest);
  EXPECT_EQ(noRemainder->getIntValue(), 0);
}

TEST(Semantics, AnIntegerDivisorOfZeroFailsAndADoubleOneDoesNot) {
  SurprisingModel m;
  OXExpression* divisor = m.boolean();
  OXExpression* quotient = m.make(OXOperator::Div, 7, divisor);
  OXExpression* infinite = m.make(OXOperator::Div, 7.0, divisor);
  OXExpression* none = m.make(OXOperator::Div, 0.0, divisor);
  m.minimize(m.boolean());
  m.close();
  EXPECT_EQ(failureOf([&] { quotient->getIntValue(); }), "5 Division by zero.");
  EXPECT_EQ(infinite->getDoubleValue(), kInfinity);
  EXPECT_TRUE(std::isnan(none->getDoubleValue()));
}

TEST(Semantics, ADivisorThatCanOnlyBeZeroFailsAtClose) {
  SurprisingModel m;
  m.minimize(m.make(OXOperator::Div, m.boolean(), m.make(OXOperator::Prod, 0, m.boolean())));
  EXPECT_EQ(failureOf([&] { m.close(); }), "5 Division by zero.");
}

/// Searches for the smallest 6 / (a + b), whose divisor is 0 where all decisions are.
template <typename Guard>
std::string searchFromZero(const Guard& guard) {
  SurprisingModel m;
  OXExpression* divisor = m.make(OXOperator::Sum, m.boolean(), m.boolean());
  m.minimize(m.make(OXOperator::Div, 6, guard(m, divisor)));
  return failureOf([&] { m.solve(); });
}

TEST(Semantics, AModelWithoutValueAtZeroFailsInSolve) {
  EXPECT_EQ(searchFromZero([](SurprisingModel&, OXExpression* divisor) { return divisor; }),
            "5 Division by zero.");
  EXPECT_EQ(searchFromZero([](SurprisingModel& m, OXExpression* divisor) {
              return m.make(OXOperator::Max, divisor, 1);
            }),
            "");
}

TEST(Semantics, NegativeExponentsGiveInfinities) {
  SurprisingModel m;
  OXExpression* reciprocal = m.make(OXOperator::Pow, 2, -1);
  OXExpression* negative = m.make(OXOperator::Pow, -2, -1);
  OXExpression* zeroth = m.make(OXOperator::Pow, 0, 0);
  OXExpression* written = m.make(OXOperator::Div, 1.0, m.make(OXOperator::Pow, 2, 1));
  m.minimize(m.boolean());
  m.close();
  EXPECT_EQ(reciprocal->getDoubleValue(), kInfinity);
  EXPECT_EQ(negative->getDoubleValue(), -kInfinity);
  EXPECT_EQ(zeroth->getDoubleValue(), 1.0);
  EXPECT_EQ(written->getDoubleValue(), 0.5);
}

TEST(Semantics, RoundingForgivesTheTolerance) {
  SurprisingModel m;
  OXExpression* up = m.make(OXOperator::Ceil, 3.0000005);
  OXExpression* down = m.make(OXOperator::Floor, 2.9999995);
  OXExpression* half = m.make(OXOperator::Round, 2.5);
  OXExpression* minusHalf = m.make(OXOperator::Round, -2.5);
  m.minimize(m.boolean());
  m.close();
  EXPECT_EQ(up->getIntValue(), 3);
  EXPECT_EQ(down->getIntValue(), 3);
  EXPECT_EQ(half->getIntValue(), 3);
  EXPECT_EQ(minusHalf->getIntValue(), -2);
}

/// An expression that a decision makes infinite, and is 1 otherwise. No constant is infinite.
OXExpression* infinity(SurprisingModel& m) {
  return m.make(OXOperator::Exp, m.make(OXOperator::Prod, 1000, m.boolean()));
}

TEST(Semantics, OppositeInfinitiesAreNoNumberWhenReadAndFailInTheSearch) {
  SurprisingModel m;
  OXExpression* low = m.make(OXOperator::Log, m.make(OXOperator::Not, m.boolean()));
  OXExpression* high = infinity(m);
  OXExpression* sum = m.make(OXOperator::Sum, high, low, m.boolean());
  m.maximize(sum);
  m.close();
  m.setDecisions(1, 1);
  EXPECT_TRUE(std::isnan(sum->getDoubleValue()));
  m.setDecisions(0, 0);
  EXPECT_EQ(failureOf([&] { m.solve(); }),
            "5 Cannot compute the sum of two opposite infinite numbers");
}

TEST(Semantics, InfiniteFactorsAndTermsAreReadAndFailInTheSearch) {
  for (const OXOperator op : {OXOperator::Prod, OXOperator::Max, OXOperator::Min}) {
    SurprisingModel m;
    OXExpression* e = m.make(op, infinity(m), 2.0);
    m.maximize(e);
    m.close();
    m.model().getDecision(0)->setValue(1);
    EXPECT_EQ(e->getDoubleValue(), op == OXOperator::Min ? 2.0 : kInfinity);
    m.model().getDecision(0)->setValue(0);
    EXPECT_EQ(failureOf([&] { m.solve(); }),
              op == OXOperator::Prod ? "5 Cannot compute the product of zero and infinity"
                                     : "5 Cannot compute product of zero and infinity");
  }
}

TEST(Semantics, ZeroTimesInfinityFailsEverywhere) {
  SurprisingModel m;
  OXExpression* high = infinity(m);
  OXExpression* product = m.make(OXOperator::Prod, high, m.boolean());
  m.maximize(product);
  m.close();
  m.setDecisions(1, 0);
  EXPECT_EQ(failureOf([&] { product->getDoubleValue(); }).front(), '5');
  m.setDecisions(0, 0);
  EXPECT_EQ(failureOf([&] { m.solve(); }), "5 Cannot compute the product of zero and infinity");
}

// 2 to the power of 32 has the low bits of 0.
TEST(Semantics, TheSearchReadsTheLowBitsOfAnIndex) {
  SurprisingModel m;
  m.set("preprocessingEnabled", 0);
  OXExpression* a = m.boolean();
  OXExpression* index = m.make(OXOperator::Prod, m.model().createConstant(4294967296LL), a);
  OXExpression* element = m.make(OXOperator::At, m.array(1, 5, 9), index);
  OXExpression* sum = m.make(OXOperator::Sum, element, a);
  m.maximize(sum);
  ASSERT_TRUE(isFeasible(m.solve()));
  EXPECT_EQ(sum->getIntValue(), 2);
  EXPECT_EQ(a->getIntValue(), 1);
  EXPECT_NE(failureOf([&] { m.ownInt(sum); }), "");
}

// Types.

TEST(Semantics, OnlyAConditionalOfTwoBooleansStaysABoolean) {
  SurprisingModel m;
  OXExpression* a = m.boolean();
  for (const OXOperator op : {OXOperator::Sum, OXOperator::Max}) {
    OXExpression* e = m.make(op, a, m.boolean());
    EXPECT_NE(failureOf([&] { m.constrain(e); }), "");
  }
  OXExpression* element = m.make(OXOperator::At, m.array(a, m.boolean()), a);
  OXExpression* conditional = m.make(OXOperator::Iif, a, m.boolean(), m.boolean());
  m.constrain(conditional);
  m.minimize(element);
  m.close();
  EXPECT_TRUE(element->isInt());
  EXPECT_TRUE(conditional->isBool());
}

TEST(Semantics, AConditionalOverNumbersHidesNoViolatedConstraint) {
  SurprisingModel m;
  std::vector<OXExpression*> x = m.booleans(3);
  for (std::size_t i = 0; i < 3; ++i) {
    m.constrain(m.make(OXOperator::Neq, x[i], x[(i + 1) % 3]));
  }
  m.constrain(m.make(OXOperator::Iif, m.boolean(), 5, 0));
  m.constrain(m.make(OXOperator::Iif, m.boolean(), 2.5, 0.0));
  m.minimize(m.make(OXOperator::Sum, x[0], x[1], x[2]));
  EXPECT_EQ(m.solve(), OXSolutionStatus::Infeasible);
  EXPECT_EQ(m.ownStatus(), OXSolutionStatus::Infeasible);
}

TEST(Semantics, AConditionalThatCannotBeOneMakesTheModelInconsistent) {
  SurprisingModel m;
  OXExpression* conditional = m.make(OXOperator::Iif, m.boolean(), 2, 3);
  m.constrain(conditional);
  m.minimize(conditional);
  EXPECT_EQ(m.solve(), OXSolutionStatus::Inconsistent);
}

TEST(Semantics, AComparisonOfAConditionalIsAConstraint) {
  SurprisingModel m;
  OXExpression* conditional = m.make(OXOperator::Iif, m.boolean(), 2, 3);
  m.constrain(m.make(OXOperator::Neq, conditional, 0));
  m.minimize(conditional);
  EXPECT_TRUE(isFeasible(m.solve()));
  EXPECT_EQ(m.ownInt(conditional), 2);
}

TEST(Semantics, AConditionalAtMinusZeroIsAViolatedConstraint) {
  SurprisingModel m;
  OXExpression* a = m.boolean();
  OXExpression* minusZero = m.make(OXOperator::Prod, m.boolean(), -1.0);
  m.constrain(m.make(OXOperator::Iif, a, minusZero, 1.0));
  m.maximize(a);
  m.minimize(minusZero);
  ASSERT_TRUE(isFeasible(m.solve()));
  EXPECT_TRUE(isFeasible(m.ownStatus()));
}

TEST(Semantics, OneDoubleInAnArrayMakesAllElementsDoubles) {
  SurprisingModel m;
  EXPECT_NE(m.constant(1), m.constant(1.0));
  OXExpression* element = m.make(OXOperator::At, m.array(1, 5, 2.5), 1);
  m.minimize(m.boolean());
  m.close();
  EXPECT_TRUE(element->isDouble());
  EXPECT_EQ(element->getDoubleValue(), 5.0);
}

TEST(Semantics, ADoubleThatLostItsDoublesHasTheSameValues) {
  SurprisingModel m;
  OXExpression* sum = m.make(OXOperator::Sum, m.boolean(), m.boolean(), 2.5);
  OXExpression* array = m.array(7, 9, 0.5);
  OXExpression* element = m.make(OXOperator::At, array, m.boolean());
  m.constrain(m.make(OXOperator::Geq, sum, 3));
  m.minimize(sum);
  m.maximize(element);
  m.close();
  m.model().open();
  sum->setOperand(2, 2);
  array->setOperand(2, 8);
  ASSERT_TRUE(isFeasible(m.solve()));
  EXPECT_EQ(sum->getDoubleValue(), 3.0);
  EXPECT_EQ(element->getDoubleValue(), 9.0);
}

TEST(Semantics, AnIntegerSumRefusesADoubleAddedLater) {
  SurprisingModel m;
  OXExpression* sum = m.make(OXOperator::Sum, m.boolean());
  m.minimize(sum);
  m.close();
  m.model().open();
  sum->addOperand(0.5);
  EXPECT_EQ(failureOf([&] { m.close(); }),
            "2 Operand 1 of Expression 1 (type = sum) must be boolean or integer. Type provided: "
            "double");
}

TEST(Semantics, AnIntegerElementDoesNotSeeADoubleAddedLater) {
  SurprisingModel m;
  OXExpression* array = m.array(1, 5);
  OXExpression* element = m.make(OXOperator::At, array, 0);
  m.minimize(m.boolean());
  m.close();
  m.model().open();
  array->setOperand(0, 2.5);
  m.close();
  EXPECT_TRUE(element->isInt());
  EXPECT_EQ(element->getIntValue(), std::bit_cast<long long>(2.5));
}

// Constraints and objectives.

// What guides the search is the sum of the violations, in whole units.
TEST(Semantics, ViolationsOfDoublesCountInWholeUnits) {
  SurprisingModel m;
  m.set("preprocessingEnabled", 0);
  OXExpression* a = m.boolean();
  m.constrain(m.make(OXOperator::Leq, m.make(OXOperator::Prod, 1.0, a), 0.6));
  m.constrain(m.make(OXOperator::Leq, m.make(OXOperator::Prod, 10.0, a), 3.5));
  m.constrain(m.make(OXOperator::Eq, m.make(OXOperator::Prod, 50.0, a), 0.0));
  m.minimize(m.boolean());
  const DagFixedFields& fields = m.close();
  Dag dag(fields);
  dag.propagation.setValue(dag, m.nodeOf(a), std::int64_t{1});
  dag.propagation.accept(dag);
  EXPECT_EQ(dag.propagation.infeasibility.nbViolated, 3);
  EXPECT_EQ(dag.propagation.infeasibility.violationSum, 6);
}

/// The status of the smallest a + b + 5 after the search, or after its decisions were set again.
OXSolutionStatus statusOfMinimum(bool hasBound, bool isSetAgain) {
  SurprisingModel m;
  m.minimize(m.make(OXOperator::Sum, m.boolean(), m.boolean(), 5));
  m.close();
  if (hasBound) m.solver.getParam()->setObjectiveBound(0, 5);
  const OXSolutionStatus status = m.solve();
  return isSetAgain ? m.ownStatus() : status;
}

// The search knows the lower end of an interval; the solution asks for the bound that was set.
TEST(Semantics, AMinimumStaysOptimalOnlyAtTheBoundThatWasSet) {
  EXPECT_EQ(statusOfMinimum(true, false), OXSolutionStatus::Optimal);
  EXPECT_EQ(statusOfMinimum(true, true), OXSolutionStatus::Optimal);
  EXPECT_EQ(statusOfMinimum(false, false), OXSolutionStatus::Optimal);
  EXPECT_EQ(statusOfMinimum(false, true), OXSolutionStatus::Feasible);
}

TEST(Semantics, AMaximumIsOptimalAtTheBoundThatWasComputed) {
  SurprisingModel m;
  m.maximize(m.make(OXOperator::Sum, m.boolean(), m.boolean()));
  EXPECT_EQ(m.solve(), OXSolutionStatus::Optimal);
  EXPECT_EQ(m.ownStatus(), OXSolutionStatus::Optimal);
}

TEST(Semantics, TheBoundSetForAMaximumEndsTheSearchAndProvesNothing) {
  SurprisingModel m;
  OXExpression* sum = m.model().createExpression(OXOperator::Sum);
  for (int i = 0; i < 40; ++i) sum->addOperand(m.boolean());
  m.maximize(sum);
  m.close();
  m.solver.getParam()->setObjectiveBound(0, 2);
  EXPECT_EQ(m.solve(), OXSolutionStatus::Optimal);
  EXPECT_GE(sum->getIntValue(), 2);
  EXPECT_LT(sum->getIntValue(), 40);
  EXPECT_EQ(m.ownStatus(), OXSolutionStatus::Feasible);
}

// Bounds.

// With doubles no element is left out, as one is with integers.
TEST(Semantics, ADoubleElementAtTheLargestIndexIsCounted) {
  SurprisingModel m;
  OXExpression* element = m.make(OXOperator::At, m.array(0.5, 1.5, 9.5), m.boolean());
  OXExpression* beyond = m.make(OXOperator::Sum, m.boolean(), m.boolean(), m.boolean());
  OXExpression* last = m.make(OXOperator::At, m.array(0.5, 1.5, 9.5), beyond);
  m.maximize(element);
  m.maximize(last);
  m.close();
  EXPECT_EQ(m.doubleBounds(element), (DoubleInterval{0.5, 1.5}));
  EXPECT_EQ(m.doubleBounds(last), (DoubleInterval{0.5, 9.5}));
}

TEST(Semantics, TheIntervalOfARemainderIsWideForNegativeDividends) {
  SurprisingModel m;
  OXExpression* twenty = m.make(OXOperator::Prod, 20, m.boolean());
  OXExpression* signedOne = m.make(OXOperator::Mod, m.make(OXOperator::Sum, twenty, -10), 3);
  OXExpression* positiveOne = m.make(OXOperator::Mod, twenty, 3);
  m.maximize(signedOne);
  m.maximize(positiveOne);
  m.close();
  EXPECT_EQ(m.intBounds(signedOne), (IntInterval{-2, 10}));
  EXPECT_EQ(m.intBounds(positiveOne), (IntInterval{0, 2}));
}

TEST(Semantics, TheLowerEndOfARoundingForgivesNothing) {
  SurprisingModel m;
  OXExpression* rounded =
      m.make(OXOperator::Round, m.make(OXOperator::Sum, 0.4999995, m.boolean()));
  m.minimize(rounded);
  m.close();
  EXPECT_EQ(m.intBounds(rounded), (IntInterval{0, 2}));
  EXPECT_EQ(rounded->getIntValue(), 1);
}

TEST(Semantics, LargeFactorsAreTakenForUnbounded) {
  SurprisingModel m;
  OXExpression* product =
      m.make(OXOperator::Prod, m.model().createConstant(1LL << 60), m.boolean());
  OXExpression* smaller =
      m.make(OXOperator::Prod, m.model().createConstant(1LL << 59), m.boolean());
  m.maximize(product);
  m.maximize(smaller);
  m.close();
  EXPECT_EQ(m.intBounds(product), (IntInterval{kLowest, kHighest}));
  EXPECT_EQ(m.intBounds(smaller), (IntInterval{0, 1LL << 59}));
}

// A zero times such a factor counts as the smallest integer, so no other value seems left.
TEST(Semantics, AVeryNegativeFactorMakesAProductConstant) {
  SurprisingModel m;
  OXExpression* product =
      m.make(OXOperator::Prod, m.model().createConstant(-(1LL << 60)), m.boolean());
  m.maximize(product);
  m.close();
  EXPECT_EQ(m.intBounds(product), (IntInterval{kLowest, kLowest}));
  EXPECT_EQ(product->getIntValue(), 0);
}

/// exp(700 (a + b)) + offset, which is finite where a or b is 0 and has an infinite interval.
OXExpression* unbounded(SurprisingModel& m, double offset) {
  OXExpression* sum = m.make(OXOperator::Sum, m.boolean(), m.boolean());
  OXExpression* power = m.make(OXOperator::Exp, m.make(OXOperator::Prod, 700, sum));
  return m.make(OXOperator::Sum, power, offset);
}

// Where infinity by infinity has no value, the signs of the lower ends decide: [0, inf] by [2, inf]
// is taken for 0.
TEST(Semantics, AQuotientOfInfiniteIntervalsIsTakenForZero) {
  SurprisingModel m;
  OXExpression* dividend = unbounded(m, -1.0);
  OXExpression* quotient = m.make(OXOperator::Div, dividend, unbounded(m, 1.0));
  m.maximize(quotient);
  EXPECT_TRUE(isFeasible(m.solve()));
  EXPECT_EQ(m.doubleBounds(quotient), (DoubleInterval{0.0, 0.0}));
  EXPECT_EQ(quotient->getDoubleValue(), 0.0);
  m.model().getDecision(0)->setValue(1);
  EXPECT_GT(quotient->getDoubleValue(), 1e300);
}

TEST(Semantics, AnUnboundedDividendByMinusOneIsTakenForVeryNegative) {
  SurprisingModel m;
  OXExpression* dividend =
      m.make(OXOperator::Prod, m.model().createConstant(1LL << 60), m.boolean());
  OXExpression* quotient = m.make(OXOperator::Div, dividend, -1);
  m.minimize(quotient);
  m.close();
  EXPECT_EQ(m.intBounds(quotient), (IntInterval{kLowest, kLowest + 1}));
  EXPECT_EQ(quotient->getIntValue(), 0);
}

/// Solves for the smallest value of a function of a - 2, or of max(a - 2, 0) + 1.
OXSolutionStatus searchFunction(OXOperator op, bool isGuarded, bool isPreprocessed) {
  SurprisingModel m;
  m.set("preprocessingEnabled", isPreprocessed ? 1 : 0);
  OXExpression* x = m.make(OXOperator::Sum, m.boolean(), -2);
  if (isGuarded) x = m.make(OXOperator::Sum, m.make(OXOperator::Max, x, 0), 1);
  m.minimize(m.make(OXOperator::Sum, m.make(op, x), m.boolean()));
  return m.solve();
}

TEST(Semantics, ARootOfANegativeNumberMakesTheModelInconsistent) {
  for (const OXOperator op : {OXOperator::Sqrt, OXOperator::Log}) {
    EXPECT_EQ(searchFunction(op, false, true), OXSolutionStatus::Inconsistent);
    EXPECT_EQ(failureOf([&] { searchFunction(op, false, false); }).front(), '5');
    EXPECT_TRUE(isFeasible(searchFunction(op, true, true)));
  }
}

}  // namespace
}  // namespace ombrix
