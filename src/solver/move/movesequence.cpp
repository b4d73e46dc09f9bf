#include "solver/move/movesequence.h"

#include <algorithm>
#include <array>
#include <utility>

#include "common/failure.h"
#include "solver/kernel/heuristic.h"
#include "solver/kernel/random.h"
#include "solver/move/basicmovefactory.h"
#include "solver/move/movekflip.h"
#include "solver/move/movesimplekflip.h"

namespace ombrix {

namespace {

constexpr std::uint32_t kLargestSubMove = 4;
constexpr std::array<std::uint32_t, kLargestSubMove> kSimpleFlipWeights = {8, 8, 2, 1};
constexpr std::uint32_t kNextWeight = 8;
constexpr std::uint32_t kNextRate = 100;
/// The largest swap changes one pair more than its size when it is aimed at node 0.
constexpr std::uint32_t kMostChanges = 2 * (kLargestSubMove + 1);

}  // namespace

MoveSequence::MoveSequence(Dag& workerDag, std::uint32_t& state, std::uint32_t nbSteps,
                           std::uint32_t freeLevel, std::uint32_t rate, const Heuristic& owner,
                           BasicMoveStructure& lists)
    : Move(formatMoveName(nbSteps, "Sequence"), workerDag, state),
      size(nbSteps),
      level(freeLevel),
      heuristic(&owner) {
  if (rate > 100) {
    fail(kInternal, OMBRIX_HERE("MoveSequence::MoveSequence"),
         "Targeting rate must be smaller than 100.");
  }
  addFirstMoves(BasicMoveFactory(lists, rate), rate);
  addNextMoves(lists);
  const DagFixedFields& fields = *dag->fixedFields;
  objectiveValues.resize(fields.nbObjectives(), OXValue::ofInt(0));
  changedDecisions.reserve(std::min(size * kMostChanges, fields.firstInnerNode));
  changedBits.resize(fields.firstInnerNode / 64 + 1);
}

void MoveSequence::addFirstMoves(const BasicMoveFactory& factory, std::uint32_t rate) {
  for (std::uint32_t k = 1; k <= kLargestSubMove; ++k) {
    add(firstMoves, factory.balance(k));
    add(firstMoves, factory.swap(k));
    add(firstMoves, factory.flip(k));
    add(firstMoves, factory.path(k));
    add(firstMoves, factory.cycle(k));
    for (const std::uint32_t nbBranches : {2u, 3u}) {
      add(firstMoves, factory.forkCycle(k, nbBranches));
    }
    for (const std::uint32_t nbBranches : {2u, 3u}) {
      add(firstMoves, factory.forkPath(k, nbBranches));
    }
    add(firstMoves,
        std::make_unique<MoveSimpleKFlip>(*dag, *rng, k, kSimpleFlipWeights[k - 1], rate));
  }
}

/// Single flips, aimed at what the step before broke.
void MoveSequence::addNextMoves(BasicMoveStructure& lists) {
  if (!lists.constraintAnalysis->freeDecisions.empty()) {
    add(nextMoves, std::make_unique<MoveKFlip>(*dag, *rng, 1, kNextWeight, kNextRate, lists));
  }
  if (dag->fixedFields->nbBooleanVars > 0) {
    add(nextMoves, std::make_unique<MoveSimpleKFlip>(*dag, *rng, 1, kNextWeight, kNextRate));
  }
}

void MoveSequence::add(std::vector<Move*>& draw, std::unique_ptr<Move> move) {
  if (move == nullptr) return;
  draw.insert(draw.end(), move->initialWeight, move.get());
  subMoves.push_back(std::move(move));
}

bool MoveSequence::apply() {
  if (firstMoves.empty() || nextMoves.empty()) return false;
  saveStart();
  for (step = 0; step < size; ++step) {
    if (performStep()) return true;
  }
  return nbPerformed >= 2;
}

void MoveSequence::saveStart() {
  Propagation& propagation = dag->propagation;
  nbPerformed = 0;
  isStarted = true;
  if (keepConstraintsOff) propagation.activeConstraints.clear();
  infeasibility = propagation.infeasibility;
  for (std::uint32_t i = 0; i < objectiveValues.size(); ++i) {
    objectiveValues[i] = Move::getObjectiveValue(i);
  }
}

/// True when the sequence now stands at a better state than the start.
bool MoveSequence::performStep() {
  const std::vector<Move*>& draw = step == 0 ? firstMoves : nextMoves;
  current = draw[randomIndex(*rng, static_cast<std::uint32_t>(draw.size()))];
  if (!current->apply()) {
    current->finish(MoveStatus::Infeasible);
    return false;
  }
  bool isBetter = false;
  const MoveStatus status = judge(isBetter);
  if (status == MoveStatus::Accepted) recordChanges();
  current->finish(status);
  return isBetter;
}

/// isBetter tells whether an accepted candidate is better than the start.
MoveStatus MoveSequence::judge(bool& isBetter) {
  if (repeatsDecision()) return MoveStatus::Rejected;
  if (!current->evaluate(0)) return MoveStatus::Infeasible;
  if (!exploreInfeasible && compareWith(*current) < 0) return MoveStatus::Rejected;
  const int order = compareWith(*this);
  if (step > level && order < 0) return MoveStatus::Rejected;
  isBetter = order > 0;
  return MoveStatus::Accepted;
}

/// Undoing flips each decision once.
bool MoveSequence::repeatsDecision() const {
  const auto& written = dag->propagation.changedDecisions;
  return std::any_of(written.begin(), written.end(), [this](std::uint32_t decision) {
    const std::uint32_t index = dag->fixedFields->posInGroups[decision];
    return (changedBits[index / 64] >> (index % 64)) & 1;
  });
}

/// The open candidate against the state that the reference compares with: below 0 when worse, above
/// 0 when better. The infeasibility goes first, then the objectives, each evaluated only when those
/// before are equal.
int MoveSequence::compareWith(const Move& reference) const {
  if (reference.isInfeasibilityWorse()) return -1;
  if (reference.isInfeasibilityBetter()) return 1;
  for (std::uint32_t i = 0; i <= heuristic->objectiveIndex; ++i) {
    current->evaluate(i + 1);
    if (reference.isObjectiveWorse(i)) return -1;
    if (reference.isObjectiveBetter(i)) return 1;
  }
  return 0;
}

void MoveSequence::recordChanges() {
  ++nbPerformed;
  for (const std::uint32_t decision : dag->propagation.changedDecisions) {
    const std::uint32_t index = dag->fixedFields->posInGroups[decision];
    changedBits[index / 64] |= std::uint64_t{1} << (index % 64);
    changedDecisions.push_back(decision);
  }
}

void MoveSequence::finish(MoveStatus status) {
  Move::finish(status);
  if (!isStarted) return;
  isStarted = false;
  if (status == MoveStatus::Rejected || status == MoveStatus::Infeasible) undo();
  forget();
  // Sums of doubles come back but for their rounding: what held within a tolerance need not hold
  // again, and then there is nothing to activate.
  Propagation& propagation = dag->propagation;
  if (infeasibility.nbViolated < 1 && propagation.infeasibility.nbViolated < 1) {
    propagation.activateAllConstraints();
  }
}

void MoveSequence::undo() {
  if (changedDecisions.empty()) return;
  // A constraint that stayed active could break on the way back too, by the rounding of a sum of
  // doubles, and the evaluation would end half way.
  dag->propagation.activeConstraints.clear();
  for (const std::uint32_t decision : changedDecisions) flip(decision);
  dag->propagation.accept(*dag);
}

void MoveSequence::forget() {
  for (const std::uint32_t decision : changedDecisions) {
    const std::uint32_t index = dag->fixedFields->posInGroups[decision];
    changedBits[index / 64] = 0;
  }
  changedDecisions.clear();
}

OXValue MoveSequence::getObjectiveValue(std::uint32_t objective) const {
  return objectiveValues[objective];
}

}  // namespace ombrix
