#include "builder/preprocessor/nodecreator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/failures.h"
#include "support/models.h"

namespace ombrix {
namespace {

using test::expectFailure;
using test::graphText;
using testing::ElementsAre;
using testing::IsEmpty;
using Nodes = std::vector<std::string>;

/// With the passes off, only constants are fixed and every expression stands for itself: the graph
/// shows what the creation of nodes does alone. Operands are created from the last to the first.
class NodeCreation : public testing::Test {
protected:
  NodeCreation() { m.set("preprocessingEnabled", 0); }

  /// The graph of a model that minimises e.
  Nodes graphOf(OXExpression* e) {
    m.minimize(e);
    return graphText(m.close());
  }
  Nodes graphOfConstraint(OXExpression* e) {
    m.constrain(e);
    m.minimize(m.constant(0));
    return graphText(m.close());
  }
  OXExpression* sqrtOf(OXExpression* e) { return m.make(OXOperator::Sqrt, e); }

  test::TestModel m;
};

TEST_F(NodeCreation, ADecisionIsABooleanNode) {
  EXPECT_THAT(graphOf(m.boolean()), ElementsAre("boolean"));
}

TEST_F(NodeCreation, AConstantIsAConstantNodeOfItsType) {
  m.minimize(m.constant(5));
  m.minimize(m.constant(2.5));
  EXPECT_THAT(graphText(m.close()), ElementsAre("double_constant [2.5]", "constant [5]"));
}

// The operators over a fixed number of operands.

struct Row {
  OXOperator op;
  int nbOperands;
  std::string intNode;
  std::string doubleNode;
};

const Row kRows[] = {{OXOperator::Eq, 2, "eq", "double_eq"},
                     {OXOperator::Neq, 2, "neq", "double_neq"},
                     {OXOperator::Geq, 2, "geq", "double_geq"},
                     {OXOperator::Leq, 2, "leq", "double_leq"},
                     {OXOperator::Gt, 2, "gt", "double_gt"},
                     {OXOperator::Lt, 2, "lt", "double_lt"},
                     {OXOperator::Iif, 3, "if", "double_if"},
                     {OXOperator::Abs, 1, "abs", "double_abs"},
                     {OXOperator::Dist, 2, "distance", "double_distance"},
                     {OXOperator::Div, 2, "divide", "double_divide"},
                     {OXOperator::Ceil, 1, "double_ceil", "double_ceil"},
                     {OXOperator::Floor, 1, "double_floor", "double_floor"},
                     {OXOperator::Round, 1, "double_round", "double_round"},
                     {OXOperator::Sqrt, 1, "double_sqrt", "double_sqrt"},
                     {OXOperator::Log, 1, "double_log", "double_log"},
                     {OXOperator::Exp, 1, "double_exp", "double_exp"},
                     {OXOperator::Pow, 2, "double_pow", "double_pow"},
                     {OXOperator::Cos, 1, "double_cos", "double_cos"},
                     {OXOperator::Sin, 1, "double_sin", "double_sin"},
                     {OXOperator::Tan, 1, "double_tan", "double_tan"}};

class FixedArity : public testing::TestWithParam<Row> {
protected:
  FixedArity() { m.set("preprocessingEnabled", 0); }

  /// The operator over decisions, with the last operand given.
  OXExpression* applyWithLast(OXExpression* last) {
    OXExpression* e = m.model().createExpression(GetParam().op);
    for (int i = 0; i + 1 < GetParam().nbOperands; ++i) e->addOperand(m.boolean());
    e->addOperand(last);
    return e;
  }
  /// The nodes below the operator, then the operator itself over them.
  Nodes expected(const std::string& last, const std::string& type) const {
    Nodes nodes{last};
    std::string operands = "0";
    for (int i = 1; i < GetParam().nbOperands; ++i) {
      nodes.push_back("boolean");
      operands = std::to_string(i) + " " + operands;
    }
    nodes.push_back(type + " (" + operands + ")");
    return nodes;
  }

