#include "solver/kernel/propagation.h"

#include <algorithm>
#include <bit>
#include <span>
#include <string>

#include "common/failure.h"
#include "solver/kernel/constraintvalue.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/largepages.h"
#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

constexpr std::uint32_t kRanksPerWord = 64;

std::uint32_t constraintQueue(std::uint32_t rank) {
  return 2 * rank;
}
std::uint32_t otherQueue(std::uint32_t rank) {
  return 2 * rank + 1;
}

/// As many parents are asked for ahead as a processor has loads under way.
constexpr std::uint32_t kPrefetchedParents = 16;

/// Asks for what telling and evaluating the parents will read. They lie anywhere in memory, and
/// asked for all at once they arrive together.
inline void prefetchParents(const Dag& dag, std::span<const ParentUse> uses) {
  for (const ParentUse& use : uses) {
    __builtin_prefetch(dag.fixedFields->linksOf(use.parent));
    __builtin_prefetch(&dag.cells[use.parent]);
  }
}

/// The highest level whose parents are told at all.
std::uint32_t lastLevel(const Dag& dag) {
  return dag.fixedFields->nbObjectives();
}

}  // namespace

void Propagation::init(Dag& dag) {
  const DagFixedFields& fields = *dag.fixedFields;
  nextLevel = 0;
  activeLevel = followedLevel = lastLevel(dag);
  touched.assign(fields.nbNodes / 64 + 1, 0);
  reserveLarge(pending, fields.nbNodes);
  reserveLarge(nextPending, fields.nbNodes);
  initConstraints(dag);

  const std::size_t nbRanks = fields.nodesByRank.size();
  resizeLarge(slots, fields.nbNodes);
  queueEnds.assign(fields.queueOffsets.begin(), fields.queueOffsets.end() - 1);
  doneInRank.resize(nbRanks);
  for (std::uint32_t rank = 0; rank < nbRanks; ++rank) {
    doneInRank[rank] = fields.queueOffsets[otherQueue(rank)];
  }
  touchedRanks.assign(nbRanks / kRanksPerWord + 1, 0);
  lowestWord = touchedRanks.size();
  highestWord = 0;
  reserveLarge(changedDecisions, fields.firstInnerNode);
  staleNodes.init(fields.nbNodes);
  resizeLarge(staleValues, fields.nbNodes, OXValue::ofInt(0));
}

void Propagation::initConstraints(const Dag& dag) {
  const DagFixedFields& fields = *dag.fixedFields;
  const auto nbConstraints = static_cast<std::uint32_t>(fields.constraints.size());
  activeConstraints.init(nbConstraints);
  violatedConstraints.init(nbConstraints);
  infeasibility = {};
  for (std::uint32_t i = 0; i < nbConstraints; ++i) {
    const std::uint32_t id = fields.constraints[i];
    infeasibility.violationSum =
        wrappingAdd(infeasibility.violationSum, dag.nodes[id]->violation(dag, id));
    if (!isViolated(fields, id, dag.values[id])) continue;
    violatedConstraints.add(i);
    ++infeasibility.nbViolated;
    if (isEqualityType(fields.types[id])) ++infeasibility.nbViolatedEqualities;
  }
  tInfeasibility = infeasibility;
}

// ---- the queues

inline void Propagation::touch(const DagFixedFields& fields, std::uint32_t node) {
  touched[node >> 6] |= std::uint64_t{1} << (node & 63);
  const std::uint32_t* links = fields.linksOf(node);
  __builtin_prefetch(fields.operands.data() + links[kOperandOffset]);
  const std::uint32_t queue = links[kQueueAndDomain] / 4;
  slots[queueEnds[queue]++] = node;
  const std::uint32_t rank = queue / 2;
  const std::size_t word = rank / kRanksPerWord;
  touchedRanks[word] |= std::uint64_t{1} << (rank % kRanksPerWord);
  lowestWord = std::min(lowestWord, word);
  highestWord = std::max(highestWord, word);
}

