#ifndef OMBRIX_BENCH_MODELS_EXAMPLEMODELS_H
#define OMBRIX_BENCH_MODELS_EXAMPLEMODELS_H

#include <string>

namespace bench {

/// Runs an example program, which is linked into this one, up to its search, and saves the
/// environment as it is then: the closed model, and the decisions from which the program would
/// start. Returns the exit status; an unknown name is a std::runtime_error.
int saveExample(const std::string& example, const std::string& instance,
                const std::string& environment);

struct SearchOptions {
  int seconds = 0;
  int seed = 0;
  int threads = 1;
  std::string bestKnown = "-";  ///< for the program to print, and maybe to stop at; "-" for none
};

/// Runs an example program whole, with this seed and these threads in each of its searches. The
/// program prints and writes what it always does.
int solveExample(const std::string& example, const std::string& instance,
                 const SearchOptions& options, const std::string& solutionFile);

}  // namespace bench

#endif