  test::TestModel m;
};

TEST_P(FixedArity, OverIntegers) {
  m.minimize(applyWithLast(m.boolean()));
  EXPECT_EQ(graphText(m.close()), expected("boolean", GetParam().intNode));
}

TEST_P(FixedArity, OverADouble) {
  m.minimize(applyWithLast(m.constant(0.5)));
  EXPECT_EQ(graphText(m.close()), expected("double_constant [0.5]", GetParam().doubleNode));
}

INSTANTIATE_TEST_SUITE_P(Operators, FixedArity, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<Row>& row) { return row.param.intNode; });

TEST_F(NodeCreation, NotAndModuloHaveNoDoubleForm) {
  auto x = m.booleans(2);
  m.minimize(m.make(OXOperator::Mod, x[0], x[1]));
  m.minimize(m.make(OXOperator::Not, x[0]));
  EXPECT_THAT(graphText(m.close()), ElementsAre("boolean", "not (0)", "boolean", "modulo (0 2)"));
}

TEST_F(NodeCreation, AnExpressionThatStaysADoubleKeepsItsDoubleForm) {
  auto x = m.booleans(2);
  // Its type was settled at the first closing, when the branch was a double.
  OXExpression* branch = m.make(OXOperator::Sum, 0.5);
  OXExpression* e = m.make(OXOperator::Iif, x[0], branch, x[1]);
  m.minimize(e);
  m.close();
  m.model().open();
  ModelRecord::setValueType(*branch, kNoType);
  branch->setOperand(0, x[0]);
  EXPECT_EQ(test::nodeText(m.close(), 2), "sum (1)");
  EXPECT_EQ(test::nodeText(m.builder().getFixedFields(), 3), "double_if (1 2 0)");
}

TEST_F(NodeCreation, ADoubleInAnyPlaceMakesTheDoubleForm) {
  OXExpression* x = m.boolean();
  EXPECT_THAT(graphOf(m.make(OXOperator::Iif, x, 0.5, 2)),
              ElementsAre("constant [2]", "double_constant [0.5]", "boolean", "double_if (2 1 0)"));
}

// Sums.

TEST_F(NodeCreation, ASumOfDecisionsSortsThem) {
  auto x = m.booleans(3);
  // From the last to the first: x[0] is node 0.
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, x[2], x[1], x[0])),
              ElementsAre("boolean", "boolean", "boolean", "sum (0 1 2)"));
}

TEST_F(NodeCreation, ASumOfOneDecisionIsANodeOfItsOwn) {
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.boolean())), ElementsAre("boolean", "sum (0)"));
}

TEST_F(NodeCreation, TheConstantsOfASumAreFoldedBesideItsDecisions) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, x[0], 3, x[1], 4)),
              ElementsAre("boolean", "boolean", "constant [7]", "sum (0 1)", "sum (2 3)"));
}

TEST_F(NodeCreation, ASumWithOneDecisionStandsAsGiven) {
  OXExpression* x = m.boolean();
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Abs, x), 3)),
              ElementsAre("boolean", "abs (0)", "constant [3]", "sum (1 2)"));
}

TEST_F(NodeCreation, ASumOfConstantsIsASumOfOneConstant) {
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, 2, 3)), ElementsAre("constant [5]", "sum (0)"));
}

TEST_F(NodeCreation, ANestedSumIsOpened) {
  auto x = m.booleans(3);
  OXExpression* inner = m.make(OXOperator::Sum, x[1], x[2]);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, x[0], inner)),
              ElementsAre("boolean", "boolean", "boolean", "sum (0 1 2)"));
}

TEST_F(NodeCreation, ASumUsedTwiceStaysANode) {
  auto x = m.booleans(3);
  OXExpression* inner = m.make(OXOperator::Sum, x[1], x[2]);
  m.minimize(m.make(OXOperator::Sum, x[0], inner));
  m.constrain(m.make(OXOperator::Geq, inner, 1));
  const Nodes nodes = graphText(m.close());
  EXPECT_EQ(std::count(nodes.begin(), nodes.end(), "sum (1 2)"), 1);
  EXPECT_EQ(nodes.size(), 7u);
}

TEST_F(NodeCreation, AFactorIsCarriedIntoANestedSum) {
  auto x = m.booleans(3);
  OXExpression* inner = m.make(OXOperator::Sum, x[0], x[1]);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Prod, 2, inner), x[2])),
              ElementsAre("boolean", "boolean", "boolean", "scalar_sum (0 1 2) [1 2 2]"));
}

