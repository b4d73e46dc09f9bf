#include "solver/node/nodedoublescalarsum.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createDoubleSumNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeDoubleScalarSumTemplate, DoubleOneSelector>(dag, nbOperands);
}

}  // namespace ombrix
