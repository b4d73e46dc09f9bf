#ifndef OMBRIX_BUILDER_PREPROCESSOR_BOUNDSINFERRER_H
#define OMBRIX_BUILDER_PREPROCESSOR_BOUNDSINFERRER_H

#include <cstdint>
#include <optional>
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
  using Index = Preprocessor::Index;
  enum State : std::uint8_t { kNew, kQueued, kTreated };

  void push(Index e);
  void pushRoots();
  void pushConstraints();
  void pushNewOperands(Index e);
  void applyRule(Index e);
  void markIfKnown(Index e);

  void inferMax(Index e);
  void inferMin(Index e);
  void inferNot(Index e);
  void inferAnd(Index e);
  void inferOr(Index e);
  void inferAbs(Index e);
  void inferDiv(Index e);
  void inferAt(Index e);
  void inferNonNegative(Index e);
  void intersectOperands(Index e, IntInterval bounds);

  void inferSum(Index e);
  void inferIntSum(Index e);
  void inferDoubleSum(Index e);
  void inferIntProd(Index e);
  void inferDoubleProd(Index e);
  std::optional<Index> findFreeBoolean(Index e) const;

  void inferEqual(Index e);
  void inferOrder(Index e);
  void intAtMost(Index a, Index b);
  void intAtLeast(Index a, Index b);
  void intBelow(Index a, Index b);
  void intAbove(Index a, Index b);
  void doubleAtLeast(Index a, Index b);
  void doubleEqualTo(Index a, Index b);

  bool isPoint(Index e) const { return preprocessor->hasEqualBounds(e); }
  /// For a boolean: known to be true, or false.
  bool isKnownTrue(Index e) const;
  bool isKnownFalse(Index e) const;
  bool isUnbounded(Index e) const;
  std::int64_t lowerAsInt(Index e) const;
  std::int64_t upperAsInt(Index e) const;

  Preprocessor* preprocessor;
  std::vector<Index> queue;  ///< served from the front, which run follows; never shortened
  std::vector<std::uint8_t> states;
};

}  // namespace ombrix

#endif
