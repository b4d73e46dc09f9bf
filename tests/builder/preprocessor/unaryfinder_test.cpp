#include "builder/preprocessor/unaryfinder.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "support/passmodel.h"

namespace ombrix {
namespace {

using test::PassModel;

class UnaryFinderTest : public testing::Test {
protected:
  /// What stands for e after the pass.
  OXExpression* find(const OXExpression* e) {
    UnaryFinder(model.start()).run();
    return model.canonical(e);
  }
  /// The same with some expressions marked as fixed at their lower bounds.
  OXExpression* findWithFixed(const OXExpression* e, const std::vector<OXExpression*>& fixed) {
    Preprocessor& p = model.start();
    for (const OXExpression* x : fixed) p.markFixed(Preprocessor::at(*x));
    UnaryFinder(p).run();
    return model.canonical(e);
  }
  OXExpression* number(std::int64_t value) { return model.constant(value); }
  OXExpression* number(double value) { return model.constant(value); }

  PassModel model;
};

TEST_F(UnaryFinderTest, ASumOfOneOperandOrOfZerosBesideIt) {
  OXExpression* x = model.integer(0, 9);
  OXExpression* single = model.make(OXOperator::Sum, {x});
  OXExpression* withZeros =
      model.make(OXOperator::Sum, {number(std::int64_t{0}), x, number(std::int64_t{0})});
  OXExpression* withOne = model.make(OXOperator::Sum, {x, number(std::int64_t{1})});
  EXPECT_EQ(find(single), x);
  EXPECT_EQ(model.canonical(withZeros), x);
  EXPECT_EQ(model.canonical(withOne), withOne);
}

TEST_F(UnaryFinderTest, ADoubleSumOfAnIntegerBecomesTheInteger) {
  OXExpression* x = model.integer(0, 9);
  EXPECT_EQ(find(model.make(OXOperator::Sum, {x, number(0.0)})), x);
}

TEST_F(UnaryFinderTest, AlmostZeroIsNoZero) {
  OXExpression* e = model.make(OXOperator::Sum, {model.real(0.0, 1.0), number(1e-12)});
  EXPECT_EQ(find(e), e);
}

TEST_F(UnaryFinderTest, ADisjunctionWithFalsehoodsBesideIt) {
  OXExpression* b = model.boolean();
  OXExpression* off = model.boolean(0, 0);
  EXPECT_EQ(findWithFixed(model.make(OXOperator::Or, {off, b}), {off}), b);
}

TEST_F(UnaryFinderTest, AProductOrConjunctionWithOnesBesideIt) {
  OXExpression* x = model.integer(0, 9);
  OXExpression* b = model.boolean();
  OXExpression* on = model.boolean(1, 1);
  OXExpression* conjunction = model.make(OXOperator::And, {on, b, on});
  EXPECT_EQ(findWithFixed(model.make(OXOperator::Prod, {x, number(std::int64_t{1})}), {on}), x);
  EXPECT_EQ(model.canonical(conjunction), b);
}

TEST_F(UnaryFinderTest, TwoOperandsOrNoneLeaveAnExpressionAlone) {
  OXExpression* b = model.boolean();
  OXExpression* pair = model.make(OXOperator::Sum, {b, b});
  OXExpression* none =
      model.make(OXOperator::Prod, {number(std::int64_t{1}), number(std::int64_t{1})});
  EXPECT_EQ(find(pair), pair);
  EXPECT_EQ(model.canonical(none), none);
}

TEST_F(UnaryFinderTest, AnExtremeOfOneOperand) {
  OXExpression* x = model.integer(0, 9);
  OXExpression* max = model.make(OXOperator::Max, {x});
  OXExpression* min = model.make(OXOperator::Min, {x});
  OXExpression* pair = model.make(OXOperator::Max, {x, x});
  EXPECT_EQ(find(max), x);
  EXPECT_EQ(model.canonical(min), x);
  EXPECT_EQ(model.canonical(pair), pair);
}

TEST_F(UnaryFinderTest, AConditionalWithAFixedCondition) {
  OXExpression* on = model.boolean(1, 1);
  OXExpression* off = model.boolean(0, 0);
  OXExpression* x = model.integer(0, 9);
  OXExpression* y = model.integer(0, 9);
  OXExpression* first = model.make(OXOperator::Iif, {on, x, y});
  OXExpression* second = model.make(OXOperator::Iif, {off, x, y});
  EXPECT_EQ(findWithFixed(first, {on, off}), x);
  EXPECT_EQ(model.canonical(second), y);
}

TEST_F(UnaryFinderTest, AConditionalWithOneCanonicalBranch) {
  OXExpression* x = model.integer(0, 9);
  OXExpression* same = model.make(OXOperator::Sum, {x});
  EXPECT_EQ(find(model.make(OXOperator::Iif, {model.boolean(), x, same})), x);
}

TEST_F(UnaryFinderTest, ABooleanConditionalOverTrueAndFalseIsItsCondition) {
  OXExpression* c = model.boolean();
  OXExpression* on = model.boolean(1, 1);
  OXExpression* off = model.boolean(0, 0);
  OXExpression* straight = model.make(OXOperator::Iif, {c, on, off});
  OXExpression* reversed = model.make(OXOperator::Iif, {c, off, on});
  EXPECT_EQ(findWithFixed(straight, {on, off}), c);
  EXPECT_EQ(model.canonical(reversed), reversed);
}

TEST_F(UnaryFinderTest, TheConstantsOneAndZeroAreBooleans) {
  OXExpression* c = model.boolean();
  OXExpression* e =
      model.make(OXOperator::Iif, {c, number(std::int64_t{1}), number(std::int64_t{0})});
  EXPECT_EQ(find(e), c);
}

TEST_F(UnaryFinderTest, AnIntegerConditionalStays) {
  OXExpression* c = model.boolean();
  OXExpression* one = model.integer(1, 1);
  OXExpression* e = model.make(OXOperator::Iif, {c, one, number(std::int64_t{0})});
  EXPECT_EQ(findWithFixed(e, {one}), e);
}

TEST_F(UnaryFinderTest, AQuotientByOneBecomesItsDivisor) {
  OXExpression* one = number(std::int64_t{1});
  OXExpression* realOne = number(1.0);
  OXExpression* intQuotient = model.make(OXOperator::Div, {model.integer(0, 9), one});
  OXExpression* realQuotient = model.make(OXOperator::Div, {model.real(0.0, 9.0), one});
  OXExpression* otherQuotient = model.make(OXOperator::Div, {model.real(0.0, 9.0), realOne});
  EXPECT_EQ(find(intQuotient), one);
  EXPECT_EQ(model.canonical(realQuotient), one);
  EXPECT_EQ(model.canonical(otherQuotient), realOne);
}

TEST_F(UnaryFinderTest, ADoubleQuotientOfAnIntegerStays) {
  OXExpression* e = model.make(OXOperator::Div, {model.integer(0, 9), number(1.0)});
  EXPECT_EQ(find(e), e);
}

TEST_F(UnaryFinderTest, AQuotientByAnythingElseStays) {
  OXExpression* byTwo = model.make(OXOperator::Div, {model.integer(0, 9), number(std::int64_t{2})});
  OXExpression* byAlmostOne =
      model.make(OXOperator::Div, {model.real(0.0, 9.0), number(1.0 + 1e-9)});
  OXExpression* byUnknown = model.make(OXOperator::Div, {model.integer(0, 9), model.integer(1, 1)});
  EXPECT_EQ(find(byTwo), byTwo);
  EXPECT_EQ(model.canonical(byAlmostOne), byAlmostOne);
  EXPECT_EQ(model.canonical(byUnknown), byUnknown);
}

OXExpression* makeAt(PassModel& m, const std::vector<OXExpression*>& elements, std::int64_t index) {
  return m.make(OXOperator::At, {m.array(elements), m.constant(index)});
}

TEST_F(UnaryFinderTest, AnAtWithAFixedIndexBecomesTheElement) {
  OXExpression* x = model.integer(0, 9);
  OXExpression* y = model.integer(0, 9);
  EXPECT_EQ(find(makeAt(model, {x, model.make(OXOperator::Sum, {y}), x}, 1)), y);
}

TEST_F(UnaryFinderTest, AFixedIndexOutsideTheArrayStopsTheReplacement) {
  OXExpression* x = model.integer(0, 9);
  for (const std::int64_t index : {std::int64_t{-1}, std::int64_t{1}, std::int64_t{1} << 32,
                                   std::numeric_limits<std::int64_t>::min()}) {
    OXExpression* e = makeAt(model, {x}, index);
    EXPECT_EQ(find(e), e) << index;
  }
}

TEST_F(UnaryFinderTest, RoundingAnIntegerIsTheInteger) {
  OXExpression* x = model.integer(0, 9);
  OXExpression* y = model.real(0.0, 9.0);
  for (const OXOperator op : {OXOperator::Ceil, OXOperator::Floor, OXOperator::Round}) {
    OXExpression* ofInteger = model.make(op, {x});
    OXExpression* ofReal = model.make(op, {y});
    EXPECT_EQ(find(ofInteger), x);
    EXPECT_EQ(model.canonical(ofReal), ofReal);
  }
}

TEST_F(UnaryFinderTest, ReplacementsFollowEachOther) {
  OXExpression* x = model.integer(0, 9);
  OXExpression* sum = model.make(OXOperator::Sum, {x});
  OXExpression* max = model.make(OXOperator::Max, {sum});
  EXPECT_EQ(find(model.make(OXOperator::Floor, {max})), x);
}

TEST_F(UnaryFinderTest, AnOperandAfterItsUserIsSeenAsItIs) {
  OXExpression* x = model.integer(0, 9);
  OXExpression* pair = model.make(OXOperator::Sum, {x, x});
  OXExpression* conditional = model.make(OXOperator::Iif, {model.boolean(), pair});
  OXExpression* later = model.make(OXOperator::Sum, {pair});
  conditional->addOperand(later);
  EXPECT_EQ(find(conditional), conditional) << "the branches are one only once later is reduced";
  EXPECT_EQ(model.canonical(later), pair);
}

TEST_F(UnaryFinderTest, AFixedExpressionAndAnArrayStandForThemselves) {
  OXExpression* sum = model.make(OXOperator::Sum, {model.boolean()});
  OXExpression* array = model.array({model.boolean()});
  EXPECT_EQ(findWithFixed(sum, {sum}), sum);
  EXPECT_EQ(model.canonical(array), array);
}

TEST_F(UnaryFinderTest, OtherOperatorsStandForThemselves) {
  OXExpression* b = model.boolean();
  for (const OXOperator op : {OXOperator::Not, OXOperator::Xor, OXOperator::Abs, OXOperator::Sqrt,
                              OXOperator::Exp, OXOperator::Cos}) {
    OXExpression* e = model.make(op, {b});
    EXPECT_EQ(find(e), e) << OperatorTools::getName(op);
  }
  EXPECT_EQ(find(b), b);
}

}  // namespace
}  // namespace ombrix
