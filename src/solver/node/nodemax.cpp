#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodescalarextremum.h"

namespace ombrix {

Node* createMaxNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeScalarMaxTemplate, IntOneSelector>(dag, nbOperands);
}

}  // namespace ombrix
