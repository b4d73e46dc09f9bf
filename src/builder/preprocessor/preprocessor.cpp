#include "builder/preprocessor/preprocessor.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "solver/kernel/saturating.h"

namespace ombrix {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

Preprocessor::Preprocessor(OXModel& closedModel, DagFixedFields& fields)
    : model(&closedModel),
      fixedFields(&fields),
      unaries(ModelRecord::expressions(closedModel)),
      nodeIds(unaries.size(), kNoNode),
      useCounts(unaries.size(), 0),
      fixed(unaries.size(), false),
      lowerBounds(unaries.size(), OXValue::ofInt(0)),
      upperBounds(unaries.size(), OXValue::ofInt(0)) {
  countUses();
  collectRoots();
  for (const OXExpression* e : unaries) initBounds(*e);
  counts = {};  // constants of the model are nothing that a pass proves
}

void Preprocessor::countUses() {
  for (const OXExpression* e : unaries) {
    const std::int32_t* operands = ModelRecord::operandIndices(*e);
    for (std::int32_t i = 0; i < ModelRecord::nbOperands(*e); ++i) {
      ++useCounts[static_cast<std::size_t>(operands[i])];
    }
  }
}

void Preprocessor::collectRoots() {
  for (OXExpression* e : unaries) {
    const bool isWanted = ModelRecord::isConstraint(*e) || ModelRecord::isObjective(*e);
    if (isWanted && useCounts[at(*e)] == 0) roots.push_back(e);
  }
}

void Preprocessor::initBounds(const OXExpression& e) {
  if (ModelRecord::op(e) == OXOperator::Const) {
    setBounds(e, ModelRecord::constant(e), ModelRecord::constant(e));
    markFixed(e);
    return;
  }
  switch (ModelRecord::valueType(e)) {
    case kBoolType:
      return setBounds(e, OXValue::ofInt(0), OXValue::ofInt(1));
    case kIntType:
      return setBounds(e, OXValue::ofInt(kIntMin), OXValue::ofInt(kIntMax));
    case kDoubleType:
      return setBounds(e, OXValue::ofDouble(-kInfinity), OXValue::ofDouble(kInfinity));
    default:
      return;
  }
}

void Preprocessor::setBounds(const OXExpression& e, OXValue low, OXValue high) {
  lowerBounds[at(e)] = low;
  upperBounds[at(e)] = high;
}

DoubleInterval Preprocessor::doubleBounds(const OXExpression& e) const {
  if (ModelRecord::valueType(e) == kDoubleType) {
    return {lowerBounds[at(e)].doubleValue, upperBounds[at(e)].doubleValue};
  }
  return toDouble(intBounds(e));
}

void Preprocessor::intersectIntBounds(OXExpression& e, std::int64_t low, std::int64_t high) {
  const IntInterval known = intBounds(e);
  const std::int64_t newLow = std::max(low, known.low);
  const std::int64_t newHigh = std::min(high, known.high);
  if (newLow <= newHigh) {
    if (newLow != known.low || newHigh != known.high) ++counts.nbNarrowed;
    setBounds(e, OXValue::ofInt(newLow), OXValue::ofInt(newHigh));
  } else {
    conflicts.push_back(&e);
  }
}

void Preprocessor::intersectDoubleBounds(OXExpression& e, double low, double high) {
  if (std::isnan(low) || std::isnan(high)) return;
  const DoubleInterval known = doubleBounds(e);
  const double newLow = std::max(low, known.low);
  const double newHigh = std::min(high, known.high);
  if (newLow <= newHigh) {
    if (newLow != known.low || newHigh != known.high) ++counts.nbNarrowed;
    setBounds(e, OXValue::ofDouble(newLow), OXValue::ofDouble(newHigh));
  } else if (approxEqual(newLow, newHigh)) {
    setBounds(e, OXValue::ofDouble(newHigh), OXValue::ofDouble(newLow));
  } else {
    conflicts.push_back(&e);
  }
}

bool Preprocessor::hasEqualBounds(const OXExpression& e) const {
  const OXValue low = lowerBounds[at(e)];
  const OXValue high = upperBounds[at(e)];
  if (ModelRecord::valueType(e) == kDoubleType) {
    return approxEqual(low.doubleValue, high.doubleValue);
  }
  return low.intValue == high.intValue;
}

bool Preprocessor::hasDoubleOperand(const OXExpression& e) const {
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(e); ++i) {
    if (ModelRecord::valueType(canonicalOperand(e, i)) == kDoubleType) return true;
  }
  return false;
}

}  // namespace ombrix
