// Facility location in the plane: open facilities on some of the sites and serve every customer
// from the nearest open one, at the smallest cost of opening and of carrying each demand over its
// straight distance. Distances are no decimal numbers, so the model computes with doubles.
//
// File: "sites customers", for each site its two coordinates and the cost of opening it, and for
// each customer its two coordinates and its demand.

#include <algorithm>
#include <cmath>
#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

/// A site with its opening cost, or a customer with its demand.
struct Place {
  explicit Place(examples::InstanceFile& file)
      : x(file.nextDouble("a coordinate")),
        y(file.nextDouble("a coordinate")),
        weight(file.nextDouble("a cost or demand")) {}

  double x;
  double y;
  double weight;
};

struct Instance {
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    const long long nbSites = file.nextInt(1, 100000, "the number of sites");
    const long long nbCustomers = file.nextInt(1, 1000000, "the number of customers");
    for (long long i = 0; i < nbSites; ++i) sites.emplace_back(file);
    for (long long j = 0; j < nbCustomers; ++j) customers.emplace_back(file);
  }

  /// The costs of serving a customer, site by site.
  std::vector<double> serviceCosts(const Place& customer) const {
    std::vector<double> costs;
    for (const Place& site : sites) {
      costs.push_back(customer.weight * std::hypot(customer.x - site.x, customer.y - site.y));
    }
    return costs;
  }

  std::vector<Place> sites;
  std::vector<Place> customers;
};

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  Ombrix solver;
  OXModel& model = *solver.getModel();
  std::vector<OXExpression*> isOpen;
  OXExpression* nbOpen = model.createExpression(OXOperator::Sum);
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (const Place& site : instance.sites) {
    isOpen.push_back(model.createExpression(OXOperator::Bool));
    nbOpen->addOperand(isOpen.back());
    cost->addOperand(examples::weighted(model, site.weight, isOpen.back()));
  }
  examples::requireAtLeast(model, nbOpen, 1);

  // A customer pays the dearest service less the best saving that an open facility offers: a
  // maximum of weighted decisions, which needs no expression for each pair of customer and site.
  for (const Place& customer : instance.customers) {
    const std::vector<double> costs = instance.serviceCosts(customer);
    const double dearest = *std::max_element(costs.begin(), costs.end());
    OXExpression* saving = model.createExpression(OXOperator::Max);
    for (std::size_t i = 0; i < costs.size(); ++i) {
      saving->addOperand(examples::weighted(model, dearest - costs[i], isOpen[i]));
    }
    cost->addOperand(dearest);
    cost->addOperand(examples::weighted(model, -1.0, saving));
  }
  model.addObjective(cost, OXObjectiveDirection::Minimize);
  model.close();
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, cost->getDoubleValue(), examples::chosen(isOpen, 0));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
