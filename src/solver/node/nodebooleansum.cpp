#include "solver/node/nodebooleansum.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createBooleanSumNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeBooleanSumTemplate>(dag, nbOperands);
}

}  // namespace ombrix
