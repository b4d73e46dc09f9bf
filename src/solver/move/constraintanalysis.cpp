#include "solver/move/constraintanalysis.h"

#include <algorithm>

#include "solver/move/constraintparents.h"

namespace ombrix {

namespace {

enum class ListGroup : std::uint8_t { None, Free, Constrained, ExactlyOne, WithDoubles };

bool isSum(NodeType type) {
  switch (type) {
    case NodeType::BooleanSum:
    case NodeType::Sum:
    case NodeType::ScalarSum:
    case NodeType::DoubleSum:
    case NodeType::DoubleScalarSum:
      return true;
    default:
      return false;
  }
}

/// Whether a comparison has the constant 1 at a position.
bool isConstantOne(const DagFixedFields& fields, std::uint32_t node) {
  if (fields.types[node] == NodeType::Constant) return fields.scalarsOf(node)->intValue == 1;
  return fields.types[node] == NodeType::DoubleConstant &&
         fields.scalarsOf(node)->doubleValue == 1.0;
}

ListGroup groupOfBooleanList(const DagFixedFields& fields, std::uint32_t list) {
  const ConstraintParents parents = constraintParentsOf(fields, list);
  ListGroup group = ListGroup::Free;
  for (std::size_t i = 0; i < parents.nodes.size(); ++i) {
    const std::uint32_t parent = parents.nodes[i];
    if (!fields.isConstraint(parent) || !isEqualityType(fields.types[parent])) continue;
    if (isConstantOne(fields, fields.operand(parent, 1 - parents.positions[i]))) {
      return ListGroup::ExactlyOne;
    }
    group = ListGroup::Constrained;
  }
  return group;
}

ListGroup groupOf(const DagFixedFields& fields, std::uint32_t node) {
  if (!isSum(fields.types[node]) || fields.nbOperands(node) < 2) return ListGroup::None;
  bool isBoolean = true;
  for (std::uint32_t i = 0; i < fields.nbOperands(node); ++i) {
    const NodeType type = fields.types[fields.operand(node, i)];
    if (type == NodeType::Float) {
      isBoolean = false;
    } else if (type != NodeType::Boolean) {
      return ListGroup::None;
    }
  }
  return isBoolean ? groupOfBooleanList(fields, node) : ListGroup::WithDoubles;
}

}  // namespace

ConstraintAnalysis::ConstraintAnalysis(const DagFixedFields& fields) : fixedFields(&fields) {
  std::vector<std::uint32_t> mixedLists;
  gatherLists(mixedLists);
  buildIncidence(mixedLists);
  deriveSets();
}

void ConstraintAnalysis::gatherLists(std::vector<std::uint32_t>& mixedLists) {
  std::vector<std::uint32_t> constrainedLists;
  std::vector<std::uint32_t> exactlyOneLists;
  for (std::uint32_t node = 0; node < fixedFields->nbNodes; ++node) {
    const ListGroup group = groupOf(*fixedFields, node);
    if (group == ListGroup::None) continue;
    floatLists.push_back(node);
    if (group == ListGroup::Free) booleanLists.push_back(node);
    if (group == ListGroup::Constrained) constrainedLists.push_back(node);
    if (group == ListGroup::ExactlyOne) exactlyOneLists.push_back(node);
    if (group == ListGroup::WithDoubles) mixedLists.push_back(node);
  }
  nbFreeLists = static_cast<std::uint32_t>(booleanLists.size());
  nbExactlyOneLists = static_cast<std::uint32_t>(exactlyOneLists.size());
  booleanLists.insert(booleanLists.end(), constrainedLists.begin(), constrainedLists.end());
  booleanLists.insert(booleanLists.end(), exactlyOneLists.begin(), exactlyOneLists.end());
  lists = booleanLists;
  lists.insert(lists.end(), floatLists.begin(), floatLists.end());
}

void ConstraintAnalysis::buildIncidence(std::span<const std::uint32_t> mixedLists) {
  // A boolean list is told once, in its own group: otherwise no list would be free for anyone.
  const std::span<const std::uint32_t> boolean(booleanLists);
  const std::uint32_t nbDecisions = fixedFields->firstInnerNode;
  entries.resize(nbDecisions + 1);
  std::vector<std::uint32_t> ends(nbDecisions + 1);
  countEntries(boolean.first(nbFreeLists), &Entries::nbFree, ends);
  for (Entries& own : entries) own.nbConstrained = own.nbFree;
  countEntries(boolean.subspan(nbFreeLists), &Entries::nbConstrained, ends);
  countEntries(mixedLists, nullptr, ends);

  std::uint32_t offset = 0;
  for (std::uint32_t i = 0; i <= nbDecisions; ++i) {
    entries[i].offset = offset;
    offset += ends[i];
    ends[i] = entries[i].offset;
  }
  entryLists.resize(offset);
  entryPositions.resize(offset);
  writeEntries(boolean, ends);
  writeEntries(mixedLists, ends);
}

void ConstraintAnalysis::countEntries(std::span<const std::uint32_t> some,
                                      std::uint32_t Entries::*counter,
                                      std::vector<std::uint32_t>& totals) {
  for (const std::uint32_t list : some) {
    for (std::uint32_t i = 0; i < fixedFields->nbOperands(list); ++i) {
      const std::uint32_t index = fixedFields->posInGroups[fixedFields->operand(list, i)];
      if (counter != nullptr) ++(entries[index].*counter);
      ++totals[index];
    }
  }
}

void ConstraintAnalysis::writeEntries(std::span<const std::uint32_t> some,
                                      std::vector<std::uint32_t>& ends) {
  for (const std::uint32_t list : some) {
    for (std::uint32_t i = 0; i < fixedFields->nbOperands(list); ++i) {
      const std::uint32_t index = fixedFields->posInGroups[fixedFields->operand(list, i)];
      entryLists[ends[index]] = list;
      entryPositions[ends[index]] = i;
      ++ends[index];
    }
  }
}

void ConstraintAnalysis::deriveSets() {
  bool hasExit = false;
  for (std::uint32_t i = 0; i < fixedFields->nbBooleanVars; ++i) {
    const std::uint32_t decision = fixedFields->nodesByGroup[i];
    const DecisionIncidence own = incidence(decision);
    const std::uint32_t nbBeyond = own.size() - own.nbFree;
    if (nbBeyond == 0) freeDecisions.push_back(decision);
    if (own.size() > 0 && nbBeyond <= 1) swapDecisions.push_back(decision);
    if (own.nbFree > 0 && nbBeyond < 2) hasExit = true;
  }
  hasFreeOrMixed = booleanLists.size() == nbFreeLists || hasExit;
}

}  // namespace ombrix
