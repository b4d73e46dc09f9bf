// Builds the model of a published instance and saves it as an environment, for
// the program ombrix.
//
// usage: bench_models FAMILY INSTANCE ENVIRONMENT

#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "examplemodels.h"
#include "models.h"

namespace {

const std::map<std::string, bench::Build>& families() {
  static const std::map<std::string, bench::Build> kFamilies = {
      {"gap", bench::buildGap},         {"sscfl", bench::buildSscfl},
      {"pmed", bench::buildPmed},       {"mip01", bench::buildMip01},
      {"clique", bench::buildClique},   {"maxcut", bench::buildMaxcut},
      {"qubo", bench::buildQubo},       {"qkp", bench::buildQkp},
      {"maxsat", bench::buildMaxsat},   {"steelmill", bench::buildSteelmill},
      {"golfers", bench::buildGolfers}, {"nurse", bench::buildNurse},
  };
  return kFamilies;
}

/// What gives the closed model of a family a start, where there is one.
void setStart(const std::string& family, ombrix::OXModel& model, const std::string& instance) {
  if (family == "sscfl") bench::startSscfl(model, instance);
}

struct Settings {
  int annealingLevel = 1;
  std::vector<std::pair<std::string, int>> advanced;
};

/// What did best in searches of a few seconds on two to four instances of a family. The example
/// programs set their own.
const Settings& settingsOf(const std::string& family) {
  static const std::map<std::string, Settings> kSettings = {
      {"gap", {3, {{"moveSwapEnabled", 0}}}},
      {"sscfl", {9, {}}},
      {"mip01", {9, {}}},
      {"nurse", {3, {}}},
      {"steelmill", {3, {}}},
      {"maxcut", {9, {}}},
  };
  static const Settings kDefault;
  const auto found = kSettings.find(family);
  return found == kSettings.end() ? kDefault : found->second;
}

/// The example program that models a family.
const std::map<std::string, std::string>& exampleFamilies() {
  static const std::map<std::string, std::string> kFamilies = {
      {"mkp", "knapsack"},          {"scp", "setcovering"},         {"scp_rail", "setcovering"},
      {"scp_sts", "setcovering"},   {"qap", "quadraticassignment"}, {"coloring", "graphcolouring"},
      {"ufl", "facilitylocation"},  {"tsp", "travellingsalesman"},  {"carseq", "carsequencing"},
      {"binpacking", "binpacking"},
  };
  return kFamilies;
}

int save(const std::string& family, const std::string& instance, const std::string& environment) {
  const auto example = exampleFamilies().find(family);
  if (example != exampleFamilies().end()) {
    return bench::saveExample(example->second, instance, environment);
  }
  const auto build = families().find(family);
  if (build == families().end()) {
    std::cerr << "there is no model of the family " << family << '\n';
    return EXIT_FAILURE;
  }
  ombrix::Ombrix solver;
  build->second(*solver.getModel(), instance);
  solver.getModel()->close();
  setStart(family, *solver.getModel(), instance);
  const Settings& settings = settingsOf(family);
  solver.getParam()->setAnnealingLevel(settings.annealingLevel);
  for (const auto& [key, value] : settings.advanced) {
    solver.getParam()->setAdvancedParam(key, value);
  }
  solver.saveEnvironment(environment);
  std::cout << solver.getModel()->toString();
  return EXIT_SUCCESS;
}

int solve(const std::string& family, const std::string& instance,
          const bench::SearchOptions& options, const std::string& solutionFile) {
  const auto example = exampleFamilies().find(family);
  if (example == exampleFamilies().end()) {
    throw std::runtime_error("there is no example of the family " + family);
  }
  return bench::solveExample(example->second, instance, options, solutionFile);
}

int run(const std::vector<std::string>& words) {
  if (words.size() == 3) return save(words[0], words[1], words[2]);
  if ((words.size() == 7 || words.size() == 8) && words[0] == "solve") {
    const bench::SearchOptions options{std::stoi(words[3]), std::stoi(words[4]),
                                       std::stoi(words[5]), words.size() == 8 ? words[7] : "-"};
    return solve(words[1], words[2], options, words[6]);
  }
  std::cerr << "usage: bench_models FAMILY INSTANCE ENVIRONMENT\n"
               "       bench_models solve FAMILY INSTANCE SECONDS SEED THREADS SOLUTION "
               "[BEST_KNOWN]\n";
  return EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const ombrix::OXException& failure) {
    std::cerr << failure.getExplanation() << '\n';
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
  }
  return EXIT_FAILURE;
}
