#include "api/oxmodel.h"

#include <cerrno>
#include <cmath>
#include <limits>
#include <new>
#include <sstream>

#include "api/checks.h"
#include "api/expressionpool.h"
#include "api/modelvalidator.h"
#include "builder/dagbuilder.h"
#include "builder/operatortools.h"
#include "builder/solverrecord.h"
#include "common/failure.h"
#include "common/messages.h"

namespace ombrix {

namespace {

constexpr std::int32_t kMaxIndex = std::numeric_limits<std::int32_t>::max();
constexpr const char* kOperandNames[] = {"expr0", "expr1", "expr2"};

int count(const std::vector<OXExpression*>& items) {
  return static_cast<int>(items.size());
}

OXExpression* itemAt(const std::vector<OXExpression*>& items, int index, const char* noun,
                     const Where& where) {
  if (index < 0 || index >= count(items)) {
    fail(kMisuse, where, messages::badIndex(noun, index, count(items) - 1));
  }
  return items[static_cast<std::size_t>(index)];
}

void checkRoom(const std::vector<OXExpression*>& items, const char* noun, const Where& where) {
  if (items.size() >= static_cast<std::size_t>(kMaxIndex)) {
    fail(kMisuse, where, messages::capacityExceeded(noun, kMaxIndex));
  }
}

void checkDirection(OXObjectiveDirection direction, const Where& where) {
  if (direction != OXObjectiveDirection::Minimize && direction != OXObjectiveDirection::Maximize) {
    fail(kMisuse, where, messages::outOfRange("Argument direction", 0, 1));
  }
}

}  // namespace

OXModel::OXModel(Ombrix* owner)
    : ombrix(owner), expressionPool(std::make_unique<ExpressionPool>(sizeof(OXExpression))) {}

OXModel::~OXModel() {
  for (const OXExpression* expr : expressions) {
    if (expr->nbOperands > 2) delete[] expr->data.operandArray;
  }
}

Ombrix* OXModel::getOmbrix() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXModel::getOmbrix"));
  return ombrix;
}

OXExpression* OXModel::createRecord(OXOperator op) {
  const auto index = static_cast<std::int32_t>(expressions.size());
  auto* expr = new (expressionPool->allocate()) OXExpression(this, index, op);
  expressions.push_back(expr);
  if (op == OXOperator::Bool) decisions.push_back(expr);
  return expr;
}

OXExpression* OXModel::createConstant(long long value) {
  return findOrCreateConstant(static_cast<std::int64_t>(value),
                              OMBRIX_HERE("OXModel::createConstant"));
}

OXExpression* OXModel::createConstant(double value) {
  return findOrCreateConstant(value, OMBRIX_HERE("OXModel::createConstant"));
}

OXExpression* OXModel::findOrCreateConstant(std::int64_t value, const Where& where) {
  checks::modelingOnly(*ombrix, where);
  checkRoom(expressions, "expressions", where);
  OXExpression*& entry = intConstants[value];
  if (entry == nullptr) {
    entry = createRecord(OXOperator::Const);
    entry->data.intValue = value;
    entry->valueType = value == 0 || value == 1 ? kBoolType : kIntType;
  }
  return entry;
}

OXExpression* OXModel::findOrCreateConstant(double value, const Where& where) {
  checks::modelingOnly(*ombrix, where);
  checkRoom(expressions, "expressions", where);
  if (std::isnan(value)) fail(kInvalidModel, where, messages::notANumber());
  if (std::isinf(value)) {
    fail(kInvalidModel, where, "Cannot use infinity as a double constant.");
  }
  OXExpression*& entry = doubleConstants[value];
  if (entry == nullptr) {
    entry = createRecord(OXOperator::Const);
    entry->data.doubleValue = value;
    entry->valueType = kDoubleType;
  }
  return entry;
}

OXExpression* OXModel::createExpression(OXOperator op) {
  return createChecked(op, nullptr, 0);
}

OXExpression* OXModel::createExpression(OXOperator op, OXExpression* expr0) {
  return createChecked(op, &expr0, 1);
}

OXExpression* OXModel::createExpression(OXOperator op, OXExpression* expr0, OXExpression* expr1) {
  OXExpression* const operands[] = {expr0, expr1};
  return createChecked(op, operands, 2);
}

OXExpression* OXModel::createExpression(OXOperator op, OXExpression* expr0, OXExpression* expr1,
                                        OXExpression* expr2) {
  OXExpression* const operands[] = {expr0, expr1, expr2};
  return createChecked(op, operands, 3);
}

OXExpression* OXModel::createChecked(OXOperator op, OXExpression* const* operands,
                                     std::int32_t nb) {
  const Where where = OMBRIX_HERE("OXModel::createExpression");
  checks::modelingOnly(*ombrix, where);
  checkOperatorToCreate(op, where);
  checkRoom(expressions, "expressions", where);
  // All checks come before the record, so that a failure leaves the model unchanged.
  for (std::int32_t position = 0; position < nb; ++position) {
    checkOperandToCreate(op, position, operands[position], where);
  }
  OXExpression* expr = createRecord(op);
  for (std::int32_t position = 0; position < nb; ++position) {
    expr->appendOperand(operands[position]->index);
  }
  return expr;
}

void OXModel::checkOperatorToCreate(OXOperator op, const Where& where) const {
  if (op == OXOperator::Const) {
    fail(kMisuse, where, "Cannot create constants with this method. Use 'createConstant' instead.");
  }
  if (op < OXOperator::Bool || op > OXOperator::Tan) {
    fail(kInternal, where, "Unknown operator : " + std::to_string(static_cast<std::int32_t>(op)));
  }
}

