#include "solver/node/nodescalarsum.h"
#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

namespace {

template <typename S>
using NodeWithScalars = NodeScalarSumTemplate<S, IntScalarSelector>;

}  // namespace

Node* createScalarSumNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeWithScalars>(dag, nbOperands);
}

}  // namespace ombrix
