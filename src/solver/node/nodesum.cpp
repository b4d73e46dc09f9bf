#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodescalarsum.h"

namespace ombrix {

namespace {

template <typename S>
using NodeSumTemplate = NodeScalarSumTemplate<S, IntOneSelector>;

}  // namespace

Node* createSumNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeSumTemplate>(dag, nbOperands);
}

}  // namespace ombrix
