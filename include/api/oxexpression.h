#ifndef OMBRIX_API_OXEXPRESSION_H
#define OMBRIX_API_OXEXPRESSION_H

#include <cstdint>
#include <string>

#include "oxoperator.h"

namespace ombrix {

class Ombrix;
class OXModel;
struct Where;

/// One vertex of a model: an operator over operands, a boolean decision or a constant. Created and
/// owned by its OXModel, so a pointer to it stays valid as long as the model and is never deleted
/// by the user. The object is the record itself, 32 bytes.
///
/// Unless told otherwise the operations are allowed in every state but Running; a call in another
/// state gives code 0.
class OXExpression {
public:
  OXExpression(const OXExpression&) = delete;
  OXExpression& operator=(const OXExpression&) = delete;

  /// The solver to which the expression belongs.
  Ombrix* getOmbrix() const;
  /// The model that owns the expression.
  OXModel* getModel() const;
  OXOperator getOperator() const;
  /// The position among all expressions of the model, from 0 in order of creation.
  int getIndex() const;

  /// Whether the operator is Const.
  bool isConstant() const;
  /// Whether the operator is Bool.
  bool isDecision() const;
  /// Whether the expression was posted as a constraint.
  bool isConstraint() const;
  /// Whether the expression was added as an objective.
  bool isObjective() const;

  /// The type, which the closing of the model fixes: in states Paused and Stopped. A boolean is an
  /// integer too.
  bool isDouble() const;
  bool isInt() const;
  bool isBool() const;
  bool isArray() const;

  /// Appends an operand. In state Modeling. Code 0: null or of another solver; code 2: an operand
  /// too many, or of a kind that the operator does not take, or the model has 2147483647 operands
  /// already.
  void addOperand(OXExpression* expr);
  /// Appends a constant, as if made by OXModel::createConstant, with the failures of both.
  void addOperand(long long constant);
  void addOperand(double constant);
  void addOperand(int constant) { addOperand(static_cast<long long>(constant)); }
  void addOperand(long constant) { addOperand(static_cast<long long>(constant)); }

  /// Replaces the operand at a position from 0 to getNbOperands() - 1. In state Modeling. Only an
  /// operator with any number of operands allows it, since the checks are those of one operand
  /// more. Codes as for addOperand; code 0 for the position.
  void setOperand(int position, OXExpression* expr);
  /// Puts a constant in place of the operand at a position.
  void setOperand(int position, long long constant);
  void setOperand(int position, double constant);
  void setOperand(int position, int constant) {
    setOperand(position, static_cast<long long>(constant));
  }
  void setOperand(int position, long constant) {
    setOperand(position, static_cast<long long>(constant));
  }

  /// The operand at a position from 0 to getNbOperands() - 1, else code 0; owned by the model.
  OXExpression* getOperand(int position) const;
  int getNbOperands() const;

  /// Sets the value of a decision, 0 or 1, in the solution of the solver: as
  /// OXSolution::setIntValue and setDoubleValue, in state Stopped.
  void setValue(long long value);
  void setValue(double value);
  void setValue(int value) { setValue(static_cast<long long>(value)); }
  void setValue(long value) { setValue(static_cast<long long>(value)); }
  void setIntValue(long long value);
  void setDoubleValue(double value);

  /// The value of a boolean or integer expression in the solution of the solver. In states Paused
  /// and Stopped; that of a constant in every state but Running. Code 2: the type is another one.
  /// Code 5: there is no value at this solution, as for a division by zero.
  long long getIntValue() const;
  /// getIntValue under another name.
  long long getValue() const;
  /// The value of an expression of type double; states and codes as for getIntValue.
  double getDoubleValue() const;

  /// Gives the expression a name, in place of the one it had. In state Modeling. Code 0: the name
  /// is empty, or an expression has it already, this one included.
  void setName(const std::string& name);
  bool isNamed() const;
  /// The name, empty if there is none.
  std::string getName() const;

  /// Index, operator and name, as in "Expression 3 (type = sum, name = total)".
  std::string toString() const;
  /// The text of toString, the roles of the expression and, for a constant or once a search has
  /// begun since the model was closed, its value; one line each. Code 5 as for getIntValue.
  std::string getInfo() const;

private:
  friend class OXModel;
  friend struct ModelRecord;

  OXExpression(OXModel* owner, int position, OXOperator operation);
  ~OXExpression() = default;

  void appendOperand(std::int32_t operandIndex);
  void growOperands(const std::int32_t* stored, std::int32_t capacity);
  void addChecked(const OXExpression* expr, const Where& where);
  void setChecked(int position, const OXExpression* expr, const Where& where);
  void checkNextOperand(const OXExpression& expr, const Where& where) const;
  void checkPosition(int position, const Where& where) const;
  bool hasOwnValue() const;
  void writeInt(long long value, const Where& where);
  [[noreturn]] void writeDouble(const Where& where);
  long long readInt(const Where& where) const;
  double readDouble(const Where& where) const;
  std::string ownName() const;
  std::string text() const;

  /// A constant holds its value; up to two operands stand inline; more stand in an array of the
  /// heap whose last slot holds the sentinel -1 and whose free slots hold 0. nbOperands tells
  /// which.
  union Data {
    std::int64_t intValue;
    double doubleValue;
    std::int32_t inlineOperands[2];
    std::int32_t* operandArray;
  } data;
  OXModel* model;
  std::int32_t nbOperands = 0;
  std::int32_t index;
  std::uint8_t op;
  std::int8_t valueType = 0;
  bool objective = false;
  bool constraint = false;
};

}  // namespace ombrix

#endif
