#ifndef OMBRIX_SOLVER_KERNEL_PROPAGATION_H
#define OMBRIX_SOLVER_KERNEL_PROPAGATION_H

#include <cstdint>
#include <vector>

#include "solver/kernel/daglistener.h"
#include "solver/kernel/infeasibility.h"
#include "solver/kernel/oxvalue.h"
#include "solver/kernel/sparseset.h"

namespace ombrix {

class Dag;

/// The incremental evaluator of a Dag, and the engine's hot path. A move writes tentative values
/// into decisions; the change travels upward by rank, level by level, only as far as it goes; then
/// the move is made permanent or forgotten. It costs what its decisions reach, not what the graph
/// holds.
///
/// The order of calls in one move: any number of setValue, then evaluateConstraints, then
/// evaluateLevels with rising levels, then exactly one of accept and reject, either of which is
/// also allowed after any prefix of that.
class Propagation {
public:
  Infeasibility tInfeasibility;                 ///< under the open move
  Infeasibility infeasibility;                  ///< of the committed solution
  std::uint32_t nextLevel = 0;                  ///< first level not yet evaluated in the open move
  std::uint32_t activeLevel = 0;                ///< highest level that the search wants evaluated
  std::vector<std::uint32_t> changedDecisions;  ///< written in the open move, in order
  SparseSet activeConstraints;    ///< indices in constraints: a move that breaks one is refused
  SparseSet violatedConstraints;  ///< indices of inactive constraints with value 0
  SparseSet staleNodes;           ///< nodes whose parents above activeLevel are out of date
  std::vector<OXValue> staleValues;

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
  std::vector<std::uint64_t> touched;  ///< one bit per node
  std::vector<DagListener*> listeners;
};

}  // namespace ombrix

#endif
