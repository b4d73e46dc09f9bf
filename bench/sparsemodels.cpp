#include "sparsemodels.h"

#include "draws.h"

namespace ombrix::bench {

namespace {

std::vector<OXExpression*> createDecisions(OXModel& model, int nbDecisions) {
  std::vector<OXExpression*> decisions;
  decisions.reserve(static_cast<std::size_t>(nbDecisions));
  for (int i = 0; i < nbDecisions; ++i) {
    decisions.push_back(model.createExpression(OXOperator::Bool));
  }
  return decisions;
}

OXExpression* weighted(OXModel& model, long long weight, OXExpression* x) {
  return model.createExpression(OXOperator::Prod, model.createConstant(weight), x);
}

}  // namespace

void buildSetCovering(OXModel& model, int nbDecisions, std::uint32_t seed) {
  constexpr int kColumnsPerRow = 10;
  Draws draws(seed);
  const auto columns = createDecisions(model, nbDecisions);
  for (int row = 0; row < nbDecisions / 2; ++row) {
    OXExpression* cover = model.createExpression(OXOperator::Sum);
    for (int i = 0; i < kColumnsPerRow; ++i) cover->addOperand(draws.of(columns));
    model.addConstraint(model.createExpression(OXOperator::Geq, cover, model.createConstant(1)));
  }
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (OXExpression* column : columns) {
    cost->addOperand(weighted(model, 1 + draws.below(100), column));
  }
  model.addObjective(cost, OXObjectiveDirection::Minimize);
}

void buildMaxCut(OXModel& model, int nbDecisions, std::uint32_t seed) {
  constexpr int kEdgesPerVertex = 3;
  Draws draws(seed);
  const auto sides = createDecisions(model, nbDecisions);
  OXExpression* cut = model.createExpression(OXOperator::Sum);
  for (int edge = 0; edge < kEdgesPerVertex * nbDecisions; ++edge) {
    OXExpression* u = draws.of(sides);
    OXExpression* v = draws.of(sides);
    if (u == v) continue;
    cut->addOperand(u);
    cut->addOperand(v);
    cut->addOperand(weighted(model, -2, model.createExpression(OXOperator::Prod, u, v)));
  }
  model.addObjective(cut, OXObjectiveDirection::Maximize);
}

void buildKnapsackRows(OXModel& model, int nbDecisions, std::uint32_t seed) {
  constexpr int kItemsPerRow = 20;
  Draws draws(seed);
  const auto items = createDecisions(model, nbDecisions);
  for (int row = 0; row < nbDecisions / 10; ++row) {
    OXExpression* weight = model.createExpression(OXOperator::Sum);
    long long total = 0;
    for (int i = 0; i < kItemsPerRow; ++i) {
      const int w = 1 + draws.below(100);
      total += w;
      weight->addOperand(weighted(model, w, draws.of(items)));
    }
    model.addConstraint(
        model.createExpression(OXOperator::Leq, weight, model.createConstant(total / 2)));
  }
  OXExpression* profit = model.createExpression(OXOperator::Sum);
  for (OXExpression* item : items) {
    profit->addOperand(weighted(model, 1 + draws.below(100), item));
  }
  model.addObjective(profit, OXObjectiveDirection::Maximize);
}

const std::vector<Family>& families() {
  static const std::vector<Family> all = {
      {"setcover", buildSetCovering}, {"maxcut", buildMaxCut}, {"knapsackrows", buildKnapsackRows}};
  return all;
}

}  // namespace ombrix::bench
