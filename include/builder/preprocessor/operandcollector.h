#ifndef OMBRIX_BUILDER_PREPROCESSOR_OPERANDCOLLECTOR_H
#define OMBRIX_BUILDER_PREPROCESSOR_OPERANDCOLLECTOR_H

#include <vector>

#include "builder/preprocessor/creationframe.h"
#include "builder/preprocessor/preprocessor.h"
#include "builder/valuetype.h"

namespace ombrix {

/// Flattens the operands of an expression into a frame: nested operators of the same kind are
/// opened, fixed operands folded, and constant factors, quotients and guards read as coefficients,
/// as far as the flags of the frame allow. So sum(3 * y, x) has the operands y and x with the
/// coefficients 3 and 1.
///
/// Every coefficient is held in the type of the expression that owns the frame.
class OperandCollector {
public:
  explicit OperandCollector(const Preprocessor& state) : preprocessor(state) {}

  /// Fills operands, coefficients and constants of a frame that was just reset.
  void collect(CreationFrame& frame);

private:
  /// A summand that still has to find its place.
  struct Term {
    OXValue coefficient;
    OXExpression* expression;
  };
  /// An expression read as a coefficient times a simpler expression.
  struct Factor {
    ValueType type = kNoType;
    OXValue coefficient = OXValue::ofInt(0);
    OXExpression* rest = nullptr;
  };

  void collectPlain(CreationFrame& frame) const;
  void settle(CreationFrame& frame, const Term& term);
  void fold(CreationFrame& frame, const Term& term) const;
  bool isOpened(const CreationFrame& frame, const Term& term) const;
  void pushOperands(const Term& term);

  bool readFactor(const OXExpression& x, Factor& factor) const;
  bool readProduct(const OXExpression& x, Factor& factor) const;
  bool readGuard(const OXExpression& x, Factor& factor) const;
  bool readQuotient(const OXExpression& x, Factor& factor) const;

  const Preprocessor& preprocessor;
  std::vector<Term> pending;
};

}  // namespace ombrix

#endif
