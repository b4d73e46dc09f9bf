#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodescalarproduct.h"

namespace ombrix {

namespace {

template <typename S>
using NodeProductTemplate = NodeScalarProductTemplate<S, IntOneSelector>;

}  // namespace

Node* createProductNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeProductTemplate>(dag, nbOperands);
}

}  // namespace ombrix
