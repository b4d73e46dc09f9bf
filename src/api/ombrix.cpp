#include "api/ombrix.h"

#include <limits>
#include <sstream>

#include "api/checks.h"
#include "builder/modelreader.h"
#include "builder/modelwriter.h"
#include "builder/parallelizer.h"
#include "builder/solverrecord.h"
#include "builder/worker.h"
#include "common/failure.h"
#include "common/messages.h"

namespace ombrix {

Ombrix::Ombrix()
    : state(OXState::Modeling),
      stopRequested(0),
      model(new OXModel(this)),
      param(new OXParam(this)),
      solution(new OXSolution(this)),
      statistics(new OXStatistics(this, nullptr)) {
  addCallback(kPhaseStart, onPhaseStart, this);
  addCallback(kPhaseEnd, onPhaseEnd, this);
  addCallback(kTick, onTick, this);
}

Ombrix::~Ombrix() {
  stop();
  parallelizer.reset();
  solution.reset();
  statistics.reset();
  workers.clear();
  phases.clear();
  param.reset();
  model.reset();
}

void Ombrix::addCallback(std::int32_t event, CallbackFunction function, void* data) {
  callbackEvents.push_back(event);
  callbackFunctions.push_back(function);
  callbackData.push_back(data);
}

OXState Ombrix::getState() const {
  return state.load();
}

OXModel* Ombrix::getModel() const {
  checks::notRunning(*this, OMBRIX_HERE("Ombrix::getModel"));
  return model.get();
}

OXParam* Ombrix::getParam() const {
  checks::notRunning(*this, OMBRIX_HERE("Ombrix::getParam"));
  return param.get();
}

OXPhase* Ombrix::createPhase() {
  const Where where = OMBRIX_HERE("Ombrix::createPhase");
  checks::stoppedOnly(*this, where);
  constexpr std::int32_t limit = std::numeric_limits<std::int32_t>::max();
  if (phases.size() >= static_cast<std::size_t>(limit)) {
    fail(kMisuse, where, messages::capacityExceeded("phases", limit));
  }
  return &SolverRecord::appendPhase(*this);
}

OXPhase& SolverRecord::appendPhase(Ombrix& solver) {
  solver.phases.emplace_back(new OXPhase(&solver));
  return *solver.phases.back();
}

OXPhase* Ombrix::getPhase(int index) const {
  const Where where = OMBRIX_HERE("Ombrix::getPhase");
  checks::pausedOrStopped(*this, where);
  const int nbPhases = static_cast<int>(phases.size());
  if (index < 0 || index >= nbPhases) {
    fail(kMisuse, where, messages::badIndex("Phase", index, nbPhases - 1));
  }
  return phases[static_cast<std::size_t>(index)].get();
}

int Ombrix::getNbPhases() const {
  checks::pausedOrStopped(*this, OMBRIX_HERE("Ombrix::getNbPhases"));
  return static_cast<int>(phases.size());
}

OXSolution* Ombrix::getSolution() const {
  checks::pausedOrStopped(*this, OMBRIX_HERE("Ombrix::getSolution"));
  return solution.get();
}

OXStatistics* Ombrix::getStatistics() const {
  checks::pausedOrStopped(*this, OMBRIX_HERE("Ombrix::getStatistics"));
  return statistics.get();
}

std::string Ombrix::toString() const {
  checks::notRunning(*this, OMBRIX_HERE("Ombrix::toString"));
  std::ostringstream text;
  text << model->toString() << "\n" << param->toString() << "\n";
  text << "Phases:\n";
  if (phases.empty()) text << "  (no phases)\n";
  for (std::size_t i = 0; i < phases.size(); ++i) {
    text << "  Phase " << i << ": " << phases[i]->toString() << "\n";
  }
  return text.str();
}

void Ombrix::saveEnvironment(const std::string& fileName) const {
  const Where where = OMBRIX_HERE("Ombrix::saveEnvironment");
  checks::notRunning(*this, where);
  if (fileName.empty()) fail(kMisuse, where, messages::emptyString("fileName"));
  checks::transformed(*this, where);
  ModelWriter(*this, fileName).write();
}

void Ombrix::loadEnvironment(const std::string& fileName) {
  const Where where = OMBRIX_HERE("Ombrix::loadEnvironment");
  checks::modelingOnly(*this, where);
  if (fileName.empty()) fail(kMisuse, where, messages::emptyString("fileName"));
  if (model->getNbExpressions() > 0) {
    fail(kInvalidModel, where,
         "Cannot load the given environment. The current model must be empty.");
  }
  ModelReader(*this, fileName).read();
  if (!model->isClosed()) model->close();
}

}  // namespace ombrix