/// The first touched rank at or above the given one, or kNone.
inline std::uint32_t Propagation::nextTouchedRank(std::uint32_t from) const {
  std::size_t word = from / kRanksPerWord;
  std::uint64_t mask = ~std::uint64_t{0} << (from % kRanksPerWord);
  if (word < lowestWord) {
    word = lowestWord;
    mask = ~std::uint64_t{0};
  }
  for (; word <= highestWord; ++word) {
    const std::uint64_t bits = touchedRanks[word] & mask;
    if (bits != 0) {
      return static_cast<std::uint32_t>(word * kRanksPerWord) +
             static_cast<std::uint32_t>(std::countr_zero(bits));
    }
    mask = ~std::uint64_t{0};
  }
  return kNone;
}

/// The last touched rank strictly below the given one, or kNone.
inline std::uint32_t Propagation::previousTouchedRank(std::uint32_t below) const {
  std::size_t end = below / kRanksPerWord + 1;
  std::uint64_t mask = (std::uint64_t{1} << (below % kRanksPerWord)) - 1;
  if (end > highestWord + 1) {
    end = highestWord + 1;
    mask = ~std::uint64_t{0};
  }
  for (; end > lowestWord; --end) {
    const std::uint64_t bits = touchedRanks[end - 1] & mask;
    if (bits != 0) {
      return static_cast<std::uint32_t>(end * kRanksPerWord) - 1 -
             static_cast<std::uint32_t>(std::countl_zero(bits));
    }
    mask = ~std::uint64_t{0};
  }
  return kNone;
}

inline void Propagation::emptyQueues(const DagFixedFields& fields, std::uint32_t rank) {
  queueEnds[constraintQueue(rank)] = fields.queueOffsets[constraintQueue(rank)];
  queueEnds[otherQueue(rank)] = fields.queueOffsets[otherQueue(rank)];
  doneInRank[rank] = fields.queueOffsets[otherQueue(rank)];
}

void Propagation::closeMove() {
  for (std::size_t word = lowestWord; word <= highestWord; ++word) touchedRanks[word] = 0;
  lowestWord = touchedRanks.size();
  highestWord = 0;
  changedDecisions.clear();
  pending.clear();
  nextPending.clear();
  nextLevel = 0;
}

// ---- writing

void Propagation::setValue(Dag& dag, std::uint32_t decision, std::int64_t value) {
  if (dag.values[decision].intValue == value) return;
  write(dag, decision, OXValue::ofInt(value));
}

// A float is written even if it does not change: the change test comes later.
void Propagation::setValue(Dag& dag, std::uint32_t decision, double value) {
  write(dag, decision, OXValue::ofDouble(value));
}

// The first write of a move stands.
inline void Propagation::write(Dag& dag, std::uint32_t decision, OXValue value) {
  if (isTouched(decision)) return;
  if (followedLevel != activeLevel) followActiveLevel(dag);
  dag.tValues[decision] = value;
  touch(*dag.fixedFields, decision);
  changedDecisions.push_back(decision);
}

// The stale values tell what was last seen above one level. Before the first move under another
// level they are settled, so that they never mix two levels.
void Propagation::followActiveLevel(Dag& dag) {
  if (!changedDecisions.empty()) return;
  synchronize(dag);
  followedLevel = activeLevel;
}

// ---- evaluation

bool Propagation::evaluateConstraints(Dag& dag) {
  if (nextLevel != 0) return true;
  for (std::uint32_t rank = nextTouchedRank(0); rank != kNone; rank = nextTouchedRank(rank + 1)) {
    if (!evaluateConstraintQueue(dag, rank)) return false;
    evaluateOtherQueue(dag, rank, 0, 0);
  }
  openNextStage(0);
  return true;
}

