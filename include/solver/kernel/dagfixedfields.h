#ifndef OMBRIX_SOLVER_KERNEL_DAGFIXEDFIELDS_H
#define OMBRIX_SOLVER_KERNEL_DAGFIXEDFIELDS_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "solver/kernel/cacheline.h"
#include "solver/kernel/nodetype.h"
#include "solver/kernel/oxvalue.h"

namespace ombrix {

/// "No such node", "no such index" wherever a 32-bit number may be absent.
inline constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

/// An aligned piece of the record of a node: with one objective a record is one block.
struct alignas(32) LinkBlock {
  std::uint32_t words[8];
};

/// The words of the record of a node.
enum LinkWord : std::uint32_t {
  kQueueAndDomain = 0,  ///< the queue times 4 plus the domain
  kParentOffset = 1,    ///< its parentOffsets
  kOperandOffset = 2,   ///< its operandOffsets
  kNbOperands = 3,
  kScalarOffset = 4,     ///< its scalarOffsets
  kConstraintIndex = 5,  ///< its posInConstraints
  kParentEnds = 6        ///< its row of parentEnds begins here
};

/// A node as an operand of a parent.
struct ParentUse {
  std::uint32_t parent;
  std::uint32_t position;
};

/// The direction of an objective.
enum Direction : std::uint32_t { kMinimise = 0, kMaximise = 1 };

/// Everything about the graph that no move changes: shape, types, ranks, bounds, scalars, and the
/// order in which a change may travel. The builder fills it node by node and calls finish once;
/// from then on any number of workers read it without a lock. Every array is indexed by node
/// number, or flat with an array of offsets beside it; there are no pointers between nodes. Aligned
/// to cache lines: the places and sizes of the arrays, which all workers read at every move, stand
/// beside nothing that a worker writes.
class alignas(kCacheLineSize) DagFixedFields {
public:
  // The graph as told by the builder.
  std::uint32_t nbNodes = 0;               ///< also the next free node number
  std::vector<std::uint32_t> constraints;  ///< constraint nodes, in the order of the model
  std::vector<std::uint32_t> objectives;   ///< objective nodes, the most important first
  std::vector<std::uint32_t> directions;   ///< per objective: 0 minimise, 1 maximise

  // Derived by finish.
  std::vector<std::vector<std::uint32_t>> nodesByRank;
  std::vector<std::uint32_t> posInConstraints;  ///< per node: index in constraints, or kNone
  std::vector<std::uint32_t> ranks;
  std::vector<OXValue> minValues;
  std::vector<OXValue> maxValues;
  std::vector<std::uint8_t> domains;  ///< per node: a Domain

  std::vector<OXValue> scalars;              ///< flat: the numbers attached to nodes
  std::vector<std::uint32_t> scalarOffsets;  ///< per node, and one more
  std::vector<NodeType> types;               ///< per node
  std::vector<std::uint32_t> nbNodesByType;  ///< up to the largest type in use
  std::vector<std::uint32_t> nodesByGroup;   ///< booleans, integers, floats, inner nodes
  std::vector<std::uint32_t> posInGroups;    ///< per node: its index in nodesByGroup
  std::uint32_t nbBooleanVars = 0;
  std::uint32_t nbIntegerVars = 0;
  std::uint32_t nbFloatVars = 0;
  std::uint32_t nbInnerNodes = 0;
  std::uint32_t firstIntegerVar = 0;
  std::uint32_t firstFloatVar = 0;
  std::uint32_t firstInnerNode = 0;  ///< also the number of decisions

  std::vector<std::uint32_t> operandOffsets;  ///< per node, and one more
  std::vector<std::uint32_t> operands;        ///< flat, in operand order, with repeats
  /// (number of objectives + 1) entries per node. Row p, column l: the count of parents of p with
  /// level at most l; last column: all parents. So the parents that a level needs are a slice.
  std::vector<std::uint32_t> parentEnds;
  std::vector<std::uint32_t> parentOffsets;    ///< per node: start of its parents
  std::vector<std::uint32_t> parents;          ///< flat: one entry per use as an operand
  std::vector<std::uint32_t> parentPositions;  ///< parallel: position among that parent's operands
  std::vector<std::uint32_t> levels;  ///< per node: the first objective level that needs it

