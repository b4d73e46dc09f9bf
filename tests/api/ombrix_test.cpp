#include "api/ombrix.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "builder/solverrecord.h"
#include "tests/support/failures.h"
#include "tests/support/statemessages.h"

namespace ombrix {
namespace {

using test::expectFailure;
using test::kModeling;
using test::kNotRunning;
using test::kPausedOrStopped;
using test::kStarted;
using test::kStopped;

/// The answer to a call in each of the four states, in order of their numbers: null if it is
/// allowed, else the message.
using Answers = std::array<const char*, 4>;

constexpr std::array<OXState, 4> kStates = {OXState::Modeling, OXState::Running, OXState::Paused,
                                            OXState::Stopped};

const Answers kAlways = {nullptr, nullptr, nullptr, nullptr};
const Answers kModelingOnly = {nullptr, kModeling, kModeling, kModeling};
const Answers kStoppedOnly = {kStopped, kStopped, kStopped, nullptr};
const Answers kPausedOrStoppedOnly = {kPausedOrStopped, kPausedOrStopped, nullptr, nullptr};
const Answers kNotRunningOnly = {nullptr, kNotRunning, nullptr, nullptr};
const Answers kNeverStarted = {kStarted, kStarted, kStarted, kStarted};
/// A null operand is refused before the state Modeling is asked for.
const Answers kOperands = {nullptr, kNotRunning, kModeling, kModeling};
/// Values set through an expression pass its own check first and that of the solution behind it.
const Answers kValueWriters = {kPausedOrStopped, kPausedOrStopped, kStopped, nullptr};
const Answers kConstantReaders = {nullptr, kPausedOrStopped, nullptr, nullptr};

/// A solver with one object of each kind, put into a state without a search.
class Scene {
public:
  explicit Scene(OXState wanted) {
    bit = model.createExpression(OXOperator::Bool);
    sum = model.createExpression(OXOperator::Sum, bit, three);
    real = model.createExpression(OXOperator::Sum, bit, half);
    model.addObjective(sum, OXObjectiveDirection::Minimize);
    model.addObjective(real, OXObjectiveDirection::Minimize);
    sum->setName("sum");
    param.setAdvancedParam("key", 1);
    if (wanted != OXState::Modeling) model.close();
    SolverRecord::setState(solver, wanted);
  }

