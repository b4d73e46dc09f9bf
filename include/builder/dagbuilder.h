#ifndef OMBRIX_BUILDER_DAGBUILDER_H
#define OMBRIX_BUILDER_DAGBUILDER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "builder/passreport.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/oxvalue.h"
#include "solver/move/constraintanalysis.h"
#include "solver/move/moveanalysis.h"

namespace ombrix {

class Heuristic;
class OXExpression;
class OXModel;
class OXSolution;

/// Turns a closed model into the kernel graph, and stays as the translator between the two worlds
/// while the model is closed: the model speaks of expressions by index, the kernel of nodes by
/// number. The graph is no copy of the model: bounds are tightened, constants folded, expressions
/// merged, and only what constraints and objectives reach has a node.
///
/// Made by OXModel::close and owned by the model. The constructor runs the whole transformation, in
/// time linear in the model; nothing changes afterwards, so any number of threads may read.
class DagBuilder {
public:
  /// Raises code 6 when the model is open; failures of the passes go through.
  explicit DagBuilder(OXModel* model);
  DagBuilder(const DagBuilder&) = delete;
  DagBuilder& operator=(const DagBuilder&) = delete;

  const DagFixedFields& getFixedFields() const { return fixedFields; }
  /// A contradiction was proved: there is no graph and nothing to search.
  bool isInconsistent() const { return !conflictingExpressions.empty(); }

  /// Writes the values of the decisions, given by expression index, into the Dag of a heuristic,
  /// which then holds them as its best solution. A decision proved constant keeps its value.
  void loadDecisions(const std::vector<OXValue>& values, Heuristic& heuristic) const;
  /// Writes decisions, objectives and status of the best solution of a heuristic into the public
  /// solution; all other expressions are left to be evaluated on demand.
  void storeSolution(const Heuristic& heuristic, OXSolution& publicSolution) const;

  /// The node of an expression, or kNone. Exact for decisions; an expression that another one
  /// replaced has none of its own.
  std::uint32_t nodeId(std::size_t expression) const { return nodeIds[expression]; }
  /// Whether an expression was proved constant.
  bool isFixed(std::size_t expression) const { return fixed[expression]; }
  /// One per expression, in the member of its type.
  const std::vector<OXValue>& lowerBounds() const { return lowers; }
  const std::vector<OXValue>& upperBounds() const { return uppers; }
  /// The expressions at which contradictions were met.
  const std::vector<OXExpression*>& conflicts() const { return conflictingExpressions; }

  /// One for each pass that ran, in their order.
  const std::vector<PassReport>& passReports() const { return reports; }

  const ConstraintAnalysis& constraintAnalysis() const { return *analysis; }
  const MoveAnalysis& moveAnalysis() const { return *plannedMoves; }

private:
  void transform();
  /// Whether the parameters ask for a move that works on the structure of the constraints.
  bool wantsAdvancedMoves() const;
  /// The node of a decision as long as a move can write it, else kNone.
  std::uint32_t decisionNode(const OXExpression& decision) const;
  void storeDecisions(const Heuristic& heuristic, OXSolution& publicSolution) const;
  void storeObjectives(const Heuristic& heuristic, OXSolution& publicSolution) const;

  OXModel* model;
  DagFixedFields fixedFields;
  std::vector<std::uint32_t> nodeIds;
  std::vector<OXExpression*> conflictingExpressions;
  std::vector<PassReport> reports;
  std::vector<OXValue> lowers;
  std::vector<OXValue> uppers;
  std::vector<bool> fixed;
  std::optional<ConstraintAnalysis> analysis;
  std::optional<MoveAnalysis> plannedMoves;
};

}  // namespace ombrix

#endif
