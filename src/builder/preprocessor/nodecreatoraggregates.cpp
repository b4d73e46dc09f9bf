#include <algorithm>

#include "builder/evaluatortools.h"
#include "builder/modelrecord.h"
#include "builder/preprocessor/nodecreator.h"
#include "builder/valuetools.h"

// The operators over any number of operands: sums, extreme values, products, logic.
namespace ombrix {

namespace {

constexpr CreationFlags kProductFlags{.collectCoefficients = false,
                                      .flattenNonNegative = true,
                                      .flattenNonPositive = true,
                                      .foldConstants = true};
constexpr CreationFlags kLogicalFlags{.collectCoefficients = false,
                                      .flattenNonNegative = true,
                                      .flattenNonPositive = false,
                                      .foldConstants = true};

OXTypedValue evaluateConstants(const CreationFrame& frame) {
  const OXExpression& e = *frame.expression;
  const ValueType type = ModelRecord::valueType(e);
  return EvaluatorTools::evaluate(
      ModelRecord::op(e), SingleListEvaluatorIterator(type, frame.constants.data(), 0),
      SingleListEvaluatorIterator(type, frame.constants.data(),
                                  static_cast<std::int64_t>(frame.constants.size())));
}

bool isDouble(const OXExpression& e) {
  return ModelRecord::valueType(e) == kDoubleType;
}

}  // namespace

/// The node that stands for all folded constants.
std::uint32_t NodeCreator::addFoldedConstants(const CreationFrame& frame) {
  const OXTypedValue result = evaluateConstants(frame);
  return addConstant(static_cast<ValueType>(result.type), result.value);
}

void NodeCreator::createSumFamily(OXExpression& e, const CreationFlags& flags,
                                  const SumTypes& types) {
  if (!open(e, flags)) return;
  const CreationFrame& frame = topFrame();
  const ValueType type = ModelRecord::valueType(e);
  const bool isPlain =
      std::all_of(frame.coefficients.begin(), frame.coefficients.end(),
                  [type](OXValue coefficient) { return ValueTools::isOne(type, coefficient); });
  if (isPlain) {
    finish(e, addPlainFamily(frame, isDouble(e) ? types.doublePlain : types.plain));
  } else {
    finish(e, addScalarFamily(frame, isDouble(e) ? types.doubleScalar : types.scalar));
  }
}

std::uint32_t NodeCreator::addPlainFamily(const CreationFrame& frame, NodeType type) {
  gatherOperandNodes(frame);
  if (!frame.constants.empty()) operandNodes.push_back(addFoldedConstants(frame));
  if (type == NodeType::Sum || type == NodeType::DoubleSum) {
    return grouper.addSum(type, operandNodes);
  }
  return fixedFields.addNode(type, operandNodes, {});
}

std::uint32_t NodeCreator::addScalarFamily(const CreationFrame& frame, NodeType type) {
  gatherOperandNodes(frame);
  scalars.assign(frame.coefficients.begin(), frame.coefficients.end());
  if (!frame.constants.empty()) {
    operandNodes.push_back(addFoldedConstants(frame));
    scalars.push_back(ValueTools::one(ModelRecord::valueType(*frame.expression)));
  }
  if (type == NodeType::ScalarSum || type == NodeType::DoubleScalarSum) {
    return grouper.addScalarSum(type, operandNodes, scalars);
  }
  return fixedFields.addNode(type, operandNodes, scalars);
}

void NodeCreator::createProduct(OXExpression& e) {
  if (!open(e, kProductFlags)) return;
  const CreationFrame& frame = topFrame();
  gatherOperandNodes(frame);
  if (frame.constants.empty()) {
    const NodeType type = isDouble(e) ? NodeType::DoubleProduct : NodeType::Product;
    finish(e, fixedFields.addNode(type, operandNodes, {}));
    return;
  }
  const OXValue factor = evaluateConstants(frame).value;
  if (ValueTools::isZero(ModelRecord::valueType(e), factor) || operandNodes.empty()) {
    finish(e, addConstant(ModelRecord::valueType(e), factor));
    return;
  }
  const NodeType type = isDouble(e) ? NodeType::DoubleScalarProduct : NodeType::ScalarProduct;
  scalars.assign(1, factor);
  finish(e, fixedFields.addNode(type, operandNodes, scalars));
}

void NodeCreator::createLogical(OXExpression& e, NodeType type) {
  if (!open(e, kLogicalFlags)) return;
  gatherOperandNodes(topFrame());
  if (!topFrame().constants.empty()) operandNodes.push_back(addFoldedConstants(topFrame()));
  finish(e, fixedFields.addNode(type, operandNodes, {}));
}

}  // namespace ombrix
