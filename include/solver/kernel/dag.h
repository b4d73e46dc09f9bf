#ifndef OMBRIX_SOLVER_KERNEL_DAG_H
#define OMBRIX_SOLVER_KERNEL_DAG_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/node.h"
#include "solver/kernel/nodecell.h"
#include "solver/kernel/nodepool.h"
#include "solver/kernel/oxvalue.h"
#include "solver/kernel/propagation.h"

namespace ombrix {

/// The model as one worker sees it: a cell per node with its values and its object, and the
/// Propagation that carries a change through the graph. The shape of the graph is
/// kept apart in DagFixedFields, which any number of Dags share. Belongs to one thread; allocates
/// nothing after its construction. The search reads the members directly.
class alignas(kCacheLineSize) Dag {
public:
  /// Builds and initialises all nodes, with every decision at 0. A failure of a node's first
  /// evaluation leaves the construction, and what stood is destroyed.
  explicit Dag(const DagFixedFields& fields);
  ~Dag();
  Dag(const Dag&) = delete;
  Dag& operator=(const Dag&) = delete;

  /// Builds the node object of node id by its type and operand count; owned by the pools.
  Node* createNode(std::uint32_t id);
  /// Memory for a node object; it lives as long as the Dag.
  void* allocate(std::size_t bytes);

  /// Whether the tentative value of an objective is strictly worse than bound in its direction.
  bool isWorseThan(std::uint32_t objective, OXValue bound) const;
  bool isBetterThan(std::uint32_t objective, OXValue bound) const;

  /// Runs check on every node; a diagnostic for when no move is open.
  void check() const;

private:
  void createCells();
  void createNodes();
  void destroyNodes();
  void growPools(std::size_t largestSize);

  std::vector<NodePool> pools;  ///< by object size: the index is the size
  std::unique_ptr<std::byte[]> emptyBlock;
  NodeCell* openCell = nullptr;  ///< takes the next object that fits

public:
  Propagation propagation;
  std::vector<NodeCell> cells;  ///< one per node; never moves
  NodeValues values;            ///< committed, in the cells
  NodeValues tValues;           ///< tentative, in the cells
  const DagFixedFields* fixedFields;
  NodeObjects nodes;  ///< by the pointers of the cells
};

/// Reads a value as a double: every double node converts operands of the other domains so.
inline double doubleValue(std::uint8_t domain, OXValue value) {
  return domain == kDoubleDomain ? value.doubleValue : static_cast<double>(value.intValue);
}

}  // namespace ombrix

#endif
