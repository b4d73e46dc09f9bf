#include "cli/solvecommand.h"

#include <ombrix/ombrix.h>

#include <cstddef>
#include <iostream>
#include <optional>
#include <utility>
#include <vector>

#include "cli/commentstream.h"
#include "cli/environmentfile.h"
#include "cli/environmentrun.h"
#include "cli/opbmodel.h"
#include "cli/opbmodelbuilder.h"
#include "cli/opbreader.h"
#include "cli/program.h"
#include "cli/searchoptions.h"
#include "cli/searchrecorder.h"
#include "cli/signalstopper.h"
#include "cli/solutionwriter.h"
#include "cli/statisticstext.h"

namespace ombrix::cli {
namespace {

/// One run of the command, from the closing of the model to the last line of output.
class SolveRun {
public:
  SolveRun(const CommandLine& asked, OpbModel read)
      : line(asked), file(std::move(read)), builder(file, *solver.getModel()) {
    file.releaseSums();
    if (line.solutionFile) solutionFile.emplace(*line.solutionFile);
    if (line.environmentFile) environmentFile.emplace(*line.environmentFile);
    if (line.statisticsFile) statisticsFile.emplace(*line.statisticsFile);
  }

  int run() {
    for (const auto& [key, value] : line.advancedParams) {
      solver.getParam()->setAdvancedParam(key, value);
    }
    solver.getModel()->close();
    setParameters();
    createPhases(line, solver);
    if (line.output == OutputForm::Pb) {
      searchForCompetition();
      finish();
      printForCompetition();
    } else {
      search(nullptr);
      finish();
      printPlainly();
    }
    writeStatistics();
    return exitStatus();
  }

private:
  void setParameters() {
    applyParameters(line, solver);
    // What the signs of the coefficients prove lets the search end there, and end as optimal.
    solver.getParam()->setObjectiveBound(0, static_cast<long long>(builder.getObjectiveLimit()));
  }

  void search(std::ostream* improvementLines) {
    recorder.emplace(solver, improvementLines);
    const SignalStopper stopper(solver);
    solver.solve();
    recorder->restoreBest();
  }

  void searchForCompetition() {
    std::cout << "c Ombrix " << OXVersion::getVersion() << "\n"
              << "c " << line.model << ": " << file.names.size() << " variables, "
              << solver.getModel()->getNbConstraints() << " constraints" << std::endl;
    CommentStream display(std::cout);
    search(file.hasObjective ? &display.direct() : nullptr);
  }

  /// Takes the result over and writes the file of the solution, before anything that may fail
  /// later.
  void finish() {
    status = solver.getSolution()->getStatus();
    if (environmentFile) environmentFile->commit(solver);
    if (!hasSolution()) return;
    for (const OXExpression* decision : builder.getDecisions()) {
      values.push_back(decision->getIntValue() != 0);
    }
    if (solutionFile) solutionFile->commit(valueLines(file.names, values));
  }

  void printForCompetition() const {
    if (hasSolution()) {
      const bool isOptimum = status == OXSolutionStatus::Optimal && file.hasObjective;
      std::cout << (isOptimum ? "s OPTIMUM FOUND\n" : "s SATISFIABLE\n")
                << valueLines(file.names, values);
    } else if (status == OXSolutionStatus::Inconsistent) {
      std::cout << "s UNSATISFIABLE\n";
    } else {
      std::cout << "s UNKNOWN\n";
    }
  }

  void printPlainly() const {
    if (!hasSolution()) {
      std::cout << (status == OXSolutionStatus::Inconsistent
                        ? "Status: inconsistent, the model has no solution\n"
                        : "Status: infeasible, no solution was found\n");
      return;
    }
    std::cout << "Status: " << (status == OXSolutionStatus::Optimal ? "optimal\n" : "feasible\n");
    if (file.hasObjective) {
      std::cout << "Objective: " << builder.getObjective()->getIntValue() << "\n";
    }
    std::cout << "Decisions:\n";
    for (std::size_t i = 0; i < values.size(); ++i) {
      std::cout << "  " << file.names[i] << " = " << values[i] << "\n";
    }
  }

  /// Last, since a place that cannot be written after all must not cost the solution.
  void writeStatistics() {
    if (!statisticsFile) return;
    std::cout.flush();
    statisticsFile->commit(statisticsText(line.model, solver, *recorder));
  }

  bool hasSolution() const {
    return status == OXSolutionStatus::Feasible || status == OXSolutionStatus::Optimal;
  }

  int exitStatus() const {
    if (hasSolution()) return kSolutionFound;
    return status == OXSolutionStatus::Inconsistent ? kInconsistent : kNoSolution;
  }

  const CommandLine& line;
  OpbModel file;
  Ombrix solver;
  OpbModelBuilder builder;
  std::optional<SolutionFile> solutionFile;
  std::optional<EnvironmentFile> environmentFile;
  std::optional<SolutionFile> statisticsFile;
  std::optional<SearchRecorder> recorder;
  OXSolutionStatus status = OXSolutionStatus::Infeasible;
  std::vector<bool> values;
};

}  // namespace

int runSolve(const CommandLine& line) {
  requireDistinctFiles(line);
  if (isEnvironmentFile(line.model)) return runSolveEnvironment(line);
  return SolveRun(line, OpbReader::read(line.model)).run();
}

}  // namespace ombrix::cli
