#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "common/failure.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/intervals.h"
#include "solver/kernel/mathdouble.h"
#include "solver/kernel/nodetypeutils.h"
#include "solver/kernel/saturating.h"

/// The intervals of the nodes: what is known of a value before the search starts. The rules that
/// the builder has in common with the kernel stand in intervals.h; here are those of the kernel's
/// own, which sometimes answer more widely.
namespace ombrix {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr IntInterval kAllIntegers{kIntMin, kIntMax};
constexpr DoubleInterval kAllDoubles{-kInfinity, kInfinity};
constexpr double kHalfPi = 1.5707963267948966;

/// The operands and numbers of one node.
class Reader {
public:
  Reader(const DagFixedFields& fixedFields, std::uint32_t node) : fields(fixedFields), id(node) {}

  std::uint32_t nbOperands() const { return fields.nbOperands(id); }
  NodeType type() const { return fields.types[id]; }
  std::uint32_t number() const { return id; }

  IntInterval intAt(std::uint32_t position) const { return intOf(fields.operand(id, position)); }
  /// An operand of another domain is converted.
  DoubleInterval doubleAt(std::uint32_t position) const {
    return doubleOf(fields.operand(id, position));
  }
  OXValue scalar(std::uint32_t i) const { return fields.scalarsOf(id)[i]; }

  /// The operand as a node, for rules that look through it.
  Reader operand(std::uint32_t position) const { return {fields, fields.operand(id, position)}; }
  std::uint32_t nbScalars() const { return fields.nbScalars(id); }
  std::uint8_t domainAt(std::uint32_t position) const {
    return fields.domains[fields.operand(id, position)];
  }

private:
  IntInterval intOf(std::uint32_t node) const {
    return {fields.minValues[node].intValue, fields.maxValues[node].intValue};
  }
  DoubleInterval doubleOf(std::uint32_t node) const {
    const std::uint8_t domain = fields.domains[node];
    return {doubleValue(domain, fields.minValues[node]),
            doubleValue(domain, fields.maxValues[node])};
  }

  const DagFixedFields& fields;
  std::uint32_t id;
};

IntInterval ordered(std::int64_t a, std::int64_t b) {
  return {std::min(a, b), std::max(a, b)};
}

/// An end that is no number, such as the sum of two opposite infinities, is no bound.
DoubleInterval widened(DoubleInterval x) {
  return {std::isnan(x.low) ? -kInfinity : x.low, std::isnan(x.high) ? kInfinity : x.high};
}

// ---- logical types

IntInterval andBounds(const Reader& node) {
  IntInterval result{1, 1};
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) {
    if (node.intAt(i).low != 1) result.low = 0;
    if (node.intAt(i).high == 0) result.high = 0;
  }
  return result;
}

IntInterval orBounds(const Reader& node) {
  IntInterval result{0, 0};
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) {
    if (node.intAt(i).low == 1) result.low = 1;
    if (node.intAt(i).high == 1) result.high = 1;
  }
  return result;
}

IntInterval xorBounds(const Reader& node) {
  bool areAllTrue = true;
  bool areAllFalse = true;
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) {
    if (node.intAt(i).low != 1) areAllTrue = false;
    if (node.intAt(i).high != 0) areAllFalse = false;
  }
  if (areAllFalse) return {0, 0};
  if (!areAllTrue) return {0, 1};
  const std::int64_t parity = node.nbOperands() % 2;
  return {parity, parity};
}

IntInterval notBounds(const IntInterval& operand) {
  if (operand.high == 0) return {1, 1};
  if (operand.low == 1) return {0, 0};
  return {0, 1};
}

IntInterval booleanSumBounds(const Reader& node) {
  IntInterval result{0, node.nbOperands()};
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) {
    if (node.intAt(i).low == 1) ++result.low;
    if (node.intAt(i).high == 0) --result.high;
  }
  return result;
}

// ---- integer aggregates, over terms: an operand times its coefficient, if the type has some

