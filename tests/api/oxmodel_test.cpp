#include "api/oxmodel.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <limits>

#include "api/ombrix.h"
#include "tests/support/failures.h"

namespace ombrix {
namespace {

using test::expectFailure;

class OXModelTest : public ::testing::Test {
protected:
  void close() {
    model.addObjective(model.createConstant(0), OXObjectiveDirection::Minimize);
    model.close();
  }

  Ombrix solver;
  OXModel& model = *solver.getModel();
  Ombrix otherSolver;
  OXExpression* foreign = otherSolver.getModel()->createExpression(OXOperator::Bool);
};

TEST_F(OXModelTest, KnowsItsSolver) {
  EXPECT_EQ(model.getOmbrix(), &solver);
}

TEST_F(OXModelTest, AnIntegerHasOneConstant) {
  OXExpression* seven = model.createConstant(7);
  EXPECT_EQ(model.createConstant(7L), seven);
  EXPECT_EQ(model.createConstant(7LL), seven);
  EXPECT_EQ(model.createConstant(std::int64_t{7}), seven);
  EXPECT_EQ(model.getNbExpressions(), 1);
  EXPECT_NE(model.createConstant(8), seven);
  EXPECT_EQ(model.getNbExpressions(), 2);
}

TEST_F(OXModelTest, EveryIntegerOf64BitsIsTakenByWhateverNameItsTypeHas) {
  const std::int64_t value = 1;
  OXExpression* decision = model.createExpression(OXOperator::Bool);
  OXExpression* sum = model.createExpression(OXOperator::Sum, decision);
  sum->addOperand(value);
  sum->setOperand(1, value + 1);
  EXPECT_EQ(sum->getOperand(1), model.createConstant(2));
  model.addObjective(sum, OXObjectiveDirection::Minimize);
  model.close();
  decision->setValue(value);
  EXPECT_EQ(sum->getIntValue(), 3);
  solver.getSolution()->setValue(decision, value - 1);
  EXPECT_EQ(sum->getIntValue(), 2);
  solver.getParam()->setObjectiveBound(0, value);
  EXPECT_EQ(solver.getParam()->getObjectiveBound(0), 1);
}

TEST_F(OXModelTest, ADoubleHasOneConstantApartFromTheEqualInteger) {
  OXExpression* one = model.createConstant(1.0);
  EXPECT_EQ(model.createConstant(1.0), one);
  EXPECT_NE(model.createConstant(1), one);
  EXPECT_EQ(model.getNbExpressions(), 2);
}

TEST_F(OXModelTest, TheTwoZerosShareOneConstant) {
  EXPECT_EQ(model.createConstant(0.0), model.createConstant(-0.0));
}

TEST_F(OXModelTest, ConstantsAreTypedByTheirValue) {
  OXExpression* zero = model.createConstant(0);
  OXExpression* one = model.createConstant(1);
  OXExpression* two = model.createConstant(2);
  OXExpression* minusOne = model.createConstant(-1);
  OXExpression* realOne = model.createConstant(1.0);
  close();
  EXPECT_TRUE(zero->isBool());
  EXPECT_TRUE(one->isBool());
  EXPECT_TRUE(two->isInt());
  EXPECT_FALSE(two->isBool());
  EXPECT_FALSE(minusOne->isBool());
  EXPECT_TRUE(realOne->isDouble());
  EXPECT_FALSE(realOne->isInt());
}

TEST_F(OXModelTest, ConstantsAreNumbersAndFinite) {
  expectFailure(2, "OXModel::createConstant", "Cannot use NaN (Not a Number) as a double constant.",
                [&] { model.createConstant(std::nan("")); });
  for (const double sign : {1.0, -1.0}) {
    expectFailure(2, "OXModel::createConstant", "Cannot use infinity as a double constant.",
                  [&] { model.createConstant(sign * std::numeric_limits<double>::infinity()); });
  }
  EXPECT_EQ(model.getNbExpressions(), 0);
}

TEST_F(OXModelTest, ExpressionsAreNumberedInOrderOfCreation) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  OXExpression* sum = model.createExpression(OXOperator::Sum, x);
  EXPECT_EQ(x->getIndex(), 0);
  EXPECT_EQ(sum->getIndex(), 1);
  EXPECT_EQ(model.getExpression(0), x);
  EXPECT_EQ(model.getExpression(1), sum);
}

TEST_F(OXModelTest, DecisionsAreTheBooleansInOrder) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  model.createExpression(OXOperator::Not, x);
  OXExpression* y = model.createExpression(OXOperator::Bool);
  ASSERT_EQ(model.getNbDecisions(), 2);
  EXPECT_EQ(model.getDecision(0), x);
  EXPECT_EQ(model.getDecision(1), y);
}

