#ifndef OMBRIX_CLI_COMMANDLINE_H
#define OMBRIX_CLI_COMMANDLINE_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ombrix::cli {

/// The limits of one phase; what is not given keeps the default of the engine.
struct PhaseOptions {
  std::optional<int> time;
  std::optional<long long> iterations;
  std::optional<int> objective;
  /// The option that gives the objective.
  std::string objectiveOption = "--objective";
};

enum class OutputForm { Plain, Pb };

/// What was asked for. Options that were not given are empty, so that the engine's own defaults
/// apply and stand in one place.
struct CommandLine {
  enum class Command { Solve, Info, Convert, Show, ShowText };

  Command command = Command::ShowText;
  /// For ShowText: the help or the version.
  std::string text;
  std::string model;
  std::vector<PhaseOptions> phases;
  std::optional<int> threads;
  std::optional<int> seed;
  std::optional<int> annealingLevel;
  std::optional<int> verbosity;
  std::optional<int> displayEvery;
  std::vector<std::pair<std::string, int>> advancedParams;
  /// Objectives by their index, and the number at which each counts as reached, as it was written:
  /// whether it must be an integer depends on the objective.
  std::vector<std::pair<int, std::string>> objectiveBounds;
  std::optional<std::string> solutionFile;
  /// Where solve keeps the environment with its solution.
  std::optional<std::string> environmentFile;
  /// Where solve tells how the search went.
  std::optional<std::string> statisticsFile;
  /// The file that convert writes.
  std::string target;
  /// The most items of a list that show prints.
  std::optional<long long> limit;
  OutputForm output = OutputForm::Plain;

  /// Whether a limit or an objective was given, in place of the phases of an environment file.
  bool hasPhases() const;
};

/// Raises an InputError for a command line that is not understood.
CommandLine parseCommandLine(int argc, const char* const* argv);

}  // namespace ombrix::cli

#endif
