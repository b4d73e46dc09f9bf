#include "cli/signalstopper.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace ombrix::cli {
namespace {

/// A solver with endless phases, and no display.
void makeEndless(Ombrix& solver, int nbPhases) {
  OXModel& model = *solver.getModel();
  OXExpression* sum = model.createExpression(OXOperator::Sum);
  for (int i = 0; i < 20; ++i) sum->addOperand(model.createExpression(OXOperator::Bool));
  model.addConstraint(model.createExpression(OXOperator::Geq, sum, model.createConstant(7)));
  model.addObjective(sum, OXObjectiveDirection::Minimize);
  model.close();
  solver.getParam()->setVerbosity(0);
  for (int i = 0; i < nbPhases; ++i) solver.createPhase();
}

/// Sends the signal to the process while the solver searches.
void interruptSearch(int signal, int nbPhases) {
  Ombrix solver;
  makeEndless(solver, nbPhases);
  const SignalStopper stopper(solver);
  std::thread sender([&] {
    while (solver.getState() == OXState::Stopped) std::this_thread::yield();
    kill(getpid(), signal);
  });
  solver.solve();
  sender.join();
  EXPECT_EQ(solver.getState(), OXState::Stopped);
  EXPECT_EQ(solver.getSolution()->getStatus(), OXSolutionStatus::Feasible);
}

TEST(SignalStopper, CtrlCEndsTheSearch) {
  interruptSearch(SIGINT, 1);
}
TEST(SignalStopper, ATerminationEndsTheSearch) {
  interruptSearch(SIGTERM, 1);
}
TEST(SignalStopper, TheEndOfTheTerminalEndsTheSearch) {
  const auto previous = std::signal(SIGHUP, SIG_DFL);
  interruptSearch(SIGHUP, 1);
  std::signal(SIGHUP, previous);
}
TEST(SignalStopper, OneSignalEndsAllPhases) {
  interruptSearch(SIGINT, 25);
}

TEST(SignalStopper, GivesTheSignalsBack) {
  sigset_t before;
  sigset_t within;
  sigset_t after;
  pthread_sigmask(SIG_SETMASK, nullptr, &before);
  {
    Ombrix solver;
    const SignalStopper stopper(solver);
    pthread_sigmask(SIG_SETMASK, nullptr, &within);
  }
  pthread_sigmask(SIG_SETMASK, nullptr, &after);
  EXPECT_EQ(sigismember(&within, SIGINT), 1);
  EXPECT_EQ(sigismember(&within, SIGTERM), 1);
  EXPECT_EQ(sigismember(&after, SIGINT), sigismember(&before, SIGINT));
  EXPECT_EQ(sigismember(&after, SIGTERM), sigismember(&before, SIGTERM));
}

TEST(SignalStopper, AnIgnoredEndOfTheTerminalStaysIgnored) {
  const auto previous = std::signal(SIGHUP, SIG_IGN);
  sigset_t within;
  {
    Ombrix solver;
    const SignalStopper stopper(solver);
    pthread_sigmask(SIG_SETMASK, nullptr, &within);
  }
  std::signal(SIGHUP, previous);
  EXPECT_EQ(sigismember(&within, SIGHUP), 0);
  EXPECT_EQ(sigismember(&within, SIGINT), 1);
}

TEST(SignalStopper, SignalsAfterTheSearchHaveNoEffect) {
  Ombrix solver;
  makeEndless(solver, 1);
  solver.getPhase(0)->setIterationLimit(1000);
  {
    const SignalStopper stopper(solver);
    solver.solve();
    for (const int signal : {SIGINT, SIGTERM, SIGINT}) kill(getpid(), signal);
  }
  EXPECT_EQ(solver.getSolution()->getStatus(), OXSolutionStatus::Feasible);
}

}  // namespace
}  // namespace ombrix::cli
