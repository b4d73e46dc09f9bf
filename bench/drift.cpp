// How far do the doubles of a search drift from what a fresh computation gives? Walks at random
// over one graph with every node type and every way to hold a set of operands, each move writing
// one to three decisions and accepted, and compares with a fresh graph at intervals. Prints one CSV
// line per interval. The spread is the number of decades over which the weights lie: the wider, the
// more digits a change of a large term costs the small ones.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "driftgraph.h"

namespace {

using namespace ombrix;
using Clock = std::chrono::steady_clock;

void walk(double spread, int nbMoves) {
  constexpr int kNbIntervals = 10;
  bench::DriftGraph graph(1, {8, 16, 32, 64, 128, 256, 512, 1024, 4000, 65536}, spread);
  Dag dag(graph.fields);
  dag.propagation.activeLevel = 1;
  double seconds = 0.0;
  for (int interval = 1; interval <= kNbIntervals; ++interval) {
    const auto start = Clock::now();
    for (int i = 0; i < nbMoves / kNbIntervals; ++i) graph.move(dag);
    seconds += std::chrono::duration<double>(Clock::now() - start).count();
    dag.propagation.synchronize(dag);
    const bench::Drift drift = measureDrift(dag, graph);
    std::printf("%.0f,%u,%d,%.2f,%d,%.3g,%.3g,%d\n", spread, graph.fields.nbNodes,
                interval * (nbMoves / kNbIntervals), seconds, drift.nbInconsistent, drift.largest,
                drift.relative, drift.nbBeyond);
    std::fflush(stdout);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int nbMoves = argc > 1 ? std::atoi(argv[1]) : 1000000;
  std::printf(
      "decades,nodes,accepted moves,seconds,nodes that fail their check,largest drift,relative "
      "drift,values beyond tolerance\n");
  for (const double spread : {2.0, 6.0, 12.0}) walk(spread, nbMoves);
  return 0;
}
