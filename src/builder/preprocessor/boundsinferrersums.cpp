// The rules of BoundsInferrer for sums and products.

#include <algorithm>

#include "builder/preprocessor/boundsinferrer.h"
#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

using Index = Preprocessor::Index;

/// Wide enough for any sum of 64-bit bounds, so that an overflow is never taken for a
/// contradiction.
__extension__ typedef __int128 WideInt;

std::int64_t clampWide(WideInt x) {
  return static_cast<std::int64_t>(std::clamp(x, WideInt{kIntMin}, WideInt{kIntMax}));
}

bool excludesZero(IntInterval x) {
  return x.low >= 1 || x.high < 0;
}

bool isApproxPositive(double x) {
  return x > 0.0 && !approxEqual(x, 0.0);
}
bool isApproxNegative(double x) {
  return x < 0.0 && !approxEqual(x, 0.0);
}

bool excludesZero(DoubleInterval x) {
  return isApproxPositive(x.low) || isApproxNegative(x.high);
}

/// The product of the fixed operands, by the evaluator's arithmetic.
std::int64_t fixedIntProduct(const Preprocessor& preprocessor, Index e) {
  std::int64_t result = 1;
  for (const Index x : preprocessor.operands(e)) {
    if (preprocessor.isFixed(x)) result = wrappingMul(result, preprocessor.intBounds(x).low);
  }
  return result;
}

double fixedDoubleProduct(const Preprocessor& preprocessor, Index e) {
  double result = 1.0;
  for (const Index x : preprocessor.operands(e)) {
    if (preprocessor.isFixed(x)) result *= preprocessor.doubleBounds(x).low;
  }
  return result;
}

}  // namespace

/// Each operand lies within what the sum allows once all others stand at their far ends. A sum that
/// was typed at an earlier closing may be a double over integers only.
void BoundsInferrer::inferSum(Index e) {
  if (isUnbounded(e)) return;
  bool hasDouble = preprocessor->isDouble(e);
  for (const Index x : preprocessor->operands(e)) {
    if (isUnbounded(x)) return;
    hasDouble = hasDouble || preprocessor->isDouble(x);
  }
  if (hasDouble) {
    inferDoubleSum(e);
  } else {
    inferIntSum(e);
  }
}

/// The sums are taken once: an operand narrowed on the way leaves them too wide, never too narrow.
void BoundsInferrer::inferIntSum(Index e) {
  const IntInterval sum = preprocessor->intBounds(e);
  WideInt lowSum = 0;
  WideInt highSum = 0;
  for (const Index x : preprocessor->operands(e)) {
    const IntInterval bounds = preprocessor->intBounds(x);
    lowSum += bounds.low;
    highSum += bounds.high;
  }
  for (const Index x : preprocessor->operands(e)) {
    const IntInterval bounds = preprocessor->intBounds(x);
    preprocessor->intersectIntBounds(x, clampWide(sum.low - (highSum - bounds.high)),
                                     clampWide(sum.high - (lowSum - bounds.low)));
  }
}

/// An integer operand is rounded outward, with the tolerance on top.
void BoundsInferrer::inferDoubleSum(Index e) {
  const DoubleInterval sum = preprocessor->doubleBounds(e);
  double lowSum = 0.0;
  double highSum = 0.0;
  for (const Index x : preprocessor->operands(e)) {
    const DoubleInterval bounds = preprocessor->doubleBounds(x);
    lowSum += bounds.low;
    highSum += bounds.high;
  }
  for (const Index x : preprocessor->operands(e)) {
    const DoubleInterval bounds = preprocessor->doubleBounds(x);
    const double low = sum.low - (highSum - bounds.high);
    const double high = sum.high - (lowSum - bounds.low);
    if (preprocessor->isDouble(x)) {
      preprocessor->intersectDoubleBounds(x, low, high);
    } else {
      preprocessor->intersectIntBounds(x, floorEnd(low), ceilEnd(high));
    }
  }
}

/// With one free operand, a boolean, the product is either 0 or the product of the fixed ones.
void BoundsInferrer::inferIntProd(Index e) {
  const IntInterval product = preprocessor->intBounds(e);
  if (product == IntInterval{1, 1}) intersectOperands(e, {-1, 1});
  if (product == IntInterval{0, 0}) {
    bool canBeZero = false;
    for (const Index x : preprocessor->operands(e)) {
      canBeZero = canBeZero || !excludesZero(preprocessor->intBounds(x));
    }
    if (!canBeZero) preprocessor->noteConflict(e);
  }
  const std::optional<Index> boolean = findFreeBoolean(e);
  if (!boolean.has_value()) return;
  const std::int64_t factor = fixedIntProduct(*preprocessor, e);
  if (excludesZero(product)) {
    preprocessor->fixTo(*boolean, 1);
  } else if (factor >= 0 ? product.high < factor : product.low > factor) {
    preprocessor->fixTo(*boolean, 0);
  }
}

void BoundsInferrer::inferDoubleProd(Index e) {
  const DoubleInterval product = preprocessor->doubleBounds(e);
  if (approxEqual(product.low, product.high) && approxEqual(product.low, 0.0)) {
    bool canBeZero = false;
    for (const Index x : preprocessor->operands(e)) {
      canBeZero = canBeZero || !excludesZero(preprocessor->doubleBounds(x));
    }
    if (!canBeZero) preprocessor->noteConflict(e);
  }
  const std::optional<Index> boolean = findFreeBoolean(e);
  if (!boolean.has_value()) return;
  const double factor = fixedDoubleProduct(*preprocessor, e);
  if (excludesZero(product)) {
    preprocessor->fixTo(*boolean, 1);
  } else if (factor >= 0.0 && factor > product.high && !approxEqual(product.high, factor)) {
    preprocessor->fixTo(*boolean, 0);
  } else if (factor <= 0.0 && product.low > factor && !approxEqual(product.low, factor)) {
    preprocessor->fixTo(*boolean, 0);
  }
}

/// The one operand of a product of at least two that is not fixed, if it is a boolean.
std::optional<Index> BoundsInferrer::findFreeBoolean(Index e) const {
  if (preprocessor->nbOperands(e) < 2) return std::nullopt;
  std::optional<Index> result;
  for (const Index x : preprocessor->operands(e)) {
    if (preprocessor->isFixed(x)) continue;
    if (result.has_value() || !preprocessor->isBool(x)) return std::nullopt;
    result = x;
  }
  return result;
}

}  // namespace ombrix
