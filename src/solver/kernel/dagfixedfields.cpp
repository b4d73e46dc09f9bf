#include "solver/kernel/dagfixedfields.h"

#include <algorithm>
#include <ostream>
#include <sstream>
#include <utility>

#include "common/failure.h"
#include "solver/kernel/largepages.h"
#include "solver/kernel/nodetypeutils.h"

namespace ombrix {

namespace {

bool isSource(NodeType type) {
  return isDecisionType(type) || isConstantType(type);
}

std::uint32_t size32(std::size_t size) {
  return static_cast<std::uint32_t>(size);
}

}  // namespace

DagFixedFields::DagFixedFields() : scalarOffsets(1, 0), operandOffsets(1, 0) {}

std::uint32_t DagFixedFields::addNode(NodeType type, std::span<const std::uint32_t> nodeOperands,
                                      std::span<const OXValue> nodeScalars) {
  checkRoom(nodeOperands.size(), nodeScalars.size());
  types.push_back(type);
  operands.insert(operands.end(), nodeOperands.begin(), nodeOperands.end());
  scalars.insert(scalars.end(), nodeScalars.begin(), nodeScalars.end());
  operandOffsets.push_back(size32(operands.size()));
  scalarOffsets.push_back(size32(scalars.size()));
  return nbNodes++;
}

// A small model may stand for a graph of any size: scalar products of long arrays that they share.
void DagFixedFields::checkRoom(std::size_t nbNewOperands, std::size_t nbNewScalars) const {
  if (types.size() < kNone && nbNewOperands <= kNone - operands.size() &&
      nbNewScalars <= kNone - scalars.size()) {
    return;
  }
  fail(kInternal, OMBRIX_HERE("DagFixedFields::addNode"),
       "The model is too large : its graph has more than 4294967295 nodes, operands or scalars.");
}

void DagFixedFields::addObjective(std::uint32_t node, std::uint32_t direction) {
  directions.push_back(direction);
  objectives.push_back(node);
}

// Each step reads what the earlier ones wrote.
void DagFixedFields::finish() {
  countTypes();
  initPosInConstraints();
  invertOperands();
  computeRanks();
  groupByRank();
  computeDomains();
  computeBounds();
  computeGroups();
  computeLevels();
  sortParentsByLevel();
  layOutQueues();
  linkNodes();
}

void DagFixedFields::countTypes() {
  // The arrays grew node by node; from here on they keep their length.
  types.shrink_to_fit();
  operands.shrink_to_fit();
  operandOffsets.shrink_to_fit();
  scalars.shrink_to_fit();
  scalarOffsets.shrink_to_fit();
  for (NodeType type : types) {
    const auto number = static_cast<std::size_t>(type);
    if (number >= nbNodesByType.size()) nbNodesByType.resize(number + 1, 0);
    ++nbNodesByType[number];
  }
}

void DagFixedFields::initPosInConstraints() {
  posInConstraints.assign(nbNodes, kNone);
  for (std::uint32_t i = 0; i < constraints.size(); ++i) {
    if (posInConstraints[constraints[i]] != kNone) {
      fail(kInternal, OMBRIX_HERE("DagFixedFields::initPosInConstraints"),
           "This node is already a constraint.");
    }
    posInConstraints[constraints[i]] = i;
  }
}

// A counting sort of all uses by operand: parents come in rising order of node and position.
void DagFixedFields::invertOperands() {
  std::vector<std::uint32_t> ends(nbNodes, 0);
  for (std::uint32_t operandNode : operands) ++ends[operandNode];

  const std::size_t nbColumns = objectives.size() + 1;
  parentEnds.assign(nbColumns * nbNodes, 0);
  parentOffsets.resize(nbNodes);
  std::uint32_t offset = 0;
  for (std::uint32_t id = 0; id < nbNodes; ++id) {
    parentEnds[id * nbColumns + nbColumns - 1] = ends[id];
    parentOffsets[id] = offset;
    offset += ends[id];
    ends[id] = parentOffsets[id];
  }

  parents.resize(operands.size());
  parentPositions.resize(operands.size());
  for (std::uint32_t id = 0; id < nbNodes; ++id) {
    const std::uint32_t* ids = operandsOf(id);
    for (std::uint32_t position = 0; position < nbOperands(id); ++position) {
      const std::uint32_t index = ends[ids[position]]++;
      parents[index] = id;
      parentPositions[index] = position;
    }
  }
}

// Kahn's algorithm, first in, first out. The only test against cycles.
void DagFixedFields::computeRanks() {
  ranks.assign(nbNodes, 0);
  std::vector<std::uint32_t> remaining(nbNodes, 0);
  std::vector<bool> reached(nbNodes, false);
  std::vector<std::uint32_t> queue;
  queue.reserve(nbNodes);
  for (std::uint32_t id = 0; id < nbNodes; ++id) {
    if (isSource(types[id])) {
      queue.push_back(id);
    } else {
      remaining[id] = nbOperands(id);
    }
  }

  const std::size_t lastColumn = objectives.size();
  for (std::size_t head = 0; head < queue.size(); ++head) {
    const std::uint32_t id = queue[head];
    reached[id] = true;
    const std::uint32_t begin = parentOffsets[id];
    const std::uint32_t end = begin + parentEndsOf(id)[lastColumn];
    for (std::uint32_t i = begin; i < end; ++i) {
      const std::uint32_t parent = parents[i];
      ranks[parent] = std::max(ranks[parent], ranks[id] + 1);
      if (--remaining[parent] == 0) queue.push_back(parent);
    }
  }

  if (queue.size() != nbNodes) {
    const auto lost = std::find(reached.begin(), reached.end(), false) - reached.begin();
    const auto id = static_cast<std::uint32_t>(lost);
    std::ostringstream text;
    text << "The operator " << id << " (" << getTypeName(id)
         << ") is not accessible from the variables and constants.";
    fail(kInternal, OMBRIX_HERE("DagFixedFields::computeRanks"), text.str());
  }
}

void DagFixedFields::groupByRank() {
  std::vector<std::uint32_t> sizes(1, 0);
  for (std::uint32_t rank : ranks) {
    if (rank >= sizes.size()) sizes.resize(rank + 1, 0);
    ++sizes[rank];
  }
  nodesByRank.resize(sizes.size());
  for (std::size_t rank = 0; rank < sizes.size(); ++rank) nodesByRank[rank].reserve(sizes[rank]);
  for (std::uint32_t id = 0; id < nbNodes; ++id) nodesByRank[ranks[id]].push_back(id);
}

void DagFixedFields::computeDomains() {
  domains.reserve(nbNodes);
  for (std::uint32_t id = 0; id < nbNodes; ++id) {
    domains.push_back(NodeTypeUtils::getDomainValue(*this, id));
  }
}

void DagFixedFields::computeBounds() {
  minValues.resize(nbNodes, OXValue::ofInt(0));
  maxValues.resize(nbNodes, OXValue::ofInt(0));
  NodeTypeUtils::KnownHulls hulls;
  for (const auto& nodes : nodesByRank) {
    for (std::uint32_t id : nodes) {
      NodeTypeUtils::computeBounds(*this, id, hulls, minValues[id], maxValues[id]);
    }
  }
}

template <typename Predicate>
std::uint32_t DagFixedFields::appendGroup(Predicate belongs) {
  const std::size_t first = nodesByGroup.size();
  for (std::uint32_t id = 0; id < nbNodes; ++id) {
    if (!belongs(types[id])) continue;
    posInGroups[id] = size32(nodesByGroup.size());
    nodesByGroup.push_back(id);
  }
  return size32(nodesByGroup.size() - first);
}

void DagFixedFields::computeGroups() {
  posInGroups.assign(nbNodes, kNone);
  nodesByGroup.reserve(nbNodes);
  nbBooleanVars = appendGroup([](NodeType type) { return type == NodeType::Boolean; });
  firstIntegerVar = nbBooleanVars;
  nbIntegerVars = appendGroup([](NodeType type) { return type == NodeType::Integer; });
  firstFloatVar = firstIntegerVar + nbIntegerVars;
  nbFloatVars = appendGroup([](NodeType type) { return type == NodeType::Float; });
  firstInnerNode = firstFloatVar + nbFloatVars;
  nbInnerNodes = appendGroup([](NodeType type) { return !isSource(type); });
}

// The level of a node is the smallest of anything that depends on it, itself included. So a node
// that is both a constraint and an objective has level 0.
void DagFixedFields::computeLevels() {
  levels.assign(nbNodes, nbObjectives() + 1);
  for (std::uint32_t i = nbObjectives(); i > 0; --i) levels[objectives[i - 1]] = i;
  for (std::uint32_t id : constraints) levels[id] = 0;
  for (auto rank = nodesByRank.rbegin(); rank != nodesByRank.rend(); ++rank) {
    for (std::uint32_t id : *rank) {
      const std::uint32_t level = levels[id];
      const std::uint32_t* ids = operandsOf(id);
      for (std::uint32_t i = 0; i < nbOperands(id); ++i) {
        levels[ids[i]] = std::min(levels[ids[i]], level);
      }
    }
  }
}

void DagFixedFields::sortParentsByLevel() {
  for (std::uint32_t id = 0; id < nbNodes; ++id) sortParents(id);
}

// The exchanges fix the order of the parents within a level, and with it the order in which a
// change reaches them. Nodes that nothing depends on come last; the last column counts them too.
// Levels that no parent has are passed over: their ends are those of the level before.
void DagFixedFields::sortParents(std::uint32_t id) {
  const std::uint32_t nbLevels = nbObjectives();
  std::uint32_t* ends = parentEnds.data() + static_cast<std::size_t>(id) * (nbLevels + 1);
  std::uint32_t* nodeParents = parents.data() + parentOffsets[id];
  std::uint32_t* positions = parentPositions.data() + parentOffsets[id];
  std::uint32_t boundary = 0;
  std::uint32_t level = 0;
  while (level <= nbLevels) {
    std::uint32_t nextLevel = nbLevels + 1;
    for (std::uint32_t i = boundary; i < ends[nbLevels]; ++i) {
      if (levels[nodeParents[i]] == level) {
        std::swap(nodeParents[i], nodeParents[boundary]);
        std::swap(positions[i], positions[boundary]);
        ++boundary;
      } else {
        nextLevel = std::min(nextLevel, levels[nodeParents[i]]);
      }
    }
    const std::uint32_t last = std::min(nextLevel, nbLevels);
    if (level < last) std::fill(ends + level, ends + last, boundary);
    level = nextLevel;
  }
}

void DagFixedFields::layOutQueues() {
  queueOffsets.assign(2 * nodesByRank.size() + 1, 0);
  for (std::uint32_t id = 0; id < nbNodes; ++id) ++queueOffsets[queueOf(id) + 1];
  for (std::size_t queue = 1; queue < queueOffsets.size(); ++queue) {
    queueOffsets[queue] += queueOffsets[queue - 1];
  }
}

void DagFixedFields::linkNodes() {
  constexpr std::size_t kWordsPerBlock = sizeof(LinkBlock) / sizeof(std::uint32_t);
  const std::size_t nbColumns = objectives.size() + 1;
  linkStride = (kParentEnds + nbColumns + kWordsPerBlock - 1) / kWordsPerBlock;
  resizeLarge(links, linkStride * nbNodes);
  for (std::uint32_t id = 0; id < nbNodes; ++id) {
    const auto put = [&](std::size_t word, std::uint32_t number) {
      links[id * linkStride + word / kWordsPerBlock].words[word % kWordsPerBlock] = number;
    };
    put(kQueueAndDomain, 4 * queueOf(id) + domains[id]);
    put(kParentOffset, parentOffsets[id]);
    put(kOperandOffset, operandOffsets[id]);
    put(kNbOperands, nbOperands(id));
    put(kScalarOffset, scalarOffsets[id]);
    put(kConstraintIndex, posInConstraints[id]);
    for (std::size_t column = 0; column < nbColumns; ++column) {
      put(kParentEnds + column, parentEndsOf(id)[column]);
    }
  }
  reserveLarge(parentUses, parents.size());
  for (std::size_t i = 0; i < parents.size(); ++i) {
    parentUses.push_back({parents[i], parentPositions[i]});
  }
}

std::uint32_t DagFixedFields::queueOf(std::uint32_t id) const {
  return 2 * ranks[id] + (isConstraint(id) ? 0 : 1);
}

std::string DagFixedFields::getTypeName(std::uint32_t id) const {
  return NodeTypeUtils::toString(types[id]);
}

void DagFixedFields::display(std::ostream& out) const {
  out << "Kernel dag statistics:\n";
  out << "  nodes=" << nbNodes << '\n';
  out << "  variables=" << firstInnerNode << '\n';
  out << "  constraints=" << constraints.size() << '\n';
  out << "  objectives=" << objectives.size() << '\n';
  out << "  maxRank=" << nodesByRank.size() - 1 << '\n';
  for (std::size_t type = 0; type < nbNodesByType.size(); ++type) {
    out << "  " << NodeTypeUtils::toString(static_cast<NodeType>(type)) << "="
        << nbNodesByType[type] << '\n';
  }
  out << "Objective bounds:\n";
  for (std::size_t i = 0; i < objectives.size(); ++i) {
    const std::uint32_t id = objectives[i];
    out << "  Obj " << i << ": ";
    if (domains[id] == kDoubleDomain) {
      out << "min = " << minValues[id].doubleValue << ", max = " << maxValues[id].doubleValue;
    } else {
      out << "min = " << minValues[id].intValue << ", max = " << maxValues[id].intValue;
    }
    out << '\n';
  }
  out.flush();
}

}  // namespace ombrix
