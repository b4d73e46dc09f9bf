#include "api/oxsolution.h"

#include <cerrno>

#include "api/checks.h"
#include "builder/dagbuilder.h"
#include "builder/evaluatortools.h"
#include "builder/modelrecord.h"
#include "builder/solverrecord.h"
#include "builder/valuetools.h"
#include "common/failure.h"
#include "common/messages.h"

namespace ombrix {

namespace {

/// An expression under evaluation and the operand to look at next.
struct EvaluationStep {
  const OXExpression* expr;
  std::int32_t nextPosition;
};

std::size_t slotOf(const OXExpression& expr) {
  return static_cast<std::size_t>(ModelRecord::index(expr));
}

OXTypedValue evaluateOperator(const OXExpression& expr, const OXValue* values) {
  switch (ModelRecord::op(expr)) {
    case OXOperator::At:
      return EvaluatorTools::atEval(expr, values);
    case OXOperator::Scalar:
      return EvaluatorTools::scalarEval(expr, values);
    default:
      return EvaluatorTools::evaluate(ModelRecord::op(expr),
                                      ExpressionEvaluatorIterator::begin(values, expr),
                                      ExpressionEvaluatorIterator::end(values, expr));
  }
}

/// An expression keeps its type through opening and closing, so a sum may stay double while its
/// operands no longer are: the result is stored in the member of the expression's own type.
OXValue inTypeOf(const OXExpression& expr, const OXTypedValue& result) {
  if (ModelRecord::valueType(expr) == kDoubleType && result.type != kDoubleType) {
    return OXValue::ofDouble(static_cast<double>(result.value.intValue));
  }
  return result.value;
}

}  // namespace

OXSolution::OXSolution(Ombrix* owner) : ombrix(owner), status(SolverRecord::kUnknownStatus) {}

OXSolution::~OXSolution() = default;

Ombrix* OXSolution::getOmbrix() const {
  checks::notRunning(*ombrix, OMBRIX_HERE("OXSolution::getOmbrix"));
  return ombrix;
}

void OXSolution::setIntValue(OXExpression* expr, long long value) {
  writeInt(expr, value, OMBRIX_HERE("OXSolution::setIntValue"));
}

void OXSolution::setDoubleValue(OXExpression* expr, double) {
  writeDouble(expr, OMBRIX_HERE("OXSolution::setDoubleValue"));
}

void OXSolution::setValue(OXExpression* expr, long long value) {
  writeInt(expr, value, OMBRIX_HERE("OXSolution::setValue"));
}

void OXSolution::setValue(OXExpression* expr, double) {
  writeDouble(expr, OMBRIX_HERE("OXSolution::setValue"));
}

void OXSolution::writeInt(const OXExpression* expr, long long value, const Where& where) {
  checks::stoppedOnly(*ombrix, where);
  checks::ownExpression(*ombrix, expr, "expr", where);
  if (!isIntegral(ModelRecord::valueType(*expr))) {
    fail(kInvalidModel, where, messages::mustBeIntegral());
  }
  if (ModelRecord::op(*expr) != OXOperator::Bool) {
    fail(kMisuse, where, "Only decisions can be set.");
  }
  if (value != 0 && value != 1) fail(kMisuse, where, "The only allowed values are 0 or 1");
  dirty = true;
  values[slotOf(*expr)] = OXValue::ofInt(value);
}

void OXSolution::writeDouble(const OXExpression* expr, const Where& where) {
  checks::stoppedOnly(*ombrix, where);
  checks::ownExpression(*ombrix, expr, "expr", where);
  if (ModelRecord::valueType(*expr) != kDoubleType) {
    fail(kInvalidModel, where, messages::mustBeDouble());
  }
  // Every decision of the language is boolean: an expression of type double is none.
  fail(kMisuse, where, "Only decisions can be set.");
}

long long OXSolution::getIntValue(OXExpression* expr) const {
  return readInt(expr, OMBRIX_HERE("OXSolution::getIntValue"));
}

long long OXSolution::getValue(OXExpression* expr) const {
  return readInt(expr, OMBRIX_HERE("OXSolution::getValue"));
}

double OXSolution::getDoubleValue(OXExpression* expr) const {
  return readDouble(expr, OMBRIX_HERE("OXSolution::getDoubleValue"));
}

long long OXSolution::readInt(const OXExpression* expr, const Where& where) const {
  checks::pausedOrStopped(*ombrix, where);
  checks::ownExpression(*ombrix, expr, "expr", where);
  if (!isIntegral(ModelRecord::valueType(*expr))) {
    fail(kInvalidModel, where, messages::mustBeIntegral());
  }
  return valueOf(*expr).intValue;
}

double OXSolution::readDouble(const OXExpression* expr, const Where& where) const {
  checks::pausedOrStopped(*ombrix, where);
  checks::ownExpression(*ombrix, expr, "expr", where);
  if (ModelRecord::valueType(*expr) != kDoubleType) {
    fail(kInvalidModel, where, messages::mustBeDouble());
  }
  return valueOf(*expr).doubleValue;
}

void OXSolution::clear() {
  checks::stoppedOnly(*ombrix, OMBRIX_HERE("OXSolution::clear"));
  reset();
}

void OXSolution::reset() {
  const std::size_t nbExpressions = ModelRecord::expressions(SolverRecord::model(*ombrix)).size();
  values.assign(nbExpressions, OXValue::ofInt(0));
  evaluated.assign(nbExpressions, false);
  status = SolverRecord::kUnknownStatus;
  dirty = false;
}

void OXSolution::forgetIfDirty() const {
  if (!dirty) return;
  status = SolverRecord::kUnknownStatus;
  evaluated.assign(evaluated.size(), false);
  dirty = false;
}

OXValue OXSolution::valueOf(const OXExpression& expr) const {
  forgetIfDirty();
  if (!evaluated[slotOf(expr)]) evaluate(expr);
  return values[slotOf(expr)];
}

void OXSolution::evaluate(const OXExpression& start) const {
  // No computation may fail for what an earlier one left behind.
  errno = 0;
  if (settle(start)) return;
  std::vector<EvaluationStep> steps = {{&start, 0}};
  while (!steps.empty()) {
    EvaluationStep& top = steps.back();
    if (top.nextPosition == ModelRecord::nbOperands(*top.expr)) {
      compute(*top.expr);
      steps.pop_back();
      continue;
    }
    const OXExpression& operand = *ModelRecord::operand(*top.expr, top.nextPosition++);
    if (!evaluated[slotOf(operand)] && !settle(operand)) steps.push_back({&operand, 0});
  }
}

bool OXSolution::settle(const OXExpression& operand) const {
  const OXOperator op = ModelRecord::op(operand);
  if (op == OXOperator::Const) {
    values[slotOf(operand)] = ModelRecord::constant(operand);
    evaluated[slotOf(operand)] = true;
  }
  return op == OXOperator::Const || op == OXOperator::Bool;
}

void OXSolution::compute(const OXExpression& expr) const {
  if (ModelRecord::op(expr) != OXOperator::Array) {
    values[slotOf(expr)] = inTypeOf(expr, evaluateOperator(expr, values.data()));
  }
  evaluated[slotOf(expr)] = true;
}

OXSolutionStatus OXSolution::getStatus() const {
  const Where where = OMBRIX_HERE("OXSolution::getStatus");
  checks::pausedOrStopped(*ombrix, where);
  checks::transformed(*ombrix, where);
  forgetIfDirty();
  if (status == SolverRecord::kUnknownStatus) status = static_cast<std::int32_t>(computeStatus());
  return static_cast<OXSolutionStatus>(status);
}

OXSolutionStatus OXSolution::computeStatus() const {
  const OXModel& model = SolverRecord::model(*ombrix);
  if (ModelRecord::dagBuilder(model)->isInconsistent()) return OXSolutionStatus::Inconsistent;
  if (violatesConstraint()) return OXSolutionStatus::Infeasible;
  for (std::size_t i = 0; i < ModelRecord::objectives(model).size(); ++i) {
    if (!reachesBound(i)) return OXSolutionStatus::Feasible;
  }
  return OXSolutionStatus::Optimal;
}

bool OXSolution::violatesConstraint() const {
  for (const OXExpression* expr : ModelRecord::constraints(SolverRecord::model(*ombrix))) {
    if (ValueTools::isZero(ModelRecord::valueType(*expr), valueOf(*expr))) return true;
  }
  return false;
}

bool OXSolution::reachesBound(std::size_t objective) const {
  const OXModel& model = SolverRecord::model(*ombrix);
  const OXExpression& expr = *ModelRecord::objectives(model)[objective];
  const ValueType type = ModelRecord::valueType(expr);
  const OXValue value = valueOf(expr);
  // What a maximized objective can reach is what the transformation proved; a minimized one is
  // measured against the bound of the user.
  const bool maximized = ModelRecord::objectiveDirections(model)[objective] ==
                         static_cast<std::int32_t>(OXObjectiveDirection::Maximize);
  if (maximized) {
    const OXValue bound = ModelRecord::dagBuilder(model)->upperBounds()[slotOf(expr)];
    return ValueTools::compare(type, value, bound) >= 0;
  }
  const OXValue bound = SolverRecord::objectiveBounds(SolverRecord::param(*ombrix))[objective];
  return ValueTools::compare(type, value, bound) <= 0;
}

}  // namespace ombrix
