#ifndef OMBRIX_TESTS_SUPPORT_SMALLMODEL_H
#define OMBRIX_TESTS_SUPPORT_SMALLMODEL_H

#include <cstdint>
#include <vector>

#include "support/passmodel.h"

namespace ombrix::test {

/// A random model over all operators, so small that every assignment of its decisions can be tried.
/// Operands stand before their users. The same seed gives the same model.
class SmallModel {
public:
  SmallModel(std::uint32_t seed, std::uint32_t maxDecisions);

  PassModel& passModel() { return model; }
  const std::vector<OXExpression*>& expressions() {
    return ModelRecord::expressions(model.getModel());
  }
  /// Whether a constraint or an objective depends on the expression.
  bool isReachable(const OXExpression& e) const {
    return reachable[static_cast<std::size_t>(ModelRecord::index(e))];
  }

  /// Runs an action on the values of all expressions, for each assignment of the decisions in which
  /// everything that a constraint or an objective depends on has a value.
  template <typename Action>
  void forEachAssignment(const Action& action) {
    const std::size_t nbDecisions = ModelRecord::decisions(model.getModel()).size();
    for (std::uint32_t assignment = 0; assignment < (1U << nbDecisions); ++assignment) {
      if (evaluate(assignment)) action(values);
    }
  }
  /// Whether the values satisfy all constraints.
  bool isFeasible(const std::vector<OXValue>& assignment);

  /// The value of an expression as a double, exact for the sizes that occur here.
  static double read(const OXExpression& e, const std::vector<OXValue>& values);

private:
  std::uint32_t draw(std::uint32_t n);
  OXExpression* drawOf(const std::vector<OXExpression*>& pool);
  /// An expression drawn among those that fit the position.
  OXExpression* drawOperand(OXOperator op, std::int32_t position);
  std::vector<OXExpression*> drawOperands(OXOperator op);
  OXExpression* drawArray(std::uint32_t size);
  void add(OXExpression* e);
  void addLeaves(std::uint32_t maxDecisions);
  void addExpression();
  void addRoots();
  void markReachable(const OXExpression& e);
  bool evaluate(std::uint32_t assignment);
  OXValue evaluate(const OXExpression& e) const;

  std::uint32_t state;
  PassModel model;
  std::vector<OXExpression*> booleans;
  std::vector<OXExpression*> integrals;
  std::vector<OXExpression*> scalars;
  std::vector<bool> reachable;
  std::vector<OXValue> values;
};

}  // namespace ombrix::test

#endif
