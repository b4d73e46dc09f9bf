#include "solver/move/movefloatbalance.h"

#include <algorithm>

#include "solver/kernel/random.h"
#include "solver/move/targeting.h"

namespace ombrix {

MoveFloatBalance::MoveFloatBalance(Dag& workerDag, std::uint32_t& state, std::uint32_t rate,
                                   BasicMoveStructure& lists)
    : Move("FloatBalance", workerDag, state), targetingRate(rate), structure(&lists) {}

bool MoveFloatBalance::apply() {
  const DagFixedFields& fields = *dag->fixedFields;
  const DecisionIncidence own = structure->constraintAnalysis->incidence(pickDecision());
  if (own.size() == 0) return false;
  const std::uint32_t entry = randomIndex(*rng, own.size());
  const std::uint32_t list = own.lists[entry];
  const std::uint32_t position = own.positions[entry];
  const std::uint32_t other = pickOtherPosition(position, fields.nbOperands(list));
  if (!isDecisionType(fields.types[fields.operand(list, other)])) return false;
  const Term first = termAt(list, position);
  const Term second = termAt(list, other);
  return tryDirection(first, second, 1.0) || tryDirection(first, second, -1.0);
}

std::uint32_t MoveFloatBalance::pickDecision() {
  std::uint32_t decision = kNone;
  double value = 0.0;
  if (targetingRate != 0 && randomPercent(*rng, targetingRate) &&
      pickTargetedDouble(*dag, *rng, decision, value)) {
    return decision;
  }
  const DagFixedFields& fields = *dag->fixedFields;
  return fields.nodesByGroup[randomIndex(*rng, fields.firstInnerNode)];
}

std::uint32_t MoveFloatBalance::pickOtherPosition(std::uint32_t position,
                                                  std::uint32_t nbOperands) {
  return (position + 1 + randomIndex(*rng, nbOperands - 1)) % nbOperands;
}

MoveFloatBalance::Term MoveFloatBalance::termAt(std::uint32_t list, std::uint32_t position) const {
  const DagFixedFields& fields = *dag->fixedFields;
  double coefficient = 1.0;
  if (fields.types[list] == NodeType::ScalarSum) {
    coefficient = static_cast<double>(fields.scalarsOf(list)[position].intValue);
  } else if (fields.types[list] == NodeType::DoubleScalarSum) {
    coefficient = fields.scalarsOf(list)[position].doubleValue;
  }
  return {coefficient, fields.operand(list, position)};
}

double MoveFloatBalance::valueOf(std::uint32_t decision) const {
  return doubleValue(dag->fixedFields->domains[decision], dag->values[decision]);
}

/// How far the term can move in a direction.
double MoveFloatBalance::room(const Term& term, double direction) const {
  const DagFixedFields& fields = *dag->fixedFields;
  const double slope = direction * term.coefficient;
  const OXValue bound =
      slope > 0 ? fields.maxValues[term.decision] : fields.minValues[term.decision];
  return (doubleValue(fields.domains[term.decision], bound) - valueOf(term.decision)) * slope;
}

bool MoveFloatBalance::tryDirection(const Term& first, const Term& second, double direction) {
  const double shift = std::min(room(first, direction), room(second, -direction));
  if (approxEqual(shift, 0.0)) return false;
  setClamped(first.decision, valueOf(first.decision) + shift / (direction * first.coefficient));
  setClamped(second.decision, valueOf(second.decision) - shift / (direction * second.coefficient));
  return true;
}

}  // namespace ombrix
