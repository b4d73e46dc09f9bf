#ifndef OMBRIX_TESTS_SUPPORT_SOLVERMODELS_H
#define OMBRIX_TESTS_SUPPORT_SOLVERMODELS_H

#include <cstdint>
#include <vector>

#include "api/ombrix.h"

/// Small models built through the public objects, left open. Each returns the decisions.
namespace ombrix::test {

inline std::vector<OXExpression*> createDecisions(OXModel& model, int count) {
  std::vector<OXExpression*> decisions;
  for (int i = 0; i < count; ++i) decisions.push_back(model.createExpression(OXOperator::Bool));
  return decisions;
}

inline OXExpression* createSum(OXModel& model, const std::vector<OXExpression*>& terms) {
  OXExpression* sum = model.createExpression(OXOperator::Sum);
  for (OXExpression* term : terms) sum->addOperand(term);
  return sum;
}

/// The sum of the decisions with pseudo-random coefficients from 1 to 1000.
inline OXExpression* createWeightedSum(OXModel& model, const std::vector<OXExpression*>& decisions,
                                       std::uint32_t seed) {
  std::vector<OXExpression*> terms;
  for (OXExpression* decision : decisions) {
    seed = seed * 1664525U + 1013904223U;
    OXExpression* weight = model.createConstant(static_cast<int>((seed >> 16) % 1000) + 1);
    terms.push_back(model.createExpression(OXOperator::Prod, weight, decision));
  }
  return createSum(model, terms);
}

/// Several rows of weights below a capacity each, one profit to maximise: feasible at 0, its
/// optimum is far from the bound of the objective.
inline std::vector<OXExpression*> buildKnapsack(OXModel& model, int nbItems, int nbRows = 3) {
  const std::vector<OXExpression*> items = createDecisions(model, nbItems);
  for (int row = 0; row < nbRows; ++row) {
    OXExpression* weight = createWeightedSum(model, items, static_cast<std::uint32_t>(row) + 1);
    OXExpression* capacity = model.createConstant(nbItems * 200);
    model.addConstraint(model.createExpression(OXOperator::Leq, weight, capacity));
  }
  model.addObjective(createWeightedSum(model, items, 77), OXObjectiveDirection::Maximize);
  return items;
}

/// Every element must be covered by one of three sets; the weight of the sets taken is minimised.
/// Infeasible at 0.
inline std::vector<OXExpression*> buildCovering(OXModel& model, int nbSets) {
  const std::vector<OXExpression*> sets = createDecisions(model, nbSets);
  for (int element = 0; element < nbSets; ++element) {
    OXExpression* cover = model.createExpression(OXOperator::Or);
    for (int k : {1, 7, 13}) {
      cover->addOperand(sets[static_cast<std::size_t>((element * k + k) % nbSets)]);
    }
    model.addConstraint(cover);
  }
  model.addObjective(createWeightedSum(model, sets, 5), OXObjectiveDirection::Minimize);
  return sets;
}

/// Three decisions of which each two must differ: no solution, but no bound shows it. At best one
/// equality is violated.
inline std::vector<OXExpression*> buildOddCycle(OXModel& model) {
  const std::vector<OXExpression*> x = createDecisions(model, 3);
  OXExpression* one = model.createConstant(1);
  for (std::size_t i = 0; i < 3; ++i) {
    OXExpression* sum = createSum(model, {x[i], x[(i + 1) % 3]});
    model.addConstraint(model.createExpression(OXOperator::Eq, sum, one));
  }
  model.addObjective(createSum(model, x), OXObjectiveDirection::Minimize);
  return x;
}

/// Maximises the number of decisions at 1, at whose largest value a quotient has no value.
inline std::vector<OXExpression*> buildDivisionByZero(OXModel& model, int nbDecisions) {
  const std::vector<OXExpression*> x = createDecisions(model, nbDecisions);
  OXExpression* sum = createSum(model, x);
  OXExpression* minusSum = model.createExpression(OXOperator::Prod, model.createConstant(-1), sum);
  OXExpression* left =
      model.createExpression(OXOperator::Sum, model.createConstant(nbDecisions), minusSum);
  OXExpression* quotient =
      model.createExpression(OXOperator::Div, model.createConstant(nbDecisions), left);
  model.addObjective(createSum(model, {sum, quotient}), OXObjectiveDirection::Maximize);
  return x;
}

/// Two decisions that must both be 1, where a quotient has no value: a search that starts at 0
/// fails on its way. Preprocessing, which would find that out by itself, is switched off.
inline std::vector<OXExpression*> buildNoValueOnTheWay(Ombrix& solver) {
  solver.getParam()->setAdvancedParam("preprocessingEnabled", 0);
  OXModel& model = *solver.getModel();
  const std::vector<OXExpression*> x = createDecisions(model, 2);
  OXExpression* sum = createSum(model, x);
  OXExpression* minusSum = model.createExpression(OXOperator::Prod, model.createConstant(-1), sum);
  OXExpression* left = createSum(model, {model.createConstant(2), minusSum});
  OXExpression* quotient = model.createExpression(OXOperator::Div, model.createConstant(2), left);
  OXExpression* total = createSum(model, {quotient, sum});
  model.addConstraint(model.createExpression(OXOperator::Geq, total, model.createConstant(4)));
  model.addObjective(sum, OXObjectiveDirection::Minimize);
  return x;
}

inline std::vector<long long> readValues(const std::vector<OXExpression*>& expressions) {
  std::vector<long long> values;
  for (const OXExpression* expression : expressions) values.push_back(expression->getIntValue());
  return values;
}

}  // namespace ombrix::test

#endif