  // The layout of the queues of Propagation, which has two for each rank: 2 * rank holds the
  // constraints of the rank, 2 * rank + 1 its other nodes.
  std::vector<std::uint32_t> queueOffsets;  ///< per queue, and one more: start of its slots
  /// What a change reads of each node it meets, side by side so that it costs one cache line: a
  /// record of linkStride blocks per node, whose words are numbered by LinkWord.
  std::vector<LinkBlock> links;
  std::size_t linkStride = 1;
  std::vector<ParentUse> parentUses;  ///< parents and parentPositions side by side

  DagFixedFields();

  /// Appends a node over existing operands and returns its number. Fails when the graph has more
  /// nodes, operands or scalars than 32 bits can number.
  std::uint32_t addNode(NodeType type, std::span<const std::uint32_t> nodeOperands,
                        std::span<const OXValue> nodeScalars);
  std::uint32_t addNode(NodeType type, std::initializer_list<std::uint32_t> nodeOperands = {},
                        std::initializer_list<OXValue> nodeScalars = {}) {
    return addNode(type, std::span(nodeOperands.begin(), nodeOperands.size()),
                   std::span(nodeScalars.begin(), nodeScalars.size()));
  }
  void addObjective(std::uint32_t node, std::uint32_t direction);

  /// Derives ranks, bounds, groups, levels and parents. Called once; nothing changes afterwards.
  void finish();

  std::string getTypeName(std::uint32_t id) const;
  /// Writes the statistics of the graph.
  void display(std::ostream& out) const;

  // Shorthands over the arrays.
  std::uint32_t nbObjectives() const { return static_cast<std::uint32_t>(objectives.size()); }
  std::uint32_t nbOperands(std::uint32_t id) const {
    return operandOffsets[id + 1] - operandOffsets[id];
  }
  std::uint32_t operand(std::uint32_t id, std::uint32_t position) const {
    return operands[operandOffsets[id] + position];
  }
  const std::uint32_t* operandsOf(std::uint32_t id) const {
    return operands.data() + operandOffsets[id];
  }
  std::uint32_t nbScalars(std::uint32_t id) const {
    return scalarOffsets[id + 1] - scalarOffsets[id];
  }
  const OXValue* scalarsOf(std::uint32_t id) const { return scalars.data() + scalarOffsets[id]; }
  /// The row of parentEnds of a node.
  const std::uint32_t* parentEndsOf(std::uint32_t id) const {
    return parentEnds.data() + static_cast<std::size_t>(id) * (objectives.size() + 1);
  }
  /// The record of a node in links.
  const std::uint32_t* linksOf(std::uint32_t id) const {
    return reinterpret_cast<const std::uint32_t*>(links.data() + id * linkStride);
  }
  // The same by the record of the node, for whoever has read that already; after finish.
  const std::uint32_t* linkedOperandsOf(std::uint32_t id) const {
    return operands.data() + linksOf(id)[kOperandOffset];
  }
  const OXValue* linkedScalarsOf(std::uint32_t id) const {
    return scalars.data() + linksOf(id)[kScalarOffset];
  }
  bool isConstraint(std::uint32_t id) const { return posInConstraints[id] != kNone; }

private:
  void checkRoom(std::size_t nbNewOperands, std::size_t nbNewScalars) const;
  void countTypes();
  void initPosInConstraints();
  void invertOperands();
  void computeRanks();
  void groupByRank();
  void computeDomains();
  void computeBounds();
  void computeGroups();
  template <typename Predicate>
  std::uint32_t appendGroup(Predicate belongs);
  void computeLevels();
  void sortParentsByLevel();
  void sortParents(std::uint32_t id);
  void layOutQueues();
  void linkNodes();
  std::uint32_t queueOf(std::uint32_t id) const;
};

}  // namespace ombrix

#endif
