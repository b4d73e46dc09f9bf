#include "builder/preprocessor/boundscalculator.h"

#include <algorithm>
#include <limits>

#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Index = Preprocessor::Index;

/// Reads the intervals of expressions as numbers of one kind.
struct IntReader {
  const Preprocessor& preprocessor;
  IntInterval operator()(Index e) const { return preprocessor.intBounds(e); }
  IntInterval operand(Index e, Index position) const {
    return (*this)(preprocessor.operand(e, position));
  }
};

struct DoubleReader {
  const Preprocessor& preprocessor;
  DoubleInterval operator()(Index e) const { return preprocessor.doubleBounds(e); }
  DoubleInterval operand(Index e, Index position) const {
    return (*this)(preprocessor.operand(e, position));
  }
};

IntInterval sumOf(const IntReader& bounds, Index e) {
  IntInterval sum = {0, 0};
  for (const Index operand : bounds.preprocessor.operands(e)) {
    const IntInterval x = bounds(operand);
    sum = {saturatingAdd(sum.low, x.low), saturatingAdd(sum.high, x.high)};
  }
  return sum;
}

/// An operand that can only be infinite decides the sum, so that no infinity meets its opposite.
DoubleInterval sumOf(const DoubleReader& bounds, Index e) {
  DoubleInterval sum = {0.0, 0.0};
  for (const Index operand : bounds.preprocessor.operands(e)) {
    const DoubleInterval x = bounds(operand);
    if (x.low == kInfinity) return {kInfinity, kInfinity};
    if (x.high == -kInfinity) {
      sum = {-kInfinity, -kInfinity};
    } else {
      sum = {sum.low + x.low, sum.high + x.high};
    }
  }
  return sum;
}

template <typename Product, typename Reader>
auto productOf(const Reader& bounds, Index e) {
  Product product;
  for (const Index operand : bounds.preprocessor.operands(e)) product.multiply(bounds(operand));
  return product.result();
}

template <typename Interval, typename Reader>
Interval largestOf(const Reader& bounds, Index e, Interval start) {
  for (const Index operand : bounds.preprocessor.operands(e)) {
    const Interval x = bounds(operand);
    start = {std::max(start.low, x.low), std::max(start.high, x.high)};
  }
  return start;
}

template <typename Interval, typename Reader>
Interval smallestOf(const Reader& bounds, Index e, Interval start) {
  for (const Index operand : bounds.preprocessor.operands(e)) {
    const Interval x = bounds(operand);
    start = {std::min(start.low, x.low), std::min(start.high, x.high)};
  }
  return start;
}

/// The branch that the condition decides for, or both.
template <typename Reader>
auto selectedOf(const Reader& bounds, Index e, IntInterval condition) {
  if (condition.low == 1) return bounds.operand(e, 1);
  if (condition.high == 0) return bounds.operand(e, 2);
  return hull(bounds.operand(e, 1), bounds.operand(e, 2));
}

template <typename Reader, typename Interval>
Interval hullOfElements(const Reader& bounds, RangeHulls<Interval>& hulls, Index array, Index first,
                        Index end) {
  return hulls.of(static_cast<std::size_t>(array), first, end,
                  [&](std::int64_t i) { return bounds.operand(array, static_cast<Index>(i)); });
}

/// What the intervals of both operands tell about a comparison, in the arithmetic of the reader.
template <typename Reader>
Truth compare(const Reader& bounds, Index e) {
  const auto a = bounds.operand(e, 0);
  const auto b = bounds.operand(e, 1);
  switch (bounds.preprocessor.op(e)) {
    case OXOperator::Eq:
      return isEqual(a, b);
    case OXOperator::Neq:
      return negate(isEqual(a, b));
    case OXOperator::Geq:
      return isGreaterOrEqual(a, b);
    case OXOperator::Leq:
      return isGreaterOrEqual(b, a);
    case OXOperator::Gt:
      return isGreater(a, b);
    default:
      return isGreater(b, a);
  }
}

}  // namespace

void BoundsCalculator::run() {
  for (const Index e : preprocessor->bottomUp()) computeBounds(e);
}

void BoundsCalculator::computeBounds(Index e) {
  applyRule(e);
  if (!preprocessor->isArray(e) && preprocessor->hasEqualBounds(e)) {
    preprocessor->markFixed(e);
  }
}

