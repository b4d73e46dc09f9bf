#include "api/checks.h"
#include "api/ombrix.h"
#include "api/searchobjects.h"
#include "builder/solverrecord.h"

namespace ombrix {

void Ombrix::destroySearch() {
  const std::lock_guard guard(searchMutex);
  parallelizer.reset();
  workers.clear();
}

void Ombrix::stop() {
  const std::lock_guard guard(searchMutex);
  if (state.load() == OXState::Stopped || parallelizer == nullptr) return;
  stopRequested.store(1);
}

void Ombrix::solve() {
  const Where where = OMBRIX_HERE("Ombrix::solve");
  checks::stoppedOnly(*this, where);
  checks::transformed(*this, where);
  fail(kInternal, where, "The search is not part of this build.");
}

std::string Ombrix::getInfo() const {
  const Where where = OMBRIX_HERE("Ombrix::getInfo");
  checks::started(*this, where);
  checks::pausedOrStopped(*this, where);
  return statistics->getInfo();
}

void Ombrix::onPhaseStart(void*) {}
void Ombrix::onPhaseEnd(void*) {}
void Ombrix::onTick(void*) {}

}  // namespace ombrix
