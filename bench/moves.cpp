// How often does each kind of move succeed, and what does an attempt cost? Solves models that the
// kinds are made for, one thread, and prints for every family one line per move: what became of it
// in the search, and then, from the state where the search stopped, how often it builds a candidate
// at all, how often that one keeps all constraints, and the nanoseconds of an attempt that is
// evaluated and refused.

#include <ombrix/ombrix.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "builder/solverrecord.h"
#include "builder/worker.h"
#include "draws.h"

namespace {

using namespace ombrix;
using bench::Draws;
using Clock = std::chrono::steady_clock;
using Expressions = std::vector<OXExpression*>;

/// A model and the decisions at 1 from which its search starts.
class Instance {
public:
  explicit Instance(OXModel& target)
      : model(target), cost(model.createExpression(OXOperator::Sum)) {}

  Expressions decisions(int count) {
    Expressions created;
    for (int i = 0; i < count; ++i) created.push_back(model.createExpression(OXOperator::Bool));
    return created;
  }
  OXExpression* sum(const Expressions& terms) {
    OXExpression* total = model.createExpression(OXOperator::Sum);
    for (OXExpression* term : terms) total->addOperand(term);
    return total;
  }
  OXExpression* weighted(int weight, OXExpression* x) {
    return model.createExpression(OXOperator::Prod, model.createConstant(weight), x);
  }
  void exactlyOne(const Expressions& terms) {
    model.addConstraint(
        model.createExpression(OXOperator::Eq, sum(terms), model.createConstant(1)));
  }
  void atMost(OXExpression* load, int limit) {
    model.addConstraint(model.createExpression(OXOperator::Leq, load, model.createConstant(limit)));
  }
  void pay(int weight, OXExpression* x) { cost->addOperand(weighted(weight, x)); }

