// Quadratic knapsack: items of the largest total profit, alone and in pairs, within a capacity.
//
// File: a name, the number of items, their profits, the profits of pairs as the rows above the
// diagonal, 0, the capacity, the weights; whatever follows is passed over.

#include "instancefile.h"
#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

void buildQkp(OXModel& model, const std::string& fileName) {
  examples::InstanceFile file(fileName);
  file.nextWord("the name of the instance");
  const auto n = static_cast<std::size_t>(file.nextInt(1, 100000, "the number of items"));
  std::vector<OXExpression*> isTaken;
  OXExpression* profit = model.createExpression(OXOperator::Sum);
  for (std::size_t i = 0; i < n; ++i) {
    isTaken.push_back(createDecision(model, {i}));
    addTerm(model, profit, file.nextInt("a profit"), isTaken[i]);
  }
  for (std::size_t i = 0; i + 1 < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) {
      const long long pair = file.nextInt("the profit of a pair");
      if (pair == 0) continue;
      addTerm(model, profit, pair, model.createExpression(OXOperator::And, isTaken[i], isTaken[j]));
    }
  }
  file.nextInt(0, 0, "0, for a constraint from above");
  const long long capacity = file.nextInt("the capacity");
  OXExpression* weight = model.createExpression(OXOperator::Sum);
  for (std::size_t i = 0; i < n; ++i) {
    addTerm(model, weight, file.nextInt("a weight"), isTaken[i]);
  }
  examples::requireAtMost(model, weight, capacity);
  model.addObjective(profit, OXObjectiveDirection::Maximize);
}

}  // namespace bench
