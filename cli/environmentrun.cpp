#include "cli/environmentrun.h"

#include <ombrix/ombrix.h>

#include <iostream>
#include <string>
#include <vector>

#include "builder/solverrecord.h"
#include "cli/environmentfile.h"
#include "cli/formulaprinter.h"
#include "cli/inputerror.h"
#include "cli/numbertext.h"
#include "cli/searchoptions.h"
#include "cli/searchrun.h"
#include "cli/solutionwriter.h"

namespace ombrix::cli {
namespace {

/// One run of the command, from the file to the last line of output.
class EnvironmentRun : private SearchRun {
public:
  explicit EnvironmentRun(const CommandLine& asked) : SearchRun(asked) {
    if (line.output == OutputForm::Pb) {
      throw InputError("--output pb: " + line.model + " is no file in the OPB format");
    }
    openFiles();
  }

  int run() {
    load();
    search();
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
    setObjectiveBounds(line, solver);
    if (!line.hasPhases()) return;
    SolverRecord::clearPhases(solver);
    createPhases(line, solver);
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
    printStatus();
    if (!hasSolution()) return;
    const OXModel& model = *solver.getModel();
    for (int i = 0; i < model.getNbObjectives(); ++i) {
      const OXExpression& objective = *model.getObjective(i);
      std::cout << "Objective: ";
      if (objective.isDouble()) {
        std::cout << numberText(objective.getDoubleValue()) << "\n";
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
};

}  // namespace

int runSolveEnvironment(const CommandLine& line) {
  return EnvironmentRun(line).run();
}

}  // namespace ombrix::cli
