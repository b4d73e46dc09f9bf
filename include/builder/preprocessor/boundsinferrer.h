#ifndef OMBRIX_BUILDER_PREPROCESSOR_BOUNDSINFERRER_H
#define OMBRIX_BUILDER_PREPROCESSOR_BOUNDSINFERRER_H

#include <cstdint>
#include <deque>
#include <vector>

#include "builder/preprocessor/preprocessor.h"

namespace ombrix {

/// The pass that pushes knowledge down: every constraint must be true, so what it says of its
/// operands narrows them, and they narrow theirs. A contradiction is noted as a conflict.
///
/// It is one breadth-first sweep from the roots and the constraints, each expression treated once
/// (a constraint that is a root as well twice), so it costs no more than reading the model. There
/// is no fixed point: a parent treated after its operand no longer reaches it. Decisions and
/// constants whose bounds meet are marked as fixed, nothing else is.
class BoundsInferrer {
public:
  explicit BoundsInferrer(Preprocessor& shared) : preprocessor(&shared) {}

  void run();

private:
  void pushRoots();
  void pushConstraints();
  void pushNewOperands(const OXExpression& e);
  void applyRule(OXExpression& e);
  void markIfKnown(const OXExpression& e);

  void inferMax(const OXExpression& e);
  void inferMin(const OXExpression& e);
  void inferNot(const OXExpression& e);
  void inferAnd(OXExpression& e);
  void inferOr(OXExpression& e);
  void inferAbs(OXExpression& e);
  void inferDiv(const OXExpression& e);
  void inferAt(const OXExpression& e);
  void inferNonNegative(const OXExpression& e);
  void intersectOperands(const OXExpression& e, IntInterval bounds);

  void inferSum(const OXExpression& e);
  void inferIntSum(const OXExpression& e);
  void inferDoubleSum(const OXExpression& e);
  void inferIntProd(OXExpression& e);
  void inferDoubleProd(OXExpression& e);
  OXExpression* findFreeBoolean(const OXExpression& e) const;

  void inferEqual(const OXExpression& e);
  void inferOrder(const OXExpression& e);
  void intAtMost(OXExpression& a, OXExpression& b);
  void intAtLeast(OXExpression& a, OXExpression& b);
  void intBelow(OXExpression& a, OXExpression& b);
  void intAbove(OXExpression& a, OXExpression& b);
  void doubleAtLeast(OXExpression& a, OXExpression& b);
  void doubleEqualTo(OXExpression& a, const OXExpression& b);

  bool isPoint(const OXExpression& e) const { return preprocessor->hasEqualBounds(e); }
  /// For a boolean: known to be true, or false.
  bool isKnownTrue(const OXExpression& e) const;
  bool isKnownFalse(const OXExpression& e) const;
  bool isUnbounded(const OXExpression& e) const;
  std::int64_t lowerAsInt(const OXExpression& e) const;
  std::int64_t upperAsInt(const OXExpression& e) const;

  Preprocessor* preprocessor;
  std::deque<OXExpression*> queue;
  std::vector<std::int32_t> states;
};

}  // namespace ombrix

#endif