// Constraints have level 0, so their queues are complete in the first stage and nothing can be
// refused here.
bool Propagation::evaluateLevels(Dag& dag, std::uint32_t level) {
  if (level < nextLevel) return true;
  for (std::uint32_t id : pending) {
    if (hasChanged(dag, id)) notifyParents(dag, id, nextLevel, level);
  }
  for (std::uint32_t rank = nextTouchedRank(0); rank != kNone; rank = nextTouchedRank(rank + 1)) {
    evaluateOtherQueue(dag, rank, nextLevel, level);
  }
  openNextStage(level);
  return true;
}

void Propagation::openNextStage(std::uint32_t level) {
  std::swap(pending, nextPending);
  nextPending.clear();
  nextLevel = level + 1;
}

// No queue grows while its rank is walked: parents have higher ranks.
inline bool Propagation::evaluateConstraintQueue(Dag& dag, std::uint32_t rank) {
  const std::uint32_t queue = constraintQueue(rank);
  const std::uint32_t end = queueEnds[queue];
  for (std::uint32_t i = dag.fixedFields->queueOffsets[queue]; i < end; ++i) {
    const std::uint32_t id = slots[i];
    if (!evaluateConstraint(dag, id)) return false;
    if (hasChanged(dag, id)) notifyParents(dag, id, 0, 0);
  }
  return true;
}

inline void Propagation::evaluateOtherQueue(Dag& dag, std::uint32_t rank, std::uint32_t fromLevel,
                                            std::uint32_t toLevel) {
  const std::uint32_t end = queueEnds[otherQueue(rank)];
  for (std::uint32_t i = doneInRank[rank]; i < end; ++i) {
    const std::uint32_t id = slots[i];
    dag.nodes[id]->eval(dag, id);
    if (hasChanged(dag, id)) notifyParents(dag, id, fromLevel, toLevel);
  }
  doneInRank[rank] = end;
}

/// False when the constraint is active and broke: the early exit of the whole evaluation.
bool Propagation::evaluateConstraint(Dag& dag, std::uint32_t id) {
  const DagFixedFields& fields = *dag.fixedFields;
  Node& node = *dag.nodes[id];
  node.eval(dag, id);
  const bool isTViolated = isViolated(fields, id, dag.tValues[id]);
  if (activeConstraints.isFull() ||
      activeConstraints.contains(fields.linksOf(id)[kConstraintIndex])) {
    return !isTViolated;
  }

  tInfeasibility.violationSum =
      wrappingAdd(tInfeasibility.violationSum, node.violationDelta(dag, id));
  // Counted by what is violated: a conditional over numbers can be posted, and is 5 when it holds.
  const std::int64_t delta =
      (isTViolated ? 1 : 0) - (isViolated(fields, id, dag.values[id]) ? 1 : 0);
  if (delta != 0) {
    tInfeasibility.nbViolated += delta;
    if (isEqualityType(fields.types[id])) tInfeasibility.nbViolatedEqualities += delta;
  }
  return true;
}

// A NaN always counts as changed. An array has no value: it changed when it was touched.
inline bool Propagation::hasChanged(const Dag& dag, std::uint32_t id) const {
  const std::uint32_t domain = dag.fixedFields->linksOf(id)[kQueueAndDomain] % 4;
  if (domain <= kIntegerDomain) return dag.values[id].intValue != dag.tValues[id].intValue;
  if (domain == kDoubleDomain) return dag.values[id].doubleValue != dag.tValues[id].doubleValue;
  return isTouched(id);
}

