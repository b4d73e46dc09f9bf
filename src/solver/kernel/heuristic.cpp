#include "solver/kernel/heuristic.h"

#include <algorithm>
#include <limits>

#include "common/failure.h"
#include "solver/kernel/clock.h"
#include "solver/kernel/random.h"

namespace ombrix {

namespace {

void requireObjective(const Dag& dag, const Where& where) {
  if (dag.fixedFields->objectives.empty()) {
    fail(kInternal, where, "At least one objective is needed.");
  }
}

/// The value that no objective of this direction reaches.
OXValue unreachableValue(bool isDouble, bool isMaximised) {
  if (isDouble) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return OXValue::ofDouble(isMaximised ? infinity : -infinity);
  }
  using Limits = std::numeric_limits<std::int64_t>;
  return OXValue::ofInt(isMaximised ? Limits::max() : Limits::min());
}

}  // namespace

Heuristic::Heuristic(Dag& workerDag, std::uint32_t* state)
    : dag(&workerDag), rng(state), bestSolution(workerDag) {
  requireObjective(*dag, OMBRIX_HERE("Heuristic::Heuristic"));
  objectiveIndex = dag->fixedFields->nbObjectives() - 1;
  reset();
  initObjectiveBounds();
}

void Heuristic::reset() {
  stopRequested = false;
  nbIterations = 0;
  readClock();
  startTime = now;
  bestTime = now;
  bestIteration = 0;
  bestSolution.save();
  for (const auto& move : movePool.moves) move->resetStatistics();
  movePool.rebuild();
  for (HeuristicStrategy* strategy : strategies) strategy->reset();
}

void Heuristic::initObjectiveBounds() {
  requireObjective(*dag, OMBRIX_HERE("Heuristic::initObjectiveBounds"));
  const DagFixedFields& fields = *dag->fixedFields;
  objectiveBounds.clear();
  for (std::uint32_t i = 0; i < fields.nbObjectives(); ++i) {
    const bool isDouble = fields.domains[fields.objectives[i]] == kDoubleDomain;
    objectiveBounds.push_back(unreachableValue(isDouble, fields.directions[i] != 0));
  }
}

void Heuristic::addStrategy(HeuristicStrategy* strategy) {
  strategies.push_back(strategy);
  strategy->reset();
}

void Heuristic::addCallback(HeuristicCallback* callback) {
  callbacks.push_back(callback);
}

void Heuristic::removeCallback(HeuristicCallback* callback) {
  std::erase(callbacks, callback);
}

void Heuristic::readClock() {
  now = clockSeconds();
}

void Heuristic::run() {
  stopRequested = false;
  readClock();
  for (HeuristicCallback* callback : callbacks) callback->onStart();
  while (!stopRequested && canContinue()) {
    step();
    readClock();
    ++nbIterations;
    for (HeuristicCallback* callback : callbacks) callback->onIteration();
  }
  for (HeuristicCallback* callback : callbacks) callback->onEnd();
  stopRequested = false;
}

bool Heuristic::canContinue() const {
  return nbIterations < iterationLimit && static_cast<std::uint32_t>(now - startTime) < timeLimit &&
         !isObjectiveBoundReached() && !movePool.weightedMoves.empty();
}

inline void Heuristic::step() {
  for (HeuristicStrategy* strategy : strategies) strategy->beforeIteration();
  const auto nbChoices = static_cast<std::uint32_t>(movePool.weightedMoves.size());
  Move& move = *movePool.weightedMoves[randomIndex(*rng, nbChoices)];
  if (!move.apply()) {
    move.finish(MoveStatus::Infeasible);
    return;
  }
  const MoveStatus status = decide(move);
  move.finish(status);
  for (HeuristicStrategy* strategy : strategies) strategy->afterMove(status);
  if (status == MoveStatus::Improved) recordBest();
}

inline MoveStatus Heuristic::decide(Move& move) {
  MoveStatus status = MoveStatus::Rejected;
  for (HeuristicStrategy* strategy : strategies) {
    if (strategy->decide(status, move)) return status;
  }
  return MoveStatus::Rejected;
}

void Heuristic::recordBest() {
  // Between infeasible solutions the objectives say nothing.
  const int level = bestSolution.nbViolated < 1 ? static_cast<int>(objectiveIndex) : -1;
  if (bestSolution.compareTo(*dag, level) >= 0) return;
  bestIteration = nbIterations;
  readClock();
  bestTime = now - startTime;
  bestSolution.save();
  if (listener != nullptr) listener->onImprovement(*this);
}

bool Heuristic::isObjectiveBoundReached() const {
  if (!dag->propagation.activeConstraints.isFull()) return false;
  for (std::uint32_t i = 0; i <= objectiveIndex; ++i) {
    if (!isReached(i)) return false;
  }
  return true;
}

inline bool Heuristic::isReached(std::uint32_t objective) const {
  const DagFixedFields& fields = *dag->fixedFields;
  const std::uint32_t node = fields.objectives[objective];
  const bool isMaximised = fields.directions[objective] != 0;
  const OXValue limit = isMaximised ? fields.maxValues[node] : fields.minValues[node];
  const OXValue bound = objectiveBounds[objective];
  const OXValue value = dag->values[node];
  if (fields.domains[node] == kDoubleDomain) {
    const auto isBehind = [&](double v, double goal) {
      return (isMaximised ? v < goal : v > goal) && !approxEqual(v, goal);
    };
    return !isBehind(value.doubleValue, bound.doubleValue) ||
           !isBehind(value.doubleValue, limit.doubleValue);
  }
  const auto isBehind = [&](std::int64_t v, std::int64_t goal) {
    return isMaximised ? v < goal : v > goal;
  };
  return !isBehind(value.intValue, bound.intValue) || !isBehind(value.intValue, limit.intValue);
}

}  // namespace ombrix
