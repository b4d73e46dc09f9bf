#ifndef OMBRIX_API_MODELVALIDATOR_H
#define OMBRIX_API_MODELVALIDATOR_H

#include <cstdint>
#include <vector>

#include "builder/modelrecord.h"
#include "common/failure.h"

namespace ombrix {

/// The part of closing that may refuse a model: it checks the graph, fixes the value type of every
/// expression and checks the operands against the types. Each pass is linear in the number of
/// expressions and operands. A refusal leaves the model as it was: the types that this validation
/// wrote are taken back, so that the user may repair the model and close it again.
class ModelValidator {
public:
  /// Failures name the operation of the given place.
  ModelValidator(OXModel& checkedModel, const Where& caller);
  /// Takes back the types unless run has come to its end.
  ~ModelValidator();
  ModelValidator(const ModelValidator&) = delete;
  ModelValidator& operator=(const ModelValidator&) = delete;

  void run();

  /// The expression can be boolean, as every constraint must be.
  static void checkConstraint(const OXExpression& expr, const Where& where);
  /// The expression has a value, as every objective must.
  static void checkObjective(const OXExpression& expr, const Where& where);

private:
  void checkObjectivesAndConstraints() const;
  void checkNbOperands(const OXExpression& expr) const;
  void checkOperandIndices(const OXExpression& expr) const;
  void checkCycles() const;
  void fixTypes();
  bool pushUntypedOperands(const OXExpression& expr);
  void fixType(OXExpression& expr);
  void checkOperandTypes(const OXExpression& expr) const;

  OXModel& model;
  Where where;
  const std::vector<OXExpression*>& expressions;
  /// The expressions that wait for a type, the next one at the back.
  std::vector<OXExpression*> waiting;
  /// The expressions typed by this validation.
  std::vector<OXExpression*> typed;
  /// By the index of an array, the type of every "at" into it; empty before the first "at".
  std::vector<ValueType> typesOfAts;
};

}  // namespace ombrix

#endif
