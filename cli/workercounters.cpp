#include "cli/workercounters.h"

#include <cstddef>

#include "solver/move/annealingstrategy.h"
#include "solver/move/restartstrategy.h"

namespace ombrix::cli {

WorkerCounters::WorkerCounters(const Heuristic& heuristic) : source(&heuristic) {
  for (const auto& move : heuristic.movePool.moves) {
    moves.emplace_back();
    moves.back().name = move->name;
  }
}

void WorkerCounters::startPhase() {
  iterations.restart();
  for (MoveCounters& move : moves) {
    for (auto* counter :
         {&move.attempted, &move.infeasible, &move.rejected, &move.accepted, &move.improved}) {
      counter->restart();
    }
  }
  degradingMoves.restart();
  restarts.restart();
  restartingIterations.restart();
}

void WorkerCounters::update() {
  iterations.update(source->nbIterations);
  for (std::size_t i = 0; i < moves.size(); ++i) {
    const Move& move = *source->movePool.moves[i];
    moves[i].weight = move.weight;
    moves[i].attempted.update(move.nbAttempted);
    moves[i].infeasible.update(move.nbInfeasibles);
    moves[i].rejected.update(move.nbRejected);
    moves[i].accepted.update(move.nbAccepted);
    moves[i].improved.update(move.nbImprovements);
  }
  for (const HeuristicStrategy* strategy : source->strategies) updateStrategy(*strategy);
}

void WorkerCounters::updateStrategy(const HeuristicStrategy& strategy) {
  if (const auto* annealing = dynamic_cast<const AnnealingStrategy*>(&strategy)) {
    annealingWindow = annealing->windowSize;
    annealingActive = annealing->degradationActivated;
    degradingMoves.update(annealing->nbDegradingMoves);
  } else if (const auto* restart = dynamic_cast<const RestartStrategy*>(&strategy)) {
    restartingRatio = restart->restartingRatio;
    restarts.update(restart->nbRestarts);
    restartingIterations.update(restart->nbRestartingIterations);
  }
}

std::uint64_t WorkerCounters::countIterations() const {
  Counter<std::uint64_t> present = iterations;
  present.update(source->nbIterations);
  return present.getTotal();
}

}  // namespace ombrix::cli
