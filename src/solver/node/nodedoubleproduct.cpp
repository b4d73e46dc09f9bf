#include "solver/node/nodedoublescalarproduct.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createDoubleProductNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeDoubleScalarProductTemplate, DoubleOneSelector>(dag, nbOperands);
}

}  // namespace ombrix