TEST_F(NodeCreation, AFactorIsCarriedIntoConstants) {
  OXExpression* x = m.boolean();
  OXExpression* inner = m.make(OXOperator::Sum, x, 5);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Prod, -3, inner), 1)),
              ElementsAre("boolean", "constant [-14]", "scalar_sum (0 1) [-3 1]"));
}

TEST_F(NodeCreation, AGuardedConstantIsACoefficient) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Iif, x[0], 5, 0), x[1])),
              ElementsAre("boolean", "boolean", "scalar_sum (0 1) [1 5]"));
}

TEST_F(NodeCreation, AGuardWithANonZeroElseBranchStaysANode) {
  auto x = m.booleans(2);
  EXPECT_THAT(
      graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Iif, x[0], 5, 1), x[1])),
      ElementsAre("boolean", "constant [1]", "constant [5]", "boolean", "if (3 2 1)", "sum (4 0)"));
}

TEST_F(NodeCreation, AGuardedZeroStaysANode) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Iif, x[0], 0, 0), x[1])),
              ElementsAre("boolean", "constant [0]", "boolean", "if (2 1 1)", "sum (3 0)"));
}

TEST_F(NodeCreation, AnIntegerGuardedByADoubleZeroIsADoubleCoefficient) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Iif, x[0], 5, 0.0), x[1])),
              ElementsAre("boolean", "boolean", "double_scalar_sum (0 1) [1 5]"));
}

TEST_F(NodeCreation, TheFactorsOfAProductAreMultiplied) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Prod, 2, x[0], 3), x[1])),
              ElementsAre("boolean", "boolean", "scalar_sum (0 1) [1 6]"));
}

TEST_F(NodeCreation, AProductOfTwoFreeOperandsStaysANode) {
  auto x = m.booleans(3);
  EXPECT_THAT(
      graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Prod, 2, x[0], x[1]), x[2])),
      ElementsAre("boolean", "boolean", "boolean", "scalar_product (2 1) [2]", "sum (3 0)"));
}

TEST_F(NodeCreation, AProductOfOneOperandIsNoFactor) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Prod, x[0]), x[1])),
              ElementsAre("boolean", "boolean", "product (1)", "sum (2 0)"));
}

TEST_F(NodeCreation, AZeroFactorIsNoCoefficient) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Prod, 0, x[0]), x[1])),
              ElementsAre("boolean", "boolean", "constant [0]", "sum (2 0)"));
}

TEST_F(NodeCreation, CoefficientsOfARepeatedDecisionAreAdded) {
  auto x = m.booleans(2);
  OXExpression* twice = m.make(OXOperator::Prod, 2, x[0]);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, x[0], twice, x[1])),
              ElementsAre("boolean", "boolean", "scalar_sum (0 1) [1 3]"));
}

TEST_F(NodeCreation, ARepeatedDecisionAloneKeepsItsTerms) {
  OXExpression* x = m.boolean();
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, x, m.make(OXOperator::Prod, 2, x))),
              ElementsAre("boolean", "scalar_sum (0 0) [1 2]"));
}

TEST_F(NodeCreation, OtherTermsOfAScalarSumStandAboveItsDecisions) {
  auto x = m.booleans(2);
  OXExpression* other = m.make(OXOperator::Abs, x[0]);
  OXExpression* e = m.make(OXOperator::Sum, m.make(OXOperator::Prod, 3, other), x[0],
                           m.make(OXOperator::Prod, 2, x[1]), 7);
  EXPECT_THAT(graphOf(e), ElementsAre("boolean", "boolean", "abs (1)", "constant [7]",
                                      "scalar_sum (0 1) [2 1]", "scalar_sum (2 3 4) [3 1 1]"));
}

TEST_F(NodeCreation, CoefficientsThatAreAllOneMakeAPlainSum) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Prod, 1, x[0]), x[1])),
              ElementsAre("boolean", "boolean", "sum (0 1)"));
}

TEST_F(NodeCreation, ADoubleSumHasDoubleForms) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, x[0], x[1], 0.5, 1)),
              ElementsAre("boolean", "boolean", "double_constant [1.5]", "double_sum (0 1)",
                          "double_sum (2 3)"));
}

