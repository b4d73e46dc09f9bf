#ifndef OMBRIX_SOLVER_MOVE_STATICCONSTRAINTNODE_H
#define OMBRIX_SOLVER_MOVE_STATICCONSTRAINTNODE_H

#include <cstdint>

namespace ombrix {

class AutonomousStructure;
class DynamicConstraintNode;
class MoveAnalysis;

/// What never changes about one kernel node that can be reasoned about backwards, from the wish
/// that it rise or fall down to a decision that makes it. There is one class for each kind of node
/// that can take part; it knows which dynamic node mirrors it in a worker. Made and owned by
/// MoveAnalysis, shared by all threads.
class StaticConstraintNode {
public:
  StaticConstraintNode(std::uint32_t ownIndex, std::uint32_t kernelNode)
      : index(ownIndex), node(kernelNode) {}
  virtual ~StaticConstraintNode() = default;
  StaticConstraintNode(const StaticConstraintNode&) = delete;
  StaticConstraintNode& operator=(const StaticConstraintNode&) = delete;

  /// Makes the mirror of this node in a worker's structure, which owns it.
  virtual DynamicConstraintNode* createDynamic(AutonomousStructure& structure) const = 0;
  /// Writes the node and its operands, recursively, to the standard output.
  virtual void print(const MoveAnalysis& analysis) const = 0;
  /// Whether all operands are decisions or constants, so that the analysis lists the decisions.
  virtual bool isFlat(const MoveAnalysis& analysis) const = 0;

  std::uint32_t index;          ///< position among the static nodes
  std::uint32_t node;           ///< the kernel node
  std::uint32_t flatBegin = 0;  ///< the slice of the flat operands of the analysis
  std::uint32_t flatEnd = 0;

protected:
  /// The start text, the operands with " , " between them, and the closing parenthesis.
  void printOperands(const MoveAnalysis& analysis, const char* start, bool withCoefficients) const;
};

}  // namespace ombrix

#endif
