#include "solver/move/movesetpartition.h"

#include <algorithm>

#include "solver/kernel/random.h"

namespace ombrix {

namespace {

/// Of a long list only a window is looked at.
constexpr std::uint32_t kMaxCandidates = 64;
/// In percent. Only with the others can every exchange be reached.
constexpr std::uint32_t kRateOfBest = 80;

}  // namespace

MoveSetPartition::MoveSetPartition(Dag& workerDag, std::uint32_t& state, BasicMoveStructure& lists)
    : Move("SetPartition", workerDag, state), structure(&lists) {
  const ConstraintAnalysis& analysis = *lists.constraintAnalysis;
  sets = std::span(analysis.booleanLists).last(analysis.nbExactlyOneLists);
  changes.resize(sets.size());
  conflictingSets.init(static_cast<std::uint32_t>(sets.size()));
}

bool MoveSetPartition::apply() {
  if (dag->propagation.infeasibility.nbViolated > 0 || sets.empty()) return false;
  const bool isBuilt = exchange();
  forgetChanges();
  return isBuilt;
}

bool MoveSetPartition::exchange() {
  if (!clearItem(randomIndex(*rng, static_cast<std::uint32_t>(sets.size())))) return false;
  for (std::uint32_t i = 0; i < maxAttempts && conflictingSets.size() > 0; ++i) {
    const std::uint32_t set = conflictingSets[randomIndex(*rng, conflictingSets.size())];
    if (!(changes[set] == kCleared ? fill(set) : clearItem(set))) return false;
  }
  return conflictingSets.size() == 0;
}

/// Clears the item that the set had at the start.
bool MoveSetPartition::clearItem(std::uint32_t set) {
  const std::uint32_t list = sets[set];
  const std::uint32_t position = dag->nodes[list]->randomNotMinNode(*dag, list, *rng);
  if (position == kNone) return false;
  const std::uint32_t item = dag->fixedFields->operand(list, position);
  if (hasChange(item, kCleared)) return false;
  change(item, kCleared);
  return true;
}

/// Sets an item of a set that lost its own: from a random one on the first that can be set or, more
/// often, the first of those that leave the fewest conflicts.
bool MoveSetPartition::fill(std::uint32_t set) {
  const std::uint32_t list = sets[set];
  const std::uint32_t nbItems = dag->fixedFields->nbOperands(list);
  const std::uint32_t* items = dag->fixedFields->operandsOf(list);
  const bool takesBest = randomPercent(*rng, kRateOfBest);
  const std::uint32_t first = randomIndex(*rng, nbItems);
  std::uint32_t best = kNone;
  int fewest = 0;
  for (std::uint32_t i = 0; i < std::min(nbItems, kMaxCandidates); ++i) {
    const std::uint32_t item = items[first + i < nbItems ? first + i : first + i - nbItems];
    if (dag->tValues[item].intValue != 0 || dag->propagation.isTouched(item) ||
        hasChange(item, kFilled)) {
      continue;
    }
    const int nbConflicts = nbConflictsAdded(item);
    if (best != kNone && nbConflicts >= fewest) continue;
    best = item;
    fewest = nbConflicts;
    if (!takesBest) break;
  }
  if (best == kNone) return false;
  change(best, kFilled);
  return true;
}

void MoveSetPartition::change(std::uint32_t item, Change how) {
  flip(item);
  forEachSet(item, [&](std::uint32_t set) {
    changes[set] |= how;
    if (changes[set] == kExchanged) {
      conflictingSets.remove(set);
    } else {
      conflictingSets.add(set);
    }
  });
}

bool MoveSetPartition::hasChange(std::uint32_t item, Change how) const {
  bool isFound = false;
  forEachSet(item, [&](std::uint32_t set) { isFound = isFound || (changes[set] & how) != 0; });
  return isFound;
}

/// The sets that setting an item would spoil, less those that it would repair.
int MoveSetPartition::nbConflictsAdded(std::uint32_t item) const {
  int nbAdded = 0;
  forEachSet(item, [&](std::uint32_t set) { nbAdded += changes[set] == kCleared ? -1 : 1; });
  return nbAdded;
}

/// The next move starts from the committed state, whatever becomes of this one.
void MoveSetPartition::forgetChanges() {
  for (const std::uint32_t item : dag->propagation.changedDecisions) {
    forEachSet(item, [this](std::uint32_t set) { changes[set] = kUnchanged; });
  }
  conflictingSets.clear();
}

std::uint32_t MoveSetPartition::setOf(std::uint32_t list) const {
  const auto place = std::lower_bound(sets.begin(), sets.end(), list);
  if (place == sets.end() || *place != list) return kNone;
  return static_cast<std::uint32_t>(place - sets.begin());
}

/// The exactly-one lists of a decision stand last among its boolean ones.
template <class Visit>
void MoveSetPartition::forEachSet(std::uint32_t item, Visit visit) const {
  const DecisionIncidence own = structure->constraintAnalysis->incidence(item);
  for (std::uint32_t entry = own.nbConstrained; entry > own.nbFree; --entry) {
    const std::uint32_t set = setOf(own.lists[entry - 1]);
    if (set == kNone) return;
    visit(set);
  }
}

}  // namespace ombrix