TEST_F(NodeCreation, ADoubleScalarSumHasDoubleCoefficients) {
  auto x = m.booleans(2);
  OXExpression* e = m.make(OXOperator::Sum, m.make(OXOperator::Prod, 2.5, x[0]), x[1], 3);
  EXPECT_THAT(graphOf(e),
              ElementsAre("boolean", "boolean", "double_constant [3]",
                          "double_scalar_sum (0 1) [1 2.5]", "double_scalar_sum (2 3) [1 1]"));
}

TEST_F(NodeCreation, AnIntegerFactorOfADoubleSumIsConverted) {
  auto x = m.booleans(2);
  OXExpression* e = m.make(OXOperator::Sum, m.make(OXOperator::Prod, 3, x[0]), x[1], 0.5);
  EXPECT_THAT(graphOf(e),
              ElementsAre("boolean", "boolean", "double_constant [0.5]",
                          "double_scalar_sum (0 1) [1 3]", "double_scalar_sum (2 3) [1 1]"));
}

TEST_F(NodeCreation, AQuotientByAConstantDoubleIsACoefficient) {
  auto x = m.booleans(2);
  OXExpression* e = m.make(OXOperator::Sum, m.make(OXOperator::Div, x[0], 4.0), x[1]);
  EXPECT_THAT(graphOf(e), ElementsAre("boolean", "boolean", "double_scalar_sum (0 1) [1 0.25]"));
}

TEST_F(NodeCreation, TheBytesOfAQuotientByAnIntegerAreReadAsAnInteger) {
  auto x = m.booleans(2);
  OXExpression* half = m.make(OXOperator::Div, sqrtOf(x[0]), 2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, half, x[1])),
              ElementsAre("boolean", "boolean", "double_sqrt (1)",
                          "double_scalar_sum (2 0) [4.6026788191726469e+18 1]"));
}

TEST_F(NodeCreation, AnIntegerQuotientStaysANode) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Sum, m.make(OXOperator::Div, x[0], 2), x[1])),
              ElementsAre("boolean", "constant [2]", "boolean", "divide (2 1)", "sum (3 0)"));
}

TEST_F(NodeCreation, ADoubleQuotientOfIntegersIsNeverAnIntegerOne) {
  m.set("preprocessingEnabled", 1);
  auto x = m.booleans(2);
  // The passes find that the dividend is x[0] itself, an integer.
  OXExpression* dividend = m.make(OXOperator::Sum, x[0], 0.0);
  EXPECT_THAT(
      graphOf(m.make(OXOperator::Div, dividend, m.make(OXOperator::Sum, x[1], 1))),
      ElementsAre("boolean", "constant [1]", "sum (0 1)", "boolean", "double_divide (3 2)"));
}

TEST_F(NodeCreation, AQuotientThatStaysADoubleKeepsItsDoubleForm) {
  auto x = m.booleans(2);
  // Its type was settled at the first closing, when the divisor was a double.
  OXExpression* divisor = m.make(OXOperator::Sum, 0.5);
  OXExpression* e = m.make(OXOperator::Div, x[0], divisor);
  m.minimize(e);
  m.close();
  m.model().open();
  ModelRecord::setValueType(*divisor, kNoType);
  divisor->setOperand(0, x[1]);
  EXPECT_THAT(graphText(m.close()),
              ElementsAre("boolean", "sum (0)", "boolean", "double_divide (2 1)"));
}

// Extreme values.

TEST_F(NodeCreation, ExtremeValuesArePlainWithoutCoefficients) {
  auto x = m.booleans(2);
  m.minimize(m.make(OXOperator::Max, x[0], x[1], 3, 5));
  m.minimize(m.make(OXOperator::Min, x[0], x[1], 3, 5));
  EXPECT_THAT(graphText(m.close()), ElementsAre("boolean", "boolean", "constant [3]", "min (1 0 2)",
                                                "constant [5]", "max (1 0 4)"));
}