void BoundsCalculator::applyRule(Index e) {
  const DoubleReader doubles{*preprocessor};
  switch (preprocessor->op(e)) {
    case OXOperator::Bool:
      return preprocessor->intersectIntBounds(e, 0, 1);
    case OXOperator::Const:
    case OXOperator::Array:
    case OXOperator::Scalar:
      return;
    case OXOperator::Sum:
      return sumBounds(e);
    case OXOperator::Prod:
      return prodBounds(e);
    case OXOperator::Max:
      return maxBounds(e);
    case OXOperator::Min:
      return minBounds(e);
    case OXOperator::Eq:
    case OXOperator::Neq:
    case OXOperator::Geq:
    case OXOperator::Leq:
    case OXOperator::Gt:
    case OXOperator::Lt:
      return comparisonBounds(e);
    case OXOperator::Iif:
      return iifBounds(e);
    case OXOperator::Not:
      return notBounds(e);
    case OXOperator::And:
      return andBounds(e);
    case OXOperator::Or:
      return orBounds(e);
    case OXOperator::Xor:
      return xorBounds(e);
    case OXOperator::Abs:
      return absBounds(e);
    case OXOperator::Dist:
      return distBounds(e);
    case OXOperator::Div:
      return preprocessor->isDouble(e) ? divDoubleBounds(e) : divIntBounds(e);
    case OXOperator::Mod:
      return modBounds(e);
    case OXOperator::At:
      return atBounds(e);
    case OXOperator::Ceil:
      return preprocessor->intersectIntBounds(e, ceilInterval(doubles.operand(e, 0)));
    case OXOperator::Floor:
      return preprocessor->intersectIntBounds(e, floorInterval(doubles.operand(e, 0)));
    case OXOperator::Round:
      return preprocessor->intersectIntBounds(e, roundInterval(doubles.operand(e, 0)));
    case OXOperator::Sqrt:
      return preprocessor->intersectDoubleBounds(e, sqrtInterval(doubles.operand(e, 0)));
    case OXOperator::Log:
      return preprocessor->intersectDoubleBounds(e, logInterval(doubles.operand(e, 0)));
    case OXOperator::Exp:
      return preprocessor->intersectDoubleBounds(e, expInterval(doubles.operand(e, 0)));
    case OXOperator::Pow:
      return powBounds(e);
    case OXOperator::Cos:
      return preprocessor->intersectDoubleBounds(e, cosInterval(doubles.operand(e, 0)));
    case OXOperator::Sin:
      return preprocessor->intersectDoubleBounds(e, sinInterval(doubles.operand(e, 0)));
    case OXOperator::Tan:
      return tanBounds(e);
  }
}

void BoundsCalculator::sumBounds(Index e) {
  if (preprocessor->isDouble(e)) {
    preprocessor->intersectDoubleBounds(e, sumOf(DoubleReader{*preprocessor}, e));
  } else {
    preprocessor->intersectIntBounds(e, sumOf(IntReader{*preprocessor}, e));
  }
}

void BoundsCalculator::prodBounds(Index e) {
  if (preprocessor->isDouble(e)) {
    preprocessor->intersectDoubleBounds(e,
                                        productOf<DoubleProduct>(DoubleReader{*preprocessor}, e));
  } else {
    preprocessor->intersectIntBounds(e, productOf<IntProduct>(IntReader{*preprocessor}, e));
  }
}

void BoundsCalculator::maxBounds(Index e) {
  if (preprocessor->isDouble(e)) {
    const DoubleInterval start = {-kInfinity, -kInfinity};
    preprocessor->intersectDoubleBounds(e, largestOf(DoubleReader{*preprocessor}, e, start));
  } else {
    const IntInterval start = {kIntMin, kIntMin};
    preprocessor->intersectIntBounds(e, largestOf(IntReader{*preprocessor}, e, start));
  }
}

void BoundsCalculator::minBounds(Index e) {
  if (preprocessor->isDouble(e)) {
    const DoubleInterval start = {kInfinity, kInfinity};
    preprocessor->intersectDoubleBounds(e, smallestOf(DoubleReader{*preprocessor}, e, start));
  } else {
    const IntInterval start = {kIntMax, kIntMax};
    preprocessor->intersectIntBounds(e, smallestOf(IntReader{*preprocessor}, e, start));
  }
}

void BoundsCalculator::comparisonBounds(Index e) {
  const Truth truth = preprocessor->hasDoubleOperand(e) ? compare(DoubleReader{*preprocessor}, e)
                                                        : compare(IntReader{*preprocessor}, e);
  if (truth != Truth::Unknown) preprocessor->fixTo(e, truth == Truth::True ? 1 : 0);
}

void BoundsCalculator::iifBounds(Index e) {
  const IntInterval condition = IntReader{*preprocessor}.operand(e, 0);
  if (preprocessor->isDouble(e)) {
    const DoubleReader bounds{*preprocessor};
    return preprocessor->intersectDoubleBounds(e, selectedOf(bounds, e, condition));
  }
  if (preprocessor->isBool(e)) iifBoolBounds(e);
  preprocessor->intersectIntBounds(e, selectedOf(IntReader{*preprocessor}, e, condition));
}

void BoundsCalculator::iifBoolBounds(Index e) {
  const IntInterval condition = IntReader{*preprocessor}.operand(e, 0);
  const IntInterval selected = selectedOf(IntReader{*preprocessor}, e, condition);
  preprocessor->intersectIntBounds(e, selected.low == 0 ? 0 : 1, selected.high != 0 ? 1 : 0);
}

void BoundsCalculator::notBounds(Index e) {
  const IntInterval x = IntReader{*preprocessor}.operand(e, 0);
  if (x.high == 0) {
    preprocessor->fixTo(e, 1);
  } else if (x.low == 1) {
    preprocessor->fixTo(e, 0);
  }
}

