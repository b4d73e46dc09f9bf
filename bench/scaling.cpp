// How do time and memory grow with the model? Prints one CSV line per family, size and set of
// moves: building and closing, heap after close and one worker, attempted moves per second with one
// thread and with two.

#include <malloc.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "sparsemodels.h"

namespace {

using ombrix::Ombrix;
using ombrix::OXParam;
using ombrix::OXPhase;
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

/// Attempted moves per second of wall clock, over an iteration limit per thread.
double movesPerSecond(Ombrix& solver, int nbThreads, long long nbIterations) {
  solver.getParam()->setNbThreads(nbThreads);
  solver.getPhase(0)->setIterationLimit(nbIterations);
  // A first short search builds the workers, so that only the search itself is timed.
  solver.solve();
  const auto start = Clock::now();
  solver.solve();
  const double seconds = secondsSince(start);
  return static_cast<double>(solver.getStatistics()->getNbMoves()) / seconds;
}

void measure(const ombrix::bench::Family& family, int nbDecisions, Pool pool,
             long long nbIterations) {
  const double heapBefore = heapBytes();
  Ombrix solver;
  auto start = Clock::now();
  family.build(*solver.getModel(), nbDecisions, 1);
  const double buildSeconds = secondsSince(start);
  // What the search needs for the advanced moves is part of closing only when they are on.
  if (pool == Pool::Flips) solver.getParam()->setAdvancedParam("advancedMovesEnabled", 0);
  start = Clock::now();
  solver.getModel()->close();
  const double closeSeconds = secondsSince(start);
  configure(*solver.getParam(), pool);
  const double nbExpressions = solver.getModel()->getNbExpressions();
  const double nbOperands = solver.getModel()->getNbOperands();
  OXPhase* phase = solver.createPhase();
  phase->setIterationLimit(1);
  solver.getParam()->setNbThreads(1);
  solver.solve();
  const double bytes = heapBytes() - heapBefore;
  const double one = movesPerSecond(solver, 1, nbIterations);
  const double two = movesPerSecond(solver, 2, nbIterations);
  std::printf("%s,%d,%s,%.0f,%.0f,%.3f,%.3f,%.0f,%.1f,%.0f,%.0f,%.2f\n", family.name.c_str(),
              nbDecisions, pool == Pool::Flips ? "flips" : "default", nbExpressions, nbOperands,
              buildSeconds, closeSeconds, nbExpressions / (buildSeconds + closeSeconds),
              (bytes - 24 * nbOperands) / nbExpressions, one, two, two / one);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int largest = argc > 1 ? std::atoi(argv[1]) : 1000000;
  const long long nbIterations = argc > 2 ? std::atoll(argv[2]) : 2000000;
  std::printf(
      "family,decisions,moves,expressions,operands,build s,close s,expressions/s,"
      "bytes/expression less 24/operand,moves/s 1 thread,moves/s 2 threads,ratio\n");
  for (const auto& family : ombrix::bench::families()) {
    for (int n = 1000; n <= largest; n *= 10) {
      measure(family, n, Pool::Flips, nbIterations);
      measure(family, n, Pool::Default, nbIterations);
    }
  }
  return 0;
}
