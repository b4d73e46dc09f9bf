#include "solver/move/moveplanned.h"

#include <algorithm>

#include "solver/kernel/random.h"
#include "solver/move/constraintparents.h"
#include "solver/move/targeting.h"

namespace ombrix {

namespace {

/// The first step always repairs: what the first changes violated comes before any trick.
constexpr std::uint32_t kFirstOwnStep = 1;
constexpr std::uint32_t kMaxFailures = 10;

}  // namespace

MovePlanned::MovePlanned(const std::string& kind, Dag& workerDag, std::uint32_t& state,
                         std::uint32_t nbSteps, std::uint32_t nbFlips, std::uint32_t nbNewViolated,
                         std::uint32_t rate, AutonomousStructure& mirror)
    : Move(formatMoveName(nbFlips, kind), workerDag, state),
      maxSteps(nbSteps),
      maxPending(nbFlips),
      structure(&mirror),
      targetingRate(rate),
      maxNewViolated(nbNewViolated) {
  // The filter holds the operands of one flat node at most.
  std::size_t nbFlatOperands = 1;
  for (const StaticConstraintNode* node : mirror.moveAnalysis->staticNodes) {
    nbFlatOperands =
        std::max<std::size_t>(nbFlatOperands, mirror.moveAnalysis->flatOperands(*node).size());
  }
  filter.reserve(nbFlatOperands);
  shared.reserve(nbFlatOperands);
}

bool MovePlanned::apply() {
  if (structure->dynamicNodes.empty()) return false;
  if (!plan()) {
    structure->dropAllPending();
    return false;
  }
  const SparseSet& pending = structure->pendingDecisions;
  for (std::uint32_t i = 0; i < pending.size(); ++i) {
    flip(dag->fixedFields->nodesByGroup[pending[i]]);
  }
  return true;
}

void MovePlanned::finish(MoveStatus status) {
  Move::finish(status);
  structure->dropAllPending();
}

bool MovePlanned::plan() {
  nbViolatedBefore = structure->violatedNodes.size();
  start();
  std::uint32_t nbFailures = 0;
  for (std::uint32_t step = 0; step <= maxSteps && nbFailures <= kMaxFailures; ++step) {
    if (structure->violatedNodes.size() == 0) break;
    if (!trim()) return false;
    const bool isOpen = structure->violatedNodes.size() > 0;  // a drop can close the last one
    if (step >= kFirstOwnStep && isOpen && tryOwnStep()) continue;
    if (!repair()) ++nbFailures;
  }
  return structure->pendingDecisions.size() > 0 &&
         structure->violatedNodes.size() <= nbViolatedBefore;
}

void MovePlanned::start() {
  origin = kNone;
  if (randomPercent(*rng, targetingRate)) startTargeted();
  if (structure->pendingDecisions.size() == 0) startAnywhere();
}

void MovePlanned::startTargeted() {
  std::uint32_t node = kNone;
  if (!pickTargetedBoolean(*dag, *rng, node)) return;
  const std::uint32_t index = structure->moveAnalysis->staticByNode[node];
  if (index == kNone) return;
  changeFrom(*static_cast<DynamicConstraintNodeBool*>(structure->dynamicNodes[index]));
}

void MovePlanned::startAnywhere() {
  const auto nbNodes = static_cast<std::uint32_t>(structure->dynamicNodes.size());
  origin = randomIndex(*rng, nbNodes);
  for (std::uint32_t i = 0; i < maxPending; ++i) {
    structure->dynamicNodes[origin]->change(*rng, false);
  }
}

/// Keeps a plan from growing while it makes matters worse. False when nothing is left of it.
bool MovePlanned::trim() {
  const SparseSet& pending = structure->pendingDecisions;
  while (pending.size() >= maxPending &&
         structure->violatedNodes.size() >= nbViolatedBefore + maxNewViolated) {
    structure->dropPending(pending[randomIndex(*rng, pending.size())]);
    if (pending.size() == 0) return false;
  }
  return true;
}

/// The violated node with the fewest ways up goes first: it will not be easier later.
bool MovePlanned::repair() {
  const SparseSet& violated = structure->violatedNodes;
  const std::uint32_t nbViolated = violated.size();
  if (nbViolated == 0) return false;
  const std::uint32_t first = randomIndex(*rng, nbViolated);
  DynamicConstraintNode* tightest = nullptr;
  std::uint32_t fewest = kNone;
  for (std::uint32_t i = 0; i < nbViolated; ++i) {
    const std::uint32_t place = first + i < nbViolated ? first + i : first + i - nbViolated;
    DynamicConstraintNode* node = structure->dynamicNodes[violated[place]];
    const std::uint32_t nbWays = node->nbIncreasers();
    if (nbWays == 0) return false;
    if (nbWays < fewest) {
      fewest = nbWays;
      tightest = node;
    }
  }
  return tightest->increase(*rng, true);
}

DynamicConstraintNode* MovePlanned::randomParent(const DynamicConstraintNode& node) {
  const auto parents = constraintParentsOf(*dag->fixedFields, node.getStatic()->node).nodes;
  const auto nbParents = static_cast<std::uint32_t>(parents.size());
  const std::uint32_t first = randomIndex(*rng, nbParents);
  for (std::uint32_t i = 0; i < nbParents; ++i) {
    const std::uint32_t place = first + i < nbParents ? first + i : first + i - nbParents;
    DynamicConstraintNode* parent = structure->nodeOf(parents[place]);
    if (parent != nullptr) return parent;
  }
  return nullptr;
}

std::uint32_t MovePlanned::randomViolated() {
  const SparseSet& violated = structure->violatedNodes;
  return violated[randomIndex(*rng, violated.size())];
}

bool MovePlanned::walkDown(std::uint32_t index, bool up, End& end) {
  const MoveAnalysis& analysis = *structure->moveAnalysis;
  while (!analysis.staticNodes[index]->isFlat(analysis)) {
    std::uint32_t operand = kNone;
    bool operandUp = true;
    if (!structure->dynamicNodes[index]->pickOperand(*rng, up, operand, operandUp)) return false;
    index = operand;
    up = operandUp;
  }
  end = {analysis.staticNodes[index], up};
  return true;
}

void MovePlanned::gatherDecisions(const StaticConstraintNode& flat) {
  const MoveAnalysis& analysis = *structure->moveAnalysis;
  const auto decisionOf = [&](std::uint32_t index) {
    return static_cast<const StaticConstraintNodeBool*>(analysis.staticNodes[index])->decision;
  };
  filter.clear();
  if (dag->fixedFields->types[flat.node] == NodeType::Boolean) {
    filter.push_back(decisionOf(flat.index));
  }
  for (const std::uint32_t index : analysis.flatOperands(flat)) {
    filter.push_back(decisionOf(index));
  }
  // As a rule a model names decisions in the order in which it created them.
  if (!std::is_sorted(filter.begin(), filter.end())) std::sort(filter.begin(), filter.end());
}

bool MovePlanned::changeShared(const End& end) {
  shared.clear();
  structure->dynamicNodes[end.node->index]->collectIncreasers(end.up, filter, shared, 1);
  return !shared.empty() && structure->dynamicByDecision[shared.front()]->change(*rng, true);
}

}  // namespace ombrix
