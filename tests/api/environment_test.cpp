#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "api/ombrix.h"
#include "builder/parallelizer.h"
#include "support/environments.h"
#include "support/failures.h"
#include "support/solvermodels.h"
#include "support/swappedlocale.h"
#include "support/tokenfiles.h"

namespace ombrix {
namespace {

using test::describe;
using test::expectFailure;
using test::TemporaryFile;

const std::vector<std::string> kExtensions = {".oxm", ".oxm.gz", ".oxb", ".oxb.gz"};

std::unique_ptr<Ombrix> loaded(const std::string& path) {
  auto solver = std::make_unique<Ombrix>();
  solver->loadEnvironment(path);
  return solver;
}

TEST(EnvironmentTest, RandomEnvironmentsComeBackTheSame) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    const std::string& extension = kExtensions[seed % 4];
    SCOPED_TRACE(std::to_string(seed) + extension);
    Ombrix solver;
    const test::RandomEnvironment random(solver, seed, extension.starts_with(".oxm"));
    test::closeAndSetUp(solver);
    const TemporaryFile file("", extension);
    solver.saveEnvironment(file.path());
    const auto copy = loaded(file.path());
    EXPECT_EQ(describe(*copy), describe(solver));
    EXPECT_EQ(copy->getState(), OXState::Stopped);
    const TemporaryFile again("", extension);
    copy->saveEnvironment(again.path());
    EXPECT_EQ(test::inflatedBytesOf(again.path()), test::inflatedBytesOf(file.path()));
  }
}

TEST(EnvironmentTest, FilesDoNotDependOnTheLocaleOfTheHost) {
  for (const std::string& extension : kExtensions) {
    Ombrix solver;
    const test::RandomEnvironment random(solver, 3, extension.starts_with(".oxm"));
    test::closeAndSetUp(solver);
    const TemporaryFile file("", extension);
    solver.saveEnvironment(file.path());
    const std::string description = describe(solver);

    const TemporaryFile again("", extension);
    std::unique_ptr<Ombrix> copy;
    {
      const test::SwappedLocale swapped;
      copy = loaded(file.path());
      copy->saveEnvironment(again.path());
    }
    EXPECT_EQ(describe(*copy), description) << extension;
    EXPECT_EQ(test::inflatedBytesOf(again.path()), test::inflatedBytesOf(file.path())) << extension;
  }
}

TEST(EnvironmentTest, AnOpenModelIsClosedByTheLoad) {
  for (const std::string& extension : kExtensions) {
    Ombrix solver;
    const test::RandomEnvironment random(solver, 5, extension.starts_with(".oxm"));
    const TemporaryFile file("", extension);
    solver.saveEnvironment(file.path());
    EXPECT_EQ(solver.getState(), OXState::Modeling);
    const auto copy = loaded(file.path());
    EXPECT_EQ(copy->getState(), OXState::Stopped);
    EXPECT_EQ(copy->getNbPhases(), 0);
    EXPECT_EQ(copy->getParam()->getSeed(), 0);
    copy->getModel()->open();
    EXPECT_EQ(describe(*copy), describe(solver));
  }
}

TEST(EnvironmentTest, TheContentTellsTheFormWhateverTheName) {
  Ombrix solver;
  test::buildCovering(*solver.getModel(), 15);
  solver.getModel()->close();
  for (const std::string& extension : kExtensions) {
    const TemporaryFile file("", extension);
    solver.saveEnvironment(file.path());
    for (const std::string other : {".dat", ".gz", ".oxm", ".oxb"}) {
      const TemporaryFile copy(test::bytesOf(file.path()), other);
      EXPECT_EQ(describe(*loaded(copy.path())), describe(solver));
    }
  }
}

