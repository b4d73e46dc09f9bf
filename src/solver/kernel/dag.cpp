#include "solver/kernel/dag.h"

#include <sstream>
#include <utility>

#include "common/failure.h"
#include "solver/kernel/largepages.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

namespace {

/// Object sizes that have a pool from the start: all but the largest nodes.
constexpr std::size_t kUsualObjectSize = 128;

using FamilyMaker = Node* (*)(Dag&, std::uint32_t);

/// The maker of a family whose class depends on the operand count; null for every other type.
FamilyMaker familyMaker(NodeType type) {
  switch (type) {
    case NodeType::And:
      return createAndNode;
    case NodeType::Or:
      return createOrNode;
    case NodeType::Xor:
      return createXorNode;
    case NodeType::BooleanSum:
      return createBooleanSumNode;
    case NodeType::Sum:
      return createSumNode;
    case NodeType::ScalarSum:
      return createScalarSumNode;
    case NodeType::Product:
      return createProductNode;
    case NodeType::ScalarProduct:
      return createScalarProductNode;
    case NodeType::Min:
      return createMinNode;
    case NodeType::ScalarMin:
      return createScalarMinNode;
    case NodeType::Max:
      return createMaxNode;
    case NodeType::ScalarMax:
      return createScalarMaxNode;
    case NodeType::DoubleSum:
      return createDoubleSumNode;
    case NodeType::DoubleScalarSum:
      return createDoubleScalarSumNode;
    case NodeType::DoubleProduct:
      return createDoubleProductNode;
    case NodeType::DoubleScalarProduct:
      return createDoubleScalarProductNode;
    case NodeType::DoubleMin:
      return createDoubleMinNode;
    case NodeType::DoubleScalarMin:
      return createDoubleScalarMinNode;
    case NodeType::DoubleMax:
      return createDoubleMaxNode;
    case NodeType::DoubleScalarMax:
      return createDoubleScalarMaxNode;
    case NodeType::Array:
      return createArrayNode;
    default:
      return nullptr;
  }
}

bool isStrictlyAbove(std::uint8_t domain, OXValue a, OXValue b) {
  if (domain != kDoubleDomain) return a.intValue > b.intValue;
  return a.doubleValue > b.doubleValue && !approxEqual(a.doubleValue, b.doubleValue);
}

}  // namespace

Dag::Dag(const DagFixedFields& fields) : emptyBlock(new std::byte[0]), fixedFields(&fields) {
  growPools(kUsualObjectSize);
  if (fields.directions.size() != fields.objectives.size()) {
    fail(kInternal, OMBRIX_HERE("Dag::Dag"),
         "Different number of directions and operators in the objective.");
  }
  if (fields.objectives.empty()) fail(kInternal, OMBRIX_HERE("Dag::Dag"), "No objective.");

  createCells();
  try {
    createNodes();
    propagation.init(*this);
  } catch (...) {
    destroyNodes();
    throw;
  }
}

Dag::~Dag() {
  destroyNodes();
}

void Dag::createCells() {
  resizeLarge(cells, fixedFields->nbNodes);
  if (!cells.empty()) {
    values = NodeValues(&cells.front().value, cells.size());
    tValues = NodeValues(&cells.front().tValue, cells.size());
  }
  nodes = NodeObjects(cells.data(), cells.size());
}

void Dag::createNodes() {
  for (std::uint32_t id = 0; id < fixedFields->nbNodes; ++id) {
    openCell = &cells[id];
    cells[id].node = createNode(id);
  }
  openCell = nullptr;
  for (const auto& nodesOfRank : fixedFields->nodesByRank) {
    for (std::uint32_t id : nodesOfRank) nodes[id]->init(*this, id);
  }
}

// The memory goes with the cells and the pools, all at once.
void Dag::destroyNodes() {
  for (const NodeCell& cell : cells) {
    if (cell.node == nullptr) break;
    cell.node->~Node();
  }
}

Node* Dag::createNode(std::uint32_t id) {
  const NodeType type = fixedFields->types[id];
  const FamilyMaker make = familyMaker(type);
  Node* node = make != nullptr ? make(*this, fixedFields->nbOperands(id))
                               : createFixedArityNode(*this, type);
  if (node == nullptr) {
    std::ostringstream text;
    text << "Unknown type (" << static_cast<unsigned>(type) << ") for node " << id;
    fail(kInternal, OMBRIX_HERE("Dag::createNode"), text.str());
  }
  return node;
}

void* Dag::allocate(std::size_t bytes) {
  if (bytes == 0) return emptyBlock.get();
  if (openCell != nullptr && bytes <= sizeof(openCell->state)) {
    return std::exchange(openCell, nullptr)->state;
  }
  growPools(bytes);
  return pools[bytes].allocate();
}

void Dag::growPools(std::size_t largestSize) {
  while (pools.size() <= largestSize) pools.emplace_back(pools.size());
}

bool Dag::isWorseThan(std::uint32_t objective, OXValue bound) const {
  const std::uint32_t id = fixedFields->objectives[objective];
  switch (fixedFields->directions[objective]) {
    case kMinimise:
      return isStrictlyAbove(fixedFields->domains[id], tValues[id], bound);
    case kMaximise:
      return isStrictlyAbove(fixedFields->domains[id], bound, tValues[id]);
    default:
      return false;
  }
}

bool Dag::isBetterThan(std::uint32_t objective, OXValue bound) const {
  const std::uint32_t id = fixedFields->objectives[objective];
  switch (fixedFields->directions[objective]) {
    case kMinimise:
      return isStrictlyAbove(fixedFields->domains[id], bound, tValues[id]);
    case kMaximise:
      return isStrictlyAbove(fixedFields->domains[id], tValues[id], bound);
    default:
      return false;
  }
}

void Dag::check() const {
  for (std::uint32_t id = 0; id < fixedFields->nbNodes; ++id) nodes[id]->check(*this, id);
}

}  // namespace ombrix
