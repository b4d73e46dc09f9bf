// Quadratic assignment: place facilities at locations, one at each, so that the flows between
// facilities times the distances between their locations are smallest.
//
// File: the size n, the n x n flows, the n x n distances.

#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

using Matrix = std::vector<std::vector<long long>>;

struct Instance {
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    n = static_cast<std::size_t>(file.nextInt(1, 1000, "the size"));
    flow = read(file);
    distance = read(file);
  }

  Matrix read(examples::InstanceFile& file) const {
    Matrix matrix(n, std::vector<long long>(n));
    for (auto& row : matrix) {
      for (long long& entry : row) entry = file.nextInt();
    }
    return matrix;
  }

  std::size_t n = 0;
  Matrix flow;
  Matrix distance;
};

/// The permutation as a table of decisions: facility i stands at location k.
examples::Table createPlacement(OXModel& model, std::size_t n) {
  examples::Table isAt = examples::createTable(model, n, n);
  for (std::size_t k = 0; k < n; ++k) {
    OXExpression* placed = model.createExpression(OXOperator::Sum);
    for (std::size_t i = 0; i < n; ++i) placed->addOperand(isAt[i][k]);
    examples::requireEqual(model, placed, 1);
  }
  return isAt;
}

/// distanceTo[j][k] is the distance from location k to wherever facility j stands. With these
/// shared sums the cost takes n products for a pair of facilities, not n squared.
examples::Table createDistances(OXModel& model, const Instance& instance,
                                const examples::Table& isAt) {
  const std::size_t n = instance.n;
  examples::Table distanceTo(n, std::vector<OXExpression*>(n));
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t k = 0; k < n; ++k) {
      OXExpression* distance = model.createExpression(OXOperator::Sum);
      for (std::size_t l = 0; l < n; ++l) {
        if (instance.distance[k][l] != 0) {
          distance->addOperand(examples::times(model, instance.distance[k][l], isAt[j][l]));
        }
      }
      if (distance->getNbOperands() == 0) distance->addOperand(0);
      distanceTo[j][k] = distance;
    }
  }
  return distanceTo;
}

OXExpression* createCost(OXModel& model, const Instance& instance, const examples::Table& isAt,
                         const examples::Table& distanceTo) {
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (std::size_t i = 0; i < instance.n; ++i) {
    for (std::size_t k = 0; k < instance.n; ++k) {
      OXExpression* flow = model.createExpression(OXOperator::Sum);
      for (std::size_t j = 0; j < instance.n; ++j) {
        if (instance.flow[i][j] != 0) {
          flow->addOperand(examples::times(model, instance.flow[i][j], distanceTo[j][k]));
        }
      }
      if (flow->getNbOperands() > 0) {
        cost->addOperand(model.createExpression(OXOperator::Prod, isAt[i][k], flow));
      }
    }
  }
  if (cost->getNbOperands() == 0) cost->addOperand(0);
  return cost;
}

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  Ombrix solver;
  OXModel& model = *solver.getModel();
  const examples::Table isAt = createPlacement(model, instance.n);
  const examples::Table distanceTo = createDistances(model, instance, isAt);
  OXExpression* cost = createCost(model, instance, isAt, distanceTo);
  model.addObjective(cost, OXObjectiveDirection::Minimize);
  model.close();
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, static_cast<double>(cost->getIntValue()),
                   examples::chosenColumns(isAt));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
