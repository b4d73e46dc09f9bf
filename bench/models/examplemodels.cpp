#include "examplemodels.h"

#include <ombrix/ombrix.h>

#include <cstdlib>
#include <map>
#include <stdexcept>
#include <vector>

#include "exampleprogram.h"

// The main function of each example has the name of the example in front. The list is written by
// CMake from that of the examples themselves.
#define OMBRIX_MODEL_EXAMPLE(name) int name##Main(int argc, char** argv);
#include "exampleslist.inc"
#undef OMBRIX_MODEL_EXAMPLE

namespace bench {

namespace {

using ExampleMain = int (*)(int argc, char** argv);

ExampleMain findExample(const std::string& name) {
  static const std::map<std::string, ExampleMain> kExamples = {
#define OMBRIX_MODEL_EXAMPLE(name) {#name, name##Main},
#include "exampleslist.inc"
#undef OMBRIX_MODEL_EXAMPLE
  };
  const auto example = kExamples.find(name);
  if (example == kExamples.end()) throw std::runtime_error("there is no example " + name);
  return example->second;
}

int runMain(const std::string& example, std::vector<std::string> words) {
  words.insert(words.begin(), example);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  return findExample(example)(static_cast<int>(words.size()), arguments.data());
}

/// Thrown in the place of the search: it leaves the example, which reports nothing.
struct Saved {};

}  // namespace

int saveExample(const std::string& example, const std::string& instance,
                const std::string& environment) {
  examples::replaceSearch([&](ombrix::Ombrix& solver, int) {
    solver.saveEnvironment(environment);
    throw Saved();
  });
  try {
    return runMain(example, {instance});
  } catch (const Saved&) {
    return EXIT_SUCCESS;
  }
}

int solveExample(const std::string& example, const std::string& instance,
                 const SearchOptions& options, const std::string& solutionFile) {
  examples::replaceSearch([&](ombrix::Ombrix& solver, int seconds) {
    solver.getParam()->setSeed(options.seed);
    solver.getParam()->setNbThreads(options.threads);
    if (solver.getNbPhases() == 0) solver.createPhase();
    solver.getPhase(0)->setTimeLimit(seconds);
    solver.solve();
  });
  return runMain(example,
                 {instance, std::to_string(options.seconds), options.bestKnown, solutionFile});
}

}  // namespace bench
