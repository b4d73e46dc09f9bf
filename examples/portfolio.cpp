// Portfolio: hold a given number of assets in equal parts, so that the risk less the expected
// return times a reward is smallest. The assets move together through a few common factors, such
// as the market: the risk is the sum of the squared exposures to the factors and of what each asset
// varies on its own.
//
// File: "assets factors held reward", then for each asset its expected return, its own variance and
// its exposure to each factor, in percent a year.

#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

struct Asset {
  double expectedReturn;
  double variance;
  std::vector<double> exposures;  ///< factor by factor
};

struct Instance {
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    const long long nbAssets = file.nextInt(1, 100000, "the number of assets");
    nbFactors = static_cast<std::size_t>(file.nextInt(0, 1000, "the number of factors"));
    nbHeld = file.nextInt(1, nbAssets, "the number of assets to hold");
    reward = file.nextDouble("the reward of return");
    for (long long i = 0; i < nbAssets; ++i) {
      Asset asset{file.nextDouble("a return"), file.nextDouble("a variance"), {}};
      for (std::size_t f = 0; f < nbFactors; ++f) {
        asset.exposures.push_back(file.nextDouble("an exposure"));
      }
      assets.push_back(asset);
    }
  }

  std::size_t nbFactors = 0;
  long long nbHeld = 0;
  double reward = 0.0;
  std::vector<Asset> assets;
};

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  const double part = 1.0 / static_cast<double>(instance.nbHeld);
  Ombrix solver;
  OXModel& model = *solver.getModel();
  std::vector<OXExpression*> isHeld;
  OXExpression* nbHeld = model.createExpression(OXOperator::Sum);
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (const Asset& asset : instance.assets) {
    isHeld.push_back(model.createExpression(OXOperator::Bool));
    nbHeld->addOperand(isHeld.back());
    const double own = part * part * asset.variance - instance.reward * part * asset.expectedReturn;
    cost->addOperand(examples::weighted(model, own, isHeld.back()));
  }
  examples::requireEqual(model, nbHeld, instance.nbHeld);

  // One square for each factor, and none for each pair of assets: a change of the portfolio then
  // reaches a handful of expressions, whatever the number of assets.
  for (std::size_t f = 0; f < instance.nbFactors; ++f) {
    OXExpression* exposure = model.createExpression(OXOperator::Sum);
    for (std::size_t i = 0; i < isHeld.size(); ++i) {
      const double exposed = part * instance.assets[i].exposures[f];
      exposure->addOperand(examples::weighted(model, exposed, isHeld[i]));
    }
    cost->addOperand(model.createExpression(OXOperator::Prod, exposure, exposure));
  }
  model.addObjective(cost, OXObjectiveDirection::Minimize);
  model.close();
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, cost->getDoubleValue(), examples::chosen(isHeld, 0));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
