#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodescalarextremum.h"

namespace ombrix {

namespace {

template <typename S>
using NodeMaxTemplate = NodeScalarMaxTemplate<S, IntOneSelector>;

}  // namespace

Node* createMaxNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeMaxTemplate>(dag, nbOperands);
}

}  // namespace ombrix
