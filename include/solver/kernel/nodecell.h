#ifndef OMBRIX_SOLVER_KERNEL_NODECELL_H
#define OMBRIX_SOLVER_KERNEL_NODECELL_H

#include <cstddef>
#include <vector>

#include "solver/kernel/oxvalue.h"

namespace ombrix {

class Node;

/// What a worker holds of one node: both values and, if it fits, the node object itself. An
/// evaluation reads them together, and of a large model each from memory: so they share one cache
/// line.
struct alignas(64) NodeCell {
  OXValue value;   ///< committed
  OXValue tValue;  ///< tentative
  Node* node;      ///< in state or in a pool
  std::byte state[40];
};
static_assert(sizeof(NodeCell) == 64);

/// The committed or the tentative values of all nodes, read by node number as if they were an array
/// of their own. A view: copying it copies no values.
class NodeValues {
public:
  NodeValues() = default;
  NodeValues(OXValue* firstValue, std::size_t nbValues) : first(firstValue), count(nbValues) {}

  OXValue& operator[](std::size_t id) { return first[id * kStride]; }
  const OXValue& operator[](std::size_t id) const { return first[id * kStride]; }
  std::size_t size() const { return count; }
  /// An array of their own.
  std::vector<OXValue> copy() const {
    std::vector<OXValue> values;
    for (std::size_t id = 0; id < count; ++id) values.push_back((*this)[id]);
    return values;
  }

private:
  static constexpr std::size_t kStride = sizeof(NodeCell) / sizeof(OXValue);

  OXValue* first = nullptr;
  std::size_t count = 0;
};

/// The node objects by node number.
class NodeObjects {
public:
  NodeObjects() = default;
  NodeObjects(const NodeCell* firstCell, std::size_t nbNodes) : cells(firstCell), count(nbNodes) {}

  Node* operator[](std::size_t id) const { return cells[id].node; }
  std::size_t size() const { return count; }

private:
  const NodeCell* cells = nullptr;
  std::size_t count = 0;
};

}  // namespace ombrix

#endif
