#ifndef OMBRIX_BUILDER_PREPROCESSOR_BOUNDSCALCULATOR_H
#define OMBRIX_BUILDER_PREPROCESSOR_BOUNDSCALCULATOR_H

#include "builder/preprocessor/preprocessor.h"
#include "solver/kernel/rangehulls.h"

namespace ombrix {

/// The first pass over a closed model: finds for every expression that the roots reach an interval
/// that holds its values, from the decisions and constants up, and marks what has a single value as
/// fixed. One visit per expression, one short rule per operator; the interval arithmetic itself is
/// in intervals.h.
///
/// An interval that misses what is known already is a conflict and leaves the old bounds. A
/// computation without value (a divisor that can only be 0, a cosine of infinity) fails with
/// code 5.
class BoundsCalculator {
public:
  explicit BoundsCalculator(Preprocessor& shared) : preprocessor(&shared) {}

  void run();

private:
  using Index = Preprocessor::Index;

  void computeBounds(Index e);
  void applyRule(Index e);

  void sumBounds(Index e);
  void prodBounds(Index e);
  void maxBounds(Index e);
  void minBounds(Index e);
  void comparisonBounds(Index e);
  void iifBounds(Index e);
  void iifBoolBounds(Index e);
  void notBounds(Index e);
  void andBounds(Index e);
  void orBounds(Index e);
  void xorBounds(Index e);
  void absBounds(Index e);
  void distBounds(Index e);
  void divIntBounds(Index e);
  void divDoubleBounds(Index e);
  void modBounds(Index e);
  void atBounds(Index e);
  void powBounds(Index e);
  void tanBounds(Index e);

  Preprocessor* preprocessor;
  /// Of the arrays under "at", whose elements are visited before.
  RangeHulls<IntInterval> intHulls;
  RangeHulls<DoubleInterval> doubleHulls;
};

}  // namespace ombrix

#endif
