#include "builder/preprocessor/boundscalculator.h"

#include <algorithm>
#include <limits>

#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool isDouble(const OXExpression& e) {
  return ModelRecord::valueType(e) == kDoubleType;
}

std::int32_t nbOperands(const OXExpression& e) {
  return ModelRecord::nbOperands(e);
}

/// Reads the intervals of one expression's operands, as the numbers of one kind.
struct IntReader {
  const Preprocessor& preprocessor;
  IntInterval operator()(const OXExpression& e) const { return preprocessor.intBounds(e); }
  IntInterval operator()(const OXExpression& e, std::int32_t position) const {
    return (*this)(*ModelRecord::operand(e, position));
  }
};

struct DoubleReader {
  const Preprocessor& preprocessor;
  DoubleInterval operator()(const OXExpression& e) const { return preprocessor.doubleBounds(e); }
  DoubleInterval operator()(const OXExpression& e, std::int32_t position) const {
    return (*this)(*ModelRecord::operand(e, position));
  }
};

IntInterval sumOf(const IntReader& bounds, const OXExpression& e) {
  IntInterval sum = {0, 0};
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    const IntInterval x = bounds(e, i);
    sum = {saturatingAdd(sum.low, x.low), saturatingAdd(sum.high, x.high)};
  }
  return sum;
}

/// An operand that can only be infinite decides the sum, so that no infinity meets its opposite.
DoubleInterval sumOf(const DoubleReader& bounds, const OXExpression& e) {
  DoubleInterval sum = {0.0, 0.0};
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    const DoubleInterval x = bounds(e, i);
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
auto productOf(const Reader& bounds, const OXExpression& e) {
  Product product;
  for (std::int32_t i = 0; i < nbOperands(e); ++i) product.multiply(bounds(e, i));
  return product.result();
}

template <typename Interval, typename Reader>
Interval largestOf(const Reader& bounds, const OXExpression& e, Interval start) {
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    const Interval x = bounds(e, i);
    start = {std::max(start.low, x.low), std::max(start.high, x.high)};
  }
  return start;
}

template <typename Interval, typename Reader>
Interval smallestOf(const Reader& bounds, const OXExpression& e, Interval start) {
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    const Interval x = bounds(e, i);
    start = {std::min(start.low, x.low), std::min(start.high, x.high)};
  }
  return start;
}

/// The branch that the condition decides for, or both.
template <typename Reader>
auto selectedOf(const Reader& bounds, const OXExpression& e, IntInterval condition) {
  if (condition.low == 1) return bounds(e, 1);
  if (condition.high == 0) return bounds(e, 2);
  return hull(bounds(e, 1), bounds(e, 2));
}

template <typename Reader>
auto hullOfElements(const Reader& bounds, const OXExpression& array, std::int32_t first,
                    std::int32_t end) {
  auto result = bounds(array, first);
  for (std::int32_t i = first + 1; i < end; ++i) result = hull(result, bounds(array, i));
  return result;
}