TEST_F(NodeCreation, ExtremeValuesTakeCoefficients) {
  auto x = m.booleans(2);
  OXExpression* twice = m.make(OXOperator::Prod, 2, x[1]);
  m.minimize(m.make(OXOperator::Max, x[0], twice, 3));
  m.minimize(m.make(OXOperator::Min, x[0], twice, 3));
  EXPECT_THAT(graphText(m.close()),
              ElementsAre("boolean", "boolean", "constant [3]", "scalar_min (1 0 2) [1 2 1]",
                          "scalar_max (1 0 2) [1 2 1]"));
}

TEST_F(NodeCreation, ExtremeValuesHaveDoubleForms) {
  auto x = m.booleans(2);
  OXExpression* half = m.make(OXOperator::Prod, 0.5, x[1]);
  m.minimize(m.make(OXOperator::Max, x[0], 1.5));
  m.minimize(m.make(OXOperator::Min, x[0], 1.5));
  m.minimize(m.make(OXOperator::Max, x[0], half));
  m.minimize(m.make(OXOperator::Min, x[0], half));
  EXPECT_THAT(graphText(m.close()),
              ElementsAre("boolean", "boolean", "double_scalar_min (1 0) [1 0.5]",
                          "double_scalar_max (1 0) [1 0.5]", "double_constant [1.5]",
                          "double_min (1 4)", "double_constant [1.5]", "double_max (1 6)"));
}

TEST_F(NodeCreation, ANestedExtremeValueIsOpenedUnderANonNegativeCoefficient) {
  auto x = m.booleans(3);
  OXExpression* inner = m.make(OXOperator::Max, x[0], x[1]);
  EXPECT_THAT(graphOf(m.make(OXOperator::Max, m.make(OXOperator::Prod, 2, inner), x[2])),
              ElementsAre("boolean", "boolean", "boolean", "scalar_max (2 1 0) [2 2 1]"));
}

TEST_F(NodeCreation, ANestedExtremeValueStaysANodeUnderANegativeCoefficient) {
  auto x = m.booleans(3);
  OXExpression* inner = m.make(OXOperator::Max, x[0], x[1]);
  EXPECT_THAT(graphOf(m.make(OXOperator::Max, m.make(OXOperator::Prod, -2, inner), x[2])),
              ElementsAre("boolean", "boolean", "boolean", "max (2 1)", "scalar_max (3 0) [-2 1]"));
}

// Products.

TEST_F(NodeCreation, AProductWithoutConstantsIsPlain) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Prod, x[0], x[1])),
              ElementsAre("boolean", "boolean", "product (1 0)"));
}

TEST_F(NodeCreation, TheConstantsOfAProductAreItsOneCoefficient) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Prod, 2, x[0], x[1], -3)),
              ElementsAre("boolean", "boolean", "scalar_product (1 0) [-6]"));
}

TEST_F(NodeCreation, AProductFoldedToZeroLeavesItsOperandsWithoutUsers) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Prod, x[0], 0, x[1])),
              ElementsAre("boolean", "boolean", "constant [0]"));
}

TEST_F(NodeCreation, AProductOfConstantsIsAConstant) {
  EXPECT_THAT(graphOf(m.make(OXOperator::Prod, 2, 3)), ElementsAre("constant [6]"));
}

TEST_F(NodeCreation, ANestedProductIsOpened) {
  auto x = m.booleans(3);
  OXExpression* inner = m.make(OXOperator::Prod, -2, x[1], x[2]);
  EXPECT_THAT(graphOf(m.make(OXOperator::Prod, x[0], inner)),
              ElementsAre("boolean", "boolean", "boolean", "scalar_product (2 1 0) [-2]"));
}

TEST_F(NodeCreation, ProductsHaveDoubleForms) {
  auto x = m.booleans(1);
  m.minimize(m.make(OXOperator::Prod, x[0], sqrtOf(x[0])));
  m.minimize(m.make(OXOperator::Prod, x[0], 2.5, 2));
  m.minimize(m.make(OXOperator::Prod, x[0], 0.0));
  EXPECT_THAT(graphText(m.close()),
              ElementsAre("boolean", "double_constant [0]", "double_scalar_product (0) [5]",
                          "double_sqrt (0)", "double_product (0 3)"));
}

// Logic.

