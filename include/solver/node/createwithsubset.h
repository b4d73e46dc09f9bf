#ifndef OMBRIX_SOLVER_NODE_CREATEWITHSUBSET_H
#define OMBRIX_SOLVER_NODE_CREATEWITHSUBSET_H

#include <cstdint>
#include <new>

#include "solver/kernel/dag.h"
#include "solver/kernel/subsetchoice.h"

namespace ombrix {

/// Makes the member of a family that fits an operand count. NodeTemplate<S> is the family over the
/// subset type alone.
template <template <typename> class NodeTemplate>
Node* createWithSubset(Dag& dag, std::uint32_t nbOperands) {
  return withSubset(nbOperands, [&](auto subset) -> Node* {
    using NodeClass = NodeTemplate<typename decltype(subset)::type>;
    return new (dag.allocate(sizeof(NodeClass))) NodeClass(nbOperands);
  });
}

/// The same for a family that has coefficients too.
template <template <typename, typename> class NodeTemplate, typename Selector>
Node* createWithSubset(Dag& dag, std::uint32_t nbOperands) {
  return withSubset(nbOperands, [&](auto subset) -> Node* {
    using NodeClass = NodeTemplate<typename decltype(subset)::type, Selector>;
    return new (dag.allocate(sizeof(NodeClass))) NodeClass(nbOperands);
  });
}

}  // namespace ombrix

#endif
