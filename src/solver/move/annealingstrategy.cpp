#include "solver/move/annealingstrategy.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "solver/kernel/heuristic.h"
#include "solver/kernel/random.h"

namespace ombrix {

AnnealingStrategy::AnnealingStrategy(Heuristic& owner) : HeuristicStrategy(owner) {
  const std::uint32_t nbObjectives = heuristic.dag->fixedFields->nbObjectives();
  lastValues.assign(nbObjectives, CacheLineVector<double>(windowSize, 0.0));
  windowSums.assign(nbObjectives, 0.0);
}

void AnnealingStrategy::setWindowSize(std::uint32_t size) {
  windowSize = size;
  for (CacheLineVector<double>& ring : lastValues) ring.resize(size, 0.0);
  resetWindow();
}

void AnnealingStrategy::resetWindow() {
  for (CacheLineVector<double>& ring : lastValues) std::fill(ring.begin(), ring.end(), 0.0);
  std::fill(windowSums.begin(), windowSums.end(), 0.0);
  nbSinceImprovement = 0;
  nbImprovements = 0;
  degradationActivated = true;
  objectiveIndex = heuristic.objectiveIndex;
}

void AnnealingStrategy::reset() {
  nbDegradingMoves = 0;
  lastProbability = 0;
  resetWindow();
}

void AnnealingStrategy::beforeIteration() {
  if (nbSinceImprovement > plateauLength) degradationActivated = false;
  if (nbImprovements < windowSize) degradationActivated = false;
  if (heuristic.objectiveIndex != objectiveIndex) resetWindow();
}

void AnnealingStrategy::afterMove(MoveStatus status) {
  if (windowSize == 1) return;
  if (status != MoveStatus::Improved) {
    ++nbSinceImprovement;
    return;
  }
  ++nbImprovements;
  nbSinceImprovement = 0;
  degradationActivated = true;
  updateWindow();
}

void AnnealingStrategy::updateWindow() {
  const Dag& dag = *heuristic.dag;
  const DagFixedFields& fields = *dag.fixedFields;
  const std::uint32_t place = nbImprovements % windowSize;
  for (std::uint32_t i = 0; i < fields.nbObjectives(); ++i) {
    const std::uint32_t node = fields.objectives[i];
    double& entry = lastValues[i][place];
    windowSums[i] -= entry;
    entry = doubleValue(fields.domains[node], dag.values[node]);
    windowSums[i] += entry;
  }
}

bool AnnealingStrategy::decide(MoveStatus& status, Move&) {
  status = MoveStatus::Rejected;
  if (!degradationActivated) return true;
  const Dag& dag = *heuristic.dag;
  const DagFixedFields& fields = *dag.fixedFields;
  const std::uint32_t objective = heuristic.objectiveIndex;
  const std::uint32_t node = fields.objectives[objective];
  const double mean = windowSums[objective] / windowSize;
  const double candidate = doubleValue(fields.domains[node], dag.tValues[node]);
  const bool isBeyond = fields.directions[objective] == 0 ? candidate > mean : candidate < mean;
  if (isBeyond && !approxEqual(candidate, mean)) return true;
  const double last = lastValues[objective][nbImprovements % windowSize];
  lastProbability = std::exp(-std::fabs((candidate - last) / (mean - last)));
  // Not a number when mean and last are equal: the comparison then fails, and so does the
  // candidate.
  if (!(lastProbability >= randomUnit(*heuristic.rng))) return false;
  ++nbDegradingMoves;
  status = MoveStatus::Accepted;
  return true;
}

void AnnealingStrategy::printStatistics(std::ostream& out) const {
  out << "annealing window size: " << windowSize << ", plateau length: " << plateauLength << '\n'
      << "degradation activated: " << (degradationActivated ? "yes" : "no")
      << ", nb degrading moves: " << nbDegradingMoves
      << ", last degradation probability: " << lastProbability << '\n';
}

}  // namespace ombrix
