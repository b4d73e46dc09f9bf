// Uncapacitated facility location: open facilities and serve every customer from an open one, at
// the smallest cost of opening and serving.
//
// File: "facilities customers", for each facility its capacity (ignored) and the cost of opening
// it, and for each customer its demand (ignored) and the cost of serving it from each facility.
// Decimal numbers.

#include <algorithm>
#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

struct Instance {
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    nbFacilities = static_cast<std::size_t>(file.nextInt(1, 100000, "the number of facilities"));
    nbCustomers = static_cast<std::size_t>(file.nextInt(1, 1000000, "the number of customers"));
    for (std::size_t i = 0; i < nbFacilities; ++i) {
      file.nextWord("a capacity");
      costs.push_back(file.nextDouble("the cost of a facility"));
    }
    for (std::size_t j = 0; j < nbCustomers; ++j) {
      file.nextWord("a demand");
      for (std::size_t i = 0; i < nbFacilities; ++i) {
        costs.push_back(file.nextDouble("the cost of serving a customer"));
      }
    }
  }

  /// Position in costs of serving customer j from facility i.
  std::size_t service(std::size_t j, std::size_t i) const {
    return nbFacilities + j * nbFacilities + i;
  }

  std::size_t nbFacilities = 0;
  std::size_t nbCustomers = 0;
  std::vector<double> costs;  ///< of opening, then of serving, customer by customer
};

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  const examples::ScaledNumbers costs(instance.costs);
  Ombrix solver;
  OXModel& model = *solver.getModel();
  std::vector<OXExpression*> isOpen;
  OXExpression* nbOpen = model.createExpression(OXOperator::Sum);
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (std::size_t i = 0; i < instance.nbFacilities; ++i) {
    isOpen.push_back(model.createExpression(OXOperator::Bool));
    nbOpen->addOperand(isOpen.back());
    cost->addOperand(examples::times(model, costs[i], isOpen.back()));
  }
  examples::requireAtLeast(model, nbOpen, 1);

  // A customer pays the dearest service less the best saving that an open facility offers: a
  // maximum of weighted decisions, which needs no expression for each pair of customer and
  // facility.
  for (std::size_t j = 0; j < instance.nbCustomers; ++j) {
    long long dearest = costs[instance.service(j, 0)];
    for (std::size_t i = 1; i < instance.nbFacilities; ++i) {
      dearest = std::max(dearest, costs[instance.service(j, i)]);
    }
    OXExpression* saving = model.createExpression(OXOperator::Max);
    for (std::size_t i = 0; i < instance.nbFacilities; ++i) {
      saving->addOperand(
          examples::times(model, dearest - costs[instance.service(j, i)], isOpen[i]));
    }
    cost->addOperand(dearest);
    cost->addOperand(examples::times(model, -1, saving));
  }
  model.addObjective(cost, OXObjectiveDirection::Minimize);
  model.close();
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, costs.unscaled(cost->getIntValue()),
                   examples::chosen(isOpen, 0));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