IntInterval intTerm(const Reader& node, std::uint32_t i, bool hasCoefficients) {
  const IntInterval operand = node.intAt(i);
  if (!hasCoefficients) return operand;
  const std::int64_t coefficient = node.scalar(i).intValue;
  return ordered(saturatingMul(coefficient, operand.low), saturatingMul(coefficient, operand.high));
}

IntInterval sumBounds(const Reader& node, bool hasCoefficients) {
  IntInterval result{0, 0};
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) {
    const IntInterval term = intTerm(node, i, hasCoefficients);
    result.low = saturatingAdd(result.low, term.low);
    result.high = saturatingAdd(result.high, term.high);
  }
  return result;
}

IntInterval maxBounds(const Reader& node, bool hasCoefficients) {
  IntInterval result{kIntMin, kIntMin};
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) {
    const IntInterval term = intTerm(node, i, hasCoefficients);
    result = {std::max(result.low, term.low), std::max(result.high, term.high)};
  }
  return result;
}

IntInterval minBounds(const Reader& node, bool hasCoefficients) {
  IntInterval result{kIntMax, kIntMax};
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) {
    const IntInterval term = intTerm(node, i, hasCoefficients);
    result = {std::min(result.low, term.low), std::min(result.high, term.high)};
  }
  return result;
}

IntInterval productBounds(const Reader& node, std::int64_t factor) {
  IntProduct product(factor);
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) product.multiply(node.intAt(i));
  return product.result();
}

// ---- double aggregates

DoubleInterval doubleTerm(const Reader& node, std::uint32_t i, bool hasCoefficients) {
  const DoubleInterval operand = node.doubleAt(i);
  if (!hasCoefficients) return operand;
  const double coefficient = node.scalar(i).doubleValue;
  const double a = coefficient * operand.low;
  const double b = coefficient * operand.high;
  if (std::isnan(a) || std::isnan(b)) return kAllDoubles;
  return {std::min(a, b), std::max(a, b)};
}

DoubleInterval doubleSumBounds(const Reader& node, bool hasCoefficients) {
  DoubleInterval result{0.0, 0.0};
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) {
    const DoubleInterval term = doubleTerm(node, i, hasCoefficients);
    result.low += term.low;
    result.high += term.high;
  }
  return widened(result);
}

DoubleInterval doubleMaxBounds(const Reader& node, bool hasCoefficients) {
  DoubleInterval result{-kInfinity, -kInfinity};
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) {
    const DoubleInterval term = doubleTerm(node, i, hasCoefficients);
    result = {std::max(result.low, term.low), std::max(result.high, term.high)};
  }
  return result;
}

DoubleInterval doubleMinBounds(const Reader& node, bool hasCoefficients) {
  DoubleInterval result{kInfinity, kInfinity};
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) {
    const DoubleInterval term = doubleTerm(node, i, hasCoefficients);
    result = {std::min(result.low, term.low), std::min(result.high, term.high)};
  }
  return result;
}

DoubleInterval doubleProductBounds(const Reader& node, double factor) {
  DoubleProduct product(factor);
  for (std::uint32_t i = 0; i < node.nbOperands(); ++i) product.multiply(node.doubleAt(i));
  return product.result();
}

// ---- conditions and arrays

template <typename Interval>
Interval ifBounds(IntInterval condition, Interval chosen, Interval other) {
  if (condition.low == 1) return chosen;
  if (condition.high == 0) return other;
  return hull(chosen, other);
}

IntInterval elementOf(const Reader& array, std::uint32_t i, IntInterval) {
  if (array.type() != NodeType::ConstArray) return array.intAt(i);
  return {array.scalar(i).intValue, array.scalar(i).intValue};
}

DoubleInterval elementOf(const Reader& array, std::uint32_t i, DoubleInterval) {
  if (array.type() != NodeType::ConstArray) return array.doubleAt(i);
  return {array.scalar(i).doubleValue, array.scalar(i).doubleValue};
}

