#include "solver/move/moveanalysis.h"

#include <algorithm>
#include <new>

#include "solver/move/constraintnodecomparison.h"
#include "solver/move/constraintnodelogical.h"
#include "solver/move/constraintnodesum.h"
#include "solver/move/constraintparents.h"

namespace ombrix {

namespace {

/// The depth of the mirror, and so the cost of a planned flip, is bounded by these ranks.
constexpr std::size_t kMaxRank = 4;

bool isNumber(NodeType type) {
  return type == NodeType::Constant || type == NodeType::DoubleConstant;
}

bool canBePlanned(NodeType type) {
  switch (type) {
    case NodeType::Boolean:
    case NodeType::BooleanSum:
    case NodeType::Sum:
    case NodeType::ScalarSum:
    case NodeType::DoubleSum:
    case NodeType::DoubleScalarSum:
    case NodeType::Eq:
    case NodeType::Leq:
    case NodeType::Geq:
    case NodeType::DoubleEq:
    case NodeType::DoubleLeq:
    case NodeType::DoubleGeq:
    case NodeType::Or:
    case NodeType::And:
      return true;
    default:
      return false;
  }
}

}  // namespace

MoveAnalysis::MoveAnalysis(const DagFixedFields& fields, bool withAdvancedMoves)
    : fixedFieldsRef(&fields), advancedMovesOn(withAdvancedMoves) {
  collectDoubleComparisons();
  if (!advancedMovesOn) return;
  createNodes();
  recordFlatOperands();
}

MoveAnalysis::~MoveAnalysis() {
  for (StaticConstraintNode* node : staticNodes) node->~StaticConstraintNode();
}

void MoveAnalysis::collectDoubleComparisons() {
  for (std::uint32_t node = 0; node < fixedFieldsRef->nbNodes; ++node) {
    const NodeType type = fixedFieldsRef->types[node];
    if (type == NodeType::DoubleEq || type == NodeType::DoubleGeq || type == NodeType::DoubleLeq) {
      doubleComparisons.push_back(node);
    }
  }
}

void MoveAnalysis::createNodes() {
  const DagFixedFields& fields = *fixedFieldsRef;
  staticByNode.assign(fields.nbNodes, kNone);
  staticByDecision.assign(fields.nbBooleanVars, nullptr);
  const std::size_t nbRanks = std::min(fields.nodesByRank.size(), kMaxRank + 1);
  const std::vector<bool> marked = markAutonomous(nbRanks);
  for (std::size_t rank = 0; rank < nbRanks; ++rank) {
    for (const std::uint32_t node : fields.nodesByRank[rank]) {
      if (!marked[node] || isNumber(fields.types[node])) continue;
      staticByNode[node] = static_cast<std::uint32_t>(staticNodes.size());
      staticNodes.push_back(createNode(node));
    }
  }
}

/// Upward, the nodes that follow from decisions through nodes that can be planned; downward, of
/// these the ones that some constraint among them needs.
std::vector<bool> MoveAnalysis::markAutonomous(std::size_t nbRanks) const {
  std::vector<bool> marked(fixedFieldsRef->nbNodes, false);
  for (std::size_t rank = 0; rank < nbRanks; ++rank) {
    for (const std::uint32_t node : fixedFieldsRef->nodesByRank[rank]) {
      marked[node] = isAutonomous(node, marked);
    }
  }
  for (std::size_t rank = nbRanks; rank-- > 0;) {
    for (const std::uint32_t node : fixedFieldsRef->nodesByRank[rank]) {
      if (marked[node]) marked[node] = isWanted(node, marked);
    }
  }
  return marked;
}

bool MoveAnalysis::isAutonomous(std::uint32_t node, const std::vector<bool>& marked) const {
  const DagFixedFields& fields = *fixedFieldsRef;
  const NodeType type = fields.types[node];
  if (isNumber(type)) return true;
  const std::uint32_t* operands = fields.operandsOf(node);
  return canBePlanned(type) && std::all_of(operands, operands + fields.nbOperands(node),
                                           [&](std::uint32_t operand) { return marked[operand]; });
}

bool MoveAnalysis::isWanted(std::uint32_t node, const std::vector<bool>& marked) const {
  if (fixedFieldsRef->isConstraint(node)) return true;
  const auto parents = constraintParentsOf(*fixedFieldsRef, node).nodes;
  return std::any_of(parents.begin(), parents.end(),
                     [&](std::uint32_t parent) { return marked[parent]; });
}

template <class N, class... Args>
N* MoveAnalysis::create(std::uint32_t node, Args... args) {
  void* const place = arena.allocate(sizeof(N), alignof(N));
  return new (place) N(static_cast<std::uint32_t>(staticNodes.size()), node, args...);
}

StaticConstraintNode* MoveAnalysis::createNode(std::uint32_t node) {
  switch (fixedFieldsRef->types[node]) {
    case NodeType::And:
      return create<StaticConstraintNodeAnd>(node);
    case NodeType::Or:
      return create<StaticConstraintNodeOr>(node);
    case NodeType::ScalarSum:
      return create<StaticConstraintNodeScalarSum>(node);
    case NodeType::DoubleSum:
      return create<StaticConstraintNodeDoubleSum>(node);
    case NodeType::DoubleScalarSum:
      return create<StaticConstraintNodeDoubleScalarSum>(node);
    case NodeType::Eq:
      return create<StaticConstraintNodeEq>(node);
    case NodeType::Leq:
      return create<StaticConstraintNodeLeq>(node);
    case NodeType::Geq:
      return create<StaticConstraintNodeGeq>(node);
    case NodeType::DoubleEq:
      return create<StaticConstraintNodeDoubleEq>(node);
    case NodeType::DoubleLeq:
      return create<StaticConstraintNodeDoubleLeq>(node);
    case NodeType::DoubleGeq:
      return create<StaticConstraintNodeDoubleGeq>(node);
    case NodeType::Boolean: {
      const std::uint32_t decision = fixedFieldsRef->posInGroups[node];
      staticByDecision[decision] = create<StaticConstraintNodeBool>(node, decision);
      return staticByDecision[decision];
    }
    default:  // boolean_sum and sum
      return create<StaticConstraintNodeSum>(node);
  }
}

void MoveAnalysis::recordFlatOperands() {
  const DagFixedFields& fields = *fixedFieldsRef;
  for (StaticConstraintNode* node : staticNodes) {
    if (!node->isFlat(*this)) continue;
    node->flatBegin = static_cast<std::uint32_t>(flatOperandIndices.size());
    for (std::uint32_t i = 0; i < fields.nbOperands(node->node); ++i) {
      const std::uint32_t index = staticByNode[fields.operand(node->node, i)];
      if (index != kNone) flatOperandIndices.push_back(index);
    }
    node->flatEnd = static_cast<std::uint32_t>(flatOperandIndices.size());
  }
}

}  // namespace ombrix
