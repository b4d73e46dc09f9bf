#ifndef OMBRIX_SOLVER_KERNEL_NODETYPEUTILS_H
#define OMBRIX_SOLVER_KERNEL_NODETYPEUTILS_H

#include <cstdint>
#include <string>

#include "common/failure.h"
#include "solver/kernel/nodetype.h"
#include "solver/kernel/oxvalue.h"
#include "solver/kernel/rangehulls.h"

namespace ombrix {

class DagFixedFields;

/// The three tables over the node types: name, domain of the value, and how a node's bounds follow
/// from those of its operands.
class NodeTypeUtils {
public:
  static std::string toString(NodeType type);
  /// The domain of node id; the domains of its operands must stand already.
  static std::uint8_t getDomainValue(const DagFixedFields& fields, std::uint32_t id);
  /// What computeBounds keeps from node to node of one graph.
  struct KnownHulls {
    RangeHulls<IntInterval> ints;
    RangeHulls<DoubleInterval> doubles;
  };
  /// The interval of node id; the bounds of its operands must stand already.
  static void computeBounds(const DagFixedFields& fields, std::uint32_t id, KnownHulls& hulls,
                            OXValue& min, OXValue& max);
  static void computeBounds(const DagFixedFields& fields, std::uint32_t id, OXValue& min,
                            OXValue& max) {
    KnownHulls none;
    computeBounds(fields, id, none, min, max);
  }

private:
  /// Refuses a number that is no type.
  static void checkType(NodeType type, const Where& where);
};

}  // namespace ombrix

#endif
