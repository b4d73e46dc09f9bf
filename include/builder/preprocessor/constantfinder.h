#ifndef OMBRIX_BUILDER_PREPROCESSOR_CONSTANTFINDER_H
#define OMBRIX_BUILDER_PREPROCESSOR_CONSTANTFINDER_H

#include <cstdint>

#include "builder/evaluatortools.h"
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
  using Index = Preprocessor::Index;

  void visit(Index e);
  void visitAt(Index e);
  void evaluateIfFixed(Index e);
  bool areOperandsFixed(Index e) const;
  /// Whether some operand that is no array has that value as both bounds.
  bool hasOperandAt(Index e, std::int64_t value) const;
  OXTypedValue evaluate(Index e) const;
  void fixAt(Index e, std::int64_t value);
  void intersect(Index e, const OXTypedValue& result);

  Preprocessor* preprocessor;
};

}  // namespace ombrix

#endif
