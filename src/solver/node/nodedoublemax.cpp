#include "solver/node/nodedoublescalarmax.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createDoubleMaxNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeDoubleScalarMaxTemplate, DoubleOneSelector>(dag, nbOperands);
}

}  // namespace ombrix
