#include "cli/searchoptions.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "cli/inputerror.h"

namespace ombrix::cli {
namespace {

namespace fs = std::filesystem;

/// Whether one would replace the other; devices are written to one after the other.
bool isSameFile(const std::string& a, const std::string& b) {
  std::error_code ignored;
  const fs::file_status status = fs::status(a, ignored);
  if (fs::exists(status) && !fs::is_regular_file(status)) return false;
  return fs::weakly_canonical(fs::absolute(a, ignored), ignored) ==
         fs::weakly_canonical(fs::absolute(b, ignored), ignored);
}

template <typename Number>
Number boundFrom(const std::string& text, const std::string& expected) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  // An infinite bound is none, or one that every solution reaches.
  const bool isFinite = std::isfinite(static_cast<double>(number));
  if (result.ec == std::errc() && result.ptr == end && isFinite) return number;
  throw InputError("--bound: found \"" + text + "\", expected " + expected);
}

void setOptimizedObjective(const PhaseOptions& options, OXPhase& phase) {
  try {
    phase.setOptimizedObjective(*options.objective);
  } catch (const OXException& refusal) {
    throw InputError(options.objectiveOption + ": " + refusal.getExplanation());
  }
}

}  // namespace

void setObjectiveBounds(const CommandLine& line, Ombrix& solver) {
  const OXModel& model = *solver.getModel();
  OXParam& param = *solver.getParam();
  for (const auto& [index, text] : line.objectiveBounds) {
    if (index >= model.getNbObjectives()) {
      throw InputError("--bound: found objective " + std::to_string(index) +
                       ", expected an index from 0 to " +
                       std::to_string(model.getNbObjectives() - 1));
    }
    if (model.getObjective(index)->isDouble()) {
      param.setObjectiveBound(index, boundFrom<double>(text, "a finite number"));
    } else {
      param.setObjectiveBound(index, boundFrom<long long>(text, "an integer of 64 bits"));
    }
  }
}

void applyParameters(const CommandLine& line, Ombrix& solver) {
  OXParam& param = *solver.getParam();
  if (line.threads) param.setNbThreads(*line.threads);
  if (line.seed) param.setSeed(*line.seed);
  if (line.annealingLevel) param.setAnnealingLevel(*line.annealingLevel);
  if (line.displayEvery) param.setTimeBetweenDisplays(*line.displayEvery);
  if (line.verbosity) {
    param.setVerbosity(*line.verbosity);
  } else if (line.output == OutputForm::Pb) {
    param.setVerbosity(0);
  }
}

void requireDistinctFiles(const CommandLine& line) {
  struct Written {
    const char* option;
    const std::optional<std::string>& file;
  };
  const std::array<Written, 3> all{{{"--solution", line.solutionFile},
                                    {"--save", line.environmentFile},
                                    {"--stats", line.statisticsFile}}};
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (!all[i].file || !all[j].file || !isSameFile(*all[i].file, *all[j].file)) continue;
      throw InputError(std::string(all[i].option) + ": " + *all[i].file + " is the file of " +
                       all[j].option);
    }
  }
}

void createPhases(const CommandLine& line, Ombrix& solver) {
  for (const PhaseOptions& options : line.phases) {
    OXPhase& phase = *solver.createPhase();
    if (options.time) phase.setTimeLimit(*options.time);
    if (options.iterations) phase.setIterationLimit(*options.iterations);
    if (options.objective) setOptimizedObjective(options, phase);
  }
}

}  // namespace ombrix::cli
