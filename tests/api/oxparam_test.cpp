#include "api/oxparam.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "api/ombrix.h"
#include "tests/support/failures.h"
#include "tests/support/statemessages.h"

namespace ombrix {
namespace {

using test::expectFailure;
using test::kPausedOrStopped;
using test::kStopped;

constexpr long long kSmallest = std::numeric_limits<long long>::min();
constexpr long long kLargest = std::numeric_limits<long long>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class OXParamTest : public ::testing::Test {
protected:
  OXExpression* boolean() { return model.createExpression(OXOperator::Bool); }
  void addObjectives() {
    OXExpression* x = boolean();
    integer = model.createExpression(OXOperator::Sum, x, model.createConstant(2));
    real = model.createExpression(OXOperator::Sum, x, model.createConstant(0.5));
    model.addObjective(integer, OXObjectiveDirection::Minimize);
    model.addObjective(integer, OXObjectiveDirection::Maximize);
    model.addObjective(real, OXObjectiveDirection::Minimize);
    model.addObjective(real, OXObjectiveDirection::Maximize);
  }
  void closeWithObjectives() {
    addObjectives();
    model.close();
  }

  Ombrix solver;
  OXModel& model = *solver.getModel();
  OXParam& param = *solver.getParam();
  OXExpression* integer = nullptr;
  OXExpression* real = nullptr;
};

TEST_F(OXParamTest, HasDefaults) {
  closeWithObjectives();
  EXPECT_EQ(param.getOmbrix(), &solver);
  EXPECT_EQ(param.getSeed(), 0);
  EXPECT_EQ(param.getNbThreads(), 2);
  EXPECT_EQ(param.getAnnealingLevel(), 1);
  EXPECT_EQ(param.getVerbosity(), 1);
  EXPECT_EQ(param.getTimeBetweenDisplays(), 1);
}

TEST_F(OXParamTest, KeepsWhatIsSetWithinTheRanges) {
  closeWithObjectives();
  for (const int seed : {0, 2147483647}) {
    param.setSeed(seed);
    EXPECT_EQ(param.getSeed(), seed);
  }
  for (const int nbThreads : {1, 1024}) {
    param.setNbThreads(nbThreads);
    EXPECT_EQ(param.getNbThreads(), nbThreads);
  }
  for (const int level : {0, 9}) {
    param.setAnnealingLevel(level);
    EXPECT_EQ(param.getAnnealingLevel(), level);
  }
  for (const int verbosity : {0, 5}) {
    param.setVerbosity(verbosity);
    EXPECT_EQ(param.getVerbosity(), verbosity);
  }
  for (const int seconds : {1, 65535}) {
    param.setTimeBetweenDisplays(seconds);
    EXPECT_EQ(param.getTimeBetweenDisplays(), seconds);
  }
}

TEST_F(OXParamTest, RefusesWhatIsOutOfRange) {
  closeWithObjectives();
  expectFailure(0, "OXParam::setSeed", "Argument seed must be positive.",
                [&] { param.setSeed(-1); });
  for (const int nbThreads : {0, 1025}) {
    expectFailure(0, "OXParam::setNbThreads",
                  "Number of threads must be an integer between 1 and 1024.",
                  [&] { param.setNbThreads(nbThreads); });
  }
  for (const int level : {-1, 10}) {
    expectFailure(0, "OXParam::setAnnealingLevel",
                  "Annealing level must be an integer between 0 and 9.",
                  [&] { param.setAnnealingLevel(level); });
  }
  expectFailure(0, "OXParam::setVerbosity", "Argument verbosity must be positive.",
                [&] { param.setVerbosity(-1); });
  for (const int seconds : {0, 65536}) {
    expectFailure(0, "OXParam::setTimeBetweenDisplays",
                  "TimeBetweenDisplays must be an integer between 1 and 65535.",
                  [&] { param.setTimeBetweenDisplays(seconds); });
  }
  EXPECT_EQ(param.getNbThreads(), 2);
}

TEST_F(OXParamTest, CanBeSetOnAClosedModelOnly) {
  expectFailure(0, "OXParam::setSeed", kStopped, [&] { param.setSeed(1); });
  expectFailure(0, "OXParam::getSeed", kPausedOrStopped, [&] { param.getSeed(); });
}

TEST_F(OXParamTest, AnObjectiveHasNoBoundAtFirst) {
  closeWithObjectives();
  EXPECT_EQ(param.getIntObjectiveBound(0), kSmallest);
  EXPECT_EQ(param.getIntObjectiveBound(1), kLargest);
  EXPECT_EQ(param.getDoubleObjectiveBound(2), -kInfinity);
  EXPECT_EQ(param.getDoubleObjectiveBound(3), kInfinity);
}

TEST_F(OXParamTest, ABoundCanBeSetUnderBothNames) {
  closeWithObjectives();
  param.setIntObjectiveBound(0, 3);
  EXPECT_EQ(param.getObjectiveBound(0), 3);
  param.setObjectiveBound(0, 4);
  EXPECT_EQ(param.getIntObjectiveBound(0), 4);
  param.setObjectiveBound(2, 0.25);
  EXPECT_EQ(param.getDoubleObjectiveBound(2), 0.25);
  param.setDoubleObjectiveBound(2, -kInfinity);
  EXPECT_EQ(param.getDoubleObjectiveBound(2), -kInfinity);
}

TEST_F(OXParamTest, ABoundHasTheTypeOfItsObjective) {
  closeWithObjectives();
  const char* mustBeInt =
      "Cannot use this method. The given expression must be boolean or integer.";
  const char* mustBeDouble = "Cannot use this method. The given expression must be double.";
  expectFailure(2, "OXParam::setIntObjectiveBound", mustBeInt,
                [&] { param.setIntObjectiveBound(2, 1); });
  expectFailure(2, "OXParam::getIntObjectiveBound", mustBeInt,
                [&] { param.getIntObjectiveBound(2); });
  expectFailure(2, "OXParam::getObjectiveBound", mustBeInt, [&] { param.getObjectiveBound(2); });
  expectFailure(2, "OXParam::setObjectiveBound", mustBeInt, [&] { param.setObjectiveBound(2, 1); });
  expectFailure(2, "OXParam::setDoubleObjectiveBound", mustBeDouble,
                [&] { param.setDoubleObjectiveBound(0, 1.0); });
  expectFailure(2, "OXParam::getDoubleObjectiveBound", mustBeDouble,
                [&] { param.getDoubleObjectiveBound(0); });
  expectFailure(2, "OXParam::setObjectiveBound", mustBeDouble,
                [&] { param.setObjectiveBound(0, std::nan("")); });
}

TEST_F(OXParamTest, ABoundIsANumber) {
  closeWithObjectives();
  expectFailure(2, "OXParam::setDoubleObjectiveBound",
                "Cannot use NaN (Not a Number) as a double constant.",
                [&] { param.setDoubleObjectiveBound(2, std::nan("")); });
}

TEST_F(OXParamTest, ABoundBelongsToAnObjective) {
  closeWithObjectives();
  expectFailure(0, "OXParam::setIntObjectiveBound",
                "Objective with index 4 does not exist.\nOnly indices from 0 to 3 are currently "
                "allowed.",
                [&] { param.setIntObjectiveBound(4, 1); });
  expectFailure(0, "OXParam::getDoubleObjectiveBound",
                "Objective with index -1 does not exist.\nOnly indices from 0 to 3 are currently "
                "allowed.",
                [&] { param.getDoubleObjectiveBound(-1); });
}

TEST_F(OXParamTest, BoundsSurviveOpeningAndClosing) {
  closeWithObjectives();
  param.setIntObjectiveBound(0, 3);
  model.open();
  model.addObjective(integer, OXObjectiveDirection::Maximize);
  model.close();
  EXPECT_EQ(param.getIntObjectiveBound(0), 3);
  EXPECT_EQ(param.getIntObjectiveBound(4), kLargest);
}

TEST_F(OXParamTest, TheBoundOfAConstantIsItsValue) {
  model.addObjective(model.createConstant(7), OXObjectiveDirection::Minimize);
  model.addObjective(model.createConstant(0.5), OXObjectiveDirection::Maximize);
  model.close();
  EXPECT_EQ(param.getIntObjectiveBound(0), 7);
  EXPECT_EQ(param.getDoubleObjectiveBound(1), 0.5);
}

TEST_F(OXParamTest, AdvancedParametersAreStoredUnderAnyName) {
  param.setAdvancedParam("whatever", 0);
  param.setAdvancedParam("other", 3);
  param.setAdvancedParam("other", 4);
  closeWithObjectives();
  EXPECT_EQ(param.getAdvancedParam("other"), 4);
  EXPECT_EQ(param.getAdvancedParam("whatever", 5), 0);
  EXPECT_EQ(param.getAdvancedParam("absent", 5), 5);
  expectFailure(0, "OXParam::getAdvancedParam", "Advanced parameter 'absent' does not exist.",
                [&] { param.getAdvancedParam("absent"); });
}

TEST_F(OXParamTest, AdvancedParametersCanBeSetButNotReadWhileModeling) {
  param.setAdvancedParam("key", 1);
  EXPECT_THROW(param.getAdvancedParam("key"), OXException);
  EXPECT_THROW(param.getAdvancedParam("key", 2), OXException);
}

TEST_F(OXParamTest, PrintsTheDefaults) {
  EXPECT_EQ(param.toString(),
            "Param: \n"
            "  no time limit, no iteration limit\n"
            "  seed = 0, nb threads = 2, annealing level = 1\n"
            "\n"
            "Objectives:\n");
}

TEST_F(OXParamTest, PrintsObjectivesWithoutBoundBeforeTheFirstClosing) {
  addObjectives();
  EXPECT_EQ(param.toString(),
            "Param: \n"
            "  no time limit, no iteration limit\n"
            "  seed = 0, nb threads = 2, annealing level = 1\n"
            "\n"
            "Objectives:\n"
            "  Obj 0: minimize, no bound\n"
            "  Obj 1: maximize, no bound\n"
            "  Obj 2: minimize, no bound\n"
            "  Obj 3: maximize, no bound\n");
}

TEST_F(OXParamTest, PrintsLimitsBoundsAndAdvancedParameters) {
  closeWithObjectives();
  param.setSeed(9);
  param.setIntObjectiveBound(0, 3);
  param.setIntObjectiveBound(1, kSmallest);
  param.setDoubleObjectiveBound(2, 0.25);
  param.setDoubleObjectiveBound(3, -kInfinity);
  param.setAdvancedParam("zebra", 1);
  param.setAdvancedParam("ant", -2);
  for (int i = 0; i < 2; ++i) {
    OXPhase* phase = solver.createPhase();
    phase->setTimeLimit(10);
    phase->setIterationLimit(100);
  }
  EXPECT_EQ(param.toString(),
            "Param: \n"
            "  time limit = 20 sec, iteration limit = 200\n"
            "  seed = 9, nb threads = 2, annealing level = 1\n"
            "\n"
            "Objectives:\n"
            "  Obj 0: minimize, bound = 3\n"
            "  Obj 1: maximize, no bound\n"
            "  Obj 2: minimize, bound = 0.25\n"
            "  Obj 3: maximize, no bound\n"
            "\n"
            "Advanced params:\n"
            "  ant = -2\n"
            "  zebra = 1\n");
}

TEST_F(OXParamTest, PrintsDoubleBoundsInTheDefaultFormatOfAStream) {
  closeWithObjectives();
  param.setIntObjectiveBound(0, 1234567);
  param.setDoubleObjectiveBound(2, 1234567.5);
  param.setDoubleObjectiveBound(3, 1e-7);
  const std::string text = param.toString();
  EXPECT_NE(text.find("  Obj 0: minimize, bound = 1234567\n"), std::string::npos) << text;
  EXPECT_NE(text.find("  Obj 2: minimize, bound = 1.23457e+06\n"), std::string::npos) << text;
  EXPECT_NE(text.find("  Obj 3: maximize, bound = 1e-07\n"), std::string::npos) << text;
  param.setDoubleObjectiveBound(2, 3.0);
  EXPECT_NE(param.toString().find("  Obj 2: minimize, bound = 3\n"), std::string::npos);
}

TEST_F(OXParamTest, ALimitThatOverflowsIsNone) {
  closeWithObjectives();
  solver.createPhase()->setTimeLimit(2147483646);
  solver.createPhase()->setTimeLimit(5);
  solver.getPhase(0)->setIterationLimit(kLargest - 1);
  solver.getPhase(1)->setIterationLimit(2);
  EXPECT_NE(param.toString().find("  no time limit, no iteration limit\n"), std::string::npos);
}

}  // namespace
}  // namespace ombrix