TEST_F(NodeCreation, NestedLogicIsOpenedAndConstantsFolded) {
  auto x = m.booleans(3);
  for (const OXOperator op : {OXOperator::And, OXOperator::Or, OXOperator::Xor}) {
    m.minimize(m.make(op, x[0], m.make(op, x[1], 1), 1, x[2]));
  }
  EXPECT_THAT(graphText(m.close()),
              ElementsAre("boolean", "boolean", "boolean", "constant [0]", "xor (2 1 0 3)",
                          "constant [1]", "or (2 1 0 5)", "and (2 1 0 5)"));
}

TEST_F(NodeCreation, AnotherLogicalOperatorIsNotOpened) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::And, x[0], m.make(OXOperator::Or, x[1], x[0]))),
              ElementsAre("boolean", "boolean", "or (1 0)", "and (0 2)"));
}

// Arrays.

TEST_F(NodeCreation, AnArrayWithAFreeElementIsAnArrayNode) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::At, m.array(x[0], 7), x[1])),
              ElementsAre("boolean", "constant [7]", "boolean", "array (2 1)", "at (3 0)"));
}

TEST_F(NodeCreation, AnArrayOfConstantsHoldsThem) {
  EXPECT_THAT(graphOf(m.make(OXOperator::At, m.array(3, 4), m.boolean())),
              ElementsAre("boolean", "const_array [3 4]", "at (1 0)"));
}

TEST_F(NodeCreation, AConstantArrayWithADoubleHoldsDoubles) {
  m.minimize(m.make(OXOperator::At, m.array(3, 0.5), m.boolean()));
  const DagFixedFields& fields = m.close();
  ASSERT_EQ(fields.nbNodes, 3u);
  EXPECT_EQ(fields.types[1], NodeType::ConstArray);
  ASSERT_EQ(fields.nbScalars(1), 2u);
  EXPECT_EQ(fields.scalarsOf(1)[0].doubleValue, 3.0);
  EXPECT_EQ(fields.scalarsOf(1)[1].doubleValue, 0.5);
  EXPECT_EQ(test::nodeText(fields, 2), "double_at (1 0)");
}

TEST_F(NodeCreation, AnArrayWithADoubleMakesADoubleAt) {
  auto x = m.booleans(2);
  EXPECT_THAT(
      graphOf(m.make(OXOperator::At, m.array(x[0], 0.5), x[1])),
      ElementsAre("boolean", "double_constant [0.5]", "boolean", "array (2 1)", "double_at (3 0)"));
}

TEST_F(NodeCreation, AnAtGoesByItsArrayWhenItsOwnTypeStaysADouble) {
  OXExpression* array = m.array(7, 8, 0.5);
  OXExpression* e = m.make(OXOperator::At, array, m.boolean());
  m.minimize(e);
  m.close();
  m.model().open();
  array->setOperand(2, 9);
  EXPECT_THAT(graphText(m.close()), ElementsAre("boolean", "const_array [7 8 9]", "at (1 0)"));
  EXPECT_TRUE(e->isDouble());
}

TEST_F(NodeCreation, AnArrayIsMadeOnceForAllItsUsers) {
  auto x = m.booleans(2);
  OXExpression* array = m.array(0.5, x[0]);
  m.minimize(m.make(OXOperator::At, array, x[0]));
  m.minimize(m.make(OXOperator::At, array, x[1]));
  EXPECT_THAT(graphText(m.close()),
              ElementsAre("boolean", "boolean", "double_constant [0.5]", "array (2 1)",
                          "double_at (3 0)", "double_at (3 1)"));
}

TEST_F(NodeCreation, AnEmptyArrayHoldsNothing) {
  EXPECT_THAT(graphOf(m.make(OXOperator::At, m.array(), m.boolean())),
              ElementsAre("boolean", "const_array", "at (1 0)"));
}

// Scalar products of arrays.

TEST_F(NodeCreation, TwoConstantArraysMakeOneConstant) {
  m.minimize(m.make(OXOperator::Scalar, m.array(2, 3), m.array(4, 5)));
  m.minimize(m.make(OXOperator::Scalar, m.array(2, 0.5), m.array(4, 5)));
  EXPECT_THAT(graphText(m.close()), ElementsAre("double_constant [10.5]", "constant [23]"));
}

