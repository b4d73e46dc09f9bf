#include "support/smallmodel.h"

#include <algorithm>
#include <cerrno>
#include <cmath>

#include "builder/evaluatortools.h"
#include "solver/kernel/random.h"

namespace ombrix::test {

SmallModel::SmallModel(std::uint32_t seed, std::uint32_t maxDecisions) : state(seed) {
  addLeaves(maxDecisions);
  const std::uint32_t nbExpressions = 6 + draw(14);
  for (std::uint32_t i = 0; i < nbExpressions; ++i) addExpression();
  addRoots();
}

std::uint32_t SmallModel::draw(std::uint32_t n) {
  return randomIndex(state, n);
}

OXExpression* SmallModel::drawOf(const std::vector<OXExpression*>& pool) {
  return pool[draw(static_cast<std::uint32_t>(pool.size()))];
}

void SmallModel::addLeaves(std::uint32_t maxDecisions) {
  const std::uint32_t nbDecisions = 1 + draw(maxDecisions);
  for (std::uint32_t i = 0; i < nbDecisions; ++i) add(model.boolean());
  for (int i = 0; i < 4; ++i) {
    OXExpression* constant = model.constant(static_cast<std::int64_t>(draw(9)) - 3);
    if (std::find(scalars.begin(), scalars.end(), constant) == scalars.end()) add(constant);
  }
  for (int i = 0; i < 2; ++i) {
    OXExpression* constant = model.constant(static_cast<double>(draw(11)) * 0.5 - 1.75);
    if (std::find(scalars.begin(), scalars.end(), constant) == scalars.end()) add(constant);
  }
}

void SmallModel::add(OXExpression* e) {
  if (ModelRecord::valueType(*e) == kNoType) OperatorTools::fixValueType(*e);
  const ValueType type = ModelRecord::valueType(*e);
  if (type == kBoolType) booleans.push_back(e);
  if (isIntegral(type)) integrals.push_back(e);
  scalars.push_back(e);
}

OXExpression* SmallModel::drawOperand(OXOperator op, std::int32_t position) {
  const ValueType types = OperatorTools::getOperandValueTypes(op, position);
  if (types == kArrayType) return drawArray(1 + draw(3));
  if (types == kBoolType) return drawOf(booleans);
  // Mostly integers, or nearly every expression would be a double.
  const bool integralOnly = (types & kDoubleType) == 0 || draw(3) != 0;
  return drawOf(integralOnly ? integrals : scalars);
}

OXExpression* SmallModel::drawArray(std::uint32_t size) {
  std::vector<OXExpression*> elements;
  for (std::uint32_t i = 0; i < size; ++i) elements.push_back(drawOperand(OXOperator::Array, 0));
  OXExpression* array = model.array(elements);
  OperatorTools::fixValueType(*array);
  return array;
}

std::vector<OXExpression*> SmallModel::drawOperands(OXOperator op) {
  std::vector<OXExpression*> operands;
  if (op == OXOperator::Scalar) {
    const std::uint32_t size = draw(3);
    return {drawArray(size), drawArray(size)};
  }
  const int least = OperatorTools::getNbMinOperands(op);
  const int most = std::min(OperatorTools::getNbMaxOperands(op), 3);
  const int nbOperands =
      least + static_cast<int>(draw(static_cast<std::uint32_t>(most - least + 1)));
  for (int i = 0; i < nbOperands; ++i) operands.push_back(drawOperand(op, i));
  return operands;
}

void SmallModel::addExpression() {
  const auto op = static_cast<OXOperator>(2 + draw(32));
  if (op == OXOperator::Array) return;
  const std::vector<OXExpression*> operands = drawOperands(op);
  add(model.make(op, operands));
}

/// Constraints and objectives are drawn among the last expressions, which depend on the others.
void SmallModel::addRoots() {
  const auto drawLate = [this](const std::vector<OXExpression*>& pool) {
    const auto size = static_cast<std::uint32_t>(pool.size());
    return pool[size - 1 - draw(std::min(size, 5U))];
  };
  const std::uint32_t nbConstraints = draw(4);
  for (std::uint32_t i = 0; i < nbConstraints; ++i) model.constrain(drawLate(booleans));
  model.minimize(drawLate(scalars));
  if (draw(2) == 0) model.minimize(drawLate(scalars));
  reachable.assign(expressions().size(), false);
  for (const OXExpression* e : expressions()) {
    if (ModelRecord::isConstraint(*e) || ModelRecord::isObjective(*e)) markReachable(*e);
  }
}

void SmallModel::markReachable(const OXExpression& e) {
  const auto index = static_cast<std::size_t>(ModelRecord::index(e));
  if (reachable[index]) return;
  reachable[index] = true;
  for (std::int32_t i = 0; i < ModelRecord::nbOperands(e); ++i) {
    markReachable(*ModelRecord::operand(e, i));
  }
}

/// An expression without value, NaN included, keeps the value 0; it matters only where it is
/// reachable.
bool SmallModel::evaluate(std::uint32_t assignment) {
  values.assign(expressions().size(), OXValue::ofInt(0));
  std::uint32_t position = 0;
  for (const OXExpression* e : expressions()) {
    OXValue& value = values[static_cast<std::size_t>(ModelRecord::index(*e))];
    if (ModelRecord::op(*e) == OXOperator::Bool) {
      value = OXValue::ofInt((assignment >> position++) & 1U);
      continue;
    }
    if (!isReachable(*e)) continue;
    try {
      errno = 0;
      value = evaluate(*e);
    } catch (const OXException&) {
      return false;
    }
    if (ModelRecord::valueType(*e) == kDoubleType && std::isnan(value.doubleValue)) return false;
  }
  return true;
}

OXValue SmallModel::evaluate(const OXExpression& e) const {
  switch (ModelRecord::op(e)) {
    case OXOperator::Const:
      return ModelRecord::constant(e);
    case OXOperator::Array:
      return OXValue::ofInt(0);
    case OXOperator::At:
      return EvaluatorTools::atEval(e, values.data()).value;
    case OXOperator::Scalar:
      return EvaluatorTools::scalarEval(e, values.data()).value;
    default:
      return EvaluatorTools::evaluate(ModelRecord::op(e),
                                      ExpressionEvaluatorIterator::begin(values.data(), e),
                                      ExpressionEvaluatorIterator::end(values.data(), e))
          .value;
  }
}

bool SmallModel::isFeasible(const std::vector<OXValue>& assignment) {
  const auto& constraints = ModelRecord::constraints(model.getModel());
  return std::all_of(constraints.begin(), constraints.end(), [&](const OXExpression* e) {
    return assignment[static_cast<std::size_t>(ModelRecord::index(*e))].intValue != 0;
  });
}

double SmallModel::read(const OXExpression& e, const std::vector<OXValue>& values) {
  const OXValue value = values[static_cast<std::size_t>(ModelRecord::index(e))];
  if (ModelRecord::valueType(e) == kDoubleType) return value.doubleValue;
  return static_cast<double>(value.intValue);
}

}  // namespace ombrix::test