  OXModel& model;
  OXExpression* cost;
  Expressions start;
};

/// A permutation with a cost for each place and for each pair of neighbours of like items.
void buildAssignment(Instance& instance, Draws& draws) {
  constexpr int n = 25;
  const Expressions x = instance.decisions(n * n);
  const auto at = [&](int i, int j) { return x[static_cast<std::size_t>(i * n + j)]; };
  for (int i = 0; i < n; ++i) {
    Expressions row;
    Expressions column;
    for (int j = 0; j < n; ++j) {
      row.push_back(at(i, j));
      column.push_back(at(j, i));
      instance.pay(1 + draws.below(100), at(i, j));
    }
    instance.exactlyOne(row);
    instance.exactlyOne(column);
    instance.start.push_back(at(i, i));
  }
  for (int k = 0; k < 2000; ++k) {
    // Each draw in a statement of its own: the order of arguments differs between compilers.
    OXExpression* one = draws.of(x);
    OXExpression* other = draws.of(x);
    const int cost = 1 + draws.below(50);
    instance.pay(cost, instance.model.createExpression(OXOperator::And, one, other));
  }
}

/// Elements that are each covered by exactly one column of two to five elements; the columns of the
/// start are single ones, dear.
void buildPartition(Instance& instance, Draws& draws) {
  constexpr int nbElements = 60;
  std::vector<Expressions> covers(nbElements);
  const auto addColumn = [&](const std::vector<int>& elements, int cost) {
    OXExpression* column = instance.decisions(1).front();
    for (const int element : elements) covers[static_cast<std::size_t>(element)].push_back(column);
    instance.pay(cost, column);
    return column;
  };
  for (int i = 0; i < nbElements; ++i) instance.start.push_back(addColumn({i}, 60));
  for (int k = 0; k < 600; ++k) {
    std::vector<int> elements;
    int element = draws.below(nbElements);
    for (int size = 2 + draws.below(4); size > 0 && element < nbElements; --size) {
      elements.push_back(element);
      element += 1 + draws.below(6);
    }
    addColumn(elements, 30 + draws.below(60));
  }
  for (const Expressions& cover : covers) instance.exactlyOne(cover);
}

/// Items in bins that are nearly full, with a cost for each place.
void buildBins(Instance& instance, Draws& draws) {
  constexpr int nbItems = 60;
  constexpr int nbBins = 10;
  constexpr int capacity = 210;
  std::vector<Expressions> loads(nbBins);
  std::vector<int> room(nbBins, capacity);
  for (int i = 0; i < nbItems; ++i) {
    const Expressions x = instance.decisions(nbBins);
    const int size = 10 + draws.below(45);
    instance.exactlyOne(x);
    std::size_t widest = 0;
    for (std::size_t bin = 0; bin < nbBins; ++bin) {
      loads[bin].push_back(instance.weighted(size, x[bin]));
      instance.pay(1 + draws.below(100), x[bin]);
      if (room[bin] > room[widest]) widest = bin;
    }
    room[widest] -= size;
    instance.start.push_back(x[widest]);
  }
  for (const Expressions& load : loads) instance.atMost(instance.sum(load), capacity);
}

/// Colours of the vertices of a graph, a conflict being forbidden: changes propagate in chains.
void buildColouring(Instance& instance, Draws& draws) {
  constexpr int nbVertices = 80;
  constexpr int nbColours = 9;
  std::vector<Expressions> x;
  for (int v = 0; v < nbVertices; ++v) {
    x.push_back(instance.decisions(nbColours));
    instance.exactlyOne(x.back());
    for (OXExpression* choice : x.back()) instance.pay(1 + draws.below(100), choice);
  }
  for (int edge = 0; edge < 5 * nbVertices; ++edge) {
    const auto u = static_cast<std::size_t>(draws.below(nbVertices));
    const auto v = static_cast<std::size_t>(draws.below(nbVertices));
    if (u == v) continue;
    for (std::size_t c = 0; c < nbColours; ++c)
      instance.atMost(instance.sum({x[u][c], x[v][c]}), 1);
  }
}

struct Family {
  const char* name;
  void (*build)(Instance&, Draws&);
};
constexpr Family kFamilies[] = {{"assignment", buildAssignment},
                                {"partition", buildPartition},
                                {"bins", buildBins},
                                {"colouring", buildColouring}};

struct Attempts {
  double built = 0;
  double feasible = 0;
  double nanoseconds = 0;
};

/// Attempts of one move from the present state, all refused.
Attempts attempt(Move& move, int count) {
  Attempts result;
  const auto begin = Clock::now();
  for (int i = 0; i < count; ++i) {
    const bool isBuilt = move.apply();
    if (isBuilt) {
      ++result.built;
      if (move.evaluate(0) && !move.isInfeasibilityWorse()) {
        ++result.feasible;
        move.evaluateAll();
      }
    }
    move.finish(isBuilt ? MoveStatus::Rejected : MoveStatus::Infeasible);
  }
  result.nanoseconds = std::chrono::duration<double, std::nano>(Clock::now() - begin).count();
  return result;
}

double percent(double part, double whole) {
  return whole > 0 ? 100.0 * part / whole : 0.0;
}

void printMove(const Family& family, Move& move, int nbAttempts) {
  const double attempted = move.nbAttempted;
  std::printf("%-10s %-16s %3u %8u %7.2f %7.2f %7.2f %7u", family.name, move.name.c_str(),
              move.weight, move.nbAttempted, percent(move.nbInfeasibles, attempted),
              percent(move.nbRejected, attempted), percent(move.nbAccepted, attempted),
              move.nbImprovements);
  const Attempts alone = attempt(move, nbAttempts);
  std::printf(" %7.2f %7.2f %9.0f\n", percent(alone.built, nbAttempts),
              percent(alone.feasible, nbAttempts), alone.nanoseconds / nbAttempts);
}

void measure(const Family& family, int nbIterations, int nbAttempts) {
  Ombrix solver;
  Draws draws(1);
  Instance instance(*solver.getModel());
  family.build(instance, draws);
  solver.getModel()->addObjective(instance.cost, OXObjectiveDirection::Minimize);
  solver.getModel()->close();
  for (OXExpression* decision : instance.start) solver.getSolution()->setIntValue(decision, 1);
  solver.getParam()->setNbThreads(1);
  solver.getParam()->setVerbosity(0);
  solver.createPhase()->setIterationLimit(nbIterations);
  solver.solve();
  Worker& worker = *SolverRecord::workers(solver).front();
  std::printf("# %s: cost %lld, %lld constraints violated\n", family.name,
              static_cast<long long>(worker.heuristic->bestSolution.objectiveValues[0].intValue),
              static_cast<long long>(worker.dag->propagation.infeasibility.nbViolated));
  for (const auto& move : worker.heuristic->movePool.moves) printMove(family, *move, nbAttempts);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int nbIterations = argc > 1 ? std::atoi(argv[1]) : 500000;
  const int nbAttempts = argc > 2 ? std::atoi(argv[2]) : 5000;
  std::printf("%-10s %-16s %3s %8s %7s %7s %7s %7s %7s %7s %9s\n", "family", "move", "w",
              "attempts", "infeas%", "reject%", "accept%", "improve", "built%", "sound%", "ns");
  for (const Family& family : kFamilies) measure(family, nbIterations, nbAttempts);
  return 0;
}
