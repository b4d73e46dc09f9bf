#include "solver/node/nodedoublescalarmin.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createDoubleScalarMinNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeDoubleScalarMinTemplate, DoubleScalarSelector>(dag, nbOperands);
}

}  // namespace ombrix
