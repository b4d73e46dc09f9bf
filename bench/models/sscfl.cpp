// Facility location with capacities, every customer served by one facility.
//
// File: "facilities customers", the capacities, the costs of opening, the demands, and for each
// customer the cost of serving it from each facility. Decimal numbers.
//
// A facility is open when it serves somebody: an "or" over its customers. It needs no decision of
// its own and no constraint that ties one to the assignment, so that moving a customer is one move.

#include "instancefile.h"
#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

namespace {

std::vector<double> readNumbers(examples::InstanceFile& file, std::size_t count) {
  std::vector<double> numbers;
  for (std::size_t i = 0; i < count; ++i) numbers.push_back(file.nextDouble());
  return numbers;
}

}  // namespace

void buildSscfl(OXModel& model, const std::string& fileName) {
  examples::InstanceFile file(fileName);
  const auto nbFacilities =
      static_cast<std::size_t>(file.nextInt(1, 100000, "the number of facilities"));
  const auto nbCustomers =
      static_cast<std::size_t>(file.nextInt(1, 1000000, "the number of customers"));
  std::vector<double> capacities = readNumbers(file, nbFacilities);
  const std::vector<double> opening = readNumbers(file, nbFacilities);
  const std::vector<double> demands = readNumbers(file, nbCustomers);
  const std::vector<double> serving = readNumbers(file, nbFacilities * nbCustomers);
  // Demands and capacities are compared, costs of both kinds are added: each pair has one scale.
  std::vector<double> amounts = demands;
  amounts.insert(amounts.end(), capacities.begin(), capacities.end());
  std::vector<double> prices = opening;
  prices.insert(prices.end(), serving.begin(), serving.end());
  const examples::ScaledNumbers amount(amounts);
  const examples::ScaledNumbers price(prices);

  const examples::Table serves = createNamedTable(model, nbCustomers, nbFacilities);
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (std::size_t f = 0; f < nbFacilities; ++f) {
    OXExpression* isOpen = model.createExpression(OXOperator::Or);
    OXExpression* load = model.createExpression(OXOperator::Sum);
    for (std::size_t c = 0; c < nbCustomers; ++c) {
      isOpen->addOperand(serves[c][f]);
      addTerm(model, load, amount[c], serves[c][f]);
      addTerm(model, cost, price[nbFacilities + c * nbFacilities + f], serves[c][f]);
    }
    addTerm(model, cost, price[f], isOpen);
    examples::requireAtMost(model, load, amount[nbCustomers + f]);
  }
  model.addObjective(cost, OXObjectiveDirection::Minimize);
}

}  // namespace bench
