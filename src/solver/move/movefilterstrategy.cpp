#include "solver/move/movefilterstrategy.h"

#include <ostream>

#include "solver/kernel/heuristic.h"
#include "solver/kernel/random.h"

namespace ombrix {

void MoveFilterStrategy::beforeIteration() {
  // In 32 bits, so that a search of more iterations than that keeps its period.
  if (static_cast<std::uint32_t>(heuristic.nbIterations) - lastFilter < period) return;
  filter();
  if (explorationEnabled) explore();
  heuristic.movePool.rebuild();
  lastFilter = static_cast<std::uint32_t>(heuristic.nbIterations);
}

void MoveFilterStrategy::filter() {
  const std::size_t nbMoves = heuristic.movePool.moves.size();
  scores.clear();
  increased.clear();
  decreased.clear();
  scores.reserve(nbMoves);
  increased.reserve(nbMoves);
  decreased.reserve(nbMoves);
  sortByDueWeight(computeScores());
  if (!increased.empty() && !decreased.empty()) shiftWeights();
}

/// Fills scores and returns their sum.
double MoveFilterStrategy::computeScores() {
  double improvedScore = 0.0;
  double acceptedScore = 0.0;
  for (const auto& move : heuristic.movePool.moves) {
    const double factor = move->getSelectionFactor();
    improvedScore += factor * move->nbImprovements / (move->nbInfeasibles + 1.0);
    acceptedScore += factor * move->nbAccepted / (move->nbInfeasibles + 1.0);
  }
  const bool hasHistory = improvedScore * acceptedScore != 0.0;
  double total = 0.0;
  for (const auto& move : heuristic.movePool.moves) {
    double score = move->getSelectionFactor();
    // A move that was never tried gives zero by zero, which is not above the ratio.
    if (static_cast<double>(move->nbInfeasibles) / move->nbAttempted > infeasibleRatio) {
      score = 0.0;
    } else if (hasHistory) {
      const double factor = score;
      score = factor + (10.0 * (factor * move->nbAccepted / acceptedScore) +
                        30.0 * (factor * move->nbImprovements / improvedScore));
    }
    scores.push_back(score);
    total += score;
  }
  return total;
}

void MoveFilterStrategy::sortByDueWeight(double totalScore) {
  const auto& moves = heuristic.movePool.moves;
  std::uint32_t totalWeight = 0;
  for (const auto& move : moves) totalWeight += move->weight;
  for (std::size_t i = 0; i < moves.size(); ++i) {
    Move* move = moves[i].get();
    std::uint32_t target =
        totalScore > 0.0 ? static_cast<std::uint32_t>(scores[i] / totalScore * totalWeight) : 0;
    if (target == 0 && move->nbAccepted > 0) target = 1;
    if (target > move->weight) increased.push_back(move);
    if (target < move->weight) decreased.push_back(move);
  }
}

void MoveFilterStrategy::shiftWeights() {
  std::uint32_t& rng = *heuristic.rng;
  const auto nbUnits = static_cast<std::uint32_t>(decreased.size());
  const auto nbIncreased = static_cast<std::uint32_t>(increased.size());
  for (std::uint32_t i = 0; i < nbUnits; ++i) ++increased[randomIndex(rng, nbIncreased)]->weight;
  for (std::uint32_t nbTaken = 0; nbTaken < nbUnits;) {
    Move* move = decreased[randomIndex(rng, nbUnits)];
    if (move->weight == 0) continue;
    --move->weight;
    ++nbTaken;
  }
}

void MoveFilterStrategy::explore() {
  Move* heaviest = nullptr;
  double total = 0.0;
  bool hasDropped = false;
  for (const auto& move : heuristic.movePool.moves) {
    if (move->weight == 0) {
      hasDropped = true;
      total += move->getSelectionFactor();
    }
    if (heaviest == nullptr || move->weight > heaviest->weight) heaviest = move.get();
  }
  if (hasDropped) revive(randomUnit(*heuristic.rng), total, *heaviest);
}

/// Gives a unit of the heaviest move to the dropped move that stands at a share of their total.
void MoveFilterStrategy::revive(double share, double total, Move& heaviest) {
  double reached = 0.0;
  for (const auto& move : heuristic.movePool.moves) {
    if (move->weight != 0) continue;
    reached += move->getSelectionFactor() / total;
    if (reached < share) continue;
    move->weight = 1;
    --heaviest.weight;
    return;
  }
}

void MoveFilterStrategy::printStatistics(std::ostream& out) const {
  out << "move filter exploration enabled: " << (explorationEnabled ? "yes" : "no") << '\n'
      << "move filter period: " << period << '\n'
      << "move filter infeasible ratio: " << infeasibleRatio << '\n';
}

}  // namespace ombrix
