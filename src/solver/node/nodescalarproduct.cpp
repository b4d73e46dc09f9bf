#include "solver/node/nodescalarproduct.h"
#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createScalarProductNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeScalarProductTemplate, IntScalarSelector>(dag, nbOperands);
}

}  // namespace ombrix
