#ifndef OMBRIX_SOLVER_MOVE_GREEDYINITIALIZER_H
#define OMBRIX_SOLVER_MOVE_GREEDYINITIALIZER_H

#include <cstdint>
#include <vector>

#include "solver/kernel/dag.h"

namespace ombrix {

/// The pass that looks for a first feasible solution: it sets decisions to 1 in random order as
/// long as that reduces the infeasibility, and leaves alone the operands of a sum that has reached
/// its upper limit. Holds what the passes of all workers share: which sums have such a limit.
/// Read-only once built.
class GreedyInitializer {
public:
  explicit GreedyInitializer(const DagFixedFields& fields);

  /// The pass on one worker. Afterwards either all constraints are active, and the answer is true,
  /// or none is. The constraints that a kept change satisfied hold during the pass.
  bool run(Dag& dag, std::uint32_t& rng) const;

  /// Whether node is a sum of decisions with an upper limit.
  bool isBoundedSum(std::uint32_t node) const { return boundedSums[node]; }

  bool forced = false;  ///< run the pass on a feasible state too

private:
  void markBoundedSum(std::uint32_t constraint);
  bool canBeBounded(std::uint32_t node) const;
  bool standsAtBound(const Dag& dag, std::uint32_t sum) const;
  bool tryToRaise(Dag& dag, std::uint32_t decision,
                  std::vector<std::uint32_t>& touchedConstraints) const;
  void dropFullSums(const Dag& dag, std::uint32_t decision, SparseSet& remaining) const;

  const DagFixedFields* fixedFields;
  std::vector<bool> boundedSums;  ///< per node
};

}  // namespace ombrix

#endif
