// How do time and memory grow with the model? Prints one CSV line per family, size and set of
// moves: building and closing, heap after close and one worker, attempted moves per second with one
// thread and with two. Arguments, each with a default: largest size, iterations of a search,
// searches per speed (the median counts), family, moves (flips or default), smallest size.

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "sparsemodels.h"

namespace {

using ombrix::Ombrix;
using ombrix::OXParam;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double heapBytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

/// Which moves the pool holds.
enum class Pool { Flips, Default };

void configure(OXParam& param, Pool pool) {
  param.setVerbosity(0);
  if (pool == Pool::Flips) {
    param.setAdvancedParam("basicMovesEnabled", 0);
    param.setAdvancedParam("advancedMovesEnabled", 0);
    param.setAdvancedParam("tspMovesEnabled", 0);
    param.setAdvancedParam("targetingLevel", 0);
  }
}

/// Builds and closes a model; tells the seconds of both.
struct ClosedModel {
  ClosedModel(const ombrix::bench::Family& family, int nbDecisions, Pool pool) {
    auto start = Clock::now();
    family.build(*solver.getModel(), nbDecisions, 1);
    buildSeconds = secondsSince(start);
    // What the search needs for the advanced moves is part of closing only when they are on.
    if (pool == Pool::Flips) solver.getParam()->setAdvancedParam("advancedMovesEnabled", 0);
    start = Clock::now();
    solver.getModel()->close();
    closeSeconds = secondsSince(start);
    configure(*solver.getParam(), pool);
    solver.createPhase();
  }

  /// A search of so many iterations on each thread.
  void solve(int nbThreads, long long nbIterations) {
    solver.getParam()->setNbThreads(nbThreads);
    solver.getPhase(0)->setIterationLimit(nbIterations);
    solver.solve();
  }

  Ombrix solver;
  double buildSeconds = 0.0;
  double closeSeconds = 0.0;
};

/// Attempted moves per second of wall clock. Every figure comes from a fresh solver, since the
/// speed of a search changes along its way; a first search of one iteration builds the workers and
/// makes the start feasible, so that only the loop is timed.
double movesPerSecond(const ombrix::bench::Family& family, int nbDecisions, Pool pool,
                      int nbThreads, long long nbIterations) {
  ClosedModel model(family, nbDecisions, pool);
  model.solve(nbThreads, 1);
  const auto start = Clock::now();
  model.solve(nbThreads, nbIterations);
  const double seconds = secondsSince(start);
  return static_cast<double>(model.solver.getStatistics()->getNbMoves()) / seconds;
}

/// How every speed is measured.
struct Runs {
  long long nbIterations;
  int nbRepeats;
};

struct Size {
  double nbExpressions;
  double nbOperands;
  double bytes;
};

/// The heap that a model takes when it is closed and one worker stands.
Size measureSize(const ombrix::bench::Family& family, int nbDecisions, Pool pool) {
  const double heapBefore = heapBytes();
  ClosedModel model(family, nbDecisions, pool);
  model.solve(1, 1);
  const double nbExpressions = model.solver.getModel()->getNbExpressions();
  const double nbOperands = model.solver.getModel()->getNbOperands();
  return {nbExpressions, nbOperands, heapBytes() - heapBefore};
}

/// The median of some searches.
double medianSpeed(const ombrix::bench::Family& family, int nbDecisions, Pool pool, int nbThreads,
                   const Runs& runs) {
  std::vector<double> speeds;
  for (int i = 0; i < runs.nbRepeats; ++i) {
    speeds.push_back(movesPerSecond(family, nbDecisions, pool, nbThreads, runs.nbIterations));
  }
  const auto middle = speeds.begin() + static_cast<std::ptrdiff_t>(speeds.size() / 2);
  std::nth_element(speeds.begin(), middle, speeds.end());
  return *middle;
}

void measure(const ombrix::bench::Family& family, int nbDecisions, Pool pool, const Runs& runs) {
  const Size size = measureSize(family, nbDecisions, pool);
  double buildSeconds = 0.0;
  double closeSeconds = 0.0;
  {
    const ClosedModel model(family, nbDecisions, pool);
    buildSeconds = model.buildSeconds;
    closeSeconds = model.closeSeconds;
  }
  const double one = medianSpeed(family, nbDecisions, pool, 1, runs);
  const double two = medianSpeed(family, nbDecisions, pool, 2, runs);
  std::printf("%s,%d,%s,%.0f,%.0f,%.3f,%.3f,%.0f,%.1f,%.0f,%.0f,%.2f\n", family.name.c_str(),
              nbDecisions, pool == Pool::Flips ? "flips" : "default", size.nbExpressions,
              size.nbOperands, buildSeconds, closeSeconds,
              size.nbExpressions / (buildSeconds + closeSeconds),
              (size.bytes - 24 * size.nbOperands) / size.nbExpressions, one, two, two / one);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int largest = argc > 1 ? std::atoi(argv[1]) : 1000000;
  const Runs runs{argc > 2 ? std::atoll(argv[2]) : 2000000, argc > 3 ? std::atoi(argv[3]) : 1};
  const std::string chosenFamily = argc > 4 ? argv[4] : "";
  const std::string chosenMoves = argc > 5 ? argv[5] : "";
  const int smallest = argc > 6 ? std::atoi(argv[6]) : 1000;
  std::printf(
      "family,decisions,moves,expressions,operands,build s,close s,expressions/s,"
      "bytes/expression less 24/operand,moves/s 1 thread,moves/s 2 threads,ratio\n");
  for (const auto& family : ombrix::bench::families()) {
    if (!chosenFamily.empty() && chosenFamily != family.name) continue;
    for (int n = smallest; n <= largest; n *= 10) {
      if (chosenMoves != "default") measure(family, n, Pool::Flips, runs);
      if (chosenMoves != "flips") measure(family, n, Pool::Default, runs);
    }
  }
  return 0;
}
