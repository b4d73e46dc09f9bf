// Multidimensional knapsack: choose items of the largest total profit that respect every capacity.
//
// File: the number of problems (1), then "items constraints 0", the profits, one row of weights for
// each constraint, the capacities.

#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

struct Instance {
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    file.nextInt(1, 1, "one problem in the file");
    nbItems = static_cast<std::size_t>(file.nextInt(1, 10000000, "the number of items"));
    nbConstraints = static_cast<std::size_t>(file.nextInt(1, 1000000, "the number of constraints"));
    file.nextDouble("the best known value, or 0");
    profits = read(file, nbItems);
    weights = read(file, nbItems * nbConstraints);
    capacities = read(file, nbConstraints);
  }

  static std::vector<double> read(examples::InstanceFile& file, std::size_t count) {
    std::vector<double> numbers;
    for (std::size_t i = 0; i < count; ++i) numbers.push_back(file.nextDouble());
    return numbers;
  }

  std::size_t nbItems = 0;
  std::size_t nbConstraints = 0;
  std::vector<double> profits;
  std::vector<double> weights;  ///< row by row
  std::vector<double> capacities;
};

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  const std::size_t n = instance.nbItems;
  // Weights and capacities share one scale, so that they can be compared.
  std::vector<double> rows = instance.weights;
  rows.insert(rows.end(), instance.capacities.begin(), instance.capacities.end());
  const examples::ScaledNumbers row(rows);
  const examples::ScaledNumbers profits(instance.profits);

  Ombrix solver;
  OXModel& model = *solver.getModel();
  std::vector<OXExpression*> isTaken;
  for (std::size_t i = 0; i < n; ++i) {
    isTaken.push_back(model.createExpression(OXOperator::Bool));
  }
  for (std::size_t c = 0; c < instance.nbConstraints; ++c) {
    OXExpression* weight = model.createExpression(OXOperator::Sum);
    for (std::size_t i = 0; i < n; ++i) {
      if (row[c * n + i] != 0) {
        weight->addOperand(examples::times(model, row[c * n + i], isTaken[i]));
      }
    }
    if (weight->getNbOperands() > 0) {
      examples::requireAtMost(model, weight, row[n * instance.nbConstraints + c]);
    }
  }
  OXExpression* profit = model.createExpression(OXOperator::Sum);
  for (std::size_t i = 0; i < n; ++i) {
    profit->addOperand(examples::times(model, profits[i], isTaken[i]));
  }
  model.addObjective(profit, OXObjectiveDirection::Maximize);
  model.close();
  // A full knapsack improves by exchanges whose first half makes it worse.
  solver.getParam()->setAnnealingLevel(9);
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, profits.unscaled(profit->getIntValue()),
                   examples::chosen(isTaken, 0));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