TEST_F(NodeCreation, TwoEmptyArraysMakeTheConstantZero) {
  EXPECT_THAT(graphOf(m.make(OXOperator::Scalar, m.array(), m.array())),
              ElementsAre("constant [0]"));
}

TEST_F(NodeCreation, AConstantArrayMakesAWeightedSum) {
  auto x = m.booleans(2);
  m.minimize(m.make(OXOperator::Scalar, m.array(2, 3), m.array(x[0], x[1])));
  m.minimize(m.make(OXOperator::Scalar, m.array(x[0], x[1]), m.array(2, 3)));
  EXPECT_THAT(graphText(m.close()), ElementsAre("boolean", "boolean", "scalar_sum (0 1) [3 2]",
                                                "scalar_sum (0 1) [3 2]"));
}

TEST_F(NodeCreation, AWeightedSumKeepsItsFixedElements) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Scalar, m.array(1, 1, 4), m.array(x[0], x[1], 6))),
              ElementsAre("constant [6]", "boolean", "boolean", "scalar_sum (1 2) [1 1]",
                          "scalar_sum (0 3) [4 1]"));
}

TEST_F(NodeCreation, AWeightedSumHasADoubleForm) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Scalar, m.array(2, 0.5), m.array(x[0], x[1]))),
              ElementsAre("boolean", "boolean", "double_scalar_sum (0 1) [0.5 2]"));
}

TEST_F(NodeCreation, IntegerWeightsOfDoublesAreConverted) {
  OXExpression* x = m.boolean();
  EXPECT_THAT(graphOf(m.make(OXOperator::Scalar, m.array(2), m.array(sqrtOf(x)))),
              ElementsAre("boolean", "double_sqrt (0)", "double_scalar_sum (1) [2]"));
}

TEST_F(NodeCreation, TwoFreeArraysMakeASumOfProducts) {
  auto x = m.booleans(4);
  EXPECT_THAT(graphOf(m.make(OXOperator::Scalar, m.array(x[0], x[1]), m.array(x[2], x[3]))),
              ElementsAre("boolean", "boolean", "boolean", "boolean", "product (3 2)",
                          "product (1 0)", "sum (4 5)"));
}

TEST_F(NodeCreation, ASumOfProductsHasADoubleForm) {
  auto x = m.booleans(2);
  EXPECT_THAT(graphOf(m.make(OXOperator::Scalar, m.array(x[0]), m.array(sqrtOf(x[1])))),
              ElementsAre("boolean", "double_sqrt (0)", "boolean", "double_product (2 1)",
                          "double_sum (3)"));
}

TEST_F(NodeCreation, ArraysOfDifferentSizesAreRefused) {
  m.minimize(m.make(OXOperator::Scalar, m.array(1, 2), m.array(m.boolean())));
  expectFailure(kInternal, "NodeCreator::createScalarArray",
                "Arrays for scalar operator must have the same number of elements",
                [&] { m.model().close(); });
}

// Constants.

TEST_F(NodeCreation, EqualIntegersShareANodeAndEqualDoublesDoNot) {
  auto x = m.booleans(2);
  m.minimize(m.make(OXOperator::Sum, x[0], 2, 2));
  m.minimize(m.make(OXOperator::Max, x[0], 4));
  m.minimize(m.make(OXOperator::Sum, x[0], 1.5, 0.5));
  m.minimize(m.make(OXOperator::Max, x[0], 2.0));
  const Nodes nodes = graphText(m.close());
  EXPECT_EQ(std::count(nodes.begin(), nodes.end(), "constant [4]"), 1);
  EXPECT_EQ(std::count(nodes.begin(), nodes.end(), "double_constant [2]"), 2);
}

// Constraints and objectives.

TEST_F(NodeCreation, ATrueConstraintIsDropped) {
  m.constrain(m.constant(1));
  m.minimize(m.boolean());
  const DagFixedFields& fields = m.close();
  EXPECT_THAT(graphText(fields), ElementsAre("boolean"));
  EXPECT_THAT(fields.constraints, IsEmpty());
}

