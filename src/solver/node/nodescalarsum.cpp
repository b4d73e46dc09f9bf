#include "solver/node/nodescalarsum.h"
#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createScalarSumNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeScalarSumTemplate, IntScalarSelector>(dag, nbOperands);
}

}  // namespace ombrix
