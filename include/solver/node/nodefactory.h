#ifndef OMBRIX_SOLVER_NODE_NODEFACTORY_H
#define OMBRIX_SOLVER_NODE_NODEFACTORY_H

#include <cstdint>

#include "solver/kernel/nodetype.h"

namespace ombrix {

class Dag;
class Node;

/// Makers of the node objects, each placed in the pools of a Dag. The families over a subset type
/// choose it by the operand count, and stand in a source file of their own each: a family is ten
/// classes, and twenty with its coefficients.

/// A node whose class follows from its type alone: decisions, constants, comparisons and the other
/// nodes of a fixed operand count. Null for any other type.
Node* createFixedArityNode(Dag& dag, NodeType type);

Node* createAndNode(Dag& dag, std::uint32_t nbOperands);
Node* createOrNode(Dag& dag, std::uint32_t nbOperands);
Node* createXorNode(Dag& dag, std::uint32_t nbOperands);
Node* createBooleanSumNode(Dag& dag, std::uint32_t nbOperands);
Node* createSumNode(Dag& dag, std::uint32_t nbOperands);
Node* createScalarSumNode(Dag& dag, std::uint32_t nbOperands);
Node* createProductNode(Dag& dag, std::uint32_t nbOperands);
Node* createScalarProductNode(Dag& dag, std::uint32_t nbOperands);
Node* createMinNode(Dag& dag, std::uint32_t nbOperands);
Node* createScalarMinNode(Dag& dag, std::uint32_t nbOperands);
Node* createMaxNode(Dag& dag, std::uint32_t nbOperands);
Node* createScalarMaxNode(Dag& dag, std::uint32_t nbOperands);
Node* createDoubleSumNode(Dag& dag, std::uint32_t nbOperands);
Node* createDoubleScalarSumNode(Dag& dag, std::uint32_t nbOperands);
Node* createDoubleProductNode(Dag& dag, std::uint32_t nbOperands);
Node* createDoubleScalarProductNode(Dag& dag, std::uint32_t nbOperands);
Node* createDoubleMinNode(Dag& dag, std::uint32_t nbOperands);
Node* createDoubleScalarMinNode(Dag& dag, std::uint32_t nbOperands);
Node* createDoubleMaxNode(Dag& dag, std::uint32_t nbOperands);
Node* createDoubleScalarMaxNode(Dag& dag, std::uint32_t nbOperands);
Node* createArrayNode(Dag& dag, std::uint32_t nbOperands);

}  // namespace ombrix

#endif
