// How far do the doubles of a search drift from what a fresh computation gives? Walks at random
// over one graph of double sums, products, extrema and functions, each move flipping one to three
// decisions and accepted, and compares with a fresh graph at intervals. Prints one CSV line per
// interval. The spread is the number of decades over which the weights lie: the wider, the more
// digits a change of a large term costs the small ones.

#include <ombrix/ombrix.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "builder/dagbuilder.h"
#include "builder/modelrecord.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/node.h"
#include "solver/kernel/oxvalue.h"

namespace {

using namespace ombrix;
using Clock = std::chrono::steady_clock;

/// A random model of doubles, one objective that adds up everything.
class DoubleModel {
public:
  DoubleModel(OXModel& target, int nbDecisions, double decades)
      : model(target), spread(decades), random(1) {
    for (int i = 0; i < nbDecisions; ++i) {
      decisions.push_back(model.createExpression(OXOperator::Bool));
    }
    OXExpression* total = model.createExpression(OXOperator::Sum);
    for (int i = 0; i < nbDecisions; ++i) total->addOperand(expression(i % 6));
    model.addObjective(total, OXObjectiveDirection::Minimize);
  }

private:
  OXExpression* expression(int kind) {
    switch (kind) {
      case 0:
        return weightedSum(20);
      case 1:
        return product();
      case 2:
        return extremum(OXOperator::Max);
      case 3:
        return extremum(OXOperator::Min);
      case 4:
        return model.createExpression(OXOperator::Cos, weightedSum(5));
      default:
        return model.createExpression(OXOperator::Sqrt,
                                      model.createExpression(OXOperator::Abs, weightedSum(10)));
    }
  }

  double unit() { return static_cast<double>(random()) / 4294967296.0; }
  double weight() {
    const double magnitude = std::pow(10.0, spread * (unit() - 0.5));
    return random() % 2 == 0 ? magnitude : -magnitude;
  }
  OXExpression* decision() { return decisions[random() % decisions.size()]; }
  OXExpression* weighted(double factor, OXExpression* x) {
    return model.createExpression(OXOperator::Prod, model.createConstant(factor), x);
  }
  OXExpression* weightedSum(int nbTerms) {
    OXExpression* sum = model.createExpression(OXOperator::Sum);
    for (int i = 0; i < nbTerms; ++i) sum->addOperand(weighted(weight(), decision()));
    return sum;
  }
  /// Factors next to 1, which a product divides out and multiplies in, and one that can be 0.
  OXExpression* product() {
    OXExpression* result = model.createExpression(OXOperator::Prod);
    for (int i = 0; i < 12; ++i) {
      OXExpression* factor = model.createExpression(OXOperator::Sum);
      factor->addOperand(1.0);
      factor->addOperand(weighted(unit(), decision()));
      result->addOperand(factor);
    }
    result->addOperand(weightedSum(1));
    return result;
  }
  OXExpression* extremum(OXOperator op) {
    OXExpression* result = model.createExpression(op);
    for (int i = 0; i < 8; ++i) result->addOperand(weightedSum(3));
    return result;
  }

  OXModel& model;
  double spread;
  std::mt19937 random;
  std::vector<OXExpression*> decisions;
};

struct Drift {
  double largest = 0.0;   ///< absolute
  double relative = 0.0;  ///< to the sum of both magnitudes, among values above 1
  int nbBeyond = 0;       ///< values that are no longer equal within the engine's tolerance
};

/// The same decisions in a graph in which every node was computed from nothing.
void recompute(const Dag& dag, Dag& fresh) {
  const DagFixedFields& fields = *dag.fixedFields;
  for (std::uint32_t i = 0; i < fields.firstInnerNode; ++i) {
    const std::uint32_t decision = fields.nodesByGroup[i];
    fresh.values[decision] = dag.values[decision];
    fresh.tValues[decision] = dag.values[decision];
  }
  for (std::size_t rank = 1; rank < fields.nodesByRank.size(); ++rank) {
    for (const std::uint32_t id : fields.nodesByRank[rank]) fresh.nodes[id]->init(fresh, id);
  }
}

Drift compare(const Dag& dag, const Dag& fresh) {
  Drift drift;
  for (std::uint32_t id = 0; id < dag.fixedFields->nbNodes; ++id) {
    if (dag.fixedFields->domains[id] != kDoubleDomain) continue;
    const double kept = dag.values[id].doubleValue;
    const double exact = fresh.values[id].doubleValue;
    const double difference = std::fabs(kept - exact);
    const double magnitude = std::fabs(kept) + std::fabs(exact);
    drift.largest = std::max(drift.largest, difference);
    if (magnitude > 1.0) drift.relative = std::max(drift.relative, difference / magnitude);
    if (!approxEqual(kept, exact)) ++drift.nbBeyond;
  }
  return drift;
}

/// Whether every node is what its operands make it, by the engine's own check.
bool isConsistent(const Dag& dag) {
  try {
    dag.check();
    return true;
  } catch (const OXException&) {
    return false;
  }
}

void flipSome(Dag& dag, std::mt19937& random) {
  for (auto n = 1 + random() % 3; n > 0; --n) {
    const std::uint32_t decision =
        dag.fixedFields->nodesByGroup[random() % dag.fixedFields->firstInnerNode];
    dag.propagation.setValue(dag, decision, std::int64_t{1} - dag.values[decision].intValue);
  }
  if (dag.propagation.evaluateConstraints(dag)) {
    dag.propagation.evaluateLevels(dag, dag.propagation.activeLevel);
  }
  dag.propagation.accept(dag);
}

void walk(double spread, int nbMoves) {
  constexpr int kNbIntervals = 10;
  Ombrix solver;
  OXModel& model = *solver.getModel();
  const DoubleModel built(model, 240, spread);
  model.close();
  const DagFixedFields& fields = ModelRecord::dagBuilder(model)->getFixedFields();
  Dag dag(fields);
  dag.propagation.activeLevel = 1;
  std::mt19937 random(7);
  double seconds = 0.0;
  for (int interval = 1; interval <= kNbIntervals; ++interval) {
    const auto start = Clock::now();
    for (int i = 0; i < nbMoves / kNbIntervals; ++i) flipSome(dag, random);
    seconds += std::chrono::duration<double>(Clock::now() - start).count();
    Dag fresh(fields);
    recompute(dag, fresh);
    const Drift drift = compare(dag, fresh);
    std::printf("%.0f,%u,%d,%.2f,%s,%.3g,%.3g,%d\n", spread, fields.nbNodes,
                interval * (nbMoves / kNbIntervals), seconds, isConsistent(dag) ? "yes" : "no",
                drift.largest, drift.relative, drift.nbBeyond);
    std::fflush(stdout);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int nbMoves = argc > 1 ? std::atoi(argv[1]) : 1000000;
  std::printf(
      "decades,nodes,accepted moves,seconds,consistent,largest drift,relative drift of values "
      "above 1,values beyond tolerance\n");
  for (const double spread : {2.0, 6.0, 12.0}) walk(spread, nbMoves);
  return 0;
}
