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
/// constraints, some as objectives. Owned by its Ombrix; owns its expressions, which live as long
/// as the model and are never deleted by the user.
///
/// While the model is open it only collects; close validates it, fixes the type of every expression
/// and builds what the search needs. Unless told otherwise, what builds is allowed in state
/// Modeling and what reads is allowed unless the state is Running; any other call gives code 0.
///
/// Of an expression given as argument: null or of another solver gives code 0.
class OXModel {
public:
  OXModel(const OXModel&) = delete;
  OXModel& operator=(const OXModel&) = delete;
  ~OXModel();

  /// The solver that owns the model.
  Ombrix* getOmbrix() const;

  /// The constant of an integer: boolean for 0 and 1, else integer. There is one per value, so the
  /// same value gives the same expression. Code 0: there are 2147483647 expressions already.
  OXExpression* createConstant(long long value);
  /// The constant of a double, always of type double and apart from the constant of the same
  /// integer; the two zeros share one. Code 0 as above; code 2: not a number, or infinite.
  OXExpression* createConstant(double value);
  OXExpression* createConstant(int value) { return createConstant(static_cast<long long>(value)); }
  OXExpression* createConstant(long value) { return createConstant(static_cast<long long>(value)); }

  /// A new expression: a decision for OXOperator::Bool, else an operator over the operands given,
  /// to which OXExpression::addOperand can add. Fewer operands than the operator needs are accepted
  /// here and refused by close. All operands are checked before anything is created.
  ///
  /// Code 0: the operator is Const (use createConstant), an operand is null or foreign, or there
  /// are 2147483647 expressions already. Code 2: an operand too many, or of a kind that the
  /// operator does not take. Code 6: the number is no operator.
  OXExpression* createExpression(OXOperator op);
  OXExpression* createExpression(OXOperator op, OXExpression* expr0);
  OXExpression* createExpression(OXOperator op, OXExpression* expr0, OXExpression* expr1);
  OXExpression* createExpression(OXOperator op, OXExpression* expr0, OXExpression* expr1,
                                 OXExpression* expr2);

  /// Every expression, constants and decisions included, in order of creation.
  int getNbExpressions() const;
  /// The expression at an index from 0 to getNbExpressions() - 1, else code 0.
  OXExpression* getExpression(int index) const;
  /// The expression with that name. Code 0: the name is empty, or no expression has it.
  OXExpression* getExpression(const std::string& name) const;

  /// The decisions, in order of creation.
  int getNbDecisions() const;
  /// The decision at a position from 0 to getNbDecisions() - 1, else code 0.
  OXExpression* getDecision(int index) const;

  /// Demands that a boolean expression be 1 in a feasible solution. Posting it again has no effect.
  /// Code 0: there are 2147483647 constraints already; code 2: the expression cannot be boolean.
  void addConstraint(OXExpression* expr);
  int getNbConstraints() const;
  /// The constraint at a position from 0 to getNbConstraints() - 1, else code 0.
  OXExpression* getConstraint(int index) const;

  /// Adds an objective behind the existing ones: the first one counts most, and each later one only
  /// between solutions that are equal in those before it. The same expression may be added more
  /// than once. Code 0: there are 2147483647 objectives already, or the direction is none; code 2:
  /// the expression is an array.
  void addObjective(OXExpression* expr, OXObjectiveDirection direction);
  int getNbObjectives() const;
  /// The objective at a position from 0 to getNbObjectives() - 1, else code 0.
  OXExpression* getObjective(int index) const;
  /// The direction of the objective at a position from 0 to getNbObjectives() - 1, else code 0.
  OXObjectiveDirection getObjectiveDirection(int index) const;

  /// The operands of all expressions of the model together.
  int getNbOperands() const;

  /// Validates the model, types it and builds the search graph; leads to state Stopped, with every
  /// decision at 0 in the solution. Takes time linear in expressions and operands.
  ///
  /// Code 2: there is no objective, an expression has a wrong number or a wrong kind of operands, a
  /// constraint is not boolean, or expressions form a cycle, which the message lists. The model is
  /// then open and unchanged and can be repaired. Any other failure comes from the building of the
  /// graph: the model is closed but cannot be searched; open it, repair it and close it again.
  void close();

  /// Opens the model again for building; leads to state Modeling and ends the search objects.
  /// Expressions, names, types, phases and parameters stay, a type fixed before included. Only in
  /// state Stopped.
  void open();

  bool isClosed() const;

  /// The number of expressions, operands, decisions, constraints and objectives in three lines.
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