TEST_F(OXModelTest, CreatesExpressionsWithUpToThreeOperands) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  OXExpression* two = model.createConstant(2);
  OXExpression* iif = model.createExpression(OXOperator::Iif, x, two, x);
  EXPECT_EQ(iif->getNbOperands(), 3);
  EXPECT_EQ(iif->getOperand(0), x);
  EXPECT_EQ(iif->getOperand(1), two);
  EXPECT_EQ(iif->getOperand(2), x);
  OXExpression* eq = model.createExpression(OXOperator::Eq, iif, two);
  EXPECT_EQ(eq->getOperand(0), iif);
  EXPECT_EQ(eq->getOperand(1), two);
  EXPECT_EQ(model.getNbOperands(), 5);
}

TEST_F(OXModelTest, ConstantsHaveTheirOwnMethod) {
  const char* text = "Cannot create constants with this method. Use 'createConstant' instead.";
  expectFailure(0, "OXModel::createExpression", text,
                [&] { model.createExpression(OXOperator::Const); });
  expectFailure(0, "OXModel::createExpression", text,
                [&] { model.createExpression(OXOperator::Const, nullptr); });
}

TEST_F(OXModelTest, RefusesANumberThatIsNoOperator) {
  expectFailure(6, "OXModel::createExpression", "Unknown operator : 34",
                [&] { model.createExpression(static_cast<OXOperator>(34)); });
  expectFailure(6, "OXModel::createExpression", "Unknown operator : -1",
                [&] { model.createExpression(static_cast<OXOperator>(-1)); });
  EXPECT_EQ(model.getNbExpressions(), 0);
}

TEST_F(OXModelTest, ChecksEachOperandInTurnBeforeItCreates) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  const int nbBefore = model.getNbExpressions();
  expectFailure(0, "OXModel::createExpression", "Argument expr0 cannot be null.",
                [&] { model.createExpression(OXOperator::Sum, nullptr, foreign); });
  expectFailure(0, "OXModel::createExpression", "Argument expr1 cannot be null.",
                [&] { model.createExpression(OXOperator::Sum, x, nullptr); });
  expectFailure(0, "OXModel::createExpression", "Argument expr2 cannot be null.",
                [&] { model.createExpression(OXOperator::Sum, x, x, nullptr); });
  expectFailure(0, "OXModel::createExpression",
                "Argument expr0 does not belong to this instance of Ombrix.",
                [&] { model.createExpression(OXOperator::Sum, foreign); });
  expectFailure(0, "OXModel::createExpression",
                "Argument expr2 does not belong to this instance of Ombrix.",
                [&] { model.createExpression(OXOperator::Sum, x, x, foreign); });
  EXPECT_EQ(model.getNbExpressions(), nbBefore);
  EXPECT_EQ(model.getNbOperands(), 0);
}

TEST_F(OXModelTest, RefusesTheFirstOperandTooMany) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  expectFailure(2, "OXModel::createExpression",
                "Number of operands (2) is too large: at most 1 operands are expected for "
                "expression with type 'not'.",
                [&] { model.createExpression(OXOperator::Not, x, x); });
  expectFailure(2, "OXModel::createExpression",
                "Number of operands (1) is too large: at most 0 operands are expected for "
                "expression with type 'bool'.",
                [&] { model.createExpression(OXOperator::Bool, x, x, x); });
  EXPECT_EQ(model.getNbExpressions(), 1);
  EXPECT_EQ(model.getNbOperands(), 0);
}

