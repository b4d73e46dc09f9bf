#include "solver/node/nodedoublescalarmin.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createDoubleMinNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeDoubleScalarMinTemplate, DoubleOneSelector>(dag, nbOperands);
}

}  // namespace ombrix
