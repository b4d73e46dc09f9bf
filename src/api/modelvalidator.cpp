#include "api/modelvalidator.h"

#include <sstream>

#include "api/cycledetector.h"
#include "builder/operatortools.h"
#include "common/messages.h"

namespace ombrix {

ModelValidator::ModelValidator(OXModel& checkedModel, const Where& caller)
    : model(checkedModel), where(caller), expressions(ModelRecord::expressions(checkedModel)) {}

ModelValidator::~ModelValidator() {
  for (OXExpression* expr : typed) ModelRecord::setValueType(*expr, kNoType);
}

void ModelValidator::run() {
  if (ModelRecord::objectives(model).empty()) {
    fail(kInvalidModel, where, "At least one objective is required in the model.");
  }
  for (const OXExpression* expr : expressions) {
    checkNbOperands(*expr);
    checkOperandIndices(*expr);
  }
  checkObjectivesAndConstraints();
  checkCycles();
  fixTypes();
  for (const OXExpression* expr : expressions) checkOperandTypes(*expr);
  typed.clear();
}

void ModelValidator::checkNbOperands(const OXExpression& expr) const {
  const std::int32_t given = ModelRecord::nbOperands(expr);
  const OXOperator op = ModelRecord::op(expr);
  const int required = OperatorTools::getNbMinOperands(op);
  if (given < required) {
    fail(kInvalidModel, where, messages::tooFewOperands(given, required, ModelRecord::text(expr)));
  }
  const int allowed = OperatorTools::getNbMaxOperands(op);
  if (given > allowed) {
    fail(kInvalidModel, where, messages::tooManyOperands(given, allowed, ModelRecord::text(expr)));
  }
}

void ModelValidator::checkOperandIndices(const OXExpression& expr) const {
  // Public calls store only indices of this model; readers of files append without a check.
  const std::int32_t* operands = ModelRecord::operandIndices(expr);
  for (std::int32_t position = 0; position < ModelRecord::nbOperands(expr); ++position) {
    if (static_cast<std::uint32_t>(operands[position]) >= expressions.size()) {
      fail(kMisuse, where, messages::nullArgument(ModelRecord::text(expr)));
    }
  }
}

void ModelValidator::checkObjectivesAndConstraints() const {
  for (const OXExpression* expr : ModelRecord::objectives(model)) checkObjective(*expr, where);
  for (const OXExpression* expr : ModelRecord::constraints(model)) checkConstraint(*expr, where);
}

void ModelValidator::checkObjective(const OXExpression& expr, const Where& where) {
  if (ModelRecord::op(expr) == OXOperator::Array) {
    fail(kInvalidModel, where,
         "Only expressions with a value can be added in the objectives list.");
  }
}

void ModelValidator::checkConstraint(const OXExpression& expr, const Where& where) {
  const ValueType type = ModelRecord::valueType(expr);
  const bool allowed = type != kNoType
                           ? type == kBoolType
                           : (OperatorTools::getValueTypes(ModelRecord::op(expr)) & kBoolType) != 0;
  if (!allowed) {
    fail(kInvalidModel, where,
         "Only boolean expressions can be constrained (0, 1, bool, and, or, xor, not, eq, neq, "
         "geq, leq, gt, lt, if).");
  }
}

void ModelValidator::checkCycles() const {
  const std::vector<std::int32_t> trail = CycleDetector(model).findCycle();
  if (trail.empty()) return;
  std::ostringstream text;
  text << "A cycle of length " << trail.size() << " was detected in the model : \n";
  for (const std::int32_t index : trail) {
    text << "  - " << ModelRecord::text(*expressions[static_cast<std::size_t>(index)]) << "\n";
  }
  fail(kInvalidModel, where, text.str());
}

void ModelValidator::fixTypes() {
  // Most expressions are created behind their operands: in index order nearly all of them find
  // their operands typed, and the stack stays short.
  for (OXExpression* start : expressions) {
    if (ModelRecord::valueType(*start) != kNoType) continue;
    waiting.push_back(start);
    while (!waiting.empty()) {
      OXExpression& expr = *waiting.back();
      if (ModelRecord::valueType(expr) != kNoType) {
        waiting.pop_back();
      } else if (!pushUntypedOperands(expr)) {
        fixType(expr);
        waiting.pop_back();
      }
    }
  }
}

bool ModelValidator::pushUntypedOperands(const OXExpression& expr) {
  const std::size_t nbBefore = waiting.size();
  const std::int32_t* operands = ModelRecord::operandIndices(expr);
  for (std::int32_t position = 0; position < ModelRecord::nbOperands(expr); ++position) {
    OXExpression* operand = expressions[static_cast<std::size_t>(operands[position])];
    if (ModelRecord::valueType(*operand) == kNoType) waiting.push_back(operand);
  }
  return waiting.size() > nbBefore;
}

void ModelValidator::fixType(OXExpression& expr) {
  typed.push_back(&expr);
  if (ModelRecord::op(expr) != OXOperator::At) {
    OperatorTools::fixValueType(expr);
    return;
  }
  // The type of an "at" hangs on the whole array alone: one scan serves all that share an array.
  typesOfAts.resize(expressions.size(), kNoType);
  ValueType& typeOfAts = typesOfAts[static_cast<std::size_t>(ModelRecord::operandIndex(expr, 0))];
  if (typeOfAts == kNoType) {
    OperatorTools::fixValueType(expr);
    typeOfAts = ModelRecord::valueType(expr);
  }
  ModelRecord::setValueType(expr, typeOfAts);
}

void ModelValidator::checkOperandTypes(const OXExpression& expr) const {
  const OXOperator op = ModelRecord::op(expr);
  const ValueType type = ModelRecord::valueType(expr);
  const std::int32_t* operands = ModelRecord::operandIndices(expr);
  for (std::int32_t position = 0; position < ModelRecord::nbOperands(expr); ++position) {
    const OXExpression& operand = *expressions[static_cast<std::size_t>(operands[position])];
    const ValueType given = ModelRecord::valueType(operand);
    const ValueType allowed = OperatorTools::getOperandValueTypes(op, type, position);
    if ((given & allowed) == 0) {
      fail(kInvalidModel, where,
           messages::wrongOperand(position, ModelRecord::text(expr),
                                  OperatorTools::valueTypesToString(allowed)) +
               ". Type provided: " + OperatorTools::valueTypesToString(given));
    }
  }
}

}  // namespace ombrix
