#include <new>

#include "solver/kernel/dag.h"
#include "solver/node/nodeconstants.h"
#include "solver/node/nodedecisions.h"
#include "solver/node/nodefactory.h"

namespace ombrix {

namespace {

template <typename NodeClass>
Node* create(Dag& dag) {
  return new (dag.allocate(sizeof(NodeClass))) NodeClass;
}

}  // namespace

Node* createFixedArityNode(Dag& dag, NodeType type) {
  switch (type) {
    case NodeType::Boolean:
      return create<NodeBooleanVar>(dag);
    case NodeType::Integer:
      return create<NodeIntegerVar>(dag);
    case NodeType::Float:
      return create<NodeFloatVar>(dag);
    case NodeType::Constant:
      return create<NodeConstant>(dag);
    case NodeType::DoubleConstant:
      return create<NodeDoubleConstant>(dag);
    case NodeType::ConstArray:
      return create<NodeConstArray>(dag);
    default:
      return nullptr;
  }
}

}  // namespace ombrix