/// The hull of the elements that the index can choose; everything when it can choose none.
template <typename Interval>
Interval elementsBounds(const Reader& node, Interval everything, RangeHulls<Interval>& hulls) {
  const Reader array = node.operand(0);
  const IntInterval index = node.intAt(1);
  const std::int64_t nbElements =
      array.type() == NodeType::ConstArray ? array.nbScalars() : array.nbOperands();
  const std::int64_t first = std::max<std::int64_t>(index.low, 0);
  const std::int64_t last = std::min(index.high, nbElements - 1);
  if (first > last) return everything;
  return hulls.of(array.number(), first, last + 1, [&](std::int64_t i) {
    return elementOf(array, static_cast<std::uint32_t>(i), everything);
  });
}

// ---- functions of one double, and comparisons

DoubleInterval tanBounds(DoubleInterval x) {
  if (x.low <= -kHalfPi || x.high >= kHalfPi) return kAllDoubles;
  return {MathDouble::tan(x.low), MathDouble::tan(x.high)};
}

DoubleInterval powBounds(const Reader& node) {
  const bool hasIntegralExponent = node.domainAt(1) != kDoubleDomain;
  return hasIntegralExponent ? powInterval(node.doubleAt(0), node.intAt(1))
                             : powInterval(node.doubleAt(0), node.doubleAt(1));
}

IntInterval truthBounds(Truth truth) {
  if (truth == Truth::True) return {1, 1};
  if (truth == Truth::False) return {0, 0};
  return {0, 1};
}

template <typename Interval>
Truth compare(NodeType type, Interval a, Interval b) {
  switch (type) {
    case NodeType::Eq:
    case NodeType::DoubleEq:
      return isEqual(a, b);
    case NodeType::Neq:
    case NodeType::DoubleNeq:
      return negate(isEqual(a, b));
    case NodeType::Geq:
    case NodeType::DoubleGeq:
      return isGreaterOrEqual(a, b);
    case NodeType::Gt:
    case NodeType::DoubleGt:
      return isGreater(a, b);
    case NodeType::Leq:
    case NodeType::DoubleLeq:
      return isGreaterOrEqual(b, a);
    default:
      return isGreater(b, a);
  }
}

// ---- the table

DoubleInterval floatBounds(const Reader& node) {
  return {node.doubleAt(0).low, node.doubleAt(1).low};
}

/// Types of domain 0 and 1.
IntInterval intBounds(const Reader& node, RangeHulls<IntInterval>& hulls, const Where& where) {
  switch (node.type()) {
    case NodeType::Boolean:
      return {0, 1};
    case NodeType::Integer:
      return kAllIntegers;
    case NodeType::Constant:
      return {node.scalar(0).intValue, node.scalar(0).intValue};
    case NodeType::And:
      return andBounds(node);
    case NodeType::Or:
      return orBounds(node);
    case NodeType::Xor:
      return xorBounds(node);
    case NodeType::Not:
      return notBounds(node.intAt(0));
    case NodeType::BooleanSum:
      return booleanSumBounds(node);
    case NodeType::Sum:
    case NodeType::ScalarSum:
      return sumBounds(node, node.type() == NodeType::ScalarSum);
    case NodeType::Max:
    case NodeType::ScalarMax:
      return maxBounds(node, node.type() == NodeType::ScalarMax);
    case NodeType::Min:
    case NodeType::ScalarMin:
      return minBounds(node, node.type() == NodeType::ScalarMin);
    case NodeType::Product:
      return productBounds(node, 1);
    case NodeType::ScalarProduct:
      return productBounds(node, node.scalar(0).intValue);
    case NodeType::Abs:
      return absInterval(node.intAt(0));
    case NodeType::Distance:
      return distInterval(node.intAt(0), node.intAt(1));
    case NodeType::Divide:
      return divInterval(node.intAt(0), node.intAt(1), where);
    case NodeType::Modulo:
      return modInterval(node.intAt(0), node.intAt(1), where);
    case NodeType::If:
      return ifBounds(node.intAt(0), node.intAt(1), node.intAt(2));
    case NodeType::At:
      return elementsBounds(node, kAllIntegers, hulls);
    case NodeType::DoubleCeil:
      return ceilInterval(node.doubleAt(0));
    case NodeType::DoubleFloor:
      return floorInterval(node.doubleAt(0));
    case NodeType::DoubleRound:
      return {floorEnd(node.doubleAt(0).low + 0.5), floorEnd(node.doubleAt(0).high + 0.5)};
    case NodeType::Eq:
    case NodeType::Neq:
    case NodeType::Geq:
    case NodeType::Gt:
    case NodeType::Leq:
    case NodeType::Lt:
      return truthBounds(compare(node.type(), node.intAt(0), node.intAt(1)));
    default:
      return truthBounds(compare(node.type(), node.doubleAt(0), node.doubleAt(1)));
  }
}

