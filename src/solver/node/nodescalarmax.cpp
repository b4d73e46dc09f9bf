#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodescalarextremum.h"

namespace ombrix {

Node* createScalarMaxNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeScalarMaxTemplate, IntScalarSelector>(dag, nbOperands);
}

}  // namespace ombrix
