#include "api/checks.h"

#include "builder/modelrecord.h"
#include "builder/solverrecord.h"
#include "common/messages.h"

namespace ombrix::checks {

void modelingOnly(const Ombrix& solver, const Where& where) {
  if (SolverRecord::state(solver) != OXState::Modeling) {
    fail(kMisuse, where,
         "This method is only allowed in state Modeling (the model must not be closed).");
  }
}

void stoppedOnly(const Ombrix& solver, const Where& where) {
  if (SolverRecord::state(solver) != OXState::Stopped) {
    fail(kMisuse, where,
         "This method is only allowed in state Stopped (the model must be closed and the solver "
         "must be stopped).");
  }
}

void pausedOrStopped(const Ombrix& solver, const Where& where) {
  const OXState state = SolverRecord::state(solver);
  if (state != OXState::Paused && state != OXState::Stopped) {
    fail(kMisuse, where,
         "This method is only allowed in states Paused or Stopped (the model must be closed and "
         "the solver must be paused or stopped).");
  }
}

void notRunning(const Ombrix& solver, const Where& where) {
  if (SolverRecord::state(solver) == OXState::Running) {
    fail(kMisuse, where,
         "This method cannot be called in state Running (the model must not be closed or the "
         "solver must be paused or stopped).");
  }
}

void started(const Ombrix& solver, const Where& where) {
  if (!SolverRecord::started(solver)) {
    fail(kMisuse, where,
         "This method cannot be called if the solver has not been started at least once.");
  }
}

void transformed(const Ombrix& solver, const Where& where) {
  const OXModel& model = SolverRecord::model(solver);
  if (ModelRecord::closed(model) && ModelRecord::dagBuilder(model) == nullptr) {
    fail(kInternal, where,
         "The closing of the model failed on the way: open the model, repair it and close it "
         "again.");
  }
}

void ownExpression(const Ombrix& solver, const OXExpression* expr, const char* name,
                   const Where& where) {
  notNull(expr, name, where);
  if (&ModelRecord::model(*expr) != &SolverRecord::model(solver)) {
    fail(kMisuse, where, messages::foreignArgument(name));
  }
}

void notNull(const OXExpression* expr, const char* name, const Where& where) {
  if (expr == nullptr) {
    fail(kMisuse, where, messages::nullArgument(name));
  }
}

}  // namespace ombrix::checks