/// What the intervals of both operands tell about a comparison, in the arithmetic of the reader.
template <typename Reader>
Truth compare(const Reader& bounds, const OXExpression& e) {
  const auto a = bounds(e, 0);
  const auto b = bounds(e, 1);
  switch (ModelRecord::op(e)) {
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
  walk.run(*model, preprocessor->roots, [this](OXExpression& e) { computeBounds(e); });
}

void BoundsCalculator::computeBounds(OXExpression& e) {
  applyRule(e);
  if (ModelRecord::op(e) != OXOperator::Array && preprocessor->hasEqualBounds(e)) {
    preprocessor->markFixed(e);
  }
}

void BoundsCalculator::applyRule(OXExpression& e) {
  const DoubleReader doubles{*preprocessor};
  switch (ModelRecord::op(e)) {
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
      return isDouble(e) ? divDoubleBounds(e) : divIntBounds(e);
    case OXOperator::Mod:
      return modBounds(e);
    case OXOperator::At:
      return atBounds(e);
    case OXOperator::Ceil:
      return preprocessor->intersectIntBounds(e, ceilInterval(doubles(e, 0)));
    case OXOperator::Floor:
      return preprocessor->intersectIntBounds(e, floorInterval(doubles(e, 0)));
    case OXOperator::Round:
      return preprocessor->intersectIntBounds(e, roundInterval(doubles(e, 0)));
    case OXOperator::Sqrt:
      return preprocessor->intersectDoubleBounds(e, sqrtInterval(doubles(e, 0)));
    case OXOperator::Log:
      return preprocessor->intersectDoubleBounds(e, logInterval(doubles(e, 0)));
    case OXOperator::Exp:
      return preprocessor->intersectDoubleBounds(e, expInterval(doubles(e, 0)));
    case OXOperator::Pow:
      return powBounds(e);
    case OXOperator::Cos:
      return preprocessor->intersectDoubleBounds(e, cosInterval(doubles(e, 0)));
    case OXOperator::Sin:
      return preprocessor->intersectDoubleBounds(e, sinInterval(doubles(e, 0)));
    case OXOperator::Tan:
      return tanBounds(e);
  }
}

void BoundsCalculator::sumBounds(OXExpression& e) {
  if (isDouble(e)) {
    preprocessor->intersectDoubleBounds(e, sumOf(DoubleReader{*preprocessor}, e));
  } else {
    preprocessor->intersectIntBounds(e, sumOf(IntReader{*preprocessor}, e));
  }
}

void BoundsCalculator::prodBounds(OXExpression& e) {
  if (isDouble(e)) {
    preprocessor->intersectDoubleBounds(e,
                                        productOf<DoubleProduct>(DoubleReader{*preprocessor}, e));
  } else {
    preprocessor->intersectIntBounds(e, productOf<IntProduct>(IntReader{*preprocessor}, e));
  }
}

void BoundsCalculator::maxBounds(OXExpression& e) {
  if (isDouble(e)) {
    const DoubleInterval start = {-kInfinity, -kInfinity};
    preprocessor->intersectDoubleBounds(e, largestOf(DoubleReader{*preprocessor}, e, start));
  } else {
    const IntInterval start = {kIntMin, kIntMin};
    preprocessor->intersectIntBounds(e, largestOf(IntReader{*preprocessor}, e, start));
  }
}

void BoundsCalculator::minBounds(OXExpression& e) {
  if (isDouble(e)) {
    const DoubleInterval start = {kInfinity, kInfinity};
    preprocessor->intersectDoubleBounds(e, smallestOf(DoubleReader{*preprocessor}, e, start));
  } else {
    const IntInterval start = {kIntMax, kIntMax};
    preprocessor->intersectIntBounds(e, smallestOf(IntReader{*preprocessor}, e, start));
  }
}

void BoundsCalculator::comparisonBounds(OXExpression& e) {
  const Truth truth = preprocessor->hasDoubleOperand(e) ? compare(DoubleReader{*preprocessor}, e)
                                                        : compare(IntReader{*preprocessor}, e);
  if (truth != Truth::Unknown) preprocessor->fixTo(e, truth == Truth::True ? 1 : 0);
}

void BoundsCalculator::iifBounds(OXExpression& e) {
  const IntInterval condition = preprocessor->intBounds(*ModelRecord::operand(e, 0));
  if (isDouble(e)) {
    const DoubleReader bounds{*preprocessor};
    return preprocessor->intersectDoubleBounds(e, selectedOf(bounds, e, condition));
  }
  if (ModelRecord::valueType(e) == kBoolType) iifBoolBounds(e);
  preprocessor->intersectIntBounds(e, selectedOf(IntReader{*preprocessor}, e, condition));
}

void BoundsCalculator::iifBoolBounds(OXExpression& e) {
  const IntInterval condition = preprocessor->intBounds(*ModelRecord::operand(e, 0));
  const IntInterval selected = selectedOf(IntReader{*preprocessor}, e, condition);
  preprocessor->intersectIntBounds(e, selected.low == 0 ? 0 : 1, selected.high != 0 ? 1 : 0);
}

void BoundsCalculator::notBounds(OXExpression& e) {
  const IntInterval x = preprocessor->intBounds(*ModelRecord::operand(e, 0));
  if (x.high == 0) {
    preprocessor->fixTo(e, 1);
  } else if (x.low == 1) {
    preprocessor->fixTo(e, 0);
  }
}

void BoundsCalculator::andBounds(OXExpression& e) {
  const IntReader bounds{*preprocessor};
  IntInterval result = {1, 1};
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    const IntInterval x = bounds(e, i);
    if (x.low == 0) result.low = 0;
    if (x.high == 0) result.high = 0;
  }
  preprocessor->intersectIntBounds(e, result);
}

