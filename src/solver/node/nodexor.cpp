#include "solver/node/nodexor.h"

#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

Node* createXorNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeXorTemplate>(dag, nbOperands);
}

}  // namespace ombrix
