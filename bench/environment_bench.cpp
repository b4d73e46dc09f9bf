// How many expressions a second go into an environment file and come back, in each of its forms,
// and how much memory does reading take, compared with the model itself?

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "api/ombrix.h"
#include "builder/modelreader.h"
#include "builder/modelwriter.h"
#include "builder/parallelizer.h"
#include "sparsemodels.h"

namespace {

using namespace ombrix;

constexpr int kNbDecisions = 400000;  // some 10^6 expressions

/// A file that disappears at the end.
class ScratchFile {
public:
  explicit ScratchFile(const std::string& extension)
      : filePath((std::filesystem::temp_directory_path() /
                  ("ombrix-bench-" + std::to_string(getpid()) + extension))
                     .string()) {}
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(filePath, ignored);
  }
  const std::string& path() const { return filePath; }

private:
  std::string filePath;
};

const char* extensionOf(const benchmark::State& state) {
  static constexpr const char* kExtensions[] = {".oxm", ".oxb", ".oxm.gz", ".oxb.gz"};
  return kExtensions[state.range(0)];
}

/// A line "NAME:   N kB" of the status of the process, in bytes; 0 where there is none.
double statusBytes(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word != name + ":") continue;
    double kilobytes = 0;
    status >> kilobytes;
    return kilobytes * 1024;
  }
  return 0;
}

/// The peak starts anew at what is resident now, which is returned.
double restartPeak() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
  return statusBytes("VmRSS");
}

std::unique_ptr<Ombrix> buildOpenModel() {
  auto solver = std::make_unique<Ombrix>();
  bench::buildSetCovering(*solver->getModel(), kNbDecisions, 1);
  return solver;
}

void report(benchmark::State& state, double nbExpressions, const std::string& path) {
  state.SetLabel(extensionOf(state));
  state.counters["expressions/s"] = benchmark::Counter(
      nbExpressions * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
}

void writeEnvironment(benchmark::State& state) {
  const auto solver = buildOpenModel();
  const ScratchFile file(extensionOf(state));
  for (auto _ : state) ModelWriter(*solver, file.path()).write();
  report(state, solver->getModel()->getNbExpressions(), file.path());
}

/// Without the closing, which is another matter.
void readEnvironment(benchmark::State& state) {
  const ScratchFile file(extensionOf(state));
  const double emptyBefore = restartPeak();
  auto built = buildOpenModel();
  malloc_trim(0);
  const double modelBytes = statusBytes("VmRSS") - emptyBefore;
  const double nbExpressions = built->getModel()->getNbExpressions();
  ModelWriter(*built, file.path()).write();
  built.reset();

  double peak = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const double before = restartPeak();
    auto copy = std::make_unique<Ombrix>();
    state.ResumeTiming();
    ModelReader(*copy, file.path()).read();
    state.PauseTiming();
    peak = statusBytes("VmHWM") - before;
    copy.reset();
    state.ResumeTiming();
  }
  report(state, nbExpressions, file.path());
  state.counters["memory/model"] = peak / modelBytes;
}

BENCHMARK(writeEnvironment)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);
BENCHMARK(readEnvironment)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

}  // namespace
