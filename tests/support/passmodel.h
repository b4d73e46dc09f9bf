#ifndef OMBRIX_TESTS_SUPPORT_PASSMODEL_H
#define OMBRIX_TESTS_SUPPORT_PASSMODEL_H

#include <cstdint>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "api/ombrix.h"
#include "builder/operatortools.h"
#include "builder/preprocessor/preprocessor.h"
#include "solver/kernel/dagfixedfields.h"
#include "support/intervalprinter.h"

namespace ombrix::test {

inline constexpr double kInf = std::numeric_limits<double>::infinity();

// Bounds to compare with, in one word.

inline IntInterval ints(std::int64_t low, std::int64_t high) {
  return {low, high};
}
inline DoubleInterval reals(double low, double high) {
  return {low, high};
}

/// A model that is typed but not closed, with the state that passes share: one pass can be run on
/// it and looked at. Leaves with any bounds stand for whatever a model could put there.
class PassModel {
public:
  OXModel& getModel() { return *solver.getModel(); }

  OXExpression* boolean() { return getModel().createExpression(OXOperator::Bool); }
  OXExpression* boolean(std::int64_t low, std::int64_t high) {
    return withBounds(boolean(), OXValue::ofInt(low), OXValue::ofInt(high));
  }
  OXExpression* constant(std::int64_t value) {
    return getModel().createConstant(static_cast<long long>(value));
  }
  OXExpression* constant(double value) { return getModel().createConstant(value); }
  OXExpression* make(OXOperator op, const std::vector<OXExpression*>& operands) {
    OXExpression* result = getModel().createExpression(op);
    for (OXExpression* operand : operands) result->addOperand(operand);
    return result;
  }
  OXExpression* array(const std::vector<OXExpression*>& elements) {
    return make(OXOperator::Array, elements);
  }
  /// An integer about which the passes know nothing but these bounds.
  OXExpression* integer(std::int64_t low, std::int64_t high) {
    OXExpression* leaf = make(OXOperator::Scalar, {array({}), array({})});
    return withBounds(leaf, OXValue::ofInt(low), OXValue::ofInt(high));
  }
  /// A double about which the passes know nothing but these bounds.
  OXExpression* real(double low, double high) {
    OXExpression* leaf = make(OXOperator::Scalar, {array({constant(0.5)}), array({boolean()})});
    return withBounds(leaf, OXValue::ofDouble(low), OXValue::ofDouble(high));
  }

  void constrain(OXExpression* e) { getModel().addConstraint(e); }
  void minimize(OXExpression* e) { getModel().addObjective(e, OXObjectiveDirection::Minimize); }

  /// Types all expressions, operands standing before their users, and makes the shared state with
  /// the bounds of the leaves.
  Preprocessor& start() {
    for (OXExpression* e : ModelRecord::expressions(getModel())) {
      if (ModelRecord::valueType(*e) == kNoType) OperatorTools::fixValueType(*e);
    }
    preprocessor = std::make_unique<Preprocessor>(getModel(), fields);
    for (const Bounds& leaf : bounds) {
      preprocessor->lowerBounds[Preprocessor::at(*leaf.expression)] = leaf.low;
      preprocessor->upperBounds[Preprocessor::at(*leaf.expression)] = leaf.high;
    }
    return *preprocessor;
  }
  Preprocessor& state() { return *preprocessor; }

  IntInterval ints(const OXExpression* e) const {
    return preprocessor->intBounds(Preprocessor::at(*e));
  }
  DoubleInterval reals(const OXExpression* e) const {
    return preprocessor->doubleBounds(Preprocessor::at(*e));
  }
  bool isFixed(const OXExpression* e) const { return preprocessor->isFixed(*e); }
  const std::vector<OXExpression*>& conflicts() const { return preprocessor->conflicts; }
  OXExpression* canonical(const OXExpression* e) const { return &preprocessor->canonical(*e); }

private:
  struct Bounds {
    const OXExpression* expression;
    OXValue low;
    OXValue high;
  };

  OXExpression* withBounds(OXExpression* e, OXValue low, OXValue high) {
    bounds.push_back({e, low, high});
    return e;
  }

  Ombrix solver;
  DagFixedFields fields;
  std::vector<Bounds> bounds;
  std::unique_ptr<Preprocessor> preprocessor;
};

}  // namespace ombrix::test

#endif