void OXModel::checkOperandToCreate(OXOperator op, std::int32_t position,
                                   const OXExpression* operand, const Where& where) const {
  checks::ownExpression(*ombrix, operand, kOperandNames[position], where);
  checkRoomForOperand(position, where);
  const int allowed = OperatorTools::getNbMaxOperands(op);
  if (position >= allowed) {
    fail(kInvalidModel, where,
         messages::tooManyOperands(position + 1, allowed,
                                   messages::expressionWithType(OperatorTools::getName(op))));
  }
  if (!OperatorTools::isOperandAllowed(op, position, static_cast<OXOperator>(operand->op))) {
    fail(kInvalidModel, where,
         messages::wrongOperand(
             position, messages::expressionWithType(OperatorTools::getName(op)),
             OperatorTools::valueTypesToString(OperatorTools::getOperandValueTypes(op, position))));
  }
}

void OXModel::checkRoomForOperand(std::int32_t nbPending, const Where& where) const {
  if (nbOperands + static_cast<std::uint32_t>(nbPending) >= static_cast<std::uint32_t>(kMaxIndex)) {
    fail(kInvalidModel, where,
         "The total number of operands in the model cannot exceed 2147483647.");
  }
}

int OXModel::getNbExpressions() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXModel::getNbExpressions"));
  return count(expressions);
}

OXExpression* OXModel::getExpression(int index) const {
  const Where where = OMBRIX_HERE("OXModel::getExpression");
  checks::notRunning(*ombrix, where);
  return itemAt(expressions, index, "Expression", where);
}

OXExpression* OXModel::getExpression(const std::string& name) const {
  const Where where = OMBRIX_HERE("OXModel::getExpression");
  checks::notRunning(*ombrix, where);
  if (name.empty()) fail(kMisuse, where, messages::emptyString("name"));
  const auto found = namesToExpressions.find(name);
  if (found == namesToExpressions.end()) {
    fail(kMisuse, where, "No operator found with name '" + name + "'.");
  }
  return found->second;
}

int OXModel::getNbDecisions() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXModel::getNbDecisions"));
  return count(decisions);
}

OXExpression* OXModel::getDecision(int index) const {
  const Where where = OMBRIX_HERE("OXModel::getDecision");
  checks::notRunning(*ombrix, where);
  return itemAt(decisions, index, "Decision", where);
}

void OXModel::addConstraint(OXExpression* expr) {
  const Where where = OMBRIX_HERE("OXModel::addConstraint");
  checks::modelingOnly(*ombrix, where);
  checks::ownExpression(*ombrix, expr, "expr", where);
  checkRoom(constraints, "constraints", where);
  ModelValidator::checkConstraint(*expr, where);
  if (expr->constraint) return;
  expr->constraint = true;
  constraints.push_back(expr);
}

int OXModel::getNbConstraints() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXModel::getNbConstraints"));
  return count(constraints);
}

OXExpression* OXModel::getConstraint(int index) const {
  const Where where = OMBRIX_HERE("OXModel::getConstraint");
  checks::notRunning(*ombrix, where);
  return itemAt(constraints, index, "Constraint", where);
}

void OXModel::addObjective(OXExpression* expr, OXObjectiveDirection direction) {
  const Where where = OMBRIX_HERE("OXModel::addObjective");
  checks::modelingOnly(*ombrix, where);
  checks::ownExpression(*ombrix, expr, "expr", where);
  checkDirection(direction, where);
  checkRoom(objectives, "objectives", where);
  ModelValidator::checkObjective(*expr, where);
  expr->objective = true;
  objectives.push_back(expr);
  objectiveDirections.push_back(static_cast<std::int32_t>(direction));
}

int OXModel::getNbObjectives() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXModel::getNbObjectives"));
  return count(objectives);
}

OXExpression* OXModel::getObjective(int index) const {
  const Where where = OMBRIX_HERE("OXModel::getObjective");
  checks::notRunning(*ombrix, where);
  return itemAt(objectives, index, "Objective", where);
}

OXObjectiveDirection OXModel::getObjectiveDirection(int index) const {
  const Where where = OMBRIX_HERE("OXModel::getObjectiveDirection");
  checks::notRunning(*ombrix, where);
  itemAt(objectives, index, "Objective", where);
  return static_cast<OXObjectiveDirection>(objectiveDirections[static_cast<std::size_t>(index)]);
}

int OXModel::getNbOperands() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXModel::getNbOperands"));
  return static_cast<int>(nbOperands);
}

void OXModel::close() {
  const Where where = OMBRIX_HERE("OXModel::close");
  checks::modelingOnly(*ombrix, where);
  ModelValidator(*this, where).run();
  closed = true;
  SolverRecord::setState(*ombrix, OXState::Stopped);
  SolverRecord::solution(*ombrix).reset();
  SolverRecord::param(*ombrix).resizeBounds();
  transform();
}

void OXModel::transform() {
  // No computation of the transformation may fail for what an earlier one left behind.
  errno = 0;
  dagBuilder = std::make_unique<DagBuilder>(this);
}

void OXModel::open() {
  checks::stoppedOnly(*ombrix, OMBRIX_HERE("OXModel::open"));
  closed = false;
  SolverRecord::setState(*ombrix, OXState::Modeling);
  SolverRecord::destroySearch(*ombrix);
  dagBuilder.reset();
}

bool OXModel::isClosed() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXModel::isClosed"));
  return closed;
}

std::string OXModel::toString() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXModel::toString"));
  std::ostringstream text;
  text << "Model: \n";
  text << "  expressions = " << expressions.size() << ", operands = " << nbOperands << "\n";
  text << "  decisions = " << decisions.size() << ", constraints = " << constraints.size()
       << ", objectives = " << objectives.size() << "\n";
  return text.str();
}

}  // namespace ombrix
