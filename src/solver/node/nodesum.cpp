#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodescalarsum.h"

namespace ombrix {

Node* createSumNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeScalarSumTemplate, IntOneSelector>(dag, nbOperands);
}

}  // namespace ombrix
