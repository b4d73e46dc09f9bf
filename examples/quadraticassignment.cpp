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

  bool isSymmetric() const {
    for (std::size_t k = 0; k < n; ++k) {
      for (std::size_t l = 0; l < k; ++l) {
        if (distance[k][l] != distance[l][k]) return false;
      }
    }
    return true;
  }

  std::size_t n = 0;
  Matrix flow;
  Matrix distance;
};

/// The distances row by row: the one from k to l stands at k times the size plus l.
OXExpression* createDistances(OXModel& model, const Instance& instance) {
  OXExpression* distances = model.createExpression(OXOperator::Array);
  for (const auto& row : instance.distance) {
    for (const long long distance : row) distances->addOperand(distance);
  }
  return distances;
}

/// A pair of facilities looks its distance up: an exchange of two facilities is evaluated in time
/// proportional to their number. Where distances are symmetric one look-up serves both ways.
OXExpression* createCost(OXModel& model, const Instance& instance,
                         const std::vector<OXExpression*>& locations) {
  const auto size = static_cast<long long>(instance.n);
  const bool isSymmetric = instance.isSymmetric();
  OXExpression* distances = createDistances(model, instance);
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (std::size_t i = 0; i < instance.n; ++i) {
    for (std::size_t j = 0; j < instance.n; ++j) {
      if (isSymmetric && j < i) continue;
      long long flow = instance.flow[i][j];
      if (isSymmetric && j > i) flow += instance.flow[j][i];
      if (flow == 0) continue;
      OXExpression* index = model.createExpression(
          OXOperator::Sum, examples::times(model, size, locations[i]), locations[j]);
      cost->addOperand(
          examples::times(model, flow, model.createExpression(OXOperator::At, distances, index)));
    }
  }
  if (cost->getNbOperands() == 0) cost->addOperand(0);
  return cost;
}

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  Ombrix solver;
  OXModel& model = *solver.getModel();
  // Facility i stands at location k.
  const examples::Table isAt = examples::createAssignment(model, instance.n);
  OXExpression* cost = createCost(model, instance, examples::createChosenColumns(model, isAt));
  model.addObjective(cost, OXObjectiveDirection::Minimize);
  model.close();
  // The valleys are many and flat: a search that goes back further ends lower.
  solver.getParam()->setAnnealingLevel(9);
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, static_cast<double>(cost->getIntValue()),
                   examples::chosenColumns(isAt));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
