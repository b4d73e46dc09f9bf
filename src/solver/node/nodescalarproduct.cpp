#include "solver/node/nodescalarproduct.h"
#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

namespace {

template <typename S>
using NodeWithScalars = NodeScalarProductTemplate<S, IntScalarSelector>;

}  // namespace

Node* createScalarProductNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeWithScalars>(dag, nbOperands);
}

}  // namespace ombrix