TEST(EnvironmentTest, ASearchGoesOnFromWhereItStood) {
  Ombrix solver;
  const auto decisions = test::buildKnapsack(*solver.getModel(), 30);
  solver.getModel()->close();
  solver.getParam()->setVerbosity(0);
  solver.createPhase()->setIterationLimit(20000);
  solver.solve();
  const long long found = solver.getModel()->getObjective(0)->getIntValue();
  EXPECT_GT(found, 0);
  const TemporaryFile file("", ".oxb.gz");
  solver.saveEnvironment(file.path());

  const auto copy = loaded(file.path());
  OXExpression* objective = copy->getModel()->getObjective(0);
  EXPECT_EQ(objective->getIntValue(), found);
  EXPECT_EQ(copy->getSolution()->getStatus(), OXSolutionStatus::Feasible);
  copy->getPhase(0)->setIterationLimit(1);
  copy->solve();
  EXPECT_GE(objective->getIntValue(), found);
}

TEST(EnvironmentTest, OnlyAnEmptyModelLoads) {
  Ombrix solver;
  solver.getModel()->createConstant(1);
  expectFailure(2, "Ombrix::loadEnvironment",
                "Cannot load the given environment. The current model must be empty.",
                [&] { solver.loadEnvironment("missing.oxm"); });
}

TEST(EnvironmentTest, AnEmptyModelIsRefusedByTheClosing) {
  Ombrix solver;
  const TemporaryFile file("", ".oxm");
  solver.saveEnvironment(file.path());
  Ombrix fresh;
  expectFailure(2, "OXModel::close", "At least one objective is required in the model.",
                [&] { fresh.loadEnvironment(file.path()); });
  EXPECT_EQ(fresh.getState(), OXState::Modeling);
}

TEST(EnvironmentTest, TypesAreWorkedOutAnew) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  OXExpression* half = model.createConstant(0.5);
  OXExpression* sum =
      model.createExpression(OXOperator::Sum, model.createExpression(OXOperator::Bool), half);
  model.addObjective(sum, OXObjectiveDirection::Minimize);
  model.close();
  model.open();
  sum->setOperand(1, 2);
  model.close();
  ASSERT_TRUE(sum->isDouble());
  for (const std::string& extension : kExtensions) {
    const TemporaryFile file("", extension);
    solver.saveEnvironment(file.path());
    Ombrix fresh;
    expectFailure(2, "OXParam::setDoubleObjectiveBound",
                  "Cannot use this method. The given expression must be double.",
                  [&] { fresh.loadEnvironment(file.path()); });
    EXPECT_TRUE(fresh.getModel()->getExpression(2)->isInt());
  }
}

TEST(EnvironmentTest, FilesThatCannotBeOpenedAreNamed) {
  Ombrix solver;
  for (const std::string extension : {"oxm", "oxm.gz"}) {
    const std::string name = "/nonexistent/a." + extension;
    expectFailure(1, "GzipOstream::GzipOstream", "Cannot open file " + name,
                  [&] { solver.saveEnvironment(name); });
    expectFailure(1, "GzipIstream::GzipIstream", "Cannot open file " + name,
                  [&] { solver.loadEnvironment(name); });
  }
}

/// Every prefix of a file ends in success or in an OXException, and what a failed load leaves can
/// be looked at, and destroyed.
void tryBytes(const std::string& bytes) {
  const TemporaryFile file(bytes, ".dat");
  Ombrix solver;
  try {
    solver.loadEnvironment(file.path());
  } catch (const OXException&) {
    EXPECT_FALSE(solver.toString().empty());
  }
}

TEST(EnvironmentTest, FilesCutAnywhereAreRefusedInOrder) {
  Ombrix solver;
  test::buildOddCycle(*solver.getModel());
  solver.getModel()->getExpression(0)->setName("first");
  solver.getModel()->close();
  solver.createPhase();
  for (const std::string& extension : kExtensions) {
    const TemporaryFile file("", extension);
    solver.saveEnvironment(file.path());
    const std::string bytes = test::bytesOf(file.path());
    for (std::size_t size = 0; size < bytes.size(); ++size) tryBytes(bytes.substr(0, size));
    if (extension.ends_with(".gz")) continue;
    for (std::size_t size = 0; size + 1 < bytes.size(); ++size) {
      const TemporaryFile cut(bytes.substr(0, size), ".dat");
      EXPECT_THROW(loaded(cut.path()), OXException) << extension << " " << size;
    }
  }
}

