#ifndef OMBRIX_SOLVER_NODE_NODEINCREMENTAL_H
#define OMBRIX_SOLVER_NODE_NODEINCREMENTAL_H

#include <cstdint>

#include "solver/kernel/dag.h"
#include "solver/kernel/modifiedset.h"
#include "solver/kernel/node.h"

namespace ombrix {

/// What all nodes over a subset type share: the set of operand positions that changed in the open
/// move. Operands fill it, eval reads it, and it is empty while no move is open. Base is NodeInner,
/// NodeDoubleInner or a class over one of them. A node that also walks the operands that did not
/// change passes S as M.
template <typename Base, typename S, typename M = ModifiedSet<S>>
class NodeIncremental : public Base {
public:
  explicit NodeIncremental(std::uint32_t nbOperands) { modified.init(nbOperands); }

  void operandChanged(std::uint32_t position, const DagFixedFields& fields,
                      std::uint32_t id) override {
    modified.add(position, fields.nbOperands(id));
  }

  void rollback(Dag& dag, std::uint32_t id) override {
    dag.tValues[id] = dag.values[id];
    modified.clear();
  }

protected:
  /// The last step of commit, after the node's own state has followed.
  void settle(Dag& dag, std::uint32_t id) {
    modified.clear();
    dag.values[id] = dag.tValues[id];
  }

  M modified;
};

}  // namespace ombrix

#endif
