#ifndef OMBRIX_SOLVER_MOVE_CONSTRAINTNODEVARIADIC_H
#define OMBRIX_SOLVER_MOVE_CONSTRAINTNODEVARIADIC_H

#include "solver/kernel/subsetchoice.h"
#include "solver/move/autonomousstructure.h"
#include "solver/move/dynamicconstraintnode.h"
#include "solver/move/moveanalysis.h"

namespace ombrix {

/// How often a random helpful operand is tried before a change gives up.
inline constexpr int kMaxOperandTries = 3;

/// A node with any number of operands. Kind tells its family: the start of its text, whether
/// operands have coefficients, and Dynamic<S>, its mirror over a subset type.
template <typename Kind>
class StaticConstraintNodeVariadic final : public StaticConstraintNode {
public:
  using StaticConstraintNode::StaticConstraintNode;

  DynamicConstraintNode* createDynamic(AutonomousStructure& structure) const override {
    const std::uint32_t nbOperands = structure.dag->fixedFields->nbOperands(node);
    return withSubset(nbOperands, [&](auto subset) -> DynamicConstraintNode* {
      using Dynamic = typename Kind::template Dynamic<typename decltype(subset)::type>;
      return structure.create<Dynamic>(*this);
    });
  }
  void print(const MoveAnalysis& analysis) const override {
    printOperands(analysis, Kind::kStart, Kind::kHasCoefficients);
  }
  bool isFlat(const MoveAnalysis& analysis) const override {
    return analysis.fixedFieldsRef->ranks[node] == 1;
  }
};

}  // namespace ombrix

#endif
