#include "api/oxphase.h"

#include <limits>
#include <sstream>

#include "api/checks.h"
#include "builder/modelrecord.h"
#include "builder/solverrecord.h"
#include "common/failure.h"
#include "common/messages.h"

namespace ombrix {

namespace {

int nbObjectives(const Ombrix& solver) {
  return static_cast<int>(ModelRecord::objectives(SolverRecord::model(solver)).size());
}

}  // namespace

OXPhase::OXPhase(Ombrix* owner)
    : ombrix(owner),
      statistics(new OXStatistics(owner, this)),
      timeLimit(kNoTimeLimit),
      iterationLimit(kNoIterationLimit),
      optimizedObjective(nbObjectives(*owner) - 1) {}

OXPhase::~OXPhase() = default;

Ombrix* OXPhase::getOmbrix() const {
  checks::stoppedOnly(*ombrix, OMBRIX_HERE("OXPhase::getOmbrix"));
  return ombrix;
}

void OXPhase::setTimeLimit(int seconds) {
  const Where where = OMBRIX_HERE("OXPhase::setTimeLimit");
  checks::stoppedOnly(*ombrix, where);
  if (seconds < 1) fail(kMisuse, where, messages::notStrictlyPositive("timeLimit"));
  timeLimit = seconds;
}

int OXPhase::getTimeLimit() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXPhase::getTimeLimit"));
  return timeLimit;
}

void OXPhase::setIterationLimit(long long nbIterations) {
  const Where where = OMBRIX_HERE("OXPhase::setIterationLimit");
  checks::stoppedOnly(*ombrix, where);
  if (nbIterations < 1) fail(kMisuse, where, messages::notStrictlyPositive("iterationLimit"));
  iterationLimit = nbIterations;
}

long long OXPhase::getIterationLimit() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXPhase::getIterationLimit"));
  return iterationLimit;
}

void OXPhase::setOptimizedObjective(int objective) {
  const Where where = OMBRIX_HERE("OXPhase::setOptimizedObjective");
  checks::stoppedOnly(*ombrix, where);
  const int nb = nbObjectives(*ombrix);
  if (objective < 0 || objective >= nb) {
    fail(kMisuse, where, messages::badIndex("Objective", objective, nb - 1));
  }
  optimizedObjective = objective;
}

int OXPhase::getOptimizedObjective() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXPhase::getOptimizedObjective"));
  return optimizedObjective;
}

OXStatistics* OXPhase::getStatistics() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXPhase::getStatistics"));
  return statistics.get();
}

std::string OXPhase::toString() const {
  std::ostringstream text;
  if (timeLimit == kNoTimeLimit) {
    text << "no time limit, ";
  } else {
    text << "time limit = " << timeLimit << " sec, ";
  }
  if (iterationLimit == kNoIterationLimit) {
    text << "no iteration limit, ";
  } else {
    text << "iteration limit = " << iterationLimit << ", ";
  }
  text << "optimized objective = " << optimizedObjective;
  return text.str();
}

}  // namespace ombrix
