#include "solver/node/nodedoublescalarmax.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createDoubleScalarMaxNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeDoubleScalarMaxTemplate, DoubleScalarSelector>(dag, nbOperands);
}

}  // namespace ombrix