TEST_F(NodeCreation, AFalseConstraintIsKeptAsAConstant) {
  m.constrain(m.constant(0));
  m.minimize(m.boolean());
  const DagFixedFields& fields = m.close();
  EXPECT_THAT(graphText(fields), ElementsAre("boolean", "constant [0]"));
  EXPECT_THAT(fields.constraints, ElementsAre(1));
}

TEST_F(NodeCreation, ConstraintsComeInTheOrderOfTheModel) {
  auto x = m.booleans(2);
  OXExpression* second = m.make(OXOperator::Not, x[1]);
  OXExpression* first = m.make(OXOperator::Or, second, x[0]);
  m.constrain(first);
  m.constrain(second);
  m.minimize(x[0]);
  const DagFixedFields& fields = m.close();
  EXPECT_THAT(fields.constraints, ElementsAre(m.nodeOf(first), m.nodeOf(second)));
}

TEST_F(NodeCreation, ConstraintsThatBecameOneNodeCountOnce) {
  OXExpression* x = m.boolean();
  m.set("preprocessingEnabled", 1);
  m.set("inferBoundsEnabled", 0);
  m.constrain(m.constant(0));
  m.constrain(m.make(OXOperator::And, x, 0));
  m.minimize(x);
  const DagFixedFields& fields = m.close();
  EXPECT_THAT(fields.constraints, ElementsAre(0));
  EXPECT_THAT(graphText(fields), ElementsAre("constant [0]", "boolean"));
}

TEST_F(NodeCreation, WhatOnlyATrueConstraintReachesHasNoNode) {
  m.set("preprocessingEnabled", 1);
  OXExpression* x = m.boolean();
  m.constrain(m.make(OXOperator::Geq, x, 0));
  m.minimize(m.boolean());
  EXPECT_THAT(graphText(m.close()), ElementsAre("boolean"));
  EXPECT_EQ(m.nodeOf(x), kNone);
}

TEST_F(NodeCreation, ObjectivesKeepTheirOrderAndDirections) {
  auto x = m.booleans(2);
  m.maximize(x[1]);
  m.minimize(x[0]);
  m.maximize(x[1]);
  const DagFixedFields& fields = m.close();
  EXPECT_THAT(fields.objectives, ElementsAre(m.nodeOf(x[1]), m.nodeOf(x[0]), m.nodeOf(x[1])));
  EXPECT_THAT(fields.directions, ElementsAre(1, 0, 1));
}

TEST_F(NodeCreation, AnObjectiveBelowAnotherExpressionHasItsNode) {
  auto x = m.booleans(2);
  OXExpression* inner = m.make(OXOperator::Sum, x[0], x[1]);
  m.minimize(m.make(OXOperator::Abs, inner));
  m.minimize(inner);
  EXPECT_THAT(graphText(m.close()), ElementsAre("boolean", "boolean", "sum (0 1)", "abs (2)"));
}

// The walk.

TEST_F(NodeCreation, DepthIsLimitedByMemoryOnly) {
  OXExpression* e = m.boolean();
  for (int i = 0; i < 300000; ++i) e = m.make(OXOperator::Not, e);
  EXPECT_EQ(graphOf(e).size(), 300001u);
}

TEST_F(NodeCreation, NestedOpeningIsLimitedByMemoryOnly) {
  OXExpression* e = m.boolean();
  for (int i = 0; i < 300000; ++i) e = m.make(OXOperator::Sum, e, 1);
  EXPECT_THAT(graphOf(e), ElementsAre("boolean", "constant [300000]", "sum (0 1)"));
}

TEST_F(NodeCreation, AnUnknownOperatorIsRefused) {
  OXExpression* unknown = ModelRecord::createRecord(m.model(), static_cast<OXOperator>(40));
  OXExpression* sum = m.model().createExpression(OXOperator::Sum);
  ModelRecord::appendOperand(*sum, unknown->getIndex());
  m.minimize(sum);
  for (OXExpression* e : {unknown, sum}) ModelRecord::setValueType(*e, kIntType);
  DagFixedFields fields;
  Preprocessor preprocessor(m.model(), fields);
  expectFailure(kInternal, "NodeCreator::preprocessStack", "Node type 40 not supported",
                [&] { NodeCreator(preprocessor).run(); });
}

}  // namespace
}  // namespace ombrix
