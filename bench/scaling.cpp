// How do time and memory grow with the model? Prints one CSV line per family, size and set of
// moves: building and closing, heap after close and one worker, attempted moves per second with one
// thread, with two, and with two processes of one thread each, which tell what the machine itself
// gives to two at that moment. Arguments, each with a default: largest size, iterations of a
// search, searches per speed (the median counts), family, moves (flips or default), smallest size.

#include <malloc.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <thread>
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

/// What is searched, and how the speed is taken.
struct Search {
  const ombrix::bench::Family& family;
  int nbDecisions;
  Pool pool;
  long long nbIterations;
};

/// Attempted moves per second of wall clock. Every figure comes from a fresh solver, since the
/// speed of a search changes along its way; a first search of one iteration builds the workers and
/// makes the start feasible, so that only the loop is timed. `ready` is called between the two.
template <typename Ready>
double movesPerSecond(const Search& search, int nbThreads, Ready ready) {
  ClosedModel model(search.family, search.nbDecisions, search.pool);
  model.solve(nbThreads, 1);
  ready();
  const auto start = Clock::now();
  model.solve(nbThreads, search.nbIterations);
  const double seconds = secondsSince(start);
  return static_cast<double>(model.solver.getStatistics()->getNbMoves()) / seconds;
}

double movesPerSecond(const Search& search, int nbThreads) {
  return movesPerSecond(search, nbThreads, [] {});
}

[[noreturn]] void fail(const char* call) {
  std::fprintf(stderr, "bench_scaling: %s failed\n", call);
  std::exit(1);
}

/// What two processes that search at the same time tell each other.
struct Shared {
  std::atomic<int> nbReady = 0;
  std::atomic<double> childSpeed = 0.0;
};

/// Attempted moves per second of two processes of one thread each, until the slower one is done:
/// two threads of one search wait for each other too.
double movesPerSecondOfTwoProcesses(const Search& search) {
  void* memory =
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) fail("mmap");
  auto* shared = new (memory) Shared;
  const pid_t child = fork();
  if (child < 0) fail("fork");
  if (child == 0) prctl(PR_SET_PDEATHSIG, SIGKILL);
  const double speed = movesPerSecond(search, 1, [shared, child] {
    ++shared->nbReady;
    while (shared->nbReady < 2) {
      if (child > 0 && waitpid(child, nullptr, WNOHANG) != 0) fail("the second process");
      std::this_thread::yield();
    }
  });
  if (child == 0) {
    shared->childSpeed = speed;
    _exit(0);
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child || status != 0) fail("the second process");
  const double slower = std::min<double>(speed, shared->childSpeed);
  munmap(memory, sizeof(Shared));
  return 2.0 * slower;
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

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// Medians of some searches with one thread, two threads and two processes, taken in turn so that
/// a slower hour of the machine strikes all three.
struct Speeds {
  Speeds(const Search& search, int nbRepeats) {
    std::vector<double> speeds[3];
    for (int i = 0; i < nbRepeats; ++i) {
      speeds[0].push_back(movesPerSecond(search, 1));
      speeds[1].push_back(movesPerSecond(search, 2));
      speeds[2].push_back(movesPerSecondOfTwoProcesses(search));
    }
    oneThread = median(speeds[0]);
    twoThreads = median(speeds[1]);
    twoProcesses = median(speeds[2]);
  }

  double oneThread;
  double twoThreads;
  double twoProcesses;
};

void measure(const ombrix::bench::Family& family, int nbDecisions, Pool pool, const Runs& runs) {
  const Size size = measureSize(family, nbDecisions, pool);
  double buildSeconds = 0.0;
  double closeSeconds = 0.0;
  {
    const ClosedModel model(family, nbDecisions, pool);
    buildSeconds = model.buildSeconds;
    closeSeconds = model.closeSeconds;
  }
  const Speeds speeds({family, nbDecisions, pool, runs.nbIterations}, runs.nbRepeats);
  std::printf("%s,%d,%s,%.0f,%.0f,%.3f,%.3f,%.0f,%.1f,%.0f,%.0f,%.2f,%.0f,%.2f\n",
              family.name.c_str(), nbDecisions, pool == Pool::Flips ? "flips" : "default",
              size.nbExpressions, size.nbOperands, buildSeconds, closeSeconds,
              size.nbExpressions / (buildSeconds + closeSeconds),
              (size.bytes - 24 * size.nbOperands) / size.nbExpressions, speeds.oneThread,
              speeds.twoThreads, speeds.twoThreads / speeds.oneThread, speeds.twoProcesses,
              speeds.twoProcesses / speeds.oneThread);
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
      "bytes/expression less 24/operand,moves/s 1 thread,moves/s 2 threads,ratio of threads,"
      "moves/s 2 processes,ratio of processes\n");
  for (const auto& family : ombrix::bench::families()) {
    if (!chosenFamily.empty() && chosenFamily != family.name) continue;
    for (int n = smallest; n <= largest; n *= 10) {
      if (chosenMoves != "default") measure(family, n, Pool::Flips, runs);
      if (chosenMoves != "flips") measure(family, n, Pool::Default, runs);
    }
  }
  return 0;
}
