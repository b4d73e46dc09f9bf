#include "builder/preprocessor/boundsinferrer.h"

#include <gtest/gtest.h>

#include <vector>

#include "solver/kernel/saturating.h"
#include "support/passmodel.h"

namespace ombrix {
namespace {

using test::ints;
using test::kInf;
using test::PassModel;
using test::reals;

/// The pass on a model of leaves. An expression under test gets its bounds by hand, as if the
/// passes before had found them, and is a root.
class BoundsInferrerTest : public testing::Test {
protected:
  void infer() { BoundsInferrer(model.start()).run(); }

  /// Runs the pass with e known to lie within [low, high].
  void inferInts(OXExpression* e, std::int64_t low, std::int64_t high) {
    model.minimize(e);
    model.start().intersectIntBounds(Preprocessor::at(*e), low, high);
    BoundsInferrer(model.state()).run();
  }
  void inferReals(OXExpression* e, double low, double high) {
    model.minimize(e);
    model.start().intersectDoubleBounds(Preprocessor::at(*e), low, high);
    BoundsInferrer(model.state()).run();
  }
  void inferTrue(OXExpression* e) { inferInts(e, 1, 1); }
  void inferFalse(OXExpression* e) { inferInts(e, 0, 0); }

  bool hasConflicts() const { return !model.conflicts().empty(); }

