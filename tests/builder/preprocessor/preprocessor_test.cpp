#include "builder/preprocessor/preprocessor.h"

#include <gtest/gtest.h>

#include <cmath>

#include "solver/kernel/saturating.h"
#include "support/passmodel.h"

namespace ombrix {
namespace {

using test::ints;
using test::kInf;
using test::PassModel;
using test::reals;

TEST(Preprocessor, GivesEveryTypeItsWidestBounds) {
  PassModel m;
  OXExpression* b = m.boolean();
  OXExpression* sum = m.make(OXOperator::Sum, {b});
  OXExpression* root = m.make(OXOperator::Sqrt, {b});
  OXExpression* array = m.array({b});
  m.start();
  EXPECT_EQ(m.ints(b), ints(0, 1));
  EXPECT_EQ(m.ints(sum), ints(kIntMin, kIntMax));
  EXPECT_EQ(m.reals(root), reals(-kInf, kInf));
  EXPECT_EQ(m.ints(array), ints(0, 0));
  for (const OXExpression* e : {b, sum, root, array}) EXPECT_FALSE(m.isFixed(e));
}

TEST(Preprocessor, AConstantIsFixedAtItsValue) {
  PassModel m;
  OXExpression* seven = m.constant(std::int64_t{7});
  OXExpression* half = m.constant(0.5);
  m.start();
  EXPECT_EQ(m.ints(seven), ints(7, 7));
  EXPECT_EQ(m.reals(half), reals(0.5, 0.5));
  EXPECT_TRUE(m.isFixed(seven));
  EXPECT_TRUE(m.isFixed(half));
}

TEST(Preprocessor, CountsOperandPositions) {
  PassModel m;
  OXExpression* a = m.boolean();
  OXExpression* b = m.boolean();
  OXExpression* sum = m.make(OXOperator::Sum, {a, a, b});
  m.make(OXOperator::Not, {a});
  const Preprocessor& p = m.start();
  EXPECT_EQ(p.useCounts[Preprocessor::at(*a)], 3U);
  EXPECT_EQ(p.useCounts[Preprocessor::at(*b)], 1U);
  EXPECT_EQ(p.useCounts[Preprocessor::at(*sum)], 0U);
}

TEST(Preprocessor, RootsAreConstraintsAndObjectivesThatNothingUses) {
  PassModel m;
  OXExpression* a = m.boolean();
  OXExpression* unused = m.make(OXOperator::Not, {a});
  OXExpression* usedConstraint = m.make(OXOperator::Or, {a});
  OXExpression* objective = m.make(OXOperator::Sum, {a, usedConstraint});
  OXExpression* constraint = m.make(OXOperator::And, {a});
  m.minimize(objective);
  m.constrain(constraint);
  m.constrain(usedConstraint);
  const Preprocessor& p = m.start();
  EXPECT_EQ(p.roots, (std::vector<OXExpression*>{objective, constraint}));
  EXPECT_EQ(&p.canonical(*unused), unused);
  EXPECT_EQ(p.nodeIds[Preprocessor::at(*objective)], Preprocessor::kNoNode);
}

TEST(Preprocessor, IntegerBoundsAreIntersected) {
  PassModel m;
  OXExpression* x = m.integer(0, 10);
  Preprocessor& p = m.start();
  p.intersectIntBounds(Preprocessor::at(*x), -5, 7);
  EXPECT_EQ(m.ints(x), ints(0, 7));
  p.intersectIntBounds(Preprocessor::at(*x), 7, 20);
  EXPECT_EQ(m.ints(x), ints(7, 7));
  EXPECT_TRUE(m.conflicts().empty());
  EXPECT_FALSE(m.isFixed(x)) << "marking is another step";
}

TEST(Preprocessor, AnEmptyIntersectionIsAConflictAndKeepsTheBounds) {
  PassModel m;
  OXExpression* x = m.integer(0, 10);
  Preprocessor& p = m.start();
  p.intersectIntBounds(Preprocessor::at(*x), 11, 20);
  p.fixTo(Preprocessor::at(*x), -1);
  EXPECT_EQ(m.ints(x), ints(0, 10));
  EXPECT_EQ(m.conflicts(), (std::vector<OXExpression*>{x, x}));
}

TEST(Preprocessor, DoubleBoundsThatMissByLessThanTheToleranceAreExchanged) {
  PassModel m;
  OXExpression* x = m.real(1.0, 2.0);
  Preprocessor& p = m.start();
  p.intersectDoubleBounds(Preprocessor::at(*x), 2.0 + 1e-7, 5.0);
  EXPECT_EQ(m.reals(x), reals(2.0, 2.0 + 1e-7));
  EXPECT_TRUE(m.conflicts().empty());
}

TEST(Preprocessor, DoubleBoundsThatMissByMoreAreAConflict) {
  PassModel m;
  OXExpression* x = m.real(1.0, 2.0);
  Preprocessor& p = m.start();
  p.intersectDoubleBounds(Preprocessor::at(*x), 2.1, 5.0);
  EXPECT_EQ(m.reals(x), reals(1.0, 2.0));
  EXPECT_EQ(m.conflicts(), std::vector<OXExpression*>{x});
}

TEST(Preprocessor, ANaNLeavesDoubleBoundsAsTheyWere) {
  PassModel m;
  OXExpression* x = m.real(1.0, 2.0);
  Preprocessor& p = m.start();
  p.intersectDoubleBounds(Preprocessor::at(*x), std::nan(""), 0.0);
  p.intersectDoubleBounds(Preprocessor::at(*x), 5.0, std::nan(""));
  EXPECT_EQ(m.reals(x), reals(1.0, 2.0));
  EXPECT_TRUE(m.conflicts().empty());
}

TEST(Preprocessor, BoundsOfIntegersAreReadAsDoublesByConversion) {
  PassModel m;
  OXExpression* x = m.integer(-3, 4);
  m.start();
  EXPECT_EQ(m.reals(x), reals(-3.0, 4.0));
}

TEST(Preprocessor, EqualBoundsAreExactForIntegersAndForgivingForDoubles) {
  PassModel m;
  OXExpression* point = m.integer(3, 3);
  OXExpression* pair = m.integer(3, 4);
  OXExpression* almost = m.real(1.0, 1.0 + 1e-7);
  OXExpression* wide = m.real(1.0, 1.1);
  const Preprocessor& p = m.start();
  EXPECT_TRUE(p.hasEqualBounds(Preprocessor::at(*point)));
  EXPECT_FALSE(p.hasEqualBounds(Preprocessor::at(*pair)));
  EXPECT_TRUE(p.hasEqualBounds(Preprocessor::at(*almost)));
  EXPECT_FALSE(p.hasEqualBounds(Preprocessor::at(*wide)));
}

TEST(Preprocessor, ADoubleOperandIsLookedForInCanonicalForm) {
  PassModel m;
  OXExpression* x = m.real(0.0, 1.0);
  OXExpression* y = m.integer(0, 1);
  OXExpression* e = m.make(OXOperator::Geq, {x, y});
  Preprocessor& p = m.start();
  EXPECT_TRUE(p.hasDoubleOperand(Preprocessor::at(*e)));
  p.unaries[Preprocessor::at(*x)] = y;
  EXPECT_FALSE(p.hasDoubleOperand(Preprocessor::at(*e)));
}

}  // namespace
}  // namespace ombrix
