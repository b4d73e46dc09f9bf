#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodescalarproduct.h"

namespace ombrix {

Node* createProductNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeScalarProductTemplate, IntOneSelector>(dag, nbOperands);
}

}  // namespace ombrix
