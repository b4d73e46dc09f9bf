#include "builder/preprocessor/preprocessor.h"

#include <limits>

#include "builder/preprocessor/postorderwalk.h"
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
  readShape();
  readOperands();
  for (OXExpression* e : unaries) {
    const bool isWanted = ModelRecord::isConstraint(*e) || ModelRecord::isObjective(*e);
    if (isWanted && useCounts[at(*e)] == 0) roots.push_back(e);
  }
  counts = {};  // constants of the model are nothing that a pass proves
}

void Preprocessor::readShape() {
  ops.reserve(unaries.size());
  types.reserve(unaries.size());
  operandStarts.reserve(unaries.size() + 1);
  std::size_t nbPositions = 0;
  for (const OXExpression* e : unaries) {
    ops.push_back(static_cast<std::uint8_t>(ModelRecord::op(*e)));
    types.push_back(ModelRecord::valueType(*e));
    operandStarts.push_back(nbPositions);
    nbPositions += static_cast<std::size_t>(ModelRecord::nbOperands(*e));
    initBounds(*e);
  }
  operandStarts.push_back(nbPositions);
}

void Preprocessor::readOperands() {
  operandLists.reserve(operandStarts.back());
  for (const OXExpression* e : unaries) {
    const std::int32_t* operands = ModelRecord::operandIndices(*e);
    for (std::int32_t i = 0; i < ModelRecord::nbOperands(*e); ++i) {
      const auto x = static_cast<Index>(operands[i]);
      operandLists.push_back(x);
      ++useCounts[x];
    }
  }
}

void Preprocessor::initBounds(const OXExpression& e) {
  const Index index = at(e);
  if (ModelRecord::op(e) == OXOperator::Const) {
    setBounds(index, ModelRecord::constant(e), ModelRecord::constant(e));
    markFixed(index);
    return;
  }
  switch (ModelRecord::valueType(e)) {
    case kBoolType:
      return setBounds(index, OXValue::ofInt(0), OXValue::ofInt(1));
    case kIntType:
      return setBounds(index, OXValue::ofInt(kIntMin), OXValue::ofInt(kIntMax));
    case kDoubleType:
      return setBounds(index, OXValue::ofDouble(-kInfinity), OXValue::ofDouble(kInfinity));
    default:
      return;
  }
}

const std::vector<Preprocessor::Index>& Preprocessor::bottomUp() {
  if (order.empty()) order = PostOrderWalk(*this).run();
  return order;
}

void Preprocessor::intersectDoubleBounds(Index e, double low, double high) {
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
    noteConflict(e);
  }
}

}  // namespace ombrix
