#ifndef OMBRIX_API_OXEXPRESSION_H
#define OMBRIX_API_OXEXPRESSION_H

#include <cstdint>
#include <string>

#include "oxoperator.h"

namespace ombrix {

class Ombrix;
class OXModel;
struct Where;

/// One vertex of a model: an operator over operands. The object is the record itself, created and
/// owned by its OXModel, so a pointer to it stays valid as long as the model.
class OXExpression {
public:
  OXExpression(const OXExpression&) = delete;
  OXExpression& operator=(const OXExpression&) = delete;

  Ombrix* getOmbrix() const;
  OXModel* getModel() const;
  OXOperator getOperator() const;
  int getIndex() const;
  bool isConstant() const;
  bool isDecision() const;
  bool isConstraint() const;
  bool isObjective() const;
  bool isDouble() const;
  bool isInt() const;
  bool isBool() const;
  bool isArray() const;
  void addOperand(OXExpression* expr);
  void addOperand(long long constant);
  void addOperand(double constant);
  void addOperand(int constant) { addOperand(static_cast<long long>(constant)); }
  void setOperand(int position, OXExpression* expr);
  void setOperand(int position, long long constant);
  void setOperand(int position, double constant);
  void setOperand(int position, int constant) {
    setOperand(position, static_cast<long long>(constant));
  }
  OXExpression* getOperand(int position) const;
  int getNbOperands() const;
  void setValue(long long value);
  void setValue(double value);
  void setValue(int value) { setValue(static_cast<long long>(value)); }
  void setIntValue(long long value);
  void setDoubleValue(double value);
  long long getValue() const;
  long long getIntValue() const;
  double getDoubleValue() const;
  void setName(const std::string& name);
  bool isNamed() const;
  std::string getName() const;
  std::string toString() const;
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
