#include "solver/move/movefloattight.h"

#include <limits>

#include "solver/kernel/random.h"

namespace ombrix {

namespace {

/// What the hardware gives for a double beyond 32 bits is kept, without its undefined behaviour.
std::int32_t truncateTo32Bits(double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  const bool fits = value > static_cast<double>(Limits::min()) - 1.0 &&
                    value < static_cast<double>(Limits::max()) + 1.0;
  return fits ? static_cast<std::int32_t>(value) : Limits::min();
}

}  // namespace

MoveFloatTight::MoveFloatTight(Dag& workerDag, std::uint32_t& state,
                               std::span<const std::uint32_t> comparisons)
    : Move("Tight", workerDag, state), doubleComparisons(comparisons) {}

bool MoveFloatTight::apply() {
  if (doubleComparisons.empty()) return false;
  const std::uint32_t side = pickSide();
  const auto valueOf = [this](std::uint32_t node) {
    return doubleValue(dag->fixedFields->domains[node], dag->values[node]);
  };
  const double goal = valueOf(1 - side);
  if (valueOf(side) == goal) return false;
  OXValue target = targetFor(side, goal);
  std::uint32_t decision = kNone;
  OXValue value = OXValue::ofDouble(0.0);
  if (!dag->nodes[side]->pickForTarget(*dag, side, *rng, target, decision, value)) return false;
  setClamped(decision, value.doubleValue);
  return true;
}

std::uint32_t MoveFloatTight::pickSide() {
  const DagFixedFields& fields = *dag->fixedFields;
  const auto nbComparisons = static_cast<std::uint32_t>(doubleComparisons.size());
  const std::uint32_t comparison = doubleComparisons[randomIndex(*rng, nbComparisons)];
  const std::uint32_t side = randomTopBit(*rng) ? 1 : 0;
  const NodeType type = fields.types[fields.operand(comparison, side)];
  const bool isConstant = type == NodeType::Constant || type == NodeType::DoubleConstant;
  return isConstant ? 1 - side : side;
}

OXValue MoveFloatTight::targetFor(std::uint32_t node, double value) const {
  if (isDouble(node)) return OXValue::ofDouble(value);
  return OXValue::ofInt(truncateTo32Bits(value));
}

}  // namespace ombrix
