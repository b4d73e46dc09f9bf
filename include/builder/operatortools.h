#ifndef OMBRIX_BUILDER_OPERATORTOOLS_H
#define OMBRIX_BUILDER_OPERATORTOOLS_H

#include <string>

#include "api/oxoperator.h"
#include "builder/valuetype.h"

namespace ombrix {

class OXExpression;

/// The one place that knows what each operator of the modelling language is: its name in text, how
/// many operands it takes, which types they may have and which types it may produce. The model asks
/// when an expression is built and again when it is closed; texts and files take the names from
/// here. Every operation is a look-up in a constant table; a number that is no operator fails with
/// code 6.
class OperatorTools {
public:
  OperatorTools() = delete;

  static std::string getName(OXOperator op);
  /// The operator of a name, exact and case-sensitive.
  static OXOperator stringToOperator(const std::string& name);
  static int getNbMinOperands(OXOperator op);
  /// 2147483647 stands for any number.
  static int getNbMaxOperands(OXOperator op);
  /// The set of types the operator can ever produce.
  static ValueType getValueTypes(OXOperator op);

  /// The types that may be accepted at a position before the type of the expression is known.
  static ValueType getOperandValueTypes(OXOperator op, int position);
  /// The types required at a position once the type of the expression is known.
  static ValueType getOperandValueTypes(OXOperator op, ValueType result, int position);
  /// Whether an operand with that operator can ever fit the position.
  static bool isOperandAllowed(OXOperator op, int position, OXOperator operandOperator);

  /// Writes the final type of an expression whose operands are typed already.
  static void fixValueType(OXExpression& expression);

  /// The words for a set of types, as messages spell them.
  static std::string valueTypesToString(ValueType types);
};

}  // namespace ombrix

#endif
