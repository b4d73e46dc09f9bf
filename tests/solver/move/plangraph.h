#ifndef OMBRIX_TESTS_SOLVER_MOVE_PLANGRAPH_H
#define OMBRIX_TESTS_SOLVER_MOVE_PLANGRAPH_H

#include <cstdint>
#include <memory>

#include "solver/move/autonomousstructure.h"
#include "solver/move/moveanalysis.h"
#include "tests/support/graphs.h"
#include "tests/support/mirrorchecks.h"

namespace ombrix::test {

/// A graph with the mirror of its autonomous part. Describe the graph through builder, then call
/// start.
class PlanGraph {
public:
  void start(std::uint32_t seed = 1) {
    rng = seed;
    dag = builder.makeDag();
    analysis = std::make_unique<MoveAnalysis>(builder.fields, true);
    structure = std::make_unique<AutonomousStructure>(*dag, *analysis, rng);
    structure->rebuild();
  }

  bool isMirrored(std::uint32_t node) const { return analysis->staticByNode[node] != kNone; }
  DynamicConstraintNode& mirror(std::uint32_t node) const { return *structure->nodeOf(node); }
  bool isPending(std::uint32_t decision) const {
    return structure->pendingDecisions.contains(builder.fields.posInGroups[decision]);
  }
  bool isViolated(std::uint32_t node) const {
    return structure->violatedNodes.contains(analysis->staticByNode[node]);
  }
  std::uint32_t nbPending() const { return structure->pendingDecisions.size(); }
  /// Commits a flip that no plan made.
  void flipAndAccept(std::uint32_t decision) {
    flip(*dag, decision);
    dag->propagation.accept(*dag);
  }
  /// Flips the pending decisions in the Dag, in an open move.
  void applyPlan() const {
    const SparseSet& pending = structure->pendingDecisions;
    for (std::uint32_t i = 0; i < pending.size(); ++i) {
      flip(*dag, builder.fields.nodesByGroup[pending[i]]);
    }
  }

  void expectAgrees(const NodeValues& values) const { expectMirrorAgrees(*structure, values); }

  GraphBuilder builder;
  std::uint32_t rng = 1;
  std::unique_ptr<Dag> dag;
  std::unique_ptr<MoveAnalysis> analysis;
  std::unique_ptr<AutonomousStructure> structure;
};

}  // namespace ombrix::test

#endif