  PassModel model;
};

TEST_F(BoundsInferrerTest, AConstraintIsTrue) {
  OXExpression* a = model.boolean();
  model.constrain(a);
  infer();
  EXPECT_EQ(model.ints(a), ints(1, 1));
  EXPECT_TRUE(model.isFixed(a));
}

TEST_F(BoundsInferrerTest, AConstraintKnownFalseIsAConflict) {
  OXExpression* a = model.boolean(0, 0);
  model.constrain(a);
  infer();
  EXPECT_EQ(model.conflicts(), std::vector<OXExpression*>{a});
}

TEST_F(BoundsInferrerTest, AConstraintThatIsADoubleIsTheNumberOne) {
  OXExpression* e =
      model.make(OXOperator::Iif, {model.boolean(), model.real(0.0, 2.0), model.real(0.0, 3.0)});
  model.constrain(e);
  infer();
  EXPECT_EQ(model.reals(e), reals(1.0, 1.0));
}

TEST_F(BoundsInferrerTest, AConjunctionFixesItsDecisions) {
  OXExpression* a = model.boolean();
  OXExpression* b = model.boolean();
  model.constrain(model.make(OXOperator::And, {a, b}));
  infer();
  for (const OXExpression* e : {a, b}) {
    EXPECT_EQ(model.ints(e), ints(1, 1));
    EXPECT_TRUE(model.isFixed(e));
  }
}

TEST_F(BoundsInferrerTest, ANegatedDisjunctionFixesItsDecisions) {
  OXExpression* a = model.boolean();
  OXExpression* b = model.boolean();
  OXExpression* either = model.make(OXOperator::Or, {a, b});
  model.constrain(model.make(OXOperator::Not, {either}));
  infer();
  for (const OXExpression* e : {a, b, either}) EXPECT_EQ(model.ints(e), ints(0, 0));
  EXPECT_TRUE(model.isFixed(a));
  EXPECT_FALSE(model.isFixed(either)) << "only decisions and constants are marked";
}

TEST_F(BoundsInferrerTest, AFalseNegationMakesItsOperandTrue) {
  OXExpression* a = model.boolean();
  inferFalse(model.make(OXOperator::Not, {a}));
  EXPECT_EQ(model.ints(a), ints(1, 1));
}

TEST_F(BoundsInferrerTest, AnUnknownLogicalExpressionTellsNothing) {
  OXExpression* a = model.boolean();
  for (const OXOperator op : {OXOperator::Not, OXOperator::And, OXOperator::Or, OXOperator::Xor}) {
    model.minimize(model.make(op, {a}));
  }
  infer();
  EXPECT_EQ(model.ints(a), ints(0, 1));
}

TEST_F(BoundsInferrerTest, AFalseConjunctionOfTruthsIsAConflict) {
  OXExpression* e = model.make(OXOperator::And, {model.boolean(1, 1), model.boolean(1, 1)});
  inferFalse(e);
  EXPECT_EQ(model.conflicts(), std::vector<OXExpression*>{e});
}

TEST_F(BoundsInferrerTest, AFalseConjunctionOfAnUnknownIsNone) {
  inferFalse(model.make(OXOperator::And, {model.boolean(1, 1), model.boolean()}));
  EXPECT_FALSE(hasConflicts());
}

TEST_F(BoundsInferrerTest, ATrueDisjunctionOfFalsehoodsIsAConflict) {
  OXExpression* e = model.make(OXOperator::Or, {model.boolean(0, 0), model.boolean(0, 0)});
  inferTrue(e);
  EXPECT_EQ(model.conflicts(), std::vector<OXExpression*>{e});
}

TEST_F(BoundsInferrerTest, ATrueDisjunctionOfAnUnknownIsNone) {
  inferTrue(model.make(OXOperator::Or, {model.boolean(0, 0), model.boolean()}));
  EXPECT_FALSE(hasConflicts());
}

TEST_F(BoundsInferrerTest, IntegerExtremes) {
  OXExpression* x = model.integer(0, 10);
  OXExpression* y = model.integer(0, 10);
  inferInts(model.make(OXOperator::Max, {x}), 3, 7);
  EXPECT_EQ(model.ints(x), ints(0, 7));
  inferInts(model.make(OXOperator::Min, {y}), 3, 7);
  EXPECT_EQ(model.ints(y), ints(3, 10));
}

TEST_F(BoundsInferrerTest, AnIntegerInADoubleMaximumIsRoundedOutward) {
  OXExpression* x = model.integer(0, 10);
  OXExpression* y = model.real(0.0, 10.0);
  OXExpression* z = model.integer(0, 10);
  inferReals(model.make(OXOperator::Max, {x, y}), 3.5, 7.5);
  EXPECT_EQ(model.ints(x), ints(0, 8));
  EXPECT_EQ(model.reals(y), reals(0.0, 7.5));
  inferReals(model.make(OXOperator::Max, {z, y}), 3.5, 7.0000005);
  EXPECT_EQ(model.ints(z), ints(0, 7)) << "within the slack above 7";
}

TEST_F(BoundsInferrerTest, AnIntegerInADoubleMinimumIsRoundedOutward) {
  OXExpression* x = model.integer(0, 10);
  OXExpression* y = model.real(0.0, 10.0);
  OXExpression* z = model.integer(0, 10);
  inferReals(model.make(OXOperator::Min, {x, y}), 3.5, 7.5);
  EXPECT_EQ(model.ints(x), ints(3, 10));
  EXPECT_EQ(model.reals(y), reals(3.5, 10.0));
  inferReals(model.make(OXOperator::Min, {z, y}), 3.9999995, 7.5);
  EXPECT_EQ(model.ints(z), ints(4, 10)) << "within the slack below 4";
}

TEST_F(BoundsInferrerTest, EqualIntegersShareTheirBounds) {
  OXExpression* x = model.integer(0, 7);
  OXExpression* y = model.integer(3, 10);
  inferTrue(model.make(OXOperator::Eq, {x, y}));
  EXPECT_EQ(model.ints(x), ints(3, 7));
  EXPECT_EQ(model.ints(y), ints(3, 7));
}

TEST_F(BoundsInferrerTest, AFalseInequalityIsAnEquality) {
  OXExpression* x = model.integer(0, 7);
  OXExpression* y = model.integer(3, 10);
  inferFalse(model.make(OXOperator::Neq, {x, y}));
  EXPECT_EQ(model.ints(x), ints(3, 7));
  EXPECT_EQ(model.ints(y), ints(3, 7));
}

TEST_F(BoundsInferrerTest, AFalseEqualityTellsNothing) {
  OXExpression* x = model.integer(3, 3);
  OXExpression* y = model.integer(3, 10);
  inferFalse(model.make(OXOperator::Eq, {x, y}));
  inferTrue(model.make(OXOperator::Neq, {x, y}));
  EXPECT_EQ(model.ints(y), ints(3, 10));
}

TEST_F(BoundsInferrerTest, EqualNumbersOfDifferentTypes) {
  OXExpression* x = model.integer(0, 7);
  OXExpression* y = model.real(2.5, 10.5);
  inferTrue(model.make(OXOperator::Eq, {x, y}));
  EXPECT_EQ(model.ints(x), ints(2, 7));
  EXPECT_EQ(model.reals(y), reals(2.5, 7.0));
}

/// What a comparison of x in [0, 10] and y in [4, 6] leaves of both.
struct OrderCase {
  OXOperator op;
  bool truth;
  IntInterval x;
  IntInterval y;
};

TEST_F(BoundsInferrerTest, TheOrderOfIntegers) {
  const std::vector<OrderCase> cases = {
      {OXOperator::Leq, true, ints(0, 6), ints(4, 6)},
      {OXOperator::Leq, false, ints(5, 10), ints(4, 6)},
      {OXOperator::Geq, true, ints(4, 10), ints(4, 6)},
      {OXOperator::Geq, false, ints(0, 5), ints(4, 6)},
      {OXOperator::Lt, true, ints(0, 5), ints(4, 6)},
      {OXOperator::Lt, false, ints(4, 10), ints(4, 6)},
      {OXOperator::Gt, true, ints(5, 10), ints(4, 6)},
      {OXOperator::Gt, false, ints(0, 6), ints(4, 6)},
  };
  for (const OrderCase& c : cases) {
    PassModel m;
    OXExpression* x = m.integer(0, 10);
    OXExpression* y = m.integer(4, 6);
    OXExpression* e = m.make(c.op, {x, y});
    m.minimize(e);
    m.start().fixTo(Preprocessor::at(*e), c.truth ? 1 : 0);
    BoundsInferrer(m.state()).run();
    EXPECT_EQ(m.ints(x), c.x) << OperatorTools::getName(c.op) << c.truth;
    EXPECT_EQ(m.ints(y), c.y) << OperatorTools::getName(c.op) << c.truth;
  }
}

TEST_F(BoundsInferrerTest, TheSecondOperandOfAnOrderIsNarrowedByTheFirst) {
  const std::vector<OrderCase> cases = {
      {OXOperator::Leq, true, ints(4, 6), ints(4, 10)},
      {OXOperator::Geq, true, ints(4, 6), ints(0, 6)},
      {OXOperator::Lt, true, ints(4, 6), ints(5, 10)},
      {OXOperator::Gt, true, ints(4, 6), ints(0, 5)},
  };
  for (const OrderCase& c : cases) {
    PassModel m;
    OXExpression* x = m.integer(4, 6);
    OXExpression* y = m.integer(0, 10);
    m.constrain(m.make(c.op, {x, y}));
    BoundsInferrer(m.start()).run();
    EXPECT_EQ(m.ints(x), c.x) << OperatorTools::getName(c.op);
    EXPECT_EQ(m.ints(y), c.y) << OperatorTools::getName(c.op);
  }
}

TEST_F(BoundsInferrerTest, AStrictOrderAtTheLimitsDoesNotWrap) {
  OXExpression* x = model.integer(kIntMin, 5);
  OXExpression* y = model.integer(kIntMin, kIntMin);
  model.constrain(model.make(OXOperator::Lt, {x, y}));
  infer();
  EXPECT_EQ(model.ints(x), ints(kIntMin, kIntMin));
  EXPECT_EQ(model.conflicts(), (std::vector<OXExpression*>{y, y})) << "treated as root as well";
}

TEST_F(BoundsInferrerTest, AnOrderThatCannotHoldIsAConflict) {
  OXExpression* x = model.integer(5, 9);
  OXExpression* y = model.integer(0, 5);
  inferTrue(model.make(OXOperator::Lt, {x, y}));
  EXPECT_EQ(model.conflicts(), (std::vector<OXExpression*>{x, y}));
}

TEST_F(BoundsInferrerTest, DoublesHaveNoStrictOrder) {
  for (const auto& [op, truth] :
       std::vector<std::pair<OXOperator, bool>>{{OXOperator::Geq, true},
                                                {OXOperator::Gt, true},
                                                {OXOperator::Leq, false},
                                                {OXOperator::Lt, false}}) {
    PassModel m;
    OXExpression* x = m.real(0.0, 6.5);
    OXExpression* y = m.real(4.5, 10.0);
    OXExpression* e = m.make(op, {x, y});
    m.minimize(e);
    m.start().fixTo(Preprocessor::at(*e), truth ? 1 : 0);
    BoundsInferrer(m.state()).run();
    EXPECT_EQ(m.reals(x), reals(4.5, 6.5)) << OperatorTools::getName(op);
    EXPECT_EQ(m.reals(y), reals(4.5, 6.5)) << OperatorTools::getName(op);
  }
}

TEST_F(BoundsInferrerTest, TheOrderOfDoublesTheOtherWayRound) {
  for (const auto& [op, truth] :
       std::vector<std::pair<OXOperator, bool>>{{OXOperator::Leq, true},
                                                {OXOperator::Lt, true},
                                                {OXOperator::Geq, false},
                                                {OXOperator::Gt, false}}) {
    PassModel m;
    OXExpression* x = m.real(4.5, 10.0);
    OXExpression* y = m.integer(0, 6);
    OXExpression* e = m.make(op, {x, y});
    m.minimize(e);
    m.start().fixTo(Preprocessor::at(*e), truth ? 1 : 0);
    BoundsInferrer(m.state()).run();
    EXPECT_EQ(m.reals(x), reals(4.5, 6.0)) << OperatorTools::getName(op);
    EXPECT_EQ(m.ints(y), ints(4, 6)) << OperatorTools::getName(op);
  }
}

TEST_F(BoundsInferrerTest, AnAbsoluteValueNarrowsItselfAndNotItsOperand) {
  OXExpression* x = model.integer(-10, 10);
  OXExpression* y = model.real(-10.0, 10.0);
  OXExpression* e = model.make(OXOperator::Abs, {x});
  inferInts(e, -9, 3);
  EXPECT_EQ(model.ints(e), ints(-3, 3));
  EXPECT_EQ(model.ints(x), ints(-10, 10));
  OXExpression* f = model.make(OXOperator::Abs, {y});
  inferReals(f, -9.0, 3.0);
  EXPECT_EQ(model.reals(f), reals(-3.0, 3.0));
  EXPECT_EQ(model.reals(y), reals(-10.0, 10.0));
}

TEST_F(BoundsInferrerTest, AnIntegerDivisorIsNotZero) {
  OXExpression* x = model.integer(0, 5);
  OXExpression* y = model.integer(-5, 0);
  OXExpression* z = model.integer(-5, 5);
  for (OXExpression* divisor : {x, y, z}) {
    model.minimize(model.make(OXOperator::Div, {model.integer(0, 9), divisor}));
  }
  infer();
  EXPECT_EQ(model.ints(x), ints(1, 5));
  EXPECT_EQ(model.ints(y), ints(-5, -1));
  EXPECT_EQ(model.ints(z), ints(-5, 5));
}

TEST_F(BoundsInferrerTest, ADoubleQuotientTellsNothingOfItsDivisor) {
  OXExpression* divisor = model.integer(0, 5);
  model.minimize(model.make(OXOperator::Div, {model.real(0.0, 9.0), divisor}));
  infer();
  EXPECT_EQ(model.ints(divisor), ints(0, 5));
}

TEST_F(BoundsInferrerTest, AnIndexLiesWithinItsArray) {
  OXExpression* index = model.integer(-4, 9);
  model.minimize(model.make(
      OXOperator::At, {model.array({model.boolean(), model.boolean(), model.boolean()}), index}));
  infer();
  EXPECT_EQ(model.ints(index), ints(0, 2));
}

TEST_F(BoundsInferrerTest, AnIndexIntoAnEmptyArrayIsAConflict) {
  OXExpression* index = model.integer(-4, 9);
  model.minimize(model.make(OXOperator::At, {model.array({}), index}));
  infer();
  EXPECT_EQ(model.conflicts(), std::vector<OXExpression*>{index});
}

TEST_F(BoundsInferrerTest, RootsAndLogarithmsHaveNoNegativeOperand) {
  for (const OXOperator op : {OXOperator::Sqrt, OXOperator::Log}) {
    PassModel m;
    OXExpression* x = m.integer(-4, 9);
    OXExpression* y = m.real(-4.0, 9.0);
    m.minimize(m.make(op, {x}));
    m.minimize(m.make(op, {y}));
    BoundsInferrer(m.start()).run();
    EXPECT_EQ(m.ints(x), ints(0, 9));
    EXPECT_EQ(m.reals(y), reals(0.0, 9.0));
  }
}

TEST_F(BoundsInferrerTest, AnIntegerSumNarrowsEachOperandByTheOthers) {
  OXExpression* x = model.integer(0, 10);
  OXExpression* y = model.integer(1, 2);
  inferInts(model.make(OXOperator::Sum, {x, y}), 5, 6);
  EXPECT_EQ(model.ints(x), ints(3, 5));
  EXPECT_EQ(model.ints(y), ints(1, 2));
}

TEST_F(BoundsInferrerTest, TheSumsAreTakenBeforeAnythingIsNarrowed) {
  OXExpression* x = model.integer(0, 10);
  OXExpression* y = model.integer(0, 10);
  inferInts(model.make(OXOperator::Sum, {x, y}), 0, 3);
  EXPECT_EQ(model.ints(x), ints(0, 3));
  EXPECT_EQ(model.ints(y), ints(0, 3));
}

TEST_F(BoundsInferrerTest, AnUnboundedSumTellsNothing) {
  OXExpression* x = model.integer(0, 10);
  inferInts(model.make(OXOperator::Sum, {x, model.integer(0, 10)}), kIntMin, 3);
  EXPECT_EQ(model.ints(x), ints(0, 10));
  inferInts(model.make(OXOperator::Sum, {x, model.integer(kIntMin, 10)}), 0, 3);
  EXPECT_EQ(model.ints(x), ints(0, 10));
  inferInts(model.make(OXOperator::Sum, {x, model.integer(0, kIntMax)}), 0, 3);
  EXPECT_EQ(model.ints(x), ints(0, 10));
}

TEST_F(BoundsInferrerTest, ASumNearTheLimitsDoesNotWrap) {
  const std::int64_t large = kIntMax - 1;
  OXExpression* x = model.integer(0, large);
  OXExpression* y = model.integer(0, large);
  OXExpression* z = model.integer(0, large);
  inferInts(model.make(OXOperator::Sum, {x, y, z}), 0, 10);
  for (const OXExpression* e : {x, y, z}) EXPECT_EQ(model.ints(e), ints(0, 10));
  EXPECT_FALSE(hasConflicts());
}

TEST_F(BoundsInferrerTest, ADoubleSumRoundsItsIntegersOutward) {
  OXExpression* x = model.integer(0, 10);
  OXExpression* y = model.real(1.0, 2.0);
  inferReals(model.make(OXOperator::Sum, {x, y}), 5.5, 6.5);
  EXPECT_EQ(model.ints(x), ints(3, 6)) << "from [3.5, 5.5]";
  EXPECT_EQ(model.reals(y), reals(1.0, 2.0));
}

TEST_F(BoundsInferrerTest, ADoubleSumNarrowsAnIntegerWithTheSlack) {
  OXExpression* x = model.integer(0, 10);
  inferReals(model.make(OXOperator::Sum, {x, model.real(0.0, 0.0)}), 2.9999995, 5.0000005);
  EXPECT_EQ(model.ints(x), ints(3, 5));
}

TEST_F(BoundsInferrerTest, ADoubleSumNarrowsItsDoubles) {
  OXExpression* x = model.real(0.0, 10.0);
  inferReals(model.make(OXOperator::Sum, {x, model.integer(1, 2)}), 5.5, 6.5);
  EXPECT_EQ(model.reals(x), reals(3.5, 5.5));
}

// As a sum does that was typed when it still had a double operand.
TEST_F(BoundsInferrerTest, ADoubleSumOfIntegersAloneNarrowsThemInDoubles) {
  OXExpression* x = model.integer(0, 10);
  OXExpression* e = model.make(OXOperator::Sum, {x, model.integer(1, 2)});
  ModelRecord::setValueType(*e, kDoubleType);
  inferReals(e, 5.5, 6.5);
  EXPECT_FALSE(hasConflicts());
  EXPECT_EQ(model.ints(x), ints(3, 6)) << "from [3.5, 5.5]";
}

TEST_F(BoundsInferrerTest, AnUnboundedDoubleSumTellsNothing) {
  OXExpression* x = model.real(0.0, 10.0);
  inferReals(model.make(OXOperator::Sum, {x, model.real(0.0, kInf)}), 0.0, 1.0);
  inferReals(model.make(OXOperator::Sum, {x, model.real(0.0, 1.0)}), -kInf, 1.0);
  EXPECT_EQ(model.reals(x), reals(0.0, 10.0));
}

TEST_F(BoundsInferrerTest, AProductOfOneHasOperandsOfMagnitudeOne) {
  OXExpression* x = model.integer(-5, 9);
  OXExpression* y = model.integer(0, 1);
  inferInts(model.make(OXOperator::Prod, {x, y}), 1, 1);
  EXPECT_EQ(model.ints(x), ints(-1, 1));
  EXPECT_EQ(model.ints(y), ints(0, 1));
}

TEST_F(BoundsInferrerTest, AProductOfZeroNeedsAnOperandThatCanBeZero) {
  OXExpression* e = model.make(OXOperator::Prod, {model.integer(1, 5), model.integer(-5, -1)});
  inferInts(e, 0, 0);
  EXPECT_EQ(model.conflicts(), std::vector<OXExpression*>{e});
}

TEST_F(BoundsInferrerTest, AProductOfZeroWithAnOperandThatCanBeZeroIsFine) {
  inferInts(model.make(OXOperator::Prod, {model.integer(1, 5), model.integer(-5, 0)}), 0, 0);
  EXPECT_FALSE(hasConflicts());
}

TEST_F(BoundsInferrerTest, ADoubleProductOfZeroForgivesTheTolerance) {
  OXExpression* e = model.make(OXOperator::Prod, {model.real(0.5, 1.0), model.real(-2.0, -1.0)});
  inferReals(e, 0.0, 1e-8);
  EXPECT_EQ(model.conflicts(), std::vector<OXExpression*>{e});
}

TEST_F(BoundsInferrerTest, ADoubleProductOfZeroWithAnOperandNextToZeroIsFine) {
  inferReals(model.make(OXOperator::Prod, {model.real(0.5, 1.0), model.real(1e-7, 1.0)}), 0.0, 0.0);
  EXPECT_FALSE(hasConflicts());
}

/// A product of a boolean and a fixed factor, known to lie within an interval.
struct GuardCase {
  std::int64_t factor;
  IntInterval product;
  IntInterval boolean;
};

const std::vector<GuardCase> kGuards = {
    {5, ints(1, 5), ints(1, 1)},    {5, ints(0, 4), ints(0, 0)},   {5, ints(0, 5), ints(0, 1)},
    {-5, ints(-5, -1), ints(1, 1)}, {-5, ints(-4, 0), ints(0, 0)}, {-5, ints(-5, 0), ints(0, 1)},
};

TEST_F(BoundsInferrerTest, TheOneFreeBooleanOfAnIntegerProduct) {
  for (const GuardCase& c : kGuards) {
    PassModel m;
    OXExpression* b = m.boolean();
    OXExpression* e = m.make(OXOperator::Prod, {m.constant(c.factor), b});
    m.minimize(e);
    m.start().intersectIntBounds(Preprocessor::at(*e), c.product);
    BoundsInferrer(m.state()).run();
    EXPECT_EQ(m.ints(b), c.boolean) << c.factor << " " << c.product.low;
    EXPECT_EQ(m.isFixed(b), c.boolean.low == c.boolean.high);
  }
}

TEST_F(BoundsInferrerTest, TheOneFreeBooleanOfADoubleProduct) {
  for (const GuardCase& c : kGuards) {
    PassModel m;
    OXExpression* b = m.boolean();
    OXExpression* e = m.make(OXOperator::Prod, {m.constant(static_cast<double>(c.factor)), b});
    m.minimize(e);
    m.start().intersectDoubleBounds(Preprocessor::at(*e), toDouble(c.product));
    BoundsInferrer(m.state()).run();
    EXPECT_EQ(m.ints(b), c.boolean) << c.factor << " " << c.product.low;
  }
}

TEST_F(BoundsInferrerTest, ADoubleProductWithinToleranceOfItsFactorTellsNothing) {
  OXExpression* b = model.boolean();
  inferReals(model.make(OXOperator::Prod, {model.constant(5.0), b}), 0.0, 5.0 - 1e-7);
  EXPECT_EQ(model.ints(b), ints(0, 1));
}

TEST_F(BoundsInferrerTest, AProductOfTwoFreeBooleansIsLeftAlone) {
  OXExpression* a = model.boolean();
  OXExpression* b = model.boolean();
  inferInts(model.make(OXOperator::Prod, {a, b, model.constant(std::int64_t{5})}), 5, 5);
  EXPECT_EQ(model.ints(a), ints(0, 1));
  EXPECT_EQ(model.ints(b), ints(0, 1));
}

TEST_F(BoundsInferrerTest, AProductOfAFreeIntegerIsLeftAlone) {
  OXExpression* x = model.integer(0, 1);
  inferInts(model.make(OXOperator::Prod, {x, model.constant(std::int64_t{5})}), 5, 5);
  EXPECT_EQ(model.ints(x), ints(0, 1));
}

TEST_F(BoundsInferrerTest, AProductOfOneOperandOrOfFixedOnesIsLeftAlone) {
  OXExpression* b = model.boolean();
  inferInts(model.make(OXOperator::Prod, {b}), 2, 2);
  EXPECT_EQ(model.ints(b), ints(0, 1));
  inferInts(model.make(OXOperator::Prod,
                       {model.constant(std::int64_t{5}), model.constant(std::int64_t{2})}),
            3, 3);
  EXPECT_FALSE(hasConflicts());
}

TEST_F(BoundsInferrerTest, OperatorsWithoutARuleTellNothing) {
  OXExpression* x = model.integer(0, 10);
  for (const OXOperator op : {OXOperator::Dist, OXOperator::Mod}) {
    model.minimize(model.make(op, {x, model.integer(1, 3)}));
  }
  OXExpression* e = model.make(OXOperator::Iif, {model.boolean(1, 1), x, x});
  inferInts(e, 4, 4);
  EXPECT_EQ(model.ints(x), ints(0, 10));
}

TEST_F(BoundsInferrerTest, TheSweepIsDoneOnceAndNotToAFixedPoint) {
  // x + y = 4 is treated before x >= 3 is known, and nothing returns to it.
  OXExpression* x = model.integer(0, 4);
  OXExpression* y = model.integer(0, 4);
  OXExpression* sum = model.make(OXOperator::Sum, {x, y});
  model.constrain(model.make(OXOperator::Eq, {sum, model.constant(std::int64_t{4})}));
  OXExpression* deep = model.make(OXOperator::Geq, {x, model.constant(std::int64_t{3})});
  model.constrain(model.make(OXOperator::And,
                             {model.make(OXOperator::And, {model.make(OXOperator::And, {deep})})}));
  infer();
  EXPECT_EQ(model.ints(x), ints(3, 4));
  EXPECT_EQ(model.ints(y), ints(0, 4));
}

TEST_F(BoundsInferrerTest, AConstraintUsedElsewhereIsTreatedAsWell) {
  OXExpression* a = model.boolean();
  OXExpression* e = model.make(OXOperator::And, {a});
  model.minimize(model.make(OXOperator::Sum, {e}));
  model.constrain(e);
  infer();
  EXPECT_EQ(model.ints(a), ints(1, 1));
}

}  // namespace
}  // namespace ombrix
