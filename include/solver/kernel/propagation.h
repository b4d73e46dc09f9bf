#ifndef OMBRIX_SOLVER_KERNEL_PROPAGATION_H
#define OMBRIX_SOLVER_KERNEL_PROPAGATION_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "solver/kernel/cacheline.h"
#include "solver/kernel/daglistener.h"
#include "solver/kernel/infeasibility.h"
#include "solver/kernel/oxvalue.h"
#include "solver/kernel/sparseset.h"

namespace ombrix {

class Dag;
class DagFixedFields;

/// The incremental evaluator of a Dag, and the engine's hot path. A move writes tentative values
/// into decisions; the change travels upward by rank, level by level, only as far as it goes; then
/// the move is made permanent or forgotten. It costs what its decisions reach, not what the graph
/// holds.
///
/// The order of calls in one move: any number of setValue, then evaluateConstraints, then
/// evaluateLevels with rising levels, then exactly one of accept and reject, either of which is
/// also allowed after any prefix of that.
///
/// Touched nodes stand on the queue of their rank and kind, a region of one flat array laid out by
/// the fixed fields; a bit per rank tells which queues to look at. While no move is open: all
/// queues are empty, no node is touched, pending and nextPending are empty, nextLevel is 0 and both
/// infeasibilities are equal. An active constraint is never violated.
class Propagation {
public:
  Infeasibility tInfeasibility;   ///< under the open move
  Infeasibility infeasibility;    ///< of the committed solution
  std::uint32_t nextLevel = 0;    ///< first level not yet evaluated in the open move
  std::uint32_t activeLevel = 0;  ///< highest level that the search wants evaluated
  CacheLineVector<std::uint32_t> changedDecisions;  ///< written in the open move, in order
  SparseSet activeConstraints;    ///< indices in constraints: a move that breaks one is refused
  SparseSet violatedConstraints;  ///< indices of inactive constraints with value 0
  SparseSet staleNodes;           ///< nodes whose parents above activeLevel are out of date
  CacheLineVector<OXValue> staleValues;

  virtual ~Propagation() = default;

  /// Called last in the construction of a Dag.
  void init(Dag& dag);

  void setValue(Dag& dag, std::uint32_t decision, std::int64_t value);
  void setValue(Dag& dag, std::uint32_t decision, double value);
  /// Level 0. False when an active constraint broke.
  bool evaluateConstraints(Dag& dag);
  /// The levels up to the given one; evaluateConstraints must have returned true.
  bool evaluateLevels(Dag& dag, std::uint32_t level);
  void accept(Dag& dag);
  void reject(Dag& dag);
  /// Brings all stale nodes and all levels up to date.
  void synchronize(Dag& dag);

  void activateConstraint(Dag& dag, std::uint32_t node);
  void activateAllConstraints();
  void activateSatisfiedConstraints(Dag& dag);
  void activateConstraints(Dag& dag, const std::vector<std::uint32_t>& nodes);
  /// Appends the nodes on the constraint queues, from the highest rank down.
  void collectTouchedConstraints(const Dag& dag, std::vector<std::uint32_t>& out) const;

  void addListener(DagListener* listener);
  void removeListener(DagListener* listener);

  /// The node is on a queue; for a decision, it was written in the open move.
  bool isTouched(std::uint32_t node) const { return (touched[node >> 6] >> (node & 63)) & 1; }

private:
  void initConstraints(const Dag& dag);

  // The queues.
  void touch(const DagFixedFields& fields, std::uint32_t node);
  void untouch(std::uint32_t node) { touched[node >> 6] &= ~(std::uint64_t{1} << (node & 63)); }
  std::uint32_t nextTouchedRank(std::uint32_t from) const;
  std::uint32_t previousTouchedRank(std::uint32_t below) const;
  void emptyQueues(const DagFixedFields& fields, std::uint32_t rank);
  void closeMove();

  // Evaluation.
  void write(Dag& dag, std::uint32_t decision, OXValue value);
  void followActiveLevel(Dag& dag);
  bool evaluateConstraintQueue(Dag& dag, std::uint32_t rank);
  void evaluateOtherQueue(Dag& dag, std::uint32_t rank, std::uint32_t fromLevel,
                          std::uint32_t toLevel);
  bool evaluateConstraint(Dag& dag, std::uint32_t id);
  bool hasChanged(const Dag& dag, std::uint32_t id) const;
  void notifyParents(Dag& dag, std::uint32_t node, std::uint32_t fromLevel, std::uint32_t toLevel);
  void openNextStage(std::uint32_t level);

  // The end of a move.
  void commitQueue(Dag& dag, std::uint32_t queue);
  void rollbackQueue(Dag& dag, std::uint32_t queue);
  void updateViolated(const Dag& dag, std::uint32_t constraint);
  void updateStaleness(const Dag& dag, std::uint32_t id);
  bool tentativeWasSeen(const Dag& dag, std::uint32_t id) const;

  CacheLineVector<std::uint64_t> touched;    ///< one bit per node
  CacheLineVector<std::uint32_t> slots;      ///< the queues, one region after the other
  CacheLineVector<std::uint32_t> queueEnds;  ///< per queue: end of its entries in slots
  CacheLineVector<std::uint32_t>
      doneInRank;  ///< per rank: end of the evaluated other nodes in slots
  CacheLineVector<std::uint64_t> touchedRanks;  ///< one bit per rank
  std::size_t lowestWord = 0;                   ///< of touchedRanks: all others are 0
  std::size_t highestWord = 0;
  CacheLineVector<std::uint32_t>
      pending;  ///< changed nodes with parents in levels not yet evaluated
  CacheLineVector<std::uint32_t> nextPending;  ///< the same, being written for the next stage
  std::uint32_t followedLevel = 0;  ///< the activeLevel to which staleNodes and staleValues refer
  std::vector<DagListener*> listeners;
};

}  // namespace ombrix

#endif
