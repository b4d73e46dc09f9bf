#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodescalarextremum.h"

namespace ombrix {

namespace {

template <typename S>
using NodeWithScalars = NodeScalarMinTemplate<S, IntScalarSelector>;

}  // namespace

Node* createScalarMinNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeWithScalars>(dag, nbOperands);
}

}  // namespace ombrix
