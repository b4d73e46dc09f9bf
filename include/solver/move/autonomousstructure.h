#ifndef OMBRIX_SOLVER_MOVE_AUTONOMOUSSTRUCTURE_H
#define OMBRIX_SOLVER_MOVE_AUTONOMOUSSTRUCTURE_H

#include <cstdint>
#include <memory_resource>
#include <new>
#include <vector>

#include "solver/kernel/cacheline.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/daglistener.h"
#include "solver/kernel/sparseset.h"
#include "solver/move/constraintnodebool.h"
#include "solver/move/dynamicconstraintnode.h"
#include "solver/move/moveanalysis.h"

namespace ombrix {

/// One worker's mirror of the autonomous part of its graph: a dynamic node for each static one. A
/// move plans here, flip by flip, and touches the Dag only once the plan stands.
///
/// A planned flip is kept in pendingDecisions. While it is empty the mirror agrees with the
/// committed values: accepted moves that were not planned are told to the mirror before their
/// commit, and planned ones stand in it already. A move whose plan failed or was rejected drops
/// its pending flips.
class AutonomousStructure : public DagListener {
public:
  /// Registers with the Dag; all arguments outlive the structure. Its nodes are made by rebuild.
  AutonomousStructure(Dag& workerDag, const MoveAnalysis& analysis, std::uint32_t& state);
  ~AutonomousStructure() override;
  AutonomousStructure(const AutonomousStructure&) = delete;
  AutonomousStructure& operator=(const AutonomousStructure&) = delete;

  /// Makes all dynamic nodes anew from the committed values, with nothing pending. No move is open.
  void rebuild();
  void onAccept() override;

  /// Takes a pending flip back.
  void dropPending(std::uint32_t decision);
  void dropAllPending();

  /// The dynamic node of a kernel node, or null.
  DynamicConstraintNode* nodeOf(std::uint32_t node) const {
    const std::uint32_t index = moveAnalysis->staticByNode[node];
    return index == kNone ? nullptr : dynamicNodes[index];
  }
  /// Makes the mirror of a static node; for its createDynamic.
  template <class N, class Static>
  N* create(const Static& description) {
    return new (arena.allocate(sizeof(N), alignof(N))) N(*this, description);
  }

  Dag* dag;
  const MoveAnalysis* moveAnalysis;
  std::uint32_t* rng;
  std::vector<DynamicConstraintNode*> dynamicNodes;           ///< by static index
  std::vector<DynamicConstraintNodeBool*> dynamicByDecision;  ///< null as in the analysis
  SparseSet pendingDecisions;  ///< indices of boolean decisions whose flip is planned
  SparseSet violatedNodes;     ///< static indices of constraints that the mirror has at 0

private:
  void destroyNodes();

  CacheLineResource lines;
  std::pmr::monotonic_buffer_resource arena{&lines};
};

}  // namespace ombrix

#endif
