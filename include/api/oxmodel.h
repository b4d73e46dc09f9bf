#ifndef OMBRIX_API_OXMODEL_H
#define OMBRIX_API_OXMODEL_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "oxexpression.h"
#include "oxobjectivedirection.h"
#include "oxoperator.h"

namespace ombrix {

class DagBuilder;
class ExpressionPool;
class Ombrix;
struct Where;

/// A model: a directed acyclic graph of expressions, some of them boolean decisions, some marked as
/// constraints, some as objectives. Owned by its Ombrix; owns its expressions.
class OXModel {
public:
  OXModel(const OXModel&) = delete;
  OXModel& operator=(const OXModel&) = delete;
  ~OXModel();

  Ombrix* getOmbrix() const;
  OXExpression* createConstant(long long value);
  OXExpression* createConstant(double value);
  OXExpression* createConstant(int value) { return createConstant(static_cast<long long>(value)); }
  OXExpression* createExpression(OXOperator op);
  OXExpression* createExpression(OXOperator op, OXExpression* expr0);
  OXExpression* createExpression(OXOperator op, OXExpression* expr0, OXExpression* expr1);
  OXExpression* createExpression(OXOperator op, OXExpression* expr0, OXExpression* expr1,
                                 OXExpression* expr2);
  int getNbExpressions() const;
  OXExpression* getExpression(int index) const;
  OXExpression* getExpression(const std::string& name) const;
  int getNbDecisions() const;
  OXExpression* getDecision(int index) const;
  void addConstraint(OXExpression* expr);
  int getNbConstraints() const;
  OXExpression* getConstraint(int index) const;
  void addObjective(OXExpression* expr, OXObjectiveDirection direction);
  int getNbObjectives() const;
  OXExpression* getObjective(int index) const;
  OXObjectiveDirection getObjectiveDirection(int index) const;
  int getNbOperands() const;
  void close();
  void open();
  bool isClosed() const;
  std::string toString() const;

private:
  friend class Ombrix;
  friend class OXExpression;
  friend struct ModelRecord;

  explicit OXModel(Ombrix* owner);

  OXExpression* createRecord(OXOperator op);
  OXExpression* findOrCreateConstant(std::int64_t value, const Where& where);
  OXExpression* findOrCreateConstant(double value, const Where& where);
  OXExpression* createChecked(OXOperator op, OXExpression* const* operands, std::int32_t nb);
  void checkOperatorToCreate(OXOperator op, const Where& where) const;
  void checkOperandToCreate(OXOperator op, std::int32_t position, const OXExpression* operand,
                            const Where& where) const;
  void checkRoomForOperand(std::int32_t nbPending, const Where& where) const;
  void transform();

  Ombrix* ombrix;
  std::map<std::int64_t, OXExpression*> intConstants;
  std::map<double, OXExpression*> doubleConstants;
  std::map<std::string, OXExpression*> namesToExpressions;
  std::map<const OXExpression*, std::string> expressionNames;
  std::vector<OXExpression*> expressions;
  std::vector<std::int32_t> objectiveDirections;
  std::vector<OXExpression*> decisions;
  std::vector<OXExpression*> constraints;
  std::vector<OXExpression*> objectives;
  std::uint32_t nbOperands = 0;
  bool closed = false;
  std::unique_ptr<DagBuilder> dagBuilder;
  std::unique_ptr<ExpressionPool> expressionPool;
};

}  // namespace ombrix

#endif
