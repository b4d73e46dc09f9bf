#include "solver/node/nodedoublescalarproduct.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createDoubleScalarProductNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeDoubleScalarProductTemplate, DoubleScalarSelector>(dag, nbOperands);
}

}  // namespace ombrix
