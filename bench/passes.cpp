// What does the simplification of a model cost, against closing it as a whole? Prints one CSV line
// per family and size: the seconds of each pass and of close, what all passes take of close, and
// their time per expression, which stays the same as long as they are linear and their data fit the
// caches. Each time is the smallest of three, since a busy machine only ever adds to it.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "builder/dagbuilder.h"
#include "builder/modelrecord.h"
#include "sparsemodels.h"

namespace {

using namespace ombrix;
using Clock = std::chrono::steady_clock;

/// Signals of 10 decisions each with weights in doubles: their cosines and their largest values in
/// pairs are added up, and each of them is limited.
void buildSignals(OXModel& model, int nbDecisions, std::uint32_t seed) {
  std::uint32_t state = seed;
  std::vector<OXExpression*> decisions;
  for (int i = 0; i < nbDecisions; ++i) {
    decisions.push_back(model.createExpression(OXOperator::Bool));
  }
  OXExpression* total = model.createExpression(OXOperator::Sum);
  OXExpression* previous = decisions.front();
  for (int signal = 0; signal < nbDecisions / 5; ++signal) {
    OXExpression* sum = model.createExpression(OXOperator::Sum);
    for (int i = 0; i < 10; ++i) {
      state = state * 1664525U + 1013904223U;
      OXExpression* weight = model.createConstant(static_cast<double>(state >> 8) / 1000.0);
      sum->addOperand(model.createExpression(OXOperator::Prod, weight,
                                             decisions[(state >> 4) % decisions.size()]));
    }
    model.addConstraint(model.createExpression(OXOperator::Leq, sum, model.createConstant(1.0e5)));
    total->addOperand(model.createExpression(OXOperator::Cos, sum));
    total->addOperand(model.createExpression(OXOperator::Max, sum, previous));
    previous = sum;
  }
  model.addObjective(total, OXObjectiveDirection::Minimize);
}

/// The seconds of one closing.
struct Times {
  std::vector<double> ofPasses;  ///< in their order, the creation of the nodes last
  double close = 0.0;
  int nbExpressions = 0;
};

Times closeOnce(const bench::Family& family, int nbDecisions, bool isPreprocessed) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  family.build(model, nbDecisions, 1);
  solver.getParam()->setAdvancedParam("preprocessingEnabled", isPreprocessed ? 1 : 0);
  const auto start = Clock::now();
  model.close();
  Times times;
  times.close = std::chrono::duration<double>(Clock::now() - start).count();
  times.nbExpressions = model.getNbExpressions();
  for (const PassReport& report : ModelRecord::dagBuilder(model)->passReports()) {
    times.ofPasses.push_back(report.seconds);
  }
  return times;
}

/// The smallest times of three closings, one by one.
Times closeThrice(const bench::Family& family, int nbDecisions, bool isPreprocessed) {
  Times best = closeOnce(family, nbDecisions, isPreprocessed);
  for (int i = 1; i < 3; ++i) {
    const Times times = closeOnce(family, nbDecisions, isPreprocessed);
    best.close = std::min(best.close, times.close);
    for (std::size_t pass = 0; pass < best.ofPasses.size(); ++pass) {
      best.ofPasses[pass] = std::min(best.ofPasses[pass], times.ofPasses[pass]);
    }
  }
  return best;
}

void measure(const bench::Family& family, int nbDecisions) {
  const Times with = closeThrice(family, nbDecisions, true);
  const Times without = closeThrice(family, nbDecisions, false);
  double ofPasses = -with.ofPasses.back();
  std::printf("%s,%d", family.name.c_str(), with.nbExpressions);
  for (const double seconds : with.ofPasses) {
    std::printf(",%.4f", seconds);
    ofPasses += seconds;
  }
  std::printf(",%.4f,%.4f,%.1f%%,%.1f\n", with.close, without.close, 100.0 * ofPasses / with.close,
              1.0e9 * ofPasses / with.nbExpressions);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int largest = argc > 1 ? std::atoi(argv[1]) : 400000;
  std::printf(
      "family,expressions,computeBounds s,inferBounds s,findConstants s,findUnaries s,"
      "createNodes s,close s,close without passes s,passes of close,ns/expression\n");
  std::vector<bench::Family> families = bench::families();
  families.push_back({"signals", buildSignals});
  for (const bench::Family& family : families) {
    for (int n = 4000; n <= largest; n *= 10) measure(family, n);
  }
  return 0;
}
