#include "cli/solvecommand.h"

#include <ombrix/ombrix.h>

#include <cstddef>
#include <iostream>
#include <utility>
#include <vector>

#include "cli/commentstream.h"
#include "cli/environmentfile.h"
#include "cli/environmentrun.h"
#include "cli/opbmodel.h"
#include "cli/opbmodelbuilder.h"
#include "cli/opbreader.h"
#include "cli/searchoptions.h"
#include "cli/searchrun.h"
#include "cli/solutionwriter.h"

namespace ombrix::cli {
namespace {

/// One run of the command, from the closing of the model to the last line of output.
class SolveRun : private SearchRun {
public:
  SolveRun(const CommandLine& asked, OpbModel read)
      : SearchRun(asked), file(std::move(read)), builder(file, *solver.getModel()) {
    file.releaseSums();
    openFiles();
  }

  int run() {
    setAdvancedParams();
    solver.getModel()->close();
    setParameters();
    createPhases(line, solver);
    if (line.output == OutputForm::Pb) {
      searchForCompetition();
      finish();
      printForCompetition();
    } else {
      search();
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
    setObjectiveBounds(line, solver);
  }

  void searchForCompetition() {
    std::cout << "c Ombrix " << OXVersion::getVersion() << "\n"
              << "c " << line.model << ": " << file.names.size() << " variables, "
              << solver.getModel()->getNbConstraints() << " constraints" << std::endl;
    CommentStream display(std::cout);
    search(file.hasObjective ? &display.direct() : nullptr);
  }

  /// Takes the result over and writes the files, before anything that may fail later.
  void finish() {
    if (environmentFile) environmentFile->commit(solver);
    if (!hasSolution()) return;
    for (const OXExpression* decision : builder.getDecisions()) {
      values.push_back(decision->getIntValue() != 0);
    }
    if (solutionFile) solutionFile->commit(valueLines(file.names, values));
  }

  void printForCompetition() const {
    if (hasSolution()) {
      // A bound that was asked for proves nothing.
      const bool isOptimum =
          status == OXSolutionStatus::Optimal && file.hasObjective && line.objectiveBounds.empty();
      std::cout << (isOptimum ? "s OPTIMUM FOUND\n" : "s SATISFIABLE\n")
                << valueLines(file.names, values);
    } else if (status == OXSolutionStatus::Inconsistent) {
      std::cout << "s UNSATISFIABLE\n";
    } else {
      std::cout << "s UNKNOWN\n";
    }
  }

  void printPlainly() const {
    printStatus();
    if (!hasSolution()) return;
    if (file.hasObjective) {
      std::cout << "Objective: " << builder.getObjective()->getIntValue() << "\n";
    }
    std::cout << "Decisions:\n";
    for (std::size_t i = 0; i < values.size(); ++i) {
      std::cout << "  " << file.names[i] << " = " << values[i] << "\n";
    }
  }

  OpbModel file;
  OpbModelBuilder builder;
  std::vector<bool> values;
};

}  // namespace

int runSolve(const CommandLine& line) {
  requireDistinctFiles(line);
  if (isEnvironmentFile(line.model)) return runSolveEnvironment(line);
  return SolveRun(line, OpbReader::read(line.model)).run();
}

}  // namespace ombrix::cli
