#ifndef OMBRIX_BUILDER_PREPROCESSOR_CREATIONFRAME_H
#define OMBRIX_BUILDER_PREPROCESSOR_CREATIONFRAME_H

#include <vector>

#include "solver/kernel/oxvalue.h"

namespace ombrix {

class OXExpression;

/// What may be done to the operands of an expression on their way into its node.
struct CreationFlags {
  bool collectCoefficients = false;  ///< operands are recorded with a coefficient
  bool flattenNonNegative = false;   ///< nested operators are opened under a coefficient >= 0
  bool flattenNonPositive = false;   ///< and under a coefficient <= 0
  bool foldConstants = false;        ///< fixed operands are moved to constants
};

/// One expression whose node is being made: its operands after flattening and folding. Frames are
/// used again and again, so their vectors keep their capacity.
struct CreationFrame {
  CreationFlags flags;
  OXExpression* expression = nullptr;   ///< always canonical
  std::vector<OXValue> constants;       ///< value times coefficient of each folded operand
  std::vector<OXValue> coefficients;    ///< parallel to operands when they are collected
  std::vector<OXExpression*> operands;  ///< canonical

  void reset(OXExpression* e, const CreationFlags& newFlags) {
    flags = newFlags;
    expression = e;
    constants.clear();
    coefficients.clear();
    operands.clear();
  }
};

}  // namespace ombrix

#endif
