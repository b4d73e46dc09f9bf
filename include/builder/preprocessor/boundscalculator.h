#ifndef OMBRIX_BUILDER_PREPROCESSOR_BOUNDSCALCULATOR_H
#define OMBRIX_BUILDER_PREPROCESSOR_BOUNDSCALCULATOR_H

#include "builder/preprocessor/postorderwalk.h"
#include "builder/preprocessor/preprocessor.h"

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
  explicit BoundsCalculator(Preprocessor& shared) : preprocessor(&shared), model(shared.model) {}

  void run();

private:
  void computeBounds(OXExpression& e);
  void applyRule(OXExpression& e);

  void sumBounds(OXExpression& e);
  void prodBounds(OXExpression& e);
  void maxBounds(OXExpression& e);
  void minBounds(OXExpression& e);
  void comparisonBounds(OXExpression& e);
  void iifBounds(OXExpression& e);
  void iifBoolBounds(OXExpression& e);
  void notBounds(OXExpression& e);
  void andBounds(OXExpression& e);
  void orBounds(OXExpression& e);
  void xorBounds(OXExpression& e);
  void absBounds(OXExpression& e);
  void distBounds(OXExpression& e);
  void divIntBounds(OXExpression& e);
  void divDoubleBounds(OXExpression& e);
  void modBounds(OXExpression& e);
  void atBounds(OXExpression& e);
  void powBounds(OXExpression& e);
  void tanBounds(OXExpression& e);

  Preprocessor* preprocessor;
  OXModel* model;
  PostOrderWalk walk;
};

}  // namespace ombrix

#endif
