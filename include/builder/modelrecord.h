#ifndef OMBRIX_BUILDER_MODELRECORD_H
#define OMBRIX_BUILDER_MODELRECORD_H

#include <cstdint>
#include <vector>

#include "api/oxexpression.h"
#include "api/oxmodel.h"
#include "builder/valuetype.h"
#include "solver/kernel/oxvalue.h"

namespace ombrix {

/// The builder's direct view of the records behind the public objects: no state check, no failure,
/// one load per question. Only code below the public interface may use it.
struct ModelRecord {
  static OXOperator op(const OXExpression& e) { return static_cast<OXOperator>(e.op); }
  static std::int32_t index(const OXExpression& e) { return e.index; }
  static ValueType valueType(const OXExpression& e) { return e.valueType; }
  static void setValueType(OXExpression& e, ValueType type) { e.valueType = type; }
  static bool isConstraint(const OXExpression& e) { return e.constraint; }
  static bool isObjective(const OXExpression& e) { return e.objective; }
  static std::int32_t nbOperands(const OXExpression& e) { return e.nbOperands; }
  static std::int32_t operandIndex(const OXExpression& e, std::int32_t position) {
    return operandIndices(e)[position];
  }
  /// The operand indices, nbOperands long.
  static const std::int32_t* operandIndices(const OXExpression& e) {
    return e.nbOperands > 2 ? e.data.operandArray : e.data.inlineOperands;
  }
  static OXExpression* operand(const OXExpression& e, std::int32_t position) {
    return e.model->expressions[static_cast<std::size_t>(operandIndex(e, position))];
  }
  /// The value of a "const", in the member of its type.
  static OXValue constant(const OXExpression& e) { return OXValue::ofInt(e.data.intValue); }
  static OXModel& model(const OXExpression& e) { return *e.model; }
  /// The text of OXExpression::toString.
  static std::string text(const OXExpression& e) { return e.text(); }
  /// The name of the expression, empty if it has none.
  static std::string name(const OXExpression& e) { return e.ownName(); }

  static Ombrix& ombrix(const OXModel& model) { return *model.ombrix; }
  static const std::vector<OXExpression*>& expressions(const OXModel& model) {
    return model.expressions;
  }
  static const std::vector<OXExpression*>& decisions(const OXModel& model) {
    return model.decisions;
  }
  static const std::vector<OXExpression*>& constraints(const OXModel& model) {
    return model.constraints;
  }
  static const std::vector<OXExpression*>& objectives(const OXModel& model) {
    return model.objectives;
  }
  static const std::vector<std::int32_t>& objectiveDirections(const OXModel& model) {
    return model.objectiveDirections;
  }
  static bool closed(const OXModel& model) { return model.closed; }
  /// Null while the model is open, or after a building that failed.
  static DagBuilder* dagBuilder(const OXModel& model) { return model.dagBuilder.get(); }

  /// Makes a record with no operands and no check; for readers of model files.
  static OXExpression* createRecord(OXModel& model, OXOperator op);
  /// Appends an operand with no check; for readers of model files.
  static void appendOperand(OXExpression& e, std::int32_t operandIndex);
};

}  // namespace ombrix

#endif
