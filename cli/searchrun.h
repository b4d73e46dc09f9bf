#ifndef OMBRIX_CLI_SEARCHRUN_H
#define OMBRIX_CLI_SEARCHRUN_H

#include <ombrix/ombrix.h>

#include <iosfwd>
#include <optional>

#include "cli/commandline.h"
#include "cli/environmentfile.h"
#include "cli/searchrecorder.h"
#include "cli/signalstopper.h"
#include "cli/solutionwriter.h"

namespace ombrix::cli {

/// What every run of the command that searches does, whatever the form of its file: it makes the
/// files to be written before the work begins, searches, and tells how the search ended. From the
/// search to the end of the run signals do not end the process, so that none of them, however late
/// or often it comes, loses what was found.
class SearchRun {
protected:
  explicit SearchRun(const CommandLine& asked) : line(asked) {}
  ~SearchRun() = default;

  void openFiles();
  void setAdvancedParams();
  /// Takes the status over. With a stream given, each improvement of the first objective is a line
  /// there at once.
  void search(std::ostream* improvementLines = nullptr);
  bool hasSolution() const;
  /// The line for people that tells the status.
  void printStatus() const;
  /// To be called last, since a place that cannot be written after all must not cost the solution;
  /// the standard output is complete then.
  void writeStatistics();
  int exitStatus() const;

  const CommandLine& line;
  Ombrix solver;
  std::optional<SignalStopper> stopper;  ///< ends after the files, which clean up behind themselves
  std::optional<SolutionFile> solutionFile;
  std::optional<EnvironmentFile> environmentFile;
  std::optional<SearchRecorder> recorder;
  OXSolutionStatus status = OXSolutionStatus::Infeasible;

private:
  std::optional<SolutionFile> statisticsFile;
};

}  // namespace ombrix::cli

#endif