  Ombrix solver;
  OXModel& model = SolverRecord::model(solver);
  OXParam& param = SolverRecord::param(solver);
  OXSolution& solution = SolverRecord::solution(solver);
  OXStatistics& statistics = SolverRecord::statistics(solver);
  OXPhase& phase = SolverRecord::appendPhase(solver);
  OXExpression* half = model.createConstant(0.5);
  OXExpression* three = model.createConstant(3);
  OXExpression* bit;
  OXExpression* sum;
  OXExpression* real;
};

struct Call {
  const char* name;
  Answers answers;
  std::function<void(Scene&)> action;
};

const std::vector<Call> kSolverCalls = {
    {"Ombrix::getModel", kNotRunningOnly, [](Scene& s) { s.solver.getModel(); }},
    {"Ombrix::getParam", kNotRunningOnly, [](Scene& s) { s.solver.getParam(); }},
    {"Ombrix::createPhase", kStoppedOnly, [](Scene& s) { s.solver.createPhase(); }},
    {"Ombrix::getPhase", kPausedOrStoppedOnly, [](Scene& s) { s.solver.getPhase(0); }},
    {"Ombrix::getNbPhases", kPausedOrStoppedOnly, [](Scene& s) { s.solver.getNbPhases(); }},
    {"Ombrix::getSolution", kPausedOrStoppedOnly, [](Scene& s) { s.solver.getSolution(); }},
    {"Ombrix::getStatistics", kPausedOrStoppedOnly, [](Scene& s) { s.solver.getStatistics(); }},
    {"Ombrix::toString", kNotRunningOnly, [](Scene& s) { s.solver.toString(); }},
    {"Ombrix::getInfo", kNeverStarted, [](Scene& s) { s.solver.getInfo(); }},
    {"Ombrix::getState", kAlways, [](Scene& s) { s.solver.getState(); }},
    {"Ombrix::stop", kAlways, [](Scene& s) { s.solver.stop(); }},
};

const std::vector<Call> kModelCalls = {
    {"OXModel::getOmbrix", kNotRunningOnly, [](Scene& s) { s.model.getOmbrix(); }},
    {"OXModel::createConstant", kModelingOnly, [](Scene& s) { s.model.createConstant(3); }},
    {"OXModel::createConstant", kModelingOnly, [](Scene& s) { s.model.createConstant(0.5); }},
    {"OXModel::createExpression", kModelingOnly,
     [](Scene& s) { s.model.createExpression(OXOperator::Bool); }},
    {"OXModel::createExpression", kModelingOnly,
     [](Scene& s) { s.model.createExpression(OXOperator::Iif, s.bit, s.bit, s.bit); }},
    {"OXModel::getNbExpressions", kNotRunningOnly, [](Scene& s) { s.model.getNbExpressions(); }},
    {"OXModel::getExpression", kNotRunningOnly, [](Scene& s) { s.model.getExpression(0); }},
    {"OXModel::getExpression", kNotRunningOnly, [](Scene& s) { s.model.getExpression("sum"); }},
    {"OXModel::getNbDecisions", kNotRunningOnly, [](Scene& s) { s.model.getNbDecisions(); }},
    {"OXModel::getDecision", kNotRunningOnly, [](Scene& s) { s.model.getDecision(0); }},
    {"OXModel::addConstraint", kModelingOnly, [](Scene& s) { s.model.addConstraint(s.bit); }},
    {"OXModel::getNbConstraints", kNotRunningOnly, [](Scene& s) { s.model.getNbConstraints(); }},
    {"OXModel::addObjective", kModelingOnly,
     [](Scene& s) { s.model.addObjective(s.bit, OXObjectiveDirection::Minimize); }},
    {"OXModel::getNbObjectives", kNotRunningOnly, [](Scene& s) { s.model.getNbObjectives(); }},
    {"OXModel::getObjective", kNotRunningOnly, [](Scene& s) { s.model.getObjective(0); }},
    {"OXModel::getObjectiveDirection", kNotRunningOnly,
     [](Scene& s) { s.model.getObjectiveDirection(0); }},
    {"OXModel::getNbOperands", kNotRunningOnly, [](Scene& s) { s.model.getNbOperands(); }},
    {"OXModel::close", kModelingOnly, [](Scene& s) { s.model.close(); }},
    {"OXModel::open", kStoppedOnly, [](Scene& s) { s.model.open(); }},
    {"OXModel::isClosed", kNotRunningOnly, [](Scene& s) { s.model.isClosed(); }},
    {"OXModel::toString", kNotRunningOnly, [](Scene& s) { s.model.toString(); }},
};

const std::vector<Call> kExpressionCalls = {
    {"OXExpression::getOmbrix", kNotRunningOnly, [](Scene& s) { s.sum->getOmbrix(); }},
    {"OXExpression::getModel", kNotRunningOnly, [](Scene& s) { s.sum->getModel(); }},
    {"OXExpression::getOperator", kNotRunningOnly, [](Scene& s) { s.sum->getOperator(); }},
    {"OXExpression::getIndex", kNotRunningOnly, [](Scene& s) { s.sum->getIndex(); }},
    {"OXExpression::isConstant", kNotRunningOnly, [](Scene& s) { s.sum->isConstant(); }},
    {"OXExpression::isDecision", kNotRunningOnly, [](Scene& s) { s.sum->isDecision(); }},
    {"OXExpression::isConstraint", kNotRunningOnly, [](Scene& s) { s.sum->isConstraint(); }},
    {"OXExpression::isObjective", kNotRunningOnly, [](Scene& s) { s.sum->isObjective(); }},
    {"OXExpression::isDouble", kPausedOrStoppedOnly, [](Scene& s) { s.sum->isDouble(); }},
    {"OXExpression::isInt", kPausedOrStoppedOnly, [](Scene& s) { s.sum->isInt(); }},
    {"OXExpression::isBool", kPausedOrStoppedOnly, [](Scene& s) { s.sum->isBool(); }},
    {"OXExpression::isArray", kPausedOrStoppedOnly, [](Scene& s) { s.sum->isArray(); }},
    {"OXExpression::addOperand", kOperands, [](Scene& s) { s.sum->addOperand(s.bit); }},
    {"OXExpression::addOperand", kModelingOnly, [](Scene& s) { s.sum->addOperand(3); }},
    {"OXExpression::addOperand", kModelingOnly, [](Scene& s) { s.real->addOperand(0.5); }},
    {"OXExpression::setOperand", kOperands, [](Scene& s) { s.sum->setOperand(0, s.bit); }},
    {"OXExpression::setOperand", kModelingOnly, [](Scene& s) { s.sum->setOperand(0, 3); }},
    {"OXExpression::setOperand", kModelingOnly, [](Scene& s) { s.real->setOperand(0, 0.5); }},
    {"OXExpression::getOperand", kNotRunningOnly, [](Scene& s) { s.sum->getOperand(0); }},
    {"OXExpression::getNbOperands", kNotRunningOnly, [](Scene& s) { s.sum->getNbOperands(); }},
    {"OXExpression::setValue", kValueWriters, [](Scene& s) { s.bit->setValue(1); }},
    {"OXExpression::setIntValue", kValueWriters, [](Scene& s) { s.bit->setIntValue(1); }},
    {"OXExpression::getValue", kPausedOrStoppedOnly, [](Scene& s) { s.sum->getValue(); }},
    {"OXExpression::getIntValue", kPausedOrStoppedOnly, [](Scene& s) { s.sum->getIntValue(); }},
    {"OXExpression::getDoubleValue", kPausedOrStoppedOnly,
     [](Scene& s) { s.real->getDoubleValue(); }},
    {"OXExpression::getIntValue", kConstantReaders, [](Scene& s) { s.three->getIntValue(); }},
    {"OXExpression::getDoubleValue", kConstantReaders, [](Scene& s) { s.half->getDoubleValue(); }},
    {"OXExpression::setName", kModelingOnly, [](Scene& s) { s.sum->setName("total"); }},
    {"OXExpression::isNamed", kNotRunningOnly, [](Scene& s) { s.sum->isNamed(); }},
    {"OXExpression::getName", kNotRunningOnly, [](Scene& s) { s.sum->getName(); }},
    {"OXExpression::toString", kNotRunningOnly, [](Scene& s) { s.sum->toString(); }},
    {"OXExpression::getInfo", kNotRunningOnly, [](Scene& s) { s.sum->getInfo(); }},
};

const std::vector<Call> kParamCalls = {
    {"OXParam::getOmbrix", kNotRunningOnly, [](Scene& s) { s.param.getOmbrix(); }},
    {"OXParam::setSeed", kStoppedOnly, [](Scene& s) { s.param.setSeed(3); }},
    {"OXParam::getSeed", kPausedOrStoppedOnly, [](Scene& s) { s.param.getSeed(); }},
    {"OXParam::setNbThreads", kStoppedOnly, [](Scene& s) { s.param.setNbThreads(3); }},
    {"OXParam::getNbThreads", kPausedOrStoppedOnly, [](Scene& s) { s.param.getNbThreads(); }},
    {"OXParam::setAnnealingLevel", kStoppedOnly, [](Scene& s) { s.param.setAnnealingLevel(3); }},
    {"OXParam::getAnnealingLevel", kPausedOrStoppedOnly,
     [](Scene& s) { s.param.getAnnealingLevel(); }},
    {"OXParam::setVerbosity", kStoppedOnly, [](Scene& s) { s.param.setVerbosity(0); }},
    {"OXParam::getVerbosity", kPausedOrStoppedOnly, [](Scene& s) { s.param.getVerbosity(); }},
    {"OXParam::setTimeBetweenDisplays", kStoppedOnly,
     [](Scene& s) { s.param.setTimeBetweenDisplays(3); }},
    {"OXParam::getTimeBetweenDisplays", kPausedOrStoppedOnly,
     [](Scene& s) { s.param.getTimeBetweenDisplays(); }},
    {"OXParam::setIntObjectiveBound", kStoppedOnly,
     [](Scene& s) { s.param.setIntObjectiveBound(0, 3); }},
    {"OXParam::setDoubleObjectiveBound", kStoppedOnly,
     [](Scene& s) { s.param.setDoubleObjectiveBound(1, 3.0); }},
    {"OXParam::setObjectiveBound", kStoppedOnly, [](Scene& s) { s.param.setObjectiveBound(0, 3); }},
    {"OXParam::setObjectiveBound", kStoppedOnly,
     [](Scene& s) { s.param.setObjectiveBound(1, 3.0); }},
    {"OXParam::getIntObjectiveBound", kPausedOrStoppedOnly,
     [](Scene& s) { s.param.getIntObjectiveBound(0); }},
    {"OXParam::getDoubleObjectiveBound", kPausedOrStoppedOnly,
     [](Scene& s) { s.param.getDoubleObjectiveBound(1); }},
    {"OXParam::getObjectiveBound", kPausedOrStoppedOnly,
     [](Scene& s) { s.param.getObjectiveBound(0); }},
    {"OXParam::setAdvancedParam", kNotRunningOnly,
     [](Scene& s) { s.param.setAdvancedParam("other", 1); }},
    {"OXParam::getAdvancedParam", kPausedOrStoppedOnly,
     [](Scene& s) { s.param.getAdvancedParam("key"); }},
    {"OXParam::getAdvancedParam", kPausedOrStoppedOnly,
     [](Scene& s) { s.param.getAdvancedParam("absent", 3); }},
    {"OXParam::toString", kNotRunningOnly, [](Scene& s) { s.param.toString(); }},
};

const std::vector<Call> kPhaseCalls = {
    {"OXPhase::getOmbrix", kStoppedOnly, [](Scene& s) { s.phase.getOmbrix(); }},
    {"OXPhase::setTimeLimit", kStoppedOnly, [](Scene& s) { s.phase.setTimeLimit(3); }},
    {"OXPhase::getTimeLimit", kPausedOrStoppedOnly, [](Scene& s) { s.phase.getTimeLimit(); }},
    {"OXPhase::setIterationLimit", kStoppedOnly, [](Scene& s) { s.phase.setIterationLimit(3); }},
    {"OXPhase::getIterationLimit", kPausedOrStoppedOnly,
     [](Scene& s) { s.phase.getIterationLimit(); }},
    {"OXPhase::setOptimizedObjective", kStoppedOnly,
     [](Scene& s) { s.phase.setOptimizedObjective(0); }},
    {"OXPhase::getOptimizedObjective", kPausedOrStoppedOnly,
     [](Scene& s) { s.phase.getOptimizedObjective(); }},
    {"OXPhase::getStatistics", kPausedOrStoppedOnly, [](Scene& s) { s.phase.getStatistics(); }},
    {"OXPhase::toString", kAlways, [](Scene& s) { s.phase.toString(); }},
};

const std::vector<Call> kSolutionCalls = {
    {"OXSolution::getOmbrix", kNotRunningOnly, [](Scene& s) { s.solution.getOmbrix(); }},
    {"OXSolution::setIntValue", kStoppedOnly, [](Scene& s) { s.solution.setIntValue(s.bit, 1); }},
    {"OXSolution::setValue", kStoppedOnly, [](Scene& s) { s.solution.setValue(s.bit, 1); }},
    {"OXSolution::getIntValue", kPausedOrStoppedOnly,
     [](Scene& s) { s.solution.getIntValue(s.sum); }},
    {"OXSolution::getValue", kPausedOrStoppedOnly, [](Scene& s) { s.solution.getValue(s.sum); }},
    {"OXSolution::getDoubleValue", kPausedOrStoppedOnly,
     [](Scene& s) { s.solution.getDoubleValue(s.real); }},
    {"OXSolution::clear", kStoppedOnly, [](Scene& s) { s.solution.clear(); }},
};

const std::vector<Call> kStatisticsCalls = {
    {"OXStatistics::getOmbrix", kAlways, [](Scene& s) { s.statistics.getOmbrix(); }},
    {"OXStatistics::getRunningTime", kPausedOrStoppedOnly,
     [](Scene& s) { s.statistics.getRunningTime(); }},
    {"OXStatistics::getNbIterations", kPausedOrStoppedOnly,
     [](Scene& s) { s.statistics.getNbIterations(); }},
    {"OXStatistics::getNbMoves", kPausedOrStoppedOnly, [](Scene& s) { s.statistics.getNbMoves(); }},
    {"OXStatistics::getNbAcceptedMoves", kPausedOrStoppedOnly,
     [](Scene& s) { s.statistics.getNbAcceptedMoves(); }},
    {"OXStatistics::getNbImprovingMoves", kPausedOrStoppedOnly,
     [](Scene& s) { s.statistics.getNbImprovingMoves(); }},
    {"OXStatistics::getNbRejectedMoves", kPausedOrStoppedOnly,
     [](Scene& s) { s.statistics.getNbRejectedMoves(); }},
    {"OXStatistics::getNbInfeasibleMoves", kPausedOrStoppedOnly,
     [](Scene& s) { s.statistics.getNbInfeasibleMoves(); }},
    {"OXStatistics::getPercentAcceptedMoves", kPausedOrStoppedOnly,
     [](Scene& s) { s.statistics.getPercentAcceptedMoves(); }},
    {"OXStatistics::getPercentImprovingMoves", kPausedOrStoppedOnly,
     [](Scene& s) { s.statistics.getPercentImprovingMoves(); }},
    {"OXStatistics::getPercentRejectedMoves", kPausedOrStoppedOnly,
     [](Scene& s) { s.statistics.getPercentRejectedMoves(); }},
    {"OXStatistics::getPercentInfeasibleMoves", kPausedOrStoppedOnly,
     [](Scene& s) { s.statistics.getPercentInfeasibleMoves(); }},
    {"OXStatistics::toString", kPausedOrStoppedOnly, [](Scene& s) { s.statistics.toString(); }},
    {"OXStatistics::getInfo", kNeverStarted, [](Scene& s) { s.statistics.getInfo(); }},
};

/// The texts of the whole solver, read in a state in which they can be.
std::string snapshot(Scene& scene, OXState state) {
  const bool wasOpen = state == OXState::Modeling;
  SolverRecord::setState(scene.solver, wasOpen ? OXState::Modeling : OXState::Stopped);
  std::string text = scene.solver.toString();
  for (int i = 0; i < scene.model.getNbExpressions(); ++i) {
    text += scene.model.getExpression(i)->getInfo();
    if (!wasOpen && !scene.model.getExpression(i)->isDouble()) {
      text += std::to_string(scene.model.getExpression(i)->getIntValue());
    }
  }
  SolverRecord::setState(scene.solver, state);
  return text;
}

void expectAnswer(const Call& call, OXState state) {
  SCOPED_TRACE(std::string(call.name) + " in state " + std::to_string(static_cast<int>(state)));
  Scene scene(state);
  const char* answer = call.answers[static_cast<std::size_t>(state)];
  if (answer == nullptr) {
    EXPECT_NO_THROW(call.action(scene));
  } else {
    const std::string before = snapshot(scene, state);
    expectFailure(0, call.name, answer, [&] { call.action(scene); });
    EXPECT_EQ(scene.solver.getState(), state);
    EXPECT_EQ(snapshot(scene, state), before);
  }
}

class StateCheckTest : public ::testing::TestWithParam<const std::vector<Call>*> {};

TEST_P(StateCheckTest, EachCallIsAllowedInItsStatesAndChangesNothingInOthers) {
  for (const Call& call : *GetParam()) {
    for (const OXState state : kStates) expectAnswer(call, state);
  }
}

INSTANTIATE_TEST_SUITE_P(AllObjects, StateCheckTest,
                         ::testing::Values(&kSolverCalls, &kModelCalls, &kExpressionCalls,
                                           &kParamCalls, &kPhaseCalls, &kSolutionCalls,
                                           &kStatisticsCalls));

TEST(OmbrixTest, CallsWithLargeEffectsAreRefusedInTheSameWay) {
  for (const OXState state : {OXState::Modeling, OXState::Running, OXState::Paused}) {
    Scene scene(state);
    expectFailure(0, "Ombrix::solve", kStopped, [&] { scene.solver.solve(); });
    expectFailure(0, "OXSolution::setDoubleValue", kStopped,
                  [&] { scene.solution.setDoubleValue(scene.real, 1.0); });
  }
  for (const OXState state : {OXState::Running, OXState::Paused, OXState::Stopped}) {
    Scene scene(state);
    expectFailure(0, "Ombrix::loadEnvironment", kModeling,
                  [&] { scene.solver.loadEnvironment(""); });
  }
  for (const OXState state : {OXState::Modeling, OXState::Running}) {
    Scene scene(state);
    expectFailure(0, "OXSolution::getStatus", kPausedOrStopped,
                  [&] { scene.solution.getStatus(); });
    expectFailure(0, "OXExpression::setDoubleValue", kPausedOrStopped,
                  [&] { scene.real->setDoubleValue(1.0); });
  }
  Scene running(OXState::Running);
  expectFailure(0, "Ombrix::saveEnvironment", kNotRunning,
                [&] { running.solver.saveEnvironment(""); });
}

TEST(OmbrixTest, AFreshSolverIsModeling) {
  Ombrix solver;
  EXPECT_EQ(solver.getState(), OXState::Modeling);
  EXPECT_EQ(static_cast<int>(solver.getState()), 0);
  EXPECT_EQ(solver.getModel()->getNbExpressions(), 0);
}

TEST(OmbrixTest, ClosingLeadsToStoppedAndOpeningBack) {
  Scene scene(OXState::Modeling);
  scene.model.close();
  EXPECT_EQ(static_cast<int>(scene.solver.getState()), 3);
  scene.model.open();
  EXPECT_EQ(scene.solver.getState(), OXState::Modeling);
}

TEST(OmbrixTest, StopWithoutASearchDoesNothing) {
  Ombrix solver;
  solver.stop();
  EXPECT_EQ(solver.getState(), OXState::Modeling);
  EXPECT_FALSE(SolverRecord::stopRequested(solver));
}

TEST(OmbrixTest, PhasesOutliveOpeningAndAreFoundInOrder) {
  Scene scene(OXState::Stopped);
  OXPhase* second = scene.solver.createPhase();
  EXPECT_EQ(scene.solver.getNbPhases(), 2);
  EXPECT_EQ(scene.solver.getPhase(0), &scene.phase);
  EXPECT_EQ(scene.solver.getPhase(1), second);
  scene.model.open();
  expectFailure(0, "Ombrix::getPhase", kPausedOrStopped, [&] { scene.solver.getPhase(0); });
  scene.model.close();
  EXPECT_EQ(scene.solver.getNbPhases(), 2);
  for (const int index : {-1, 2}) {
    expectFailure(0, "Ombrix::getPhase",
                  "Phase with index " + std::to_string(index) +
                      " does not exist.\nOnly indices from 0 to 1 are currently allowed.",
                  [&] { scene.solver.getPhase(index); });
  }
}

TEST(OmbrixTest, FilesHaveAName) {
  Scene scene(OXState::Modeling);
  const char* text = "Argument fileName cannot be an empty string.";
  expectFailure(0, "Ombrix::saveEnvironment", text, [&] { scene.solver.saveEnvironment(""); });
  expectFailure(0, "Ombrix::loadEnvironment", text, [&] { scene.solver.loadEnvironment(""); });
}

TEST(OmbrixTest, AnEnvironmentIsLoadedIntoAnEmptyModelOnly) {
  Scene scene(OXState::Modeling);
  expectFailure(2, "Ombrix::loadEnvironment",
                "Cannot load the given environment. The current model must be empty.",
                [&] { scene.solver.loadEnvironment("some.oxm"); });
}

TEST(OmbrixTest, PrintsModelParametersAndPhases) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  model.addObjective(model.createExpression(OXOperator::Bool), OXObjectiveDirection::Maximize);
  model.close();
  const std::string head =
      "Model: \n"
      "  expressions = 1, operands = 0\n"
      "  decisions = 1, constraints = 0, objectives = 1\n"
      "\n"
      "Param: \n";
  const std::string rest =
      "  seed = 0, nb threads = 2, annealing level = 1\n"
      "\n"
      "Objectives:\n"
      "  Obj 0: maximize, no bound\n"
      "\n"
      "Phases:\n";
  EXPECT_EQ(solver.toString(),
            head + "  no time limit, no iteration limit\n" + rest + "  (no phases)\n");
  solver.createPhase()->setTimeLimit(10);
  EXPECT_EQ(solver.toString(),
            head + "  time limit = 10 sec, no iteration limit\n" + rest +
                "  Phase 0: time limit = 10 sec, no iteration limit, optimized objective = 0\n");
}

}  // namespace
}  // namespace ombrix
