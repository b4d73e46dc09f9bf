#ifndef OMBRIX_BUILDER_PREPROCESSOR_UNARYFINDER_H
#define OMBRIX_BUILDER_PREPROCESSOR_UNARYFINDER_H

#include <cstdint>

#include "builder/preprocessor/preprocessor.h"

namespace ombrix {

/// The last pass before the nodes are made: finds the expressions that are only another expression
/// in disguise, such as a sum of one operand, and records which one stands for them. Every
/// expression is looked at once, in index order, so an operand that stands after its user is seen
/// as it is and not yet as what it will become.
class UnaryFinder {
public:
  explicit UnaryFinder(Preprocessor& shared) : preprocessor(&shared), model(shared.model) {}

  void run();

private:
  /// The expression that replaces x in one step, or null.
  OXExpression* findReplacement(const OXExpression& x) const;
  OXExpression* findSingleOperand(const OXExpression& x, std::int64_t neutral) const;
  OXExpression* replaceIif(const OXExpression& x) const;
  OXExpression* replaceDiv(const OXExpression& x) const;
  OXExpression* replaceAt(const OXExpression& x) const;
  OXExpression* replaceRounding(const OXExpression& x) const;
  /// Fixed, and exactly at that value: no tolerance.
  bool isFixedAt(const OXExpression& x, std::int64_t value) const;

  Preprocessor* preprocessor;
  OXModel* model;
};

}  // namespace ombrix

#endif
