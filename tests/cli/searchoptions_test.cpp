#include "cli/searchoptions.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/inputerror.h"

namespace ombrix::cli {
namespace {

/// Two objectives: an integer one, and one of doubles.
void buildTwoObjectives(Ombrix& solver) {
  OXModel& model = *solver.getModel();
  OXExpression* x = model.createExpression(OXOperator::Bool);
  model.addObjective(x, OXObjectiveDirection::Minimize);
  model.addObjective(model.createExpression(OXOperator::Prod, model.createConstant(0.5), x),
                     OXObjectiveDirection::Minimize);
  model.close();
}

std::string refusalOf(const std::string& objective, const std::string& value) {
  Ombrix solver;
  buildTwoObjectives(solver);
  CommandLine line;
  line.objectiveBounds.emplace_back(std::stoi(objective), value);
  try {
    setObjectiveBounds(line, solver);
  } catch (const InputError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(SearchOptions, ABoundIsReadAsItsObjectiveNeedsIt) {
  Ombrix solver;
  buildTwoObjectives(solver);
  CommandLine line;
  line.objectiveBounds = {{0, "-3"}, {1, "2.5e-1"}};
  setObjectiveBounds(line, solver);
  EXPECT_EQ(solver.getParam()->getIntObjectiveBound(0), -3);
  EXPECT_EQ(solver.getParam()->getDoubleObjectiveBound(1), 0.25);
}

TEST(SearchOptions, ABoundThatItsObjectiveCannotTakeIsRefused) {
  EXPECT_EQ(refusalOf("2", "1"), "--bound: found objective 2, expected an index from 0 to 1");
  EXPECT_EQ(refusalOf("0", "1.5"), "--bound: found \"1.5\", expected an integer of 64 bits");
  for (const std::string wrong : {"", "x", "1x", "nan", "inf", "-inf", "1e400"}) {
    EXPECT_EQ(refusalOf("1", wrong), "--bound: found \"" + wrong + "\", expected a finite number");
  }
}

TEST(SearchOptions, AnObjectiveThatIsNotThereIsToldByItsOption) {
  for (const std::string option : {"--objective", "--phase objective"}) {
    Ombrix solver;
    buildTwoObjectives(solver);
    CommandLine line;
    line.phases.emplace_back().objective = 2;
    line.phases.back().objectiveOption = option;
    try {
      createPhases(line, solver);
      FAIL() << "accepted";
    } catch (const InputError& error) {
      EXPECT_TRUE(std::string(error.what())
                      .starts_with(option + ": Objective with index 2 does not exist."))
          << error.what();
    }
  }
}

}  // namespace
}  // namespace ombrix::cli
