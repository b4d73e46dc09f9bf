#include "solver/node/nodearray.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createArrayNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeArrayTemplate>(dag, nbOperands);
}

}  // namespace ombrix
