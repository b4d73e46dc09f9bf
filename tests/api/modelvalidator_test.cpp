#include "api/modelvalidator.h"

#include <gtest/gtest.h>

#include "api/ombrix.h"
#include "tests/support/failures.h"

namespace ombrix {
namespace {

using test::expectFailure;

class ModelValidatorTest : public ::testing::Test {
protected:
  OXExpression* boolean() { return model.createExpression(OXOperator::Bool); }
  void minimize(OXExpression* expr) { model.addObjective(expr, OXObjectiveDirection::Minimize); }
  void expectRefusal(const std::string& text, int code = 2) {
    expectFailure(code, "OXModel::close", text, [&] { model.close(); });
    EXPECT_EQ(solver.getState(), OXState::Modeling);
    EXPECT_FALSE(model.isClosed());
  }

  Ombrix solver;
  OXModel& model = *solver.getModel();
};

TEST_F(ModelValidatorTest, AsksForAnObjective) {
  boolean();
  expectRefusal("At least one objective is required in the model.");
}

TEST_F(ModelValidatorTest, TheWholeTextNamesTheOperation) {
  try {
    model.close();
    FAIL();
  } catch (const OXException& failure) {
    EXPECT_STREQ(failure.what(),
                 "ERROR [function ombrix::OXModel::close]: At least one objective is required in "
                 "the model.");
  }
}

TEST_F(ModelValidatorTest, AsksForTheOperandsThatAreMissing) {
  OXExpression* sum = model.createExpression(OXOperator::Sum);
  minimize(sum);
  expectRefusal(
      "Number of operands (0) is too small: at least 1 operands are expected for Expression 0 "
      "(type = sum).");
  sum->setName("total");
  expectRefusal(
      "Number of operands (0) is too small: at least 1 operands are expected for Expression 0 "
      "(type = sum, name = total).");
  sum->addOperand(3);
  model.close();
  EXPECT_EQ(sum->getIntValue(), 3);
}

TEST_F(ModelValidatorTest, RefusesRecordsWithTooManyOperands) {
  OXExpression* x = boolean();
  OXExpression* opposite = model.createExpression(OXOperator::Not, x);
  ModelRecord::appendOperand(*opposite, 0);
  minimize(opposite);
  expectRefusal(
      "Number of operands (2) is too large: at most 1 operands are expected for Expression 1 "
      "(type = not).");
}

TEST_F(ModelValidatorTest, RefusesRecordsWhoseOperandsDoNotExist) {
  OXExpression* sum = model.createExpression(OXOperator::Sum);
  minimize(sum);
  ModelRecord::appendOperand(*sum, 1);
  expectRefusal("Argument Expression 0 (type = sum) cannot be null.", 0);
  boolean();
  model.close();
}

TEST_F(ModelValidatorTest, AnEmptyArrayIsLegal) {
  model.createExpression(OXOperator::Array);
  minimize(boolean());
  model.close();
  EXPECT_EQ(solver.getState(), OXState::Stopped);
}

TEST_F(ModelValidatorTest, AnExpressionMayNotBeItsOwnOperand) {
  OXExpression* sum = model.createExpression(OXOperator::Sum);
  sum->addOperand(sum);
  minimize(sum);
  expectRefusal(
      "A cycle of length 1 was detected in the model : \n"
      "  - Expression 0 (type = sum)\n");
}

TEST_F(ModelValidatorTest, ReportsTheWholeTrailToACycle) {
  // 0 uses 1 and 2; 2 and 3 use each other. The trail starts at 0, where the search starts, and
  // the finished 1 is no longer on it.
  OXExpression* first = model.createExpression(OXOperator::Sum);
  OXExpression* x = boolean();
  OXExpression* second = model.createExpression(OXOperator::Max);
  OXExpression* third = model.createExpression(OXOperator::Min);
  first->addOperand(x);
  first->addOperand(second);
  second->addOperand(third);
  third->addOperand(second);
  second->setName("loop");
  minimize(first);
  expectRefusal(
      "A cycle of length 3 was detected in the model : \n"
      "  - Expression 0 (type = sum)\n"
      "  - Expression 2 (type = max, name = loop)\n"
      "  - Expression 3 (type = min)\n");
}

TEST_F(ModelValidatorTest, ARepairedCycleCloses) {
  OXExpression* sum = model.createExpression(OXOperator::Sum);
  sum->addOperand(sum);
  minimize(sum);
  EXPECT_THROW(model.close(), OXException);
  sum->setOperand(0, boolean());
  model.close();
  EXPECT_EQ(solver.getState(), OXState::Stopped);
}

TEST_F(ModelValidatorTest, DepthIsLimitedByMemoryOnly) {
  constexpr int kDepth = 300000;
  // Each expression uses the next one, so that checking and typing go down to the last.
  OXExpression* first = model.createExpression(OXOperator::Sum);
  OXExpression* last = first;
  for (int i = 1; i < kDepth; ++i) {
    OXExpression* next = model.createExpression(OXOperator::Sum);
    last->addOperand(next);
    last = next;
  }
  last->addOperand(1.5);
  minimize(first);
  solver.getParam()->setAdvancedParam("preprocessingEnabled", 0);
  model.close();
  EXPECT_TRUE(first->isDouble());
  EXPECT_EQ(first->getDoubleValue(), 1.5);
}

TEST_F(ModelValidatorTest, FixesTheTypesFromTheOperandsUp) {
  OXExpression* sum = model.createExpression(OXOperator::Sum);
  OXExpression* max = model.createExpression(OXOperator::Max);
  OXExpression* x = boolean();
  OXExpression* array = model.createExpression(OXOperator::Array, x);
  OXExpression* at = model.createExpression(OXOperator::At, array, model.createConstant(0));
  OXExpression* otherAt = model.createExpression(OXOperator::At, array, x);
  array->addOperand(2.5);
  sum->addOperand(max);
  max->addOperand(x);
  minimize(sum);
  model.close();
  EXPECT_TRUE(sum->isInt());
  EXPECT_FALSE(sum->isBool());
  EXPECT_TRUE(max->isInt());
  EXPECT_TRUE(x->isBool());
  EXPECT_TRUE(array->isArray());
  EXPECT_TRUE(at->isDouble());
  EXPECT_TRUE(otherAt->isDouble());
}

TEST_F(ModelValidatorTest, ChecksOperandsAgainstTheFinalTypes) {
  OXExpression* x = boolean();
  OXExpression* choice = model.createExpression(OXOperator::Iif, x, x, model.createConstant(2));
  OXExpression* both = model.createExpression(OXOperator::And, x, choice);
  minimize(both);
  expectRefusal("Operand 1 of Expression 3 (type = and) must be boolean. Type provided: integer");
}

TEST_F(ModelValidatorTest, ARefusalTakesBackTheTypes) {
  OXExpression* x = boolean();
  OXExpression* half = model.createConstant(0.5);
  OXExpression* choice = model.createExpression(OXOperator::Max, x, half);
  OXExpression* rest = model.createExpression(OXOperator::Mod, choice, model.createConstant(2));
  minimize(rest);
  expectRefusal(
      "Operand 0 of Expression 4 (type = mod) must be boolean or integer. Type provided: double");
  EXPECT_EQ(ModelRecord::valueType(*choice), kNoType);
  EXPECT_EQ(ModelRecord::valueType(*half), kDoubleType);
  choice->setOperand(1, 7);
  model.close();
  EXPECT_EQ(choice->getIntValue(), 7);
}

TEST_F(ModelValidatorTest, ATypeFixedEarlierStays) {
  OXExpression* sum = model.createExpression(OXOperator::Sum, boolean());
  minimize(sum);
  model.close();
  model.open();
  sum->addOperand(0.5);
  expectRefusal(
      "Operand 1 of Expression 1 (type = sum) must be boolean or integer. Type provided: double");
  sum->setOperand(1, 3);
  model.close();
  EXPECT_EQ(sum->getIntValue(), 3);
}

TEST_F(ModelValidatorTest, AnIntegerConditionalPassesAsAConstraintTheFirstTimeOnly) {
  OXExpression* x = boolean();
  OXExpression* choice =
      model.createExpression(OXOperator::Iif, x, model.createConstant(2), model.createConstant(3));
  model.addConstraint(choice);
  minimize(x);
  solver.getParam()->setAdvancedParam("preprocessingEnabled", 0);
  try {
    model.close();
  } catch (const OXException&) {
    // Whether the transformation can do with it is its own concern: the model is closed.
  }
  EXPECT_TRUE(model.isClosed());
  model.open();
  expectRefusal(
      "Only boolean expressions can be constrained (0, 1, bool, and, or, xor, not, eq, neq, geq, "
      "leq, gt, lt, if).");
}

}  // namespace
}  // namespace ombrix
