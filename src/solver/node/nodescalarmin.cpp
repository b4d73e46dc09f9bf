#include "solver/node/createwithsubset.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodescalarextremum.h"

namespace ombrix {

Node* createScalarMinNode(Dag& dag, std::uint32_t nbOperands) {
  return createWithSubset<NodeScalarMinTemplate, IntScalarSelector>(dag, nbOperands);
}

}  // namespace ombrix