void BoundsCalculator::orBounds(OXExpression& e) {
  const IntReader bounds{*preprocessor};
  IntInterval result = {0, 0};
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    const IntInterval x = bounds(e, i);
    if (x.low == 1) result.low = 1;
    if (x.high == 1) result.high = 1;
  }
  preprocessor->intersectIntBounds(e, result);
}

void BoundsCalculator::xorBounds(OXExpression& e) {
  const IntReader bounds{*preprocessor};
  bool allFalse = true;
  bool allTrue = true;
  for (std::int32_t i = 0; i < nbOperands(e); ++i) {
    const IntInterval x = bounds(e, i);
    if (x.high == 1) allFalse = false;
    if (x.low == 0) allTrue = false;
  }
  if (allFalse) {
    preprocessor->fixTo(e, 0);
  } else if (allTrue) {
    preprocessor->fixTo(e, nbOperands(e) % 2);
  }
}

void BoundsCalculator::absBounds(OXExpression& e) {
  if (isDouble(e)) {
    preprocessor->intersectDoubleBounds(e, absInterval(DoubleReader{*preprocessor}(e, 0)));
  } else {
    preprocessor->intersectIntBounds(e, absInterval(IntReader{*preprocessor}(e, 0)));
  }
}

void BoundsCalculator::distBounds(OXExpression& e) {
  if (isDouble(e)) {
    const DoubleReader bounds{*preprocessor};
    preprocessor->intersectDoubleBounds(e, distInterval(bounds(e, 0), bounds(e, 1)));
  } else {
    const IntReader bounds{*preprocessor};
    preprocessor->intersectIntBounds(e, distInterval(bounds(e, 0), bounds(e, 1)));
  }
}

void BoundsCalculator::divIntBounds(OXExpression& e) {
  const IntReader bounds{*preprocessor};
  preprocessor->intersectIntBounds(
      e, divInterval(bounds(e, 0), bounds(e, 1), OMBRIX_HERE("BoundsCalculator::divIntBounds")));
}

void BoundsCalculator::divDoubleBounds(OXExpression& e) {
  const DoubleReader bounds{*preprocessor};
  preprocessor->intersectDoubleBounds(
      e, divInterval(bounds(e, 0), bounds(e, 1), OMBRIX_HERE("BoundsCalculator::divDoubleBounds")));
}

void BoundsCalculator::modBounds(OXExpression& e) {
  const IntReader bounds{*preprocessor};
  preprocessor->intersectIntBounds(
      e, modInterval(bounds(e, 0), bounds(e, 1), OMBRIX_HERE("BoundsCalculator::modBounds")));
}

/// The integer form leaves the position of the index's upper bound out; the double form takes it
/// in, the last element standing for a position past the end.
void BoundsCalculator::atBounds(OXExpression& e) {
  const OXExpression& array = *ModelRecord::operand(e, 0);
  const IntInterval index = preprocessor->intBounds(*ModelRecord::operand(e, 1));
  const std::int64_t size = nbOperands(array);
  const auto first = static_cast<std::int32_t>(std::clamp<std::int64_t>(index.low, 0, size));
  const auto last = static_cast<std::int32_t>(std::clamp<std::int64_t>(index.high, 0, size));
  if (first == last) return;
  if (isDouble(e)) {
    const std::int32_t end = std::min(last + 1, nbOperands(array));
    preprocessor->intersectDoubleBounds(
        e, hullOfElements(DoubleReader{*preprocessor}, array, first, end));
  } else {
    preprocessor->intersectIntBounds(e,
                                     hullOfElements(IntReader{*preprocessor}, array, first, last));
  }
}

void BoundsCalculator::powBounds(OXExpression& e) {
  const DoubleReader doubles{*preprocessor};
  const OXExpression& exponent = *ModelRecord::operand(e, 1);
  if (isDouble(exponent)) {
    preprocessor->intersectDoubleBounds(e, powInterval(doubles(e, 0), doubles(exponent)));
  } else {
    preprocessor->intersectDoubleBounds(
        e, powInterval(doubles(e, 0), preprocessor->intBounds(exponent)));
  }
}

void BoundsCalculator::tanBounds(OXExpression& e) {
  const auto bounds = tanInterval(DoubleReader{*preprocessor}(e, 0));
  if (bounds.has_value()) preprocessor->intersectDoubleBounds(e, *bounds);
}

}  // namespace ombrix
