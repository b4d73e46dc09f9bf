// What does the simplification of a model cost, against closing it as a whole? Prints one CSV line
// per family and size: the seconds of each pass and of close, what all passes take of close, and
// their time per expression, which stays the same as long as they are linear.

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

double closeSeconds(OXModel& model) {
  const auto start = Clock::now();
  model.close();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double closeSecondsWithoutPasses(const bench::Family& family, int nbDecisions) {
  Ombrix solver;
  family.build(*solver.getModel(), nbDecisions, 1);
  solver.getParam()->setAdvancedParam("preprocessingEnabled", 0);
  return closeSeconds(*solver.getModel());
}

void measure(const bench::Family& family, int nbDecisions) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  family.build(model, nbDecisions, 1);
  const double seconds = closeSeconds(model);
  double ofPasses = 0.0;
  std::printf("%s,%d", family.name.c_str(), model.getNbExpressions());
  for (const PassReport& report : ModelRecord::dagBuilder(model)->passReports()) {
    std::printf(",%.4f", report.seconds);
    if (std::string(report.name) != "createNodes") ofPasses += report.seconds;
  }
  std::printf(",%.4f,%.4f,%.1f%%,%.1f\n", seconds, closeSecondsWithoutPasses(family, nbDecisions),
              100.0 * ofPasses / seconds, 1.0e9 * ofPasses / model.getNbExpressions());
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