/// Types of domain 2.
DoubleInterval doubleBounds(const Reader& node, RangeHulls<DoubleInterval>& hulls,
                            const Where& where) {
  switch (node.type()) {
    case NodeType::Float:
      return floatBounds(node);
    case NodeType::DoubleConstant:
      return {node.scalar(0).doubleValue, node.scalar(0).doubleValue};
    case NodeType::DoubleSum:
    case NodeType::DoubleScalarSum:
      return doubleSumBounds(node, node.type() == NodeType::DoubleScalarSum);
    case NodeType::DoubleMax:
    case NodeType::DoubleScalarMax:
      return doubleMaxBounds(node, node.type() == NodeType::DoubleScalarMax);
    case NodeType::DoubleMin:
    case NodeType::DoubleScalarMin:
      return doubleMinBounds(node, node.type() == NodeType::DoubleScalarMin);
    case NodeType::DoubleProduct:
      return doubleProductBounds(node, 1.0);
    case NodeType::DoubleScalarProduct:
      return doubleProductBounds(node, node.scalar(0).doubleValue);
    case NodeType::DoubleAbs:
      return absInterval(node.doubleAt(0));
    case NodeType::DoubleDistance:
      return distInterval(node.doubleAt(0), node.doubleAt(1));
    case NodeType::DoubleDivide:
      return divInterval(node.doubleAt(0), node.doubleAt(1), where);
    case NodeType::DoubleIf:
      return ifBounds(node.intAt(0), node.doubleAt(1), node.doubleAt(2));
    case NodeType::DoubleAt:
      return elementsBounds(node, kAllDoubles, hulls);
    case NodeType::DoubleSqrt:
      return sqrtInterval(node.doubleAt(0));
    case NodeType::DoubleLog:
      return logInterval(node.doubleAt(0));
    case NodeType::DoubleExp:
      return expInterval(node.doubleAt(0));
    case NodeType::DoublePow:
      return powBounds(node);
    case NodeType::DoubleTan:
      return tanBounds(node.doubleAt(0));
    default:  // cosine and sine
      return {-1.0, 1.0};
  }
}

}  // namespace

void NodeTypeUtils::computeBounds(const DagFixedFields& fields, std::uint32_t id, KnownHulls& hulls,
                                  OXValue& min, OXValue& max) {
  const Where where = OMBRIX_HERE("NodeTypeUtils::computeBounds");
  const NodeType type = fields.types[id];
  checkType(type, where);
  const Reader node(fields, id);
  switch (fields.domains[id]) {
    case kArrayDomain:
      break;
    case kDoubleDomain: {
      const DoubleInterval bounds = widened(doubleBounds(node, hulls.doubles, where));
      min = OXValue::ofDouble(bounds.low);
      max = OXValue::ofDouble(bounds.high);
      break;
    }
    default: {
      const IntInterval bounds = intBounds(node, hulls.ints, where);
      min = OXValue::ofInt(bounds.low);
      max = OXValue::ofInt(bounds.high);
    }
  }
}

}  // namespace ombrix
