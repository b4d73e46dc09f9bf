#ifndef OMBRIX_BUILDER_PREPROCESSOR_UNARYFINDER_H
#define OMBRIX_BUILDER_PREPROCESSOR_UNARYFINDER_H

#include <cstdint>
#include <vector>

#include "builder/preprocessor/preprocessor.h"

namespace ombrix {

/// The last pass before the nodes are made: finds the expressions that are only another expression
/// in disguise, such as a sum of one operand, and records which one stands for them. Every
/// expression is looked at once, in index order, so an operand that stands after its user is seen
/// as it is and not yet as what it will become.
class UnaryFinder {
public:
  explicit UnaryFinder(Preprocessor& shared) : preprocessor(&shared) {}

  void run();

private:
  using Index = Preprocessor::Index;
  static constexpr Index kNone = 4294967295U;

  /// The expression that replaces x in one step, or kNone.
  Index findReplacement(Index x) const;
  Index findSingleOperand(Index x, std::int64_t neutral) const;
  Index replaceIif(Index x) const;
  Index replaceDiv(Index x) const;
  Index replaceAt(Index x) const;
  Index replaceRounding(Index x) const;
  /// Fixed, and exactly at that value: no tolerance.
  bool isFixedAt(Index x, std::int64_t value) const;

  Index canonicalOperand(Index x, Index position) const {
    return canonicals[preprocessor->operand(x, position)];
  }

  Preprocessor* preprocessor;
  std::vector<Index> canonicals;  ///< per expression, what is known so far
};

}  // namespace ombrix

#endif
