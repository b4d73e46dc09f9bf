#ifndef OMBRIX_SOLVER_KERNEL_SOLUTION_H
#define OMBRIX_SOLVER_KERNEL_SOLUTION_H

#include <cstdint>
#include <span>

#include "solver/kernel/cacheline.h"
#include "solver/kernel/dag.h"

namespace ombrix {

/// A saved state of a Dag: the decisions, the infeasibility, the objectives and the set of active
/// constraints. It listens to the Dag and keeps the list of decisions that differ from the saved
/// ones, so a save costs what changed since the last one.
class Solution : public DagListener {
public:
  /// Registers with the Dag and saves its present state.
  explicit Solution(Dag& source);
  ~Solution() override;
  Solution(const Solution&) = delete;
  Solution& operator=(const Solution&) = delete;

  void onAccept() override;
  void save();
  /// Puts the saved state into a Dag over the same fixed fields.
  void restore(Dag& target) const;

  /// 1 when this solution is better, -1 when worse, 0 when equal; looks at the infeasibility, then
  /// at the objectives up to and including level (none when negative).
  int compareTo(const Solution& other, int level) const;
  int compareTo(const Dag& other, int level) const;
  int compareTo(const Infeasibility& infeasibility, std::span<const OXValue> objectives,
                int level) const;
  Infeasibility getInfeasibility() const {
    return {nbViolated, nbViolatedEqualities, violationSum};
  }
  int compareObjective(std::uint32_t i, OXValue other) const;

  std::int64_t nbViolated = 0;
  std::int64_t nbViolatedEqualities = 0;
  std::int64_t violationSum = 0;
  CacheLineVector<OXValue> objectiveValues;  ///< one per objective
  CacheLineVector<OXValue> decisionValues;   ///< by posInGroups of the decision
  SparseSet changedDecisions;                ///< decision indices whose committed value differs
  SparseSet activeConstraints;

private:
  void saveActiveConstraints(const SparseSet& active);
  void writeDecisions(Dag& target) const;

  Dag* dag;  ///< not owned; listened to
};

}  // namespace ombrix

#endif
