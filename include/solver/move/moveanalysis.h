#ifndef OMBRIX_SOLVER_MOVE_MOVEANALYSIS_H
#define OMBRIX_SOLVER_MOVE_MOVEANALYSIS_H

#include <cstdint>
#include <memory_resource>
#include <span>
#include <vector>

#include "solver/kernel/dagfixedfields.h"
#include "solver/move/constraintnodebool.h"
#include "solver/move/staticconstraintnode.h"

namespace ombrix {

/// What a model offers to moves that plan: the autonomous part of its graph, from boolean decisions
/// up to constraints, at most four ranks deep and made of nodes that can be reasoned about
/// backwards, as static constraint nodes. They stand in rank order, operands before the nodes above
/// them.
///
/// Built once per model, in time and memory linear in the autonomous part, and shared read-only by
/// all workers. Models have a million decisions, so the nodes stand in one arena and the operands
/// of the flat ones in one array.
class MoveAnalysis {
public:
  /// Without advanced moves only the comparisons are gathered.
  MoveAnalysis(const DagFixedFields& fields, bool withAdvancedMoves);
  ~MoveAnalysis();
  MoveAnalysis(const MoveAnalysis&) = delete;
  MoveAnalysis& operator=(const MoveAnalysis&) = delete;

  /// The static indices of the operands of a flat node, in operand order, constants left out.
  std::span<const std::uint32_t> flatOperands(const StaticConstraintNode& node) const {
    return {flatOperandIndices.data() + node.flatBegin, node.flatEnd - node.flatBegin};
  }

  std::vector<std::uint32_t> staticByNode;         ///< per node: its static index, or kNone
  std::vector<StaticConstraintNode*> staticNodes;  ///< they live in the arena
  /// Per boolean decision: its static node, or null when it is below no autonomous constraint.
  std::vector<StaticConstraintNodeBool*> staticByDecision;
  /// The nodes of type double_eq, double_geq and double_leq, ascending.
  std::vector<std::uint32_t> doubleComparisons;
  const DagFixedFields* fixedFieldsRef;
  bool advancedMovesOn;

private:
  void collectDoubleComparisons();
  void createNodes();
  std::vector<bool> markAutonomous(std::size_t nbRanks) const;
  bool isAutonomous(std::uint32_t node, const std::vector<bool>& marked) const;
  bool isWanted(std::uint32_t node, const std::vector<bool>& marked) const;
  StaticConstraintNode* createNode(std::uint32_t node);
  template <class N, class... Args>
  N* create(std::uint32_t node, Args... args);
  void recordFlatOperands();

  std::pmr::monotonic_buffer_resource arena;
  std::vector<std::uint32_t> flatOperandIndices;
};

}  // namespace ombrix

#endif