void BoundsCalculator::andBounds(Index e) {
  const IntReader bounds{*preprocessor};
  IntInterval result = {1, 1};
  for (const Index operand : bounds.preprocessor.operands(e)) {
    const IntInterval x = bounds(operand);
    if (x.low == 0) result.low = 0;
    if (x.high == 0) result.high = 0;
  }
  preprocessor->intersectIntBounds(e, result);
}

void BoundsCalculator::orBounds(Index e) {
  const IntReader bounds{*preprocessor};
  IntInterval result = {0, 0};
  for (const Index operand : bounds.preprocessor.operands(e)) {
    const IntInterval x = bounds(operand);
    if (x.low == 1) result.low = 1;
    if (x.high == 1) result.high = 1;
  }
  preprocessor->intersectIntBounds(e, result);
}

void BoundsCalculator::xorBounds(Index e) {
  const IntReader bounds{*preprocessor};
  bool allFalse = true;
  bool allTrue = true;
  for (const Index operand : bounds.preprocessor.operands(e)) {
    const IntInterval x = bounds(operand);
    if (x.high == 1) allFalse = false;
    if (x.low == 0) allTrue = false;
  }
  if (allFalse) {
    preprocessor->fixTo(e, 0);
  } else if (allTrue) {
    preprocessor->fixTo(e, preprocessor->nbOperands(e) % 2);
  }
}

void BoundsCalculator::absBounds(Index e) {
  if (preprocessor->isDouble(e)) {
    preprocessor->intersectDoubleBounds(e, absInterval(DoubleReader{*preprocessor}.operand(e, 0)));
  } else {
    preprocessor->intersectIntBounds(e, absInterval(IntReader{*preprocessor}.operand(e, 0)));
  }
}

void BoundsCalculator::distBounds(Index e) {
  if (preprocessor->isDouble(e)) {
    const DoubleReader bounds{*preprocessor};
    preprocessor->intersectDoubleBounds(e,
                                        distInterval(bounds.operand(e, 0), bounds.operand(e, 1)));
  } else {
    const IntReader bounds{*preprocessor};
    preprocessor->intersectIntBounds(e, distInterval(bounds.operand(e, 0), bounds.operand(e, 1)));
  }
}

void BoundsCalculator::divIntBounds(Index e) {
  const IntReader bounds{*preprocessor};
  preprocessor->intersectIntBounds(e, divInterval(bounds.operand(e, 0), bounds.operand(e, 1),
                                                  OMBRIX_HERE("BoundsCalculator::divIntBounds")));
}

void BoundsCalculator::divDoubleBounds(Index e) {
  const DoubleReader bounds{*preprocessor};
  preprocessor->intersectDoubleBounds(
      e, divInterval(bounds.operand(e, 0), bounds.operand(e, 1),
                     OMBRIX_HERE("BoundsCalculator::divDoubleBounds")));
}

void BoundsCalculator::modBounds(Index e) {
  const IntReader bounds{*preprocessor};
  preprocessor->intersectIntBounds(e, modInterval(bounds.operand(e, 0), bounds.operand(e, 1),
                                                  OMBRIX_HERE("BoundsCalculator::modBounds")));
}

/// The integer form leaves the position of the index's upper bound out; the double form takes it
/// in, the last element standing for a position past the end.
void BoundsCalculator::atBounds(Index e) {
  const Index array = preprocessor->operand(e, 0);
  const IntInterval index = IntReader{*preprocessor}.operand(e, 1);
  const std::int64_t size = preprocessor->nbOperands(array);
  const auto first = static_cast<Index>(std::clamp<std::int64_t>(index.low, 0, size));
  const auto last = static_cast<Index>(std::clamp<std::int64_t>(index.high, 0, size));
  if (first == last) return;
  if (preprocessor->isDouble(e)) {
    const Index end = std::min(last + 1, preprocessor->nbOperands(array));
    preprocessor->intersectDoubleBounds(
        e, hullOfElements(DoubleReader{*preprocessor}, doubleHulls, array, first, end));
  } else {
    preprocessor->intersectIntBounds(
        e, hullOfElements(IntReader{*preprocessor}, intHulls, array, first, last));
  }
}

void BoundsCalculator::powBounds(Index e) {
  const DoubleReader doubles{*preprocessor};
  const Index exponent = preprocessor->operand(e, 1);
  if (preprocessor->isDouble(exponent)) {
    preprocessor->intersectDoubleBounds(e, powInterval(doubles.operand(e, 0), doubles(exponent)));
  } else {
    preprocessor->intersectDoubleBounds(
        e, powInterval(doubles.operand(e, 0), preprocessor->intBounds(exponent)));
  }
}

void BoundsCalculator::tanBounds(Index e) {
  const auto bounds = tanInterval(DoubleReader{*preprocessor}.operand(e, 0));
  if (bounds.has_value()) preprocessor->intersectDoubleBounds(e, *bounds);
}

}  // namespace ombrix