TEST_F(OXModelTest, TestsOperandsByWhatTheirOperatorMayProduce) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  OXExpression* array = model.createExpression(OXOperator::Array, x);
  OXExpression* sum = model.createExpression(OXOperator::Sum, x);
  expectFailure(2, "OXModel::createExpression",
                "Operand 1 of expression with type 'and' must be boolean",
                [&] { model.createExpression(OXOperator::And, x, sum); });
  expectFailure(2, "OXModel::createExpression",
                "Operand 0 of expression with type 'sum' must be boolean, integer or double",
                [&] { model.createExpression(OXOperator::Sum, array); });
  expectFailure(2, "OXModel::createExpression",
                "Operand 0 of expression with type 'at' must be array",
                [&] { model.createExpression(OXOperator::At, x, x); });
  expectFailure(2, "OXModel::createExpression",
                "Operand 1 of expression with type 'at' must be boolean or integer",
                [&] { model.createExpression(OXOperator::At, array, array); });
  EXPECT_EQ(model.getNbExpressions(), 3);
}

TEST_F(OXModelTest, AcceptsFewerOperandsThanNeededAtFirst) {
  EXPECT_EQ(model.createExpression(OXOperator::Iif)->getNbOperands(), 0);
}

TEST_F(OXModelTest, AConstraintPostedTwiceCountsOnce) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  OXExpression* y = model.createExpression(OXOperator::Bool);
  model.addConstraint(y);
  model.addConstraint(x);
  model.addConstraint(y);
  ASSERT_EQ(model.getNbConstraints(), 2);
  EXPECT_EQ(model.getConstraint(0), y);
  EXPECT_EQ(model.getConstraint(1), x);
  EXPECT_TRUE(x->isConstraint());
}

TEST_F(OXModelTest, ConstraintsMustBeAbleToBeBoolean) {
  const char* text =
      "Only boolean expressions can be constrained (0, 1, bool, and, or, xor, not, eq, neq, geq, "
      "leq, gt, lt, if).";
  OXExpression* x = model.createExpression(OXOperator::Bool);
  OXExpression* sum = model.createExpression(OXOperator::Sum, x);
  for (OXExpression* expr : {sum, model.createConstant(2), model.createConstant(1.0)}) {
    expectFailure(2, "OXModel::addConstraint", text, [&] { model.addConstraint(expr); });
    EXPECT_FALSE(expr->isConstraint());
  }
  model.addConstraint(model.createConstant(1));
  model.addConstraint(model.createExpression(OXOperator::Iif));
  EXPECT_EQ(model.getNbConstraints(), 2);
}

TEST_F(OXModelTest, AddConstraintChecksItsArgument) {
  expectFailure(0, "OXModel::addConstraint", "Argument expr cannot be null.",
                [&] { model.addConstraint(nullptr); });
  expectFailure(0, "OXModel::addConstraint",
                "Argument expr does not belong to this instance of Ombrix.",
                [&] { model.addConstraint(foreign); });
}

TEST_F(OXModelTest, AnObjectiveAddedTwiceCountsTwice) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  EXPECT_FALSE(x->isObjective());
  model.addObjective(x, OXObjectiveDirection::Minimize);
  model.addObjective(x, OXObjectiveDirection::Maximize);
  ASSERT_EQ(model.getNbObjectives(), 2);
  EXPECT_EQ(model.getObjective(0), x);
  EXPECT_EQ(model.getObjective(1), x);
  EXPECT_EQ(model.getObjectiveDirection(0), OXObjectiveDirection::Minimize);
  EXPECT_EQ(model.getObjectiveDirection(1), OXObjectiveDirection::Maximize);
  EXPECT_TRUE(x->isObjective());
}

TEST_F(OXModelTest, AddObjectiveChecksItsArguments) {
  expectFailure(0, "OXModel::addObjective", "Argument expr cannot be null.",
                [&] { model.addObjective(nullptr, OXObjectiveDirection::Minimize); });
  expectFailure(0, "OXModel::addObjective",
                "Argument expr does not belong to this instance of Ombrix.",
                [&] { model.addObjective(foreign, OXObjectiveDirection::Minimize); });
  OXExpression* array = model.createExpression(OXOperator::Array);
  expectFailure(2, "OXModel::addObjective",
                "Only expressions with a value can be added in the objectives list.",
                [&] { model.addObjective(array, OXObjectiveDirection::Minimize); });
  OXExpression* x = model.createExpression(OXOperator::Bool);
  for (const int number : {-1, 2}) {
    expectFailure(0, "OXModel::addObjective",
                  "Argument direction must be an integer between 0 and 1.",
                  [&] { model.addObjective(x, static_cast<OXObjectiveDirection>(number)); });
  }
  EXPECT_EQ(model.getNbObjectives(), 0);
}

