#ifndef OMBRIX_BUILDER_PREPROCESSOR_CONSTANTFINDER_H
#define OMBRIX_BUILDER_PREPROCESSOR_CONSTANTFINDER_H

#include <cstdint>

#include "builder/evaluatortools.h"
#include "builder/preprocessor/postorderwalk.h"
#include "builder/preprocessor/preprocessor.h"

namespace ombrix {

/// The pass that marks as fixed what has a single value: an expression that one operand decides, or
/// whose operands are all fixed, which is then evaluated. Bottom-up, one visit per expression that
/// the roots reach. A computation without value fails as the evaluation does.
class ConstantFinder {
public:
  explicit ConstantFinder(Preprocessor& shared) : preprocessor(&shared) {}

  void run();

private:
  void visit(OXExpression& e);
  void visitAt(OXExpression& e);
  void evaluateIfFixed(OXExpression& e);
  bool areOperandsFixed(const OXExpression& e) const;
  /// Whether some operand that is no array has that value as both bounds.
  bool hasOperandAt(const OXExpression& e, std::int64_t value) const;
  OXTypedValue evaluate(const OXExpression& e) const;
  void fixAt(OXExpression& e, std::int64_t value);
  void intersect(OXExpression& e, const OXTypedValue& result);

  Preprocessor* preprocessor;
  PostOrderWalk walk;
};

}  // namespace ombrix

#endif
