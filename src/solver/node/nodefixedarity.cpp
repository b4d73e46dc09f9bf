#include <new>

#include "solver/kernel/dag.h"
#include "solver/node/nodearithmetic.h"
#include "solver/node/nodeat.h"
#include "solver/node/nodecomparison.h"
#include "solver/node/nodeconstants.h"
#include "solver/node/nodedecisions.h"
#include "solver/node/nodedoublecomparison.h"
#include "solver/node/nodedoublefunction.h"
#include "solver/node/nodefactory.h"
#include "solver/node/nodeif.h"
#include "solver/node/nodenot.h"

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
    case NodeType::Abs:
      return create<NodeAbs>(dag);
    case NodeType::Distance:
      return create<NodeDistance>(dag);
    case NodeType::Divide:
      return create<NodeDivide>(dag);
    case NodeType::Eq:
      return create<NodeEq>(dag);
    case NodeType::Geq:
      return create<NodeGeq>(dag);
    case NodeType::Gt:
      return create<NodeGt>(dag);
    case NodeType::If:
      return create<NodeIf>(dag);
    case NodeType::Leq:
      return create<NodeLeq>(dag);
    case NodeType::Lt:
      return create<NodeLt>(dag);
    case NodeType::Modulo:
      return create<NodeModulo>(dag);
    case NodeType::Neq:
      return create<NodeNeq>(dag);
    case NodeType::Not:
      return create<NodeNot>(dag);
    case NodeType::At:
      return create<NodeAt>(dag);
    case NodeType::DoubleAbs:
      return create<NodeDoubleAbs>(dag);
    case NodeType::DoubleDistance:
      return create<NodeDoubleDistance>(dag);
    case NodeType::DoubleDivide:
      return create<NodeDoubleDivide>(dag);
    case NodeType::DoubleEq:
      return create<NodeDoubleEq>(dag);
    case NodeType::DoubleGeq:
      return create<NodeDoubleGeq>(dag);
    case NodeType::DoubleGt:
      return create<NodeDoubleGt>(dag);
    case NodeType::DoubleIf:
      return create<NodeDoubleIf>(dag);
    case NodeType::DoubleLeq:
      return create<NodeDoubleLeq>(dag);
    case NodeType::DoubleLt:
      return create<NodeDoubleLt>(dag);
    case NodeType::DoubleNeq:
      return create<NodeDoubleNeq>(dag);
    case NodeType::DoubleAt:
      return create<NodeDoubleAt>(dag);
    case NodeType::DoubleCeil:
      return create<NodeDoubleCeil>(dag);
    case NodeType::DoubleFloor:
      return create<NodeDoubleFloor>(dag);
    case NodeType::DoubleRound:
      return create<NodeDoubleRound>(dag);
    case NodeType::DoubleSqrt:
      return create<NodeDoubleSqrt>(dag);
    case NodeType::DoubleLog:
      return create<NodeDoubleLog>(dag);
    case NodeType::DoubleExp:
      return create<NodeDoubleExp>(dag);
    case NodeType::DoublePow:
      return create<NodeDoublePow>(dag);
    case NodeType::DoubleCos:
      return create<NodeDoubleCos>(dag);
    case NodeType::DoubleSin:
      return create<NodeDoubleSin>(dag);
    case NodeType::DoubleTan:
      return create<NodeDoubleTan>(dag);
    default:
      return nullptr;
  }
}

}  // namespace ombrix
