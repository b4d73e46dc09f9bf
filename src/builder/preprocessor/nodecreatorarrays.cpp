#include "builder/modelrecord.h"
#include "builder/preprocessor/fixedvalue.h"
#include "builder/preprocessor/nodecreator.h"
#include "common/failure.h"
#include "solver/kernel/saturating.h"

// The operators over arrays: "array" itself, "at" and "scalar".
namespace ombrix {

namespace {

constexpr CreationFlags kPlain{};
constexpr CreationFlags kWeighted{.collectCoefficients = true,
                                  .flattenNonNegative = false,
                                  .flattenNonPositive = false,
                                  .foldConstants = false};

bool isDouble(const OXExpression& e) {
  return ModelRecord::valueType(e) == kDoubleType;
}

}  // namespace

bool NodeCreator::areElementsFixed(const OXExpression& array) const {
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(array); ++i) {
    if (!preprocessor.isFixed(preprocessor.canonicalOperand(array, i))) return false;
  }
  return true;
}

/// The element as written counts too: the type of every "at" into the array follows from it.
bool NodeCreator::hasDoubleElement(const OXExpression& array) const {
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(array); ++i) {
    if (isDouble(*ModelRecord::operand(array, i)) ||
        isDouble(preprocessor.canonicalOperand(array, i)))
      return true;
  }
  return false;
}

/// Constant elements are held in the node itself; whether they are doubles is noted for the "at"
/// nodes over the array, which may be many.
void NodeCreator::createArray(OXExpression& e) {
  if (isNew(e)) {
    const bool isDoubleArray = hasDoubleElement(e);
    hasDoubles[Preprocessor::at(e)] = isDoubleArray;
    if (areElementsFixed(e)) {
      finish(e, addConstantArray(e, isDoubleArray));
      return;
    }
  }
  createPlain(e, NodeType::Array);
}

std::uint32_t NodeCreator::addConstantArray(const OXExpression& array, bool isDoubleArray) {
  const ValueType type = isDoubleArray ? kDoubleType : kIntType;
  scalars.clear();
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(array); ++i) {
    scalars.push_back(fixedValueAs(preprocessor, type, preprocessor.canonicalOperand(array, i)));
  }
  return fixedFields.addNode(NodeType::ConstArray, {}, scalars);
}

/// The elements decide, and not the type of the "at", which may stay a double when the doubles of
/// its array are replaced: the node reads the numbers of a constant array as they are held there.
void NodeCreator::createAt(OXExpression& e) {
  if (!open(e, kPlain)) return;
  const OXExpression& array = *topFrame().operands[0];
  const bool isDoubleAt = hasDoubles[Preprocessor::at(array)];
  finish(e, fixedFields.addNode(isDoubleAt ? NodeType::DoubleAt : NodeType::At,
                                gatherOperandNodes(topFrame()), {}));
}

void NodeCreator::createScalarArray(OXExpression& e) {
  const OXExpression& a = preprocessor.canonicalOperand(e, 0);
  const OXExpression& b = preprocessor.canonicalOperand(e, 1);
  if (ModelRecord::nbOperands(a) != ModelRecord::nbOperands(b)) {
    fail(kInternal, OMBRIX_HERE("NodeCreator::createScalarArray"),
         "Arrays for scalar operator must have the same number of elements");
  }
  if (isNew(e)) {
    const bool isFixedA = areElementsFixed(a);
    const bool isFixedB = areElementsFixed(b);
    if (isFixedA && isFixedB) {
      finish(e, addFixedScalar(e, a, b));
      return;
    }
    const bool isReady = isFixedA   ? openWeighted(e, a, b)
                         : isFixedB ? openWeighted(e, b, a)
                                    : openGeneral(e, a, b);
    if (!isReady) return;
  }
  const CreationFrame& frame = topFrame();
  finish(e, frame.coefficients.empty() ? addGeneral(frame) : addWeighted(frame));
}

std::uint32_t NodeCreator::addFixedScalar(const OXExpression& e, const OXExpression& a,
                                          const OXExpression& b) {
  OXValue sum = isDouble(e) ? OXValue::ofDouble(0.0) : OXValue::ofInt(0);
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(a); ++i) {
    const OXExpression& x = preprocessor.canonicalOperand(a, i);
    const OXExpression& y = preprocessor.canonicalOperand(b, i);
    if (isDouble(e)) {
      sum.doubleValue += fixedDouble(preprocessor, x) * fixedDouble(preprocessor, y);
    } else {
      sum.intValue = wrappingAdd(sum.intValue, wrappingMul(fixedValue(preprocessor, x).intValue,
                                                           fixedValue(preprocessor, y).intValue));
    }
  }
  return addConstant(ModelRecord::valueType(e), sum);
}

/// A constant array makes the scalar product a sum with coefficients.
bool NodeCreator::openWeighted(OXExpression& e, const OXExpression& weights,
                               const OXExpression& variables) {
  CreationFrame& frame = openFrame(e, kWeighted);
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(variables); ++i) {
    frame.operands.push_back(&preprocessor.canonicalOperand(variables, i));
    frame.coefficients.push_back(fixedValueAs(preprocessor, ModelRecord::valueType(e),
                                              preprocessor.canonicalOperand(weights, i)));
  }
  return pushOperands(frame);
}

bool NodeCreator::openGeneral(OXExpression& e, const OXExpression& a, const OXExpression& b) {
  CreationFrame& frame = openFrame(e, kPlain);
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(a); ++i) {
    frame.operands.push_back(&preprocessor.canonicalOperand(a, i));
    frame.operands.push_back(&preprocessor.canonicalOperand(b, i));
  }
  return pushOperands(frame);
}

std::uint32_t NodeCreator::addWeighted(const CreationFrame& frame) {
  const NodeType type =
      isDouble(*frame.expression) ? NodeType::DoubleScalarSum : NodeType::ScalarSum;
  return grouper.addScalarSum(type, gatherOperandNodes(frame), frame.coefficients);
}

std::uint32_t NodeCreator::addGeneral(const CreationFrame& frame) {
  const bool isDoubleSum = isDouble(*frame.expression);
  const NodeType product = isDoubleSum ? NodeType::DoubleProduct : NodeType::Product;
  operandNodes.clear();
  for (std::size_t i = 0; i < frame.operands.size(); i += 2) {
    const std::uint32_t a = nodeOf(*frame.operands[i]);
    const std::uint32_t b = nodeOf(*frame.operands[i + 1]);
    operandNodes.push_back(fixedFields.addNode(product, {a, b}));
  }
  return grouper.addSum(isDoubleSum ? NodeType::DoubleSum : NodeType::Sum, operandNodes);
}

}  // namespace ombrix
