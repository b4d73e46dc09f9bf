// Facility location with capacities, every customer served by one facility.
//
// File: "facilities customers", the capacities, the costs of opening, the demands, and for each
// customer the cost of serving it from each facility. Decimal numbers.
//
// A facility is open when it serves somebody: an "or" over its customers. It needs no decision of
// its own and no constraint that ties one to the assignment, so that moving a customer is one move.

#include <algorithm>
#include <cmath>
#include <numeric>

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

struct Instance {
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    nbFacilities = static_cast<std::size_t>(file.nextInt(1, 100000, "the number of facilities"));
    nbCustomers = static_cast<std::size_t>(file.nextInt(1, 1000000, "the number of customers"));
    capacities = readNumbers(file, nbFacilities);
    opening = readNumbers(file, nbFacilities);
    demands = readNumbers(file, nbCustomers);
    serving = readNumbers(file, nbFacilities * nbCustomers);
  }

  std::size_t nbFacilities = 0;
  std::size_t nbCustomers = 0;
  std::vector<double> capacities;
  std::vector<double> opening;
  std::vector<double> demands;
  std::vector<double> serving;  ///< customer by customer
};

/// The numbers from 0, those of smaller cost first.
template <typename Cost>
std::vector<std::size_t> sortedBy(std::size_t count, Cost cost) {
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return cost(a) < cost(b); });
  return order;
}

/// Serves every customer, those with large demands first, from the cheapest of these facilities
/// that has room; empty if there is none for somebody.
std::vector<std::size_t> assign(const Instance& instance, const std::vector<std::size_t>& open) {
  std::vector<double> room = instance.capacities;
  std::vector<std::size_t> facilityOf(instance.nbCustomers);
  for (const std::size_t c :
       sortedBy(instance.nbCustomers, [&](std::size_t i) { return -instance.demands[i]; })) {
    const double* const cost = &instance.serving[c * instance.nbFacilities];
    std::size_t best = instance.nbFacilities;
    for (const std::size_t f : open) {
      if (room[f] >= instance.demands[c] &&
          (best == instance.nbFacilities || cost[f] < cost[best])) {
        best = f;
      }
    }
    if (best == instance.nbFacilities) return {};
    room[best] -= instance.demands[c];
    facilityOf[c] = best;
  }
  return facilityOf;
}

/// Opens the facilities that are cheapest for their capacity until all customers can be served.
std::vector<std::size_t> assignGreedily(const Instance& instance) {
  std::vector<std::size_t> open;
  for (const std::size_t f : sortedBy(instance.nbFacilities, [&](std::size_t i) {
         const double capacity = instance.capacities[i];
         return capacity > 0 ? instance.opening[i] / capacity : HUGE_VAL;
       })) {
    open.push_back(f);
    std::vector<std::size_t> facilityOf = assign(instance, open);
    if (!facilityOf.empty()) return facilityOf;
  }
  return {};
}

}  // namespace

void buildSscfl(OXModel& model, const std::string& fileName) {
  const Instance instance(fileName);
  // Demands and capacities are compared, costs of both kinds are added: each pair has one scale.
  std::vector<double> amounts = instance.demands;
  amounts.insert(amounts.end(), instance.capacities.begin(), instance.capacities.end());
  std::vector<double> prices = instance.opening;
  prices.insert(prices.end(), instance.serving.begin(), instance.serving.end());
  const examples::ScaledNumbers amount(amounts);
  const examples::ScaledNumbers price(prices);

  const examples::Table serves =
      createNamedTable(model, instance.nbCustomers, instance.nbFacilities);
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (std::size_t f = 0; f < instance.nbFacilities; ++f) {
    OXExpression* isOpen = model.createExpression(OXOperator::Or);
    OXExpression* load = model.createExpression(OXOperator::Sum);
    for (std::size_t c = 0; c < instance.nbCustomers; ++c) {
      isOpen->addOperand(serves[c][f]);
      addTerm(model, load, amount[c], serves[c][f]);
      addTerm(model, cost, price[instance.nbFacilities + c * instance.nbFacilities + f],
              serves[c][f]);
    }
    addTerm(model, cost, price[f], isOpen);
    examples::requireAtMost(model, load, amount[instance.nbCustomers + f]);
  }
  model.addObjective(cost, OXObjectiveDirection::Minimize);
}

void startSscfl(OXModel& model, const std::string& fileName) {
  const Instance instance(fileName);
  const std::vector<std::size_t> facilityOf = assignGreedily(instance);
  for (std::size_t c = 0; c < facilityOf.size(); ++c) {
    model.getDecision(static_cast<int>(c * instance.nbFacilities + facilityOf[c]))->setValue(1);
  }
}

}  // namespace bench
