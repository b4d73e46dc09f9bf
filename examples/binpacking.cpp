// Bin packing: put every item into a bin, none above its capacity, with as few bins as possible.
//
// File: the number of items, the capacity, the sizes of the items.

#include <algorithm>
#include <numeric>
#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

struct Instance {
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    sizes.resize(static_cast<std::size_t>(file.nextInt(1, 100000, "the number of items")));
    capacity = file.nextInt(1, 1000000000, "the capacity");
    for (long long& size : sizes) size = file.nextInt(0, capacity, "a size");
  }

  long long capacity = 0;
  std::vector<long long> sizes;
};

/// Puts the items, largest first, each into the first bin that has room. It bounds the bins that
/// the model needs and starts the search.
std::vector<std::size_t> packGreedily(const Instance& instance) {
  std::vector<std::size_t> order(instance.sizes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t i, std::size_t j) {
    return instance.sizes[i] > instance.sizes[j];
  });
  std::vector<std::size_t> binOf(order.size());
  std::vector<long long> room;
  for (const std::size_t i : order) {
    const auto bin = std::find_if(room.begin(), room.end(),
                                  [&](long long left) { return left >= instance.sizes[i]; });
    binOf[i] = static_cast<std::size_t>(bin - room.begin());
    if (bin == room.end()) room.push_back(instance.capacity);
    room[binOf[i]] -= instance.sizes[i];
  }
  return binOf;
}

/// What every bin holds, at most its capacity.
std::vector<OXExpression*> createLoads(OXModel& model, const Instance& instance,
                                       const examples::Table& isIn) {
  std::vector<OXExpression*> loads(isIn.front().size());
  for (std::size_t b = 0; b < loads.size(); ++b) {
    loads[b] = model.createExpression(OXOperator::Sum);
    for (std::size_t i = 0; i < isIn.size(); ++i) {
      loads[b]->addOperand(examples::times(model, instance.sizes[i], isIn[i][b]));
    }
    examples::requireAtMost(model, loads[b], instance.capacity);
  }
  return loads;
}

OXExpression* createNbUsed(OXModel& model, const examples::Table& isIn) {
  OXExpression* nbUsed = model.createExpression(OXOperator::Sum);
  for (std::size_t b = 0; b < isIn.front().size(); ++b) {
    OXExpression* isUsed = model.createExpression(OXOperator::Or);
    for (const auto& item : isIn) isUsed->addOperand(item[b]);
    nbUsed->addOperand(isUsed);
  }
  return nbUsed;
}

/// Hardly any move empties a bin, so the number of bins tells the search nothing for long. A second
/// objective leads it on: the squares of the loads, whose sum grows as full bins fill up at the
/// cost of emptier ones, until the emptiest has nothing left.
OXExpression* createFullness(OXModel& model, const std::vector<OXExpression*>& loads) {
  OXExpression* fullness = model.createExpression(OXOperator::Sum);
  for (OXExpression* load : loads) {
    fullness->addOperand(model.createExpression(OXOperator::Prod, load, load));
  }
  return fullness;
}

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  const std::vector<std::size_t> start = packGreedily(instance);
  const std::size_t nbBins = *std::max_element(start.begin(), start.end()) + 1;

  Ombrix solver;
  OXModel& model = *solver.getModel();
  const examples::Table isIn = examples::createTable(model, instance.sizes.size(), nbBins);
  OXExpression* nbUsed = createNbUsed(model, isIn);
  model.addObjective(nbUsed, OXObjectiveDirection::Minimize);
  model.addObjective(createFullness(model, createLoads(model, instance, isIn)),
                     OXObjectiveDirection::Maximize);
  model.close();
  for (std::size_t i = 0; i < start.size(); ++i) isIn[i][start[i]]->setValue(1);
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, static_cast<double>(nbUsed->getIntValue()),
                   examples::chosenColumns(isIn));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
