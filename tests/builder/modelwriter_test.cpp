#include "builder/modelwriter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "api/ombrix.h"
#include "builder/parallelizer.h"
#include "support/failures.h"
#include "support/tokenfiles.h"

namespace ombrix {
namespace {

using test::bytesOf;
using test::TemporaryFile;

std::string written(const Ombrix& solver, const std::string& extension = ".oxm") {
  const TemporaryFile file("", extension);
  ModelWriter(solver, file.path()).write();
  return bytesOf(file.path());
}

std::string head() {
  return "<OXM01>\r\n\n{\"info\"=\n{\"version\"=\"" + OXVersion::getVersion() + "\"},";
}

/// Two decisions, a name, constants of all three types, an operand created behind its user.
class ModelWriterTest : public ::testing::Test {
protected:
  ModelWriterTest() {
    OXExpression* sum = model.createExpression(OXOperator::Sum);
    OXExpression* x = model.createExpression(OXOperator::Bool);
    x->setName("x \"1\"");
    sum->addOperand(x);
    sum->addOperand(1);
    sum->addOperand(-3);
    sum->addOperand(0.5);
    OXExpression* both =
        model.createExpression(OXOperator::And, x, model.createExpression(OXOperator::Bool));
    model.addConstraint(both);
    model.addConstraint(x);
    model.addObjective(sum, OXObjectiveDirection::Maximize);
    model.addObjective(both, OXObjectiveDirection::Minimize);
  }

  Ombrix solver;
  OXModel& model = *solver.getModel();
};

const char* const kModelText =
    "\"expressions\"=\n{"
    "\n{\"type\"=\"sum\"},"
    "\n{\"type\"=\"bool\",\"name\"=\"x \\\"1\\\"\"},"
    "\n{\"type\"=\"const\",\"value\"=1},"
    "\n{\"type\"=\"const\",\"value\"=-3},"
    "\n{\"type\"=\"const\",\"value\"=0.5},"
    "\n{\"type\"=\"bool\"},"
    "\n{\"type\"=\"and\"}},"
    "\"operands\"=\n{\n{1,2,3,4},\n{},\n{},\n{},\n{},\n{},\n{1,5}},"
    "\"constraints\"=\n{\n{\"idx\"=6},\n{\"idx\"=1}},"
    "\"objectives\"=\n{\n{\"idx\"=0,\"dir\"=\"maximize\"},\n{\"idx\"=6,\"dir\"=\"minimize\"}}";

TEST_F(ModelWriterTest, AnOpenModelIsWrittenWithoutPhasesParametersAndSolution) {
  EXPECT_EQ(written(solver), head() + kModelText + "}");
}

TEST_F(ModelWriterTest, AClosedModelIsWrittenWhole) {
  model.close();
  OXPhase& phase = *solver.createPhase();
  phase.setIterationLimit(1LL << 40);
  phase.setTimeLimit(60);
  phase.setOptimizedObjective(0);
  OXParam& param = *solver.getParam();
  param.setSeed(5);
  param.setNbThreads(3);
  param.setAnnealingLevel(2);
  param.setVerbosity(4);
  param.setTimeBetweenDisplays(6);
  param.setDoubleObjectiveBound(0, 7.25);
  param.setIntObjectiveBound(1, -2);
  param.setAdvancedParam("zebra", 1);
  param.setAdvancedParam("dumpEnabled", 1);
  param.setAdvancedParam("ape", -1);
  model.getDecision(0)->setValue(1);
  EXPECT_EQ(written(solver),
            head() + kModelText +
                ",\"phases\"=\n{\n{\"iterationLimit\"=1099511627776,\"timeLimit\"=60,"
                "\"optimizedObjective\"=0}},"
                "\"parameters\"=\n{\"seed\"=5,\"nbThreads\"=3,\"annealingLevel\"=2,"
                "\"verbosity\"=4,\"timeBetweenDisplays\"=6,\"objectiveBounds\"=\n{7.25,-2},"
                "\"advancedParams\"=\n{\"ape\"=-1,\"zebra\"=1}},"
                "\"solution\"=\n{\"status\"=\"infeasible\",\"decisions\"=\n{1,0}}}");
}

TEST_F(ModelWriterTest, TellsHowManyBytesTheFileHolds) {
  for (const char* extension : {".oxm", ".oxm.gz", ".oxb", ".oxb.gz"}) {
    const TemporaryFile file("", extension);
    const std::uint64_t nbBytes = ModelWriter(solver, file.path()).write();
    EXPECT_EQ(nbBytes, test::inflatedBytesOf(file.path()).size());
  }
}

TEST_F(ModelWriterTest, TheFormatIsToldByTheEndOfTheName) {
  for (const char* name : {".oxb", ".x.oxb"}) {
    EXPECT_EQ(written(solver, name).substr(0, 7), "<OXB01>") << name;
  }
  for (const char* name : {".oxm", ".txt", ".OXB", ".oxb.GZ", ".oxb.bak", "oxbgz", ""}) {
    EXPECT_EQ(written(solver, name).substr(0, 7), "<OXM01>") << name;
  }
  for (const char* name : {".oxb.gz", ".oxm.gz", ".gz", ".oxm.oxb.gz"}) {
    const TemporaryFile file("", name);
    ModelWriter(solver, file.path()).write();
    EXPECT_EQ(bytesOf(file.path()).substr(0, 2), "\x1f\x8b") << name;
    const bool isBinary = std::string(name).ends_with(".oxb.gz");
    EXPECT_EQ(test::inflatedBytesOf(file.path()).substr(0, 7), isBinary ? "<OXB01>" : "<OXM01>");
  }
}

TEST(ModelWriterStatusTest, EveryStatusHasItsWord) {
  const char* const words[] = {"inconsistent", "infeasible", "feasible", "optimal"};
  for (int i = 0; i < 4; ++i) {
    EXPECT_STREQ(ModelWriter::statusWord(static_cast<OXSolutionStatus>(i)), words[i]);
  }
  for (const int number : {-1, 4}) {
    test::expectFailure(1, "ModelWriter::writeSolution", "Solution status not supported",
                        [&] { ModelWriter::statusWord(static_cast<OXSolutionStatus>(number)); });
  }
}

TEST(ModelWriterStatusTest, AnInconsistentModelIsWritten) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  model.addConstraint(model.createConstant(0));
  model.addObjective(model.createExpression(OXOperator::Bool), OXObjectiveDirection::Minimize);
  model.close();
  EXPECT_NE(written(solver).find("\"status\"=\"inconsistent\""), std::string::npos);
}

TEST(ModelWriterTextTest, AnInfiniteBoundLeavesOutTheCommaBehindIt) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  OXExpression* x = model.createExpression(OXOperator::Bool);
  for (const auto direction : {OXObjectiveDirection::Minimize, OXObjectiveDirection::Maximize}) {
    OXExpression* sum = model.createExpression(OXOperator::Sum, x);
    sum->addOperand(0.5);
    model.addObjective(sum, direction);
  }
  model.close();
  EXPECT_NE(written(solver).find("\"objectiveBounds\"=\n{-infinf},"), std::string::npos);
}

}  // namespace
}  // namespace ombrix
