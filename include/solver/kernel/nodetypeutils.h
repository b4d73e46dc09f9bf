#ifndef OMBRIX_SOLVER_KERNEL_NODETYPEUTILS_H
#define OMBRIX_SOLVER_KERNEL_NODETYPEUTILS_H

#include <cstdint>
#include <string>

#include "common/failure.h"
#include "solver/kernel/nodetype.h"
#include "solver/kernel/oxvalue.h"

namespace ombrix {

class DagFixedFields;

/// The three tables over the node types: name, domain of the value, and how a node's bounds follow
/// from those of its operands.
class NodeTypeUtils {
public:
  static std::string toString(NodeType type);
  /// The domain of node id; the domains of its operands must stand already.
  static std::uint8_t getDomainValue(const DagFixedFields& fields, std::uint32_t id);
  /// The interval of node id; the bounds of its operands must stand already.
  static void computeBounds(const DagFixedFields& fields, std::uint32_t id, OXValue& min,
                            OXValue& max);

private:
  /// Refuses a number that is no type.
  static void checkType(NodeType type, const Where& where);
};

}  // namespace ombrix

#endif