inline void Propagation::notifyParents(Dag& dag, std::uint32_t node, std::uint32_t fromLevel,
                                       std::uint32_t toLevel) {
  const DagFixedFields& fields = *dag.fixedFields;
  const std::uint32_t* links = fields.linksOf(node);
  const std::uint32_t* ends = links + kParentEnds;
  const std::uint32_t start = fromLevel == 0 ? 0 : ends[fromLevel - 1];
  const std::uint32_t end = ends[toLevel];
  const ParentUse* uses = fields.parentUses.data() + links[kParentOffset];
  prefetchParents(dag, {uses + start, uses + std::min(end, start + kPrefetchedParents)});
  for (std::uint32_t i = start; i < end; ++i) {
    const auto [parent, position] = uses[i];
    if (!isTouched(parent)) touch(fields, parent);
    dag.nodes[parent]->operandChanged(position, fields, parent);
  }
  if (end < ends[activeLevel]) nextPending.push_back(node);
}

// ---- settling the move

// The results are not tested: a move kept at this point has passed them, or the caller insists.
void Propagation::accept(Dag& dag) {
  if (evaluateConstraints(dag)) evaluateLevels(dag, activeLevel);
  for (DagListener* listener : listeners) listener->onAccept();

  // Top-down: a commit reads the old values of its operands, so a node goes before them.
  const DagFixedFields& fields = *dag.fixedFields;
  for (std::uint32_t rank = previousTouchedRank(kNone); rank != kNone;
       rank = previousTouchedRank(rank)) {
    commitQueue(dag, constraintQueue(rank));
    commitQueue(dag, otherQueue(rank));
    emptyQueues(fields, rank);
  }
  closeMove();
  infeasibility = tInfeasibility;
}

inline void Propagation::commitQueue(Dag& dag, std::uint32_t queue) {
  const DagFixedFields& fields = *dag.fixedFields;
  const bool holdsConstraints = queue % 2 == 0;
  const bool tracksStaleness = activeLevel < lastLevel(dag);
  const std::uint32_t end = queueEnds[queue];
  for (std::uint32_t i = fields.queueOffsets[queue]; i < end; ++i) {
    const std::uint32_t id = slots[i];
    if (tracksStaleness) updateStaleness(dag, id);
    untouch(id);
    dag.nodes[id]->commit(dag, id);
    if (holdsConstraints) updateViolated(dag, id);
  }
}

void Propagation::updateViolated(const Dag& dag, std::uint32_t constraint) {
  if (activeConstraints.isFull()) return;
  const std::uint32_t index = dag.fixedFields->linksOf(constraint)[kConstraintIndex];
  if (activeConstraints.contains(index)) return;
  if (isViolated(*dag.fixedFields, constraint, dag.values[constraint])) {
    violatedConstraints.add(index);
  } else {
    violatedConstraints.remove(index);
  }
}

/// Called before the commit of a node: remembers what its parents above activeLevel last saw, or
/// forgets it when they are up to date again. A node that was evaluated to its old value is not
/// stale: its parents may count on hearing of real changes only.
void Propagation::updateStaleness(const Dag& dag, std::uint32_t id) {
  const std::uint32_t* ends = dag.fixedFields->parentEndsOf(id);
  if (ends[lastLevel(dag)] == ends[activeLevel]) return;
  if (staleNodes.contains(id)) {
    if (tentativeWasSeen(dag, id)) staleNodes.remove(id);
  } else if (hasChanged(dag, id)) {
    staleNodes.add(id);
    staleValues[id] = dag.values[id];
  }
}

// An array has no value to compare: its unfinished parents stay out of date.
bool Propagation::tentativeWasSeen(const Dag& dag, std::uint32_t id) const {
  switch (dag.fixedFields->domains[id]) {
    case kArrayDomain:
      return false;
    case kDoubleDomain:
      return approxEqual(dag.tValues[id].doubleValue, staleValues[id].doubleValue);
    default:
      return dag.tValues[id].intValue == staleValues[id].intValue;
  }
}

void Propagation::reject(Dag& dag) {
  const DagFixedFields& fields = *dag.fixedFields;
  for (std::uint32_t rank = nextTouchedRank(0); rank != kNone; rank = nextTouchedRank(rank + 1)) {
    rollbackQueue(dag, constraintQueue(rank));
    rollbackQueue(dag, otherQueue(rank));
    emptyQueues(fields, rank);
  }
  closeMove();
  tInfeasibility = infeasibility;
}

