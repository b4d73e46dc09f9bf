#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodescalarextremum.h"

namespace ombrix {

namespace {

template <typename S>
using NodeMinTemplate = NodeScalarMinTemplate<S, IntOneSelector>;

}  // namespace

Node* createMinNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeMinTemplate>(dag, nbOperands);
}

}  // namespace ombrix
