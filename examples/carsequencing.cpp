// Car sequencing: order the cars on a line so that the stations that build in the options keep up.
// Of any Q cars in a row at most P may take an option; the stretches of Q cars with more than P are
// counted, option by option, and their number is to be smallest.
//
// File: "%" comments, "cars options classes", the P of the options, the Q of the options, and for
// each class its number, the number of its cars and a 0 or 1 for each option.

#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

struct Option {
  long long most = 0;   ///< P: the cars that the station can serve
  std::size_t row = 0;  ///< Q: of so many in a row
  std::vector<bool> isTakenBy;
};

struct Instance {
  explicit Instance(const std::string& fileName) {
    constexpr long long kLargest = 10000;
    examples::InstanceFile file(fileName);
    while (file.skipComment('%')) {
    }
    nbCars = static_cast<std::size_t>(file.nextInt(1, kLargest, "the number of cars"));
    options.resize(static_cast<std::size_t>(file.nextInt(0, kLargest, "the number of options")));
    nbCarsOf.resize(static_cast<std::size_t>(file.nextInt(1, kLargest, "the number of classes")));
    for (Option& option : options) option.most = file.nextInt(0, kLargest, "a P");
    for (Option& option : options) {
      option.row = static_cast<std::size_t>(file.nextInt(1, kLargest, "a Q"));
    }
    for (long long& count : nbCarsOf) {
      file.nextInt("the number of a class");
      count = file.nextInt(0, kLargest, "the cars of a class");
      for (Option& option : options)
        option.isTakenBy.push_back(file.nextInt(0, 1, "a 0 or 1") == 1);
    }
    if (std::accumulate(nbCarsOf.begin(), nbCarsOf.end(), 0LL) != static_cast<long long>(nbCars)) {
      throw std::runtime_error(fileName + ": the cars of the classes do not add up");
    }
  }

  std::size_t nbCars = 0;
  std::vector<Option> options;
  std::vector<long long> nbCarsOf;
};

/// The line as a table of decisions: a car of the class stands at the position. Cars of one class
/// are alike, so that swapping them changes nothing that the model could see.
examples::Table createLine(OXModel& model, const Instance& instance) {
  examples::Table isAt = examples::createTable(model, instance.nbCars, instance.nbCarsOf.size());
  for (std::size_t c = 0; c < instance.nbCarsOf.size(); ++c) {
    examples::requireColumnSum(model, isAt, c, instance.nbCarsOf[c]);
  }
  return isAt;
}

/// Whether the car at each position takes the option: a sum shared by all stretches over it.
std::vector<OXExpression*> createUses(OXModel& model, const examples::Table& isAt,
                                      const Option& option) {
  std::vector<OXExpression*> uses;
  for (const auto& position : isAt) {
    OXExpression* use = model.createExpression(OXOperator::Sum);
    for (std::size_t c = 0; c < position.size(); ++c) {
      if (option.isTakenBy[c]) use->addOperand(position[c]);
    }
    if (use->getNbOperands() == 0) use->addOperand(0);
    uses.push_back(use);
  }
  return uses;
}

/// What is wrong with a line. A limit stands in the objective and not among the constraints: any
/// order of the cars is feasible, the search is free to pass through bad ones, and a line that
/// cannot keep every limit comes out as good as it gets.
struct Violations {
  Violations(OXModel& model, const Instance& instance, const examples::Table& isAt)
      : stretches(model.createExpression(OXOperator::Sum, model.createConstant(0))),
        excess(model.createExpression(OXOperator::Sum, model.createConstant(0))) {
    for (const Option& option : instance.options) {
      const std::vector<OXExpression*> uses = createUses(model, isAt, option);
      for (std::size_t first = 0; first + option.row <= uses.size(); ++first) {
        OXExpression* taken = model.createExpression(OXOperator::Sum);
        for (std::size_t i = 0; i < option.row; ++i) taken->addOperand(uses[first + i]);
        add(model, taken, option.most);
      }
    }
  }

  void add(OXModel& model, OXExpression* taken, long long most) {
    stretches->addOperand(
        model.createExpression(OXOperator::Gt, taken, model.createConstant(most)));
    OXExpression* over =
        model.createExpression(OXOperator::Sum, taken, model.createConstant(-most));
    excess->addOperand(model.createExpression(OXOperator::Max, over, model.createConstant(0)));
  }

  OXExpression* stretches;  ///< how many have too many cars with an option
  OXExpression* excess;     ///< by how many cars in all: it tells worse from bad
};

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  Ombrix solver;
  OXModel& model = *solver.getModel();
  const examples::Table isAt = createLine(model, instance);
  const Violations violations(model, instance, isAt);
  model.addObjective(violations.stretches, OXObjectiveDirection::Minimize);
  model.addObjective(violations.excess, OXObjectiveDirection::Minimize);
  model.close();
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, static_cast<double>(violations.stretches->getIntValue()),
                   examples::chosenColumns(isAt));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
