#include "solver/move/move.h"

#include <ostream>
#include <utility>

#include "solver/kernel/random.h"
#include "solver/move/infeasibilityorder.h"

namespace ombrix {

std::string formatMoveName(std::uint32_t number, const std::string& base) {
  return std::to_string(number) + "-" + base;
}

Move::Move(std::string moveName, Dag& workerDag, std::uint32_t& state, std::uint32_t moveWeight)
    : name(std::move(moveName)),
      dag(&workerDag),
      rng(&state),
      initialWeight(moveWeight),
      weight(moveWeight) {}

bool Move::evaluate(std::uint32_t level) {
  Propagation& propagation = dag->propagation;
  return propagation.evaluateConstraints(*dag) && propagation.evaluateLevels(*dag, level);
}

bool Move::evaluateAll() {
  return evaluate(dag->propagation.activeLevel);
}

void Move::finish(MoveStatus status) {
  ++nbAttempted;
  switch (status) {
    case MoveStatus::Rejected:
      ++nbRejected;
      break;
    case MoveStatus::Infeasible:
      ++nbInfeasibles;
      break;
    case MoveStatus::Improved:
      ++nbImprovements;
      [[fallthrough]];
    case MoveStatus::Accepted:
      ++nbAccepted;
      dag->propagation.accept(*dag);
      return;
  }
  dag->propagation.reject(*dag);
}

OXValue Move::getObjectiveValue(std::uint32_t objective) const {
  return dag->values[dag->fixedFields->objectives[objective]];
}

Infeasibility Move::getInfeasibility() const {
  return dag->propagation.infeasibility;
}

void Move::printStatistics(std::ostream& out) const {
  out << "Move :" << name << std::endl
      << "NbImprovements : " << nbImprovements << std::endl
      << "NbAccepted : " << nbAccepted << std::endl
      << "NbRejected : " << nbRejected << std::endl
      << "NbInfeasibles : " << nbInfeasibles << std::endl
      << "NbAttempted : " << nbAttempted << std::endl;
}

bool Move::isInfeasibilityWorse() const {
  return ombrix::isInfeasibilityWorse(getInfeasibility(), dag->propagation.tInfeasibility);
}

bool Move::isInfeasibilityBetter() const {
  return ombrix::isInfeasibilityBetter(getInfeasibility(), dag->propagation.tInfeasibility);
}

bool Move::isObjectiveWorse(std::uint32_t objective) const {
  return dag->isWorseThan(objective, getObjectiveValue(objective));
}

bool Move::isObjectiveBetter(std::uint32_t objective) const {
  return dag->isBetterThan(objective, getObjectiveValue(objective));
}

void Move::resetStatistics() {
  weight = initialWeight;
  nbAttempted = 0;
  nbAccepted = 0;
  nbRejected = 0;
  nbImprovements = 0;
  nbInfeasibles = 0;
}

void Move::flip(std::uint32_t decision) {
  dag->propagation.setValue(*dag, decision, 1 - dag->tValues[decision].intValue);
}

void Move::setClamped(std::uint32_t decision, double value) {
  if (!isDouble(decision)) {
    flip(decision);
    return;
  }
  const double lower = dag->fixedFields->minValues[decision].doubleValue;
  const double upper = dag->fixedFields->maxValues[decision].doubleValue;
  if (value > upper && !approxEqual(value, upper)) {
    value = upper;
  } else if (value < lower && !approxEqual(value, lower)) {
    value = lower;
  }
  dag->propagation.setValue(*dag, decision, value);
}

void Move::setRandom(std::uint32_t decision) {
  if (!isDouble(decision)) {
    flip(decision);
    return;
  }
  const double lower = dag->fixedFields->minValues[decision].doubleValue;
  const double upper = dag->fixedFields->maxValues[decision].doubleValue;
  dag->propagation.setValue(*dag, decision, lower + randomUnit(*rng) * (upper - lower));
}

}  // namespace ombrix
