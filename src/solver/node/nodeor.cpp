#include "solver/node/nodeor.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createOrNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeOrTemplate>(dag, nbOperands);
}

}  // namespace ombrix
