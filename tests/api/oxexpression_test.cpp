#include "api/oxexpression.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "api/ombrix.h"
#include "builder/modelrecord.h"
#include "tests/support/failures.h"
#include "tests/support/statemessages.h"

namespace ombrix {
namespace {

using test::expectFailure;
using test::kModeling;
using test::kPausedOrStopped;

class OXExpressionTest : public ::testing::Test {
protected:
  OXExpression* boolean() { return model.createExpression(OXOperator::Bool); }
  OXExpression* sum(OXExpression* operand) {
    return model.createExpression(OXOperator::Sum, operand);
  }
  void close() {
    if (model.getNbObjectives() == 0) {
      model.addObjective(model.createConstant(0), OXObjectiveDirection::Minimize);
    }
    model.close();
  }

  Ombrix solver;
  OXModel& model = *solver.getModel();
  Ombrix otherSolver;
  OXExpression* foreign = otherSolver.getModel()->createExpression(OXOperator::Bool);
};

TEST_F(OXExpressionTest, KnowsItsOwners) {
  OXExpression* x = boolean();
  EXPECT_EQ(x->getOmbrix(), &solver);
  EXPECT_EQ(x->getModel(), &model);
}

TEST_F(OXExpressionTest, TellsWhatItIs) {
  OXExpression* x = boolean();
  OXExpression* seven = model.createConstant(7);
  OXExpression* total = sum(x);
  EXPECT_EQ(x->getOperator(), OXOperator::Bool);
  EXPECT_EQ(seven->getOperator(), OXOperator::Const);
  EXPECT_EQ(total->getOperator(), OXOperator::Sum);
  EXPECT_TRUE(x->isDecision());
  EXPECT_FALSE(x->isConstant());
  EXPECT_TRUE(seven->isConstant());
  EXPECT_FALSE(seven->isDecision());
  EXPECT_FALSE(total->isDecision());
}

TEST_F(OXExpressionTest, KeepsItsOperandsThroughEveryGrowth) {
  OXExpression* total = model.createExpression(OXOperator::Sum);
  std::vector<OXExpression*> operands;
  for (int i = 0; i < 70; ++i) {
    operands.push_back(boolean());
    total->addOperand(operands.back());
    ASSERT_EQ(total->getNbOperands(), i + 1);
    for (int position = 0; position <= i; ++position) {
      ASSERT_EQ(total->getOperand(position), operands[static_cast<std::size_t>(position)]);
    }
  }
  EXPECT_EQ(model.getNbOperands(), 70);
}

TEST_F(OXExpressionTest, TheArrayOfOperandsGrowsByDoubling) {
  OXExpression* total = model.createExpression(OXOperator::Sum);
  OXExpression* x = boolean();
  const auto slot = [&](std::int32_t position) {
    return ModelRecord::operandIndices(*total)[position];
  };
  for (int i = 0; i < 3; ++i) total->addOperand(x);
  EXPECT_EQ(slot(3), -1);
  total->addOperand(x);
  EXPECT_EQ(slot(4), 0);
  EXPECT_EQ(slot(7), -1);
  for (int i = 4; i < 8; ++i) total->addOperand(x);
  EXPECT_EQ(slot(8), 0);
  EXPECT_EQ(slot(15), -1);
}

TEST_F(OXExpressionTest, TakesConstantsAsOperands) {
  OXExpression* total = model.createExpression(OXOperator::Sum);
  total->addOperand(7);
  total->addOperand(7LL);
  total->addOperand(0.5);
  EXPECT_EQ(total->getOperand(0), model.createConstant(7));
  EXPECT_EQ(total->getOperand(1), model.createConstant(7));
  EXPECT_EQ(total->getOperand(2), model.createConstant(0.5));
}

TEST_F(OXExpressionTest, AddOperandChecksItsArgument) {
  OXExpression* total = model.createExpression(OXOperator::Sum);
  expectFailure(0, "OXExpression::addOperand", "Argument expr cannot be null.",
                [&] { total->addOperand(static_cast<OXExpression*>(nullptr)); });
  foreign->getModel()->getExpression(0)->setName("f");
  expectFailure(
      0, "OXExpression::addOperand",
      "Argument Expression 0 (type = bool, name = f) does not belong to this instance of Ombrix.",
      [&] { total->addOperand(foreign); });
  expectFailure(2, "OXExpression::addOperand",
                "Cannot use NaN (Not a Number) as a double constant.",
                [&] { total->addOperand(std::nan("")); });
  expectFailure(2, "OXExpression::addOperand", "Cannot use infinity as a double constant.",
                [&] { total->addOperand(HUGE_VAL); });
  EXPECT_EQ(total->getNbOperands(), 0);
}

TEST_F(OXExpressionTest, AddOperandChecksNumberAndType) {
  OXExpression* x = boolean();
  OXExpression* opposite = model.createExpression(OXOperator::Not, x);
  expectFailure(2, "OXExpression::addOperand",
                "Number of operands (2) is too large: at most 1 operands are expected for "
                "expression with type 'not'.",
                [&] { opposite->addOperand(x); });
  OXExpression* both = model.createExpression(OXOperator::And, x);
  expectFailure(2, "OXExpression::addOperand",
                "Operand 1 of expression with type 'and' must be boolean",
                [&] { both->addOperand(sum(x)); });
  OXExpression* array = model.createExpression(OXOperator::Array);
  expectFailure(2, "OXExpression::addOperand",
                "Operand 0 of expression with type 'array' must be boolean, integer or double",
                [&] { array->addOperand(array); });
}

TEST_F(OXExpressionTest, AConstantIsTestedByItsOperatorOnly) {
  // While building, a "const" may be boolean: the final types decide.
  OXExpression* both = model.createExpression(OXOperator::And, boolean());
  both->addOperand(7);
  EXPECT_EQ(both->getNbOperands(), 2);
}

TEST_F(OXExpressionTest, SetOperandReplaces) {
  OXExpression* x = boolean();
  OXExpression* total = sum(x);
  total->setOperand(0, 5);
  EXPECT_EQ(total->getOperand(0), model.createConstant(5));
  total->addOperand(x);
  total->addOperand(x);
  total->setOperand(2, 0.5);
  EXPECT_EQ(total->getOperand(2), model.createConstant(0.5));
  total->setOperand(1, model.createConstant(8));
  EXPECT_EQ(total->getOperand(1), model.createConstant(8));
  EXPECT_EQ(total->getNbOperands(), 3);
  EXPECT_EQ(model.getNbOperands(), 3);
}

TEST_F(OXExpressionTest, AFixedNumberOfOperandsCannotBeReplaced) {
  OXExpression* x = boolean();
  OXExpression* geq = model.createExpression(OXOperator::Geq, x, x);
  expectFailure(2, "OXExpression::setOperand",
                "Number of operands (3) is too large: at most 2 operands are expected for "
                "expression with type 'geq'.",
                [&] { geq->setOperand(0, x); });
  OXExpression* array = model.createExpression(OXOperator::Array, x);
  OXExpression* at = model.createExpression(OXOperator::At, array, x);
  expectFailure(2, "OXExpression::setOperand",
                "Number of operands (3) is too large: at most 2 operands are expected for "
                "expression with type 'at'.",
                [&] { at->setOperand(0, array); });
  expectFailure(2, "OXExpression::setOperand",
                "Operand 1 of expression with type 'array' must be boolean, integer or double",
                [&] { array->setOperand(0, array); });
}

TEST_F(OXExpressionTest, SetOperandChecksItsArguments) {
  OXExpression* total = sum(boolean());
  expectFailure(0, "OXExpression::setOperand", "Argument expr cannot be null.",
                [&] { total->setOperand(9, static_cast<OXExpression*>(nullptr)); });
  expectFailure(0, "OXExpression::setOperand",
                "Operands with index 1 does not exist.\nOnly indices from 0 to 0 are currently "
                "allowed.",
                [&] { total->setOperand(1, foreign); });
  expectFailure(0, "OXExpression::setOperand",
                "Argument Expression 0 (type = bool) does not belong to this instance of Ombrix.",
                [&] { total->setOperand(0, foreign); });
  expectFailure(2, "OXExpression::setOperand",
                "Cannot use NaN (Not a Number) as a double constant.",
                [&] { total->setOperand(0, std::nan("")); });
}

TEST_F(OXExpressionTest, SetOperandTestsForNullBeforeTheOpenModel) {
  OXExpression* total = sum(boolean());
  close();
  expectFailure(0, "OXExpression::setOperand", "Argument expr cannot be null.",
                [&] { total->setOperand(0, static_cast<OXExpression*>(nullptr)); });
  expectFailure(0, "OXExpression::setOperand", kModeling, [&] { total->setOperand(7, total); });
}

TEST_F(OXExpressionTest, TellsThePositionsAllowed) {
  OXExpression* total = sum(boolean());
  expectFailure(0, "OXExpression::getOperand",
                "Operands with index -1 does not exist.\nOnly indices from 0 to 0 are currently "
                "allowed.",
                [&] { total->getOperand(-1); });
  expectFailure(0, "OXExpression::getOperand",
                "Operands with index 1 does not exist.\nOnly indices from 0 to 0 are currently "
                "allowed.",
                [&] { total->getOperand(1); });
}

TEST_F(OXExpressionTest, AConstantHasItsValueWhileModeling) {
  EXPECT_EQ(model.createConstant(7)->getIntValue(), 7);
  EXPECT_EQ(model.createConstant(7)->getValue(), 7);
  EXPECT_EQ(model.createConstant(0.5)->getDoubleValue(), 0.5);
  expectFailure(2, "OXExpression::getIntValue",
                "Cannot use this method. The given expression must be boolean or integer.",
                [&] { model.createConstant(0.5)->getIntValue(); });
  expectFailure(2, "OXExpression::getDoubleValue",
                "Cannot use this method. The given expression must be double.",
                [&] { model.createConstant(1)->getDoubleValue(); });
}

TEST_F(OXExpressionTest, ADecisionHasNoValueWhileModeling) {
  OXExpression* x = boolean();
  expectFailure(0, "OXExpression::getIntValue", kPausedOrStopped, [&] { x->getIntValue(); });
  expectFailure(0, "OXExpression::getDoubleValue", kPausedOrStopped, [&] { x->getDoubleValue(); });
}

TEST_F(OXExpressionTest, TypesAreRefusedWhileModelingEvenOfConstants) {
  OXExpression* half = model.createConstant(0.5);
  expectFailure(0, "OXExpression::isDouble", kPausedOrStopped, [&] { half->isDouble(); });
  expectFailure(0, "OXExpression::isArray", kPausedOrStopped, [&] { half->isArray(); });
}

TEST_F(OXExpressionTest, ValuesGoThroughTheSolution) {
  OXExpression* x = boolean();
  OXExpression* total = sum(x);
  OXExpression* half = model.createExpression(OXOperator::Prod, x, model.createConstant(0.5));
  close();
  x->setValue(1);
  EXPECT_EQ(total->getValue(), 1);
  EXPECT_EQ(half->getDoubleValue(), 0.5);
  x->setIntValue(0);
  EXPECT_EQ(total->getIntValue(), 0);
  expectFailure(0, "OXExpression::setValue", "Only decisions can be set.",
                [&] { total->setValue(1); });
  expectFailure(0, "OXExpression::setDoubleValue", "Only decisions can be set.",
                [&] { half->setDoubleValue(1.0); });
  expectFailure(2, "OXExpression::setValue",
                "Cannot use this method. The given expression must be double.",
                [&] { x->setValue(1.0); });
  expectFailure(2, "OXExpression::getIntValue",
                "Cannot use this method. The given expression must be boolean or integer.",
                [&] { half->getIntValue(); });
  expectFailure(2, "OXExpression::getDoubleValue",
                "Cannot use this method. The given expression must be double.",
                [&] { total->getDoubleValue(); });
}

TEST_F(OXExpressionTest, ANameCanBeChanged) {
  OXExpression* x = boolean();
  EXPECT_FALSE(x->isNamed());
  EXPECT_EQ(x->getName(), "");
  x->setName("first");
  EXPECT_TRUE(x->isNamed());
  x->setName("second");
  EXPECT_EQ(x->getName(), "second");
  boolean()->setName("first");
  EXPECT_NE(model.getExpression("first"), x);
}

TEST_F(OXExpressionTest, ANameIsNotEmptyAndNotTaken) {
  OXExpression* x = boolean();
  x->setName("x");
  expectFailure(0, "OXExpression::setName", "Argument name cannot be an empty string.",
                [&] { x->setName(""); });
  expectFailure(0, "OXExpression::setName", "An operator with name \"x\" already exists.",
                [&] { boolean()->setName("x"); });
  expectFailure(0, "OXExpression::setName", "An operator with name \"x\" already exists.",
                [&] { x->setName("x"); });
  EXPECT_EQ(x->getName(), "x");
}

TEST_F(OXExpressionTest, PrintsItselfInOneLine) {
  boolean();
  OXExpression* total = model.createExpression(OXOperator::Sum);
  EXPECT_EQ(total->toString(), "Expression 1 (type = sum)");
  total->setName("total");
  EXPECT_EQ(total->toString(), "Expression 1 (type = sum, name = total)");
}

TEST_F(OXExpressionTest, InfoShowsADoubleInTheDefaultFormatOfAStream) {
  const auto ending = [&](double value) {
    const std::string info = model.createConstant(value)->getInfo();
    return info.substr(info.find("  value"));
  };
  EXPECT_EQ(ending(1234567.5), "  value = 1.23457e+06\n");
  EXPECT_EQ(ending(-1e-7), "  value = -1e-07\n");
  EXPECT_EQ(ending(3.0), "  value = 3\n");
}

TEST_F(OXExpressionTest, InfoHasAValueOnlyWhereItIsKnown) {
  OXExpression* x = boolean();
  model.addConstraint(x);
  model.addObjective(x, OXObjectiveDirection::Minimize);
  OXExpression* half = model.createConstant(0.5);
  OXExpression* array = model.createExpression(OXOperator::Array);
  EXPECT_EQ(x->getInfo(),
            "Expression 0 (type = bool)\n  decision = 1, constraint = 1, objective = 1\n");
  EXPECT_EQ(half->getInfo(),
            "Expression 1 (type = const)\n  decision = 0, constraint = 0, objective = 0\n"
            "  value = 0.5\n");
  EXPECT_EQ(model.createConstant(-3)->getInfo(),
            "Expression 3 (type = const)\n  decision = 0, constraint = 0, objective = 0\n"
            "  value = -3\n");
  close();
  EXPECT_EQ(x->getInfo(),
            "Expression 0 (type = bool)\n  decision = 1, constraint = 1, objective = 1\n");
  EXPECT_EQ(array->getInfo(),
            "Expression 2 (type = array)\n  decision = 0, constraint = 0, objective = 0\n");
}

}  // namespace
}  // namespace ombrix
