// Builds the model of a published instance and saves it as an environment, for the program ombrix.
//
// usage: bench_models FAMILY INSTANCE ENVIRONMENT

#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <string>

#include "models.h"

namespace {

const std::map<std::string, bench::Build>& families() {
  static const std::map<std::string, bench::Build> kFamilies = {
      {"gap", bench::buildGap},         {"sscfl", bench::buildSscfl},
      {"pmed", bench::buildPmed},       {"mip01", bench::buildMip01},
      {"clique", bench::buildClique},   {"maxcut", bench::buildMaxcut},
      {"qubo", bench::buildQubo},       {"qkp", bench::buildQkp},
      {"maxsat", bench::buildMaxsat},   {"steelmill", bench::buildSteelmill},
      {"golfers", bench::buildGolfers},
  };
  return kFamilies;
}

int run(const std::string& family, const std::string& instance, const std::string& environment) {
  const auto build = families().find(family);
  if (build == families().end()) {
    std::cerr << "there is no model of the family " << family << '\n';
    return EXIT_FAILURE;
  }
  ombrix::Ombrix solver;
  build->second(*solver.getModel(), instance);
  solver.getModel()->close();
  solver.saveEnvironment(environment);
  std::cout << solver.getModel()->toString();
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: bench_models FAMILY INSTANCE ENVIRONMENT\n";
    return EXIT_FAILURE;
  }
  try {
    return run(argv[1], argv[2], argv[3]);
  } catch (const ombrix::OXException& failure) {
    std::cerr << failure.getExplanation() << '\n';
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
  }
  return EXIT_FAILURE;
}