TEST(EnvironmentTest, FilesWithAnyWrongByteEndInOrder) {
  Ombrix solver;
  test::buildOddCycle(*solver.getModel());
  solver.getModel()->close();
  for (const std::string& extension : kExtensions) {
    const TemporaryFile file("", extension);
    solver.saveEnvironment(file.path());
    const std::string bytes = test::bytesOf(file.path());
    for (std::size_t at = 7; at < bytes.size(); ++at) {
      for (const int wrong : {0x00, 0x10, 0x11, 0x22, 0x7b, 0x7d, 0xff}) {
        std::string changed = bytes;
        changed[at] = static_cast<char>(wrong);
        tryBytes(changed);
      }
    }
  }
}

TEST(EnvironmentTest, AFailedLoadLeavesWhatWasRead) {
  Ombrix solver;
  const TemporaryFile file("<OXM01>{\"expressions\"={{\"type\"=\"bool\"},{\"type\"=\"plus\"}}}",
                           ".oxm");
  expectFailure(6, "OperatorTools::stringToOperator", "Unknown operator : plus",
                [&] { solver.loadEnvironment(file.path()); });
  EXPECT_EQ(solver.getState(), OXState::Modeling);
  EXPECT_EQ(solver.getModel()->getNbExpressions(), 1);
}

TEST(EnvironmentTest, AFailureDuringASavePassesThroughAndTheFileIsClosed) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  OXExpression* x = model.createExpression(OXOperator::Bool);
  // Code 5 where x is 0, which only the reading of the status meets.
  OXExpression* quotient = model.createExpression(OXOperator::Div, model.createConstant(1), x);
  model.addConstraint(model.createExpression(OXOperator::Geq, quotient, model.createConstant(1)));
  model.addObjective(x, OXObjectiveDirection::Minimize);
  model.close();
  const TemporaryFile file("", ".oxm");
  try {
    solver.saveEnvironment(file.path());
    FAIL() << "the quotient has a value";
  } catch (const OXException& failure) {
    EXPECT_EQ(failure.getCode(), 5);
  }
  const std::string written = test::bytesOf(file.path());
  EXPECT_EQ(written.substr(written.size() - 13), "\"solution\"=\n{");
  x->setValue(1);
  solver.saveEnvironment(file.path());
  EXPECT_EQ(describe(*loaded(file.path())), describe(solver));
}

/// A working directory of its own for the length of a test.
class WorkingFolder {
public:
  WorkingFolder() {
    std::filesystem::create_directory(place.path() + ".d");
    std::filesystem::current_path(place.path() + ".d");
  }
  ~WorkingFolder() {
    std::filesystem::current_path(before);
    std::filesystem::remove_all(place.path() + ".d");
  }

private:
  std::filesystem::path before = std::filesystem::current_path();
  TemporaryFile place{"", ".folder"};
};

TEST(EnvironmentTest, SolveWritesADumpBeforeTheSearchIfAsked) {
  const WorkingFolder folder;
  Ombrix solver;
  test::buildCovering(*solver.getModel(), 15);
  solver.getModel()->close();
  solver.getParam()->setVerbosity(0);
  solver.createPhase()->setIterationLimit(2000);
  solver.solve();
  EXPECT_FALSE(std::filesystem::exists("dump.oxm.gz"));

  const std::string before = describe(solver);
  solver.getParam()->setAdvancedParam("dumpEnabled", 1);
  solver.solve();
  EXPECT_EQ(test::bytesOf("dump.oxm.gz").substr(0, 2), "\x1f\x8b");
  EXPECT_EQ(describe(*loaded("dump.oxm.gz")), before);

  solver.getModel()->getDecision(0)->setValue(1);
  for (int i = 1; i < 15; ++i) solver.getModel()->getDecision(i)->setValue(0);
  solver.solve();
  const auto second = loaded("dump.oxm.gz");
  EXPECT_EQ(second->getModel()->getDecision(0)->getIntValue(), 1);
  EXPECT_EQ(second->getModel()->getDecision(1)->getIntValue(), 0);
}

}  // namespace
}  // namespace ombrix