inline void Propagation::rollbackQueue(Dag& dag, std::uint32_t queue) {
  const std::uint32_t end = queueEnds[queue];
  for (std::uint32_t i = dag.fixedFields->queueOffsets[queue]; i < end; ++i) {
    const std::uint32_t id = slots[i];
    untouch(id);
    dag.nodes[id]->rollback(dag, id);
  }
}

// A stale node gets back, as its committed value, what its unfinished parents last saw, while its
// tentative value is the present one: the state of a move in progress, which they follow as usual.
// Nothing above the constraints can be refused, so no result is looked at.
void Propagation::synchronize(Dag& dag) {
  if (staleNodes.size() == 0) return;
  const DagFixedFields& fields = *dag.fixedFields;
  for (std::uint32_t i = 0; i < staleNodes.size(); ++i) {
    const std::uint32_t id = staleNodes[i];
    if (fields.domains[id] != kArrayDomain) dag.values[id] = staleValues[id];
    notifyParents(dag, id, followedLevel + 1, lastLevel(dag));
  }
  nextLevel = followedLevel + 1;
  evaluateLevels(dag, lastLevel(dag));
  accept(dag);
  for (std::uint32_t i = 0; i < staleNodes.size(); ++i) {
    const std::uint32_t id = staleNodes[i];
    if (fields.domains[id] != kArrayDomain) dag.values[id] = dag.tValues[id];
  }
  staleNodes.clear();
}

// ---- activation

void Propagation::activateConstraint(Dag& dag, std::uint32_t node) {
  if (isViolated(*dag.fixedFields, node, dag.values[node])) {
    fail(kInternal, OMBRIX_HERE("Propagation::activateConstraint"),
         "Cannot activate a violated constraint with nodeId #" + std::to_string(node));
  }
  if (dag.fixedFields->isConstraint(node)) {
    activeConstraints.add(dag.fixedFields->posInConstraints[node]);
  }
}

void Propagation::activateAllConstraints() {
  if (infeasibility.nbViolated > 0) {
    fail(kInternal, OMBRIX_HERE("Propagation::activateAllConstraints"),
         "One or more constraints are violated");
  }
  activeConstraints.setSize(activeConstraints.capacity());
}

// The set changes under the walk, but what an addition puts behind the index was seen before.
void Propagation::activateSatisfiedConstraints(Dag& dag) {
  if (infeasibility.nbViolated < 1) {
    activateAllConstraints();
    return;
  }
  for (std::uint32_t i = activeConstraints.size(); i < activeConstraints.capacity(); ++i) {
    const std::uint32_t node = dag.fixedFields->constraints[activeConstraints[i]];
    if (dag.values[node].intValue == 1) activateConstraint(dag, node);
  }
}

void Propagation::activateConstraints(Dag& dag, const std::vector<std::uint32_t>& nodes) {
  if (infeasibility.nbViolated < 1) {
    activateAllConstraints();
    return;
  }
  for (std::uint32_t node : nodes) {
    if (dag.values[node].intValue == 1) activateConstraint(dag, node);
  }
}

void Propagation::collectTouchedConstraints(const Dag& dag, std::vector<std::uint32_t>& out) const {
  for (std::uint32_t rank = previousTouchedRank(kNone); rank != kNone;
       rank = previousTouchedRank(rank)) {
    const std::uint32_t queue = constraintQueue(rank);
    for (std::uint32_t i = dag.fixedFields->queueOffsets[queue]; i < queueEnds[queue]; ++i) {
      out.push_back(slots[i]);
    }
  }
}

// ---- listeners

void Propagation::addListener(DagListener* listener) {
  listeners.push_back(listener);
}

void Propagation::removeListener(DagListener* listener) {
  std::erase(listeners, listener);
}

}  // namespace ombrix
