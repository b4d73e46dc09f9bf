#include "api/oxstatistics.h"

#include <cmath>
#include <sstream>

#include "api/checks.h"
#include "builder/solverrecord.h"
#include "common/failure.h"

namespace ombrix {

namespace {

double roundUpToTenth(double percent) {
  return std::ceil(10.0 * percent) / 10.0;
}

/// "NAME = P%, ", or "NAME < 0.1%, " for what would round to nothing.
std::string shortPercent(const char* name, double percent) {
  std::ostringstream text;
  const double shown = roundUpToTenth(percent);
  if (shown > 0.1) {
    text << name << " = " << shown << "%, ";
  } else {
    text << name << " < 0.1%, ";
  }
  return text.str();
}

}  // namespace

OXStatistics::OXStatistics(Ombrix* owner, const OXPhase* counted) : ombrix(owner), phase(counted) {}

OXStatistics::~OXStatistics() = default;

Ombrix* OXStatistics::getOmbrix() const {
  return ombrix;
}

int OXStatistics::getRunningTime() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getRunningTime"));
  return runningTime;
}

long long OXStatistics::getNbIterations() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getNbIterations"));
  return nbIterations;
}

long long OXStatistics::getNbMoves() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getNbMoves"));
  return nbMoves;
}

long long OXStatistics::getNbAcceptedMoves() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getNbAcceptedMoves"));
  return nbAcceptedMoves;
}

long long OXStatistics::getNbImprovingMoves() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getNbImprovingMoves"));
  return nbImprovingMoves;
}

long long OXStatistics::getNbRejectedMoves() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getNbRejectedMoves"));
  return nbMoves - nbAcceptedMoves;
}

long long OXStatistics::getNbInfeasibleMoves() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getNbInfeasibleMoves"));
  return nbInfeasibleMoves;
}

double OXStatistics::getPercentAcceptedMoves() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getPercentAcceptedMoves"));
  return percentOfMoves(nbAcceptedMoves);
}

double OXStatistics::getPercentImprovingMoves() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getPercentImprovingMoves"));
  return percentOfMoves(nbImprovingMoves);
}

double OXStatistics::getPercentRejectedMoves() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getPercentRejectedMoves"));
  return percentOfMoves(nbMoves - nbAcceptedMoves);
}

double OXStatistics::getPercentInfeasibleMoves() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::getPercentInfeasibleMoves"));
  return percentOfMoves(nbInfeasibleMoves);
}

double OXStatistics::percentOfMoves(std::int64_t count) const {
  if (nbMoves == 0) return 0.0;
  return static_cast<double>(count) * 100.0 / static_cast<double>(nbMoves);
}

std::string OXStatistics::toString() const {
  checks::pausedOrStopped(*ombrix, OMBRIX_HERE("OXStatistics::toString"));
  const std::int64_t nbRejectedMoves = nbMoves - nbAcceptedMoves;
  std::ostringstream text;
  text << "running time = " << runningTime << " sec, nb iterations = " << nbIterations
       << ", nb moves = " << nbMoves << "\n";
  text << "accepted = " << nbAcceptedMoves << " (" << percentOfMoves(nbAcceptedMoves)
       << "%), improving = " << nbImprovingMoves << " (" << percentOfMoves(nbImprovingMoves)
       << "%)\n";
  text << "rejected = " << nbRejectedMoves << " (" << percentOfMoves(nbRejectedMoves)
       << "%), infeasible = " << nbInfeasibleMoves << " (" << percentOfMoves(nbInfeasibleMoves)
       << "%)\n";
  return text.str();
}

std::string OXStatistics::getInfo() const {
  const Where where = OMBRIX_HERE("OXStatistics::getInfo");
  checks::started(*ombrix, where);
  checks::pausedOrStopped(*ombrix, where);
  std::ostringstream text;
  text << "mov = " << nbMoves << ", " << shortPercent("inf", percentOfMoves(nbInfeasibleMoves))
       << shortPercent("acc", percentOfMoves(nbAcceptedMoves)) << "imp = " << nbImprovingMoves;
  return text.str();
}

void OXStatistics::resetCounters() {
  const std::int32_t kept = runningTime;
  refresh(SearchCounters{.runningTime = kept});
}

void OXStatistics::refresh(const SearchCounters& counters) {
  runningTime = counters.runningTime;
  nbIterations = counters.nbIterations;
  nbMoves = counters.nbMoves;
  nbAcceptedMoves = counters.nbAcceptedMoves;
  nbImprovingMoves = counters.nbImprovingMoves;
  nbInfeasibleMoves = counters.nbInfeasibleMoves;
}

void OXStatistics::refreshTotals() {
  SearchCounters totals;
  for (const std::unique_ptr<OXPhase>& counted : SolverRecord::phases(*ombrix)) {
    const SearchCounters counters = SolverRecord::counters(SolverRecord::statistics(*counted));
    totals.runningTime += counters.runningTime;
    totals.nbIterations += counters.nbIterations;
    totals.nbMoves += counters.nbMoves;
    totals.nbAcceptedMoves += counters.nbAcceptedMoves;
    totals.nbImprovingMoves += counters.nbImprovingMoves;
    totals.nbInfeasibleMoves += counters.nbInfeasibleMoves;
  }
  refresh(totals);
}

SearchCounters SolverRecord::counters(const OXStatistics& statistics) {
  return {.runningTime = statistics.runningTime,
          .nbIterations = statistics.nbIterations,
          .nbMoves = statistics.nbMoves,
          .nbAcceptedMoves = statistics.nbAcceptedMoves,
          .nbImprovingMoves = statistics.nbImprovingMoves,
          .nbInfeasibleMoves = statistics.nbInfeasibleMoves};
}

}  // namespace ombrix
