#include "cli/environmentrun.h"

#include <ombrix/ombrix.h>

#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "builder/solverrecord.h"
#include "cli/environmentfile.h"
#include "cli/formulaprinter.h"
#include "cli/inputerror.h"
#include "cli/program.h"
#include "cli/searchoptions.h"
#include "cli/searchrecorder.h"
#include "cli/signalstopper.h"
#include "cli/solutionwriter.h"
#include "cli/statisticstext.h"

namespace ombrix::cli {
namespace {

/// One run of the command, from the file to the last line of output.
class EnvironmentRun {
public:
  explicit EnvironmentRun(const CommandLine& asked) : line(asked) {
    if (line.output == OutputForm::Pb) {
      throw InputError("--output pb: " + line.model + " is no file in the OPB format");
    }
    if (line.solutionFile) solutionFile.emplace(*line.solutionFile);
    if (line.environmentFile) environmentFile.emplace(*line.environmentFile);
    if (line.statisticsFile) statisticsFile.emplace(*line.statisticsFile);
  }

  int run() {
    load();
    search();
    status = solver.getSolution()->getStatus();
    keep();
    print();
    writeStatistics();
    return exitStatus();
  }

private:
  /// Some parameters tell how a model is closed, and the load closes it; the file may set them
  /// again afterwards.
  void load() {
    setAdvancedParams();
    loadEnvironmentFile(line.model, solver);
    setAdvancedParams();
    applyParameters(line, solver);
    if (!line.hasPhases()) return;
    SolverRecord::clearPhases(solver);
    createPhases(line, solver);
  }

  void search() {
    recorder.emplace(solver);
    const SignalStopper stopper(solver);
    solver.solve();
    recorder->restoreBest();
  }

  /// Last, since a place that cannot be written after all must not cost the solution.
  void writeStatistics() {
    if (!statisticsFile) return;
    std::cout.flush();
    statisticsFile->commit(statisticsText(line.model, solver, *recorder));
  }

  void setAdvancedParams() {
    for (const auto& [key, value] : line.advancedParams) {
      solver.getParam()->setAdvancedParam(key, value);
    }
  }

  /// Writes the files, before anything that may fail later.
  void keep() {
    if (environmentFile) environmentFile->commit(solver);
    if (!solutionFile || !hasSolution()) return;
    std::vector<std::string> names;
    std::vector<bool> values;
    for (int i = 0; i < solver.getModel()->getNbDecisions(); ++i) {
      const OXExpression& decision = *solver.getModel()->getDecision(i);
      names.push_back(nameOfExpression(decision));
      values.push_back(decision.getIntValue() != 0);
    }
    solutionFile->commit(valueLines(names, values));
  }

  void print() const {
    if (!hasSolution()) {
      std::cout << (status == OXSolutionStatus::Inconsistent
                        ? "Status: inconsistent, the model has no solution\n"
                        : "Status: infeasible, no solution was found\n");
      return;
    }
    const OXModel& model = *solver.getModel();
    std::cout << "Status: " << (status == OXSolutionStatus::Optimal ? "optimal\n" : "feasible\n");
    for (int i = 0; i < model.getNbObjectives(); ++i) {
      const OXExpression& objective = *model.getObjective(i);
      std::cout << "Objective: ";
      if (objective.isDouble()) {
        std::cout << objective.getDoubleValue() << "\n";
      } else {
        std::cout << objective.getIntValue() << "\n";
      }
    }
    std::cout << "Decisions:\n";
    for (int i = 0; i < model.getNbDecisions(); ++i) {
      const OXExpression& decision = *model.getDecision(i);
      std::cout << "  " << nameOfExpression(decision) << " = " << decision.getIntValue() << "\n";
    }
  }

  bool hasSolution() const {
    return status == OXSolutionStatus::Feasible || status == OXSolutionStatus::Optimal;
  }

  int exitStatus() const {
    if (hasSolution()) return kSolutionFound;
    return status == OXSolutionStatus::Inconsistent ? kInconsistent : kNoSolution;
  }

  const CommandLine& line;
  Ombrix solver;
  std::optional<SolutionFile> solutionFile;
  std::optional<EnvironmentFile> environmentFile;
  std::optional<SolutionFile> statisticsFile;
  std::optional<SearchRecorder> recorder;
  OXSolutionStatus status = OXSolutionStatus::Infeasible;
};

}  // namespace

int runSolveEnvironment(const CommandLine& line) {
  return EnvironmentRun(line).run();
}

}  // namespace ombrix::cli