TEST_F(OXModelTest, TellsTheIndicesAllowed) {
  expectFailure(0, "OXModel::getExpression",
                "Expression with index 0 does not exist.\nOnly indices from 0 to -1 are currently "
                "allowed.",
                [&] { model.getExpression(0); });
  OXExpression* x = model.createExpression(OXOperator::Bool);
  expectFailure(0, "OXModel::getExpression",
                "Expression with index 1 does not exist.\nOnly indices from 0 to 0 are currently "
                "allowed.",
                [&] { model.getExpression(1); });
  expectFailure(0, "OXModel::getDecision",
                "Decision with index -1 does not exist.\nOnly indices from 0 to 0 are currently "
                "allowed.",
                [&] { model.getDecision(-1); });
  expectFailure(0, "OXModel::getConstraint",
                "Constraint with index 0 does not exist.\nOnly indices from 0 to -1 are currently "
                "allowed.",
                [&] { model.getConstraint(0); });
  model.addObjective(x, OXObjectiveDirection::Minimize);
  expectFailure(0, "OXModel::getObjective",
                "Objective with index -7 does not exist.\nOnly indices from 0 to 0 are currently "
                "allowed.",
                [&] { model.getObjective(-7); });
  expectFailure(0, "OXModel::getObjectiveDirection",
                "Objective with index 1 does not exist.\nOnly indices from 0 to 0 are currently "
                "allowed.",
                [&] { model.getObjectiveDirection(1); });
}

TEST_F(OXModelTest, FindsExpressionsByName) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  x->setName("x");
  EXPECT_EQ(model.getExpression("x"), x);
  expectFailure(0, "OXModel::getExpression", "Argument name cannot be an empty string.",
                [&] { model.getExpression(""); });
  expectFailure(0, "OXModel::getExpression", "No operator found with name 'y'.",
                [&] { model.getExpression("y"); });
}

TEST_F(OXModelTest, PrintsItsCountsInThreeLines) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  OXExpression* sum = model.createExpression(OXOperator::Sum, x, x);
  model.addConstraint(x);
  model.addObjective(sum, OXObjectiveDirection::Minimize);
  EXPECT_EQ(model.toString(),
            "Model: \n"
            "  expressions = 2, operands = 2\n"
            "  decisions = 1, constraints = 1, objectives = 1\n");
}

TEST_F(OXModelTest, OpensAndClosesAnyNumberOfTimes) {
  EXPECT_FALSE(model.isClosed());
  close();
  EXPECT_TRUE(model.isClosed());
  EXPECT_EQ(solver.getState(), OXState::Stopped);
  model.open();
  EXPECT_FALSE(model.isClosed());
  EXPECT_EQ(solver.getState(), OXState::Modeling);
  model.close();
  EXPECT_TRUE(model.isClosed());
}

TEST_F(OXModelTest, CloseDoesNotFailForAnErrorNumberLeftBehind) {
  for (const int isPreprocessed : {1, 0}) {
    Ombrix other;
    OXModel& rooted = *other.getModel();
    other.getParam()->setAdvancedParam("preprocessingEnabled", isPreprocessed);
    OXExpression* x = rooted.createExpression(OXOperator::Bool);
    OXExpression* root = rooted.createExpression(OXOperator::Sqrt, rooted.createConstant(4));
    rooted.addObjective(rooted.createExpression(OXOperator::Sum, x, root),
                        OXObjectiveDirection::Minimize);
    errno = EDOM;
    EXPECT_NO_THROW(rooted.close()) << isPreprocessed;
    EXPECT_EQ(other.getState(), OXState::Stopped);
    EXPECT_EQ(root->getDoubleValue(), 2.0);
  }
}

TEST_F(OXModelTest, ANameSurvivesOpeningAndClosing) {
  OXExpression* x = model.createExpression(OXOperator::Bool);
  x->setName("x");
  close();
  EXPECT_EQ(x->getName(), "x");
  model.open();
  EXPECT_EQ(model.getExpression("x"), x);
}

}  // namespace
}  // namespace ombrix
