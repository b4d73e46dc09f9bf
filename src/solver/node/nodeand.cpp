#include "solver/node/nodeand.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createAndNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeAndTemplate>(dag, nbOperands);
}

}  // namespace ombrix
