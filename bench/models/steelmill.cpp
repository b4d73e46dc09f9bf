// Steel mill slabs: put orders on slabs, at most two colours on each, so that the steel lost
// between the load of a slab and the smallest capacity that holds it is least.
//
// File: the number of capacities and the capacities, the number of colours, the number of orders,
// and for each order its size and its colour.
//
// The loss of a slab is an element of a table with one entry a load, so that it follows the load at
// once. Loads beyond the largest capacity have an entry too, to be left by moves and not by a
// failure; a constraint forbids them. Most moves leave the loss as it is: a second objective, the
// squares of the loads, leads the search to slabs that are full or nearly empty.

#include <algorithm>
#include <map>

#include "instancefile.h"
#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

namespace {

struct Instance {
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    const long long nbCapacities = file.nextInt(1, 100000, "the number of capacities");
    for (long long i = 0; i < nbCapacities; ++i) {
      capacities.push_back(file.nextInt(0, 1000000, "a capacity"));
    }
    std::sort(capacities.begin(), capacities.end());
    file.nextInt(1, 1000000, "the number of colours");
    const long long nbOrders = file.nextInt(1, 1000000, "the number of orders");
    for (long long o = 0; o < nbOrders; ++o) {
      sizes.push_back(file.nextInt(0, capacities.back(), "a size"));
      ordersOfColour[file.nextInt("a colour")].push_back(static_cast<std::size_t>(o));
      total += sizes.back();
    }
  }

  long long lossOf(long long load) const {
    const auto capacity = std::lower_bound(capacities.begin(), capacities.end(), load);
    return load == 0 || capacity == capacities.end() ? 0 : *capacity - load;
  }

  /// More slabs than these only make the search wider: each pair of colours could fill slabs of
  /// half the largest capacity.
  std::size_t nbSlabs() const {
    const auto filled = static_cast<std::size_t>(2 * total / std::max(capacities.back(), 1LL) + 1);
    return std::min(sizes.size(), filled + ordersOfColour.size() / 2);
  }

  std::vector<long long> capacities;
  std::vector<long long> sizes;
  std::map<long long, std::vector<std::size_t>> ordersOfColour;
  long long total = 0;
};

}  // namespace

void buildSteelmill(OXModel& model, const std::string& fileName) {
  const Instance instance(fileName);
  const std::size_t nbOrders = instance.sizes.size();
  const std::size_t nbSlabs = instance.nbSlabs();
  const examples::Table liesOn = createNamedTable(model, nbOrders, nbSlabs);
  OXExpression* losses = model.createExpression(OXOperator::Array);
  for (long long load = 0; load <= instance.total; ++load) {
    losses->addOperand(instance.lossOf(load));
  }
  OXExpression* fullness = model.createExpression(OXOperator::Sum);
  OXExpression* loss = model.createExpression(OXOperator::Sum);
  for (std::size_t s = 0; s < nbSlabs; ++s) {
    OXExpression* load = model.createExpression(OXOperator::Sum);
    for (std::size_t o = 0; o < nbOrders; ++o) {
      addTerm(model, load, instance.sizes[o], liesOn[o][s]);
    }
    fullness->addOperand(model.createExpression(OXOperator::Prod, load, load));
    examples::requireAtMost(model, load, instance.capacities.back());
    loss->addOperand(model.createExpression(OXOperator::At, losses, load));
    OXExpression* nbColours = model.createExpression(OXOperator::Sum);
    for (const auto& [colour, orders] : instance.ordersOfColour) {
      OXExpression* isPresent = model.createExpression(OXOperator::Or);
      for (const std::size_t o : orders) isPresent->addOperand(liesOn[o][s]);
      nbColours->addOperand(isPresent);
    }
    examples::requireAtMost(model, nbColours, 2);
  }
  model.addObjective(loss, OXObjectiveDirection::Minimize);
  model.addObjective(fullness, OXObjectiveDirection::Maximize);
}

}  // namespace bench
