#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "api/ombrix.h"
#include "support/environments.h"
#include "support/solvermodels.h"

// usage: fuzz_seeds FOLDER
// Writes the seeds of all fuzzers, one folder for each, with the writers of the library itself.
namespace {

namespace fs = std::filesystem;

std::string bytesOf(const fs::path& path) {
  std::ifstream input(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

void writeBytes(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

void saveAll(const ombrix::Ombrix& solver, const fs::path& folder, const std::string& name) {
  fs::create_directories(folder / "environment");
  for (const std::string extension : {".oxm", ".oxb"}) {
    const fs::path plain = folder / "environment" / (name + extension);
    solver.saveEnvironment(plain.string());
    writeBytes(folder / "gzip" / (name + extension + ".whole"), '\0' + bytesOf(plain));
    const fs::path packed = folder / "gzip" / (name + extension + ".gz");
    solver.saveEnvironment(packed.string());
    writeBytes(packed, '\1' + bytesOf(packed));
  }
}

void saveRandomEnvironments(const fs::path& folder) {
  for (unsigned seed = 0; seed < 8; ++seed) {
    ombrix::Ombrix solver;
    const ombrix::test::RandomEnvironment random(solver, seed, seed % 2 == 0);
    if (seed % 4 == 3) {
      saveAll(solver, folder, "open" + std::to_string(seed));
    } else {
      ombrix::test::closeAndSetUp(solver);
      saveAll(solver, folder, "closed" + std::to_string(seed));
    }
  }
}

void saveSmallModels(const fs::path& folder) {
  using namespace ombrix::test;
  const std::vector<void (*)(ombrix::OXModel&)> models = {
      [](ombrix::OXModel& model) { buildKnapsack(model, 4); },
      [](ombrix::OXModel& model) { buildCovering(model, 5); },
      [](ombrix::OXModel& model) { buildOddCycle(model); },
      [](ombrix::OXModel& model) { buildDivisionByZero(model, 3); }};
  for (std::size_t i = 0; i < models.size(); ++i) {
    ombrix::Ombrix solver;
    models[i](*solver.getModel());
    solver.getModel()->close();
    saveAll(solver, folder, "small" + std::to_string(i));
  }
}

void saveOpbModels(const fs::path& folder) {
  const std::vector<std::string> models = {
      "* #variable= 3 #constraint= 2\n* a comment\nmin: +3 x1 -2 x2 ~x3 ;\n"
      "+1 x1 +1 ~x2 >= 1 ;\n-5 x3 +2 x1 = -3;\n",
      "max: 1 x1;\n1 x1 + 2 x2 <= 9223372036854775807 ;\n", "+1 other_name[2] >= -1 ;\n",
      "min: ;\n"};
  for (std::size_t i = 0; i < models.size(); ++i) {
    writeBytes(folder / "opb" / (std::to_string(i) + ".opb"), models[i]);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: fuzz_seeds FOLDER\n";
    return 1;
  }
  const fs::path folder = argv[1];
  saveRandomEnvironments(folder);
  saveSmallModels(folder);
  saveOpbModels(folder);
  return 0;
}
