#include "cli/infocommand.h"

#include <malloc.h>
#include <ombrix/ombrix.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "builder/dagbuilder.h"
#include "builder/modelrecord.h"
#include "builder/operatortools.h"
#include "cli/environmentfile.h"
#include "cli/opbmodel.h"
#include "cli/opbmodelbuilder.h"
#include "cli/opbreader.h"
#include "cli/program.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/nodetypeutils.h"

namespace ombrix::cli {
namespace {

constexpr std::size_t kNbOperators = 34;

/// The memory of the process that is resident now, in bytes; 0 where the system does not tell it.
long long residentMemory() {
  std::ifstream statm("/proc/self/statm");
  long long total = 0;
  long long resident = 0;
  statm >> total >> resident;
  return statm ? resident * sysconf(_SC_PAGESIZE) : 0;
}

void printModel(const OXModel& model) {
  std::array<long long, kNbOperators> counts{};
  for (int i = 0; i < model.getNbExpressions(); ++i) {
    ++counts[static_cast<std::size_t>(model.getExpression(i)->getOperator())];
  }
  std::cout << "Model:\n  expressions = " << model.getNbExpressions() << "\n";
  for (std::size_t op = 0; op < kNbOperators; ++op) {
    if (counts[op] == 0) continue;
    std::cout << "    " << OperatorTools::getName(static_cast<OXOperator>(op)) << " = "
              << counts[op] << "\n";
  }
  std::cout << "  operands = " << model.getNbOperands() << "\n"
            << "  decisions = " << model.getNbDecisions() << "\n"
            << "  constraints = " << model.getNbConstraints() << "\n"
            << "  objectives = " << model.getNbObjectives() << "\n";
}

void printNodes(const DagFixedFields& fields) {
  std::cout << "  nodes = " << fields.nbNodes << "\n";
  for (std::size_t type = 0; type < fields.nbNodesByType.size(); ++type) {
    if (fields.nbNodesByType[type] == 0) continue;
    std::cout << "    " << NodeTypeUtils::toString(static_cast<NodeType>(type)) << " = "
              << fields.nbNodesByType[type] << "\n";
  }
  std::cout << "  ranks = " << fields.nodesByRank.size() << "\n"
            << "  decisions left = " << fields.firstInnerNode << "\n"
            << "  constraints left = " << fields.constraints.size() << "\n";
}

void printPass(const PassReport& report) {
  std::cout << "  " << report.name << ": bounds narrowed = " << report.counts.nbNarrowed
            << ", constants proved = " << report.counts.nbFixed
            << ", expressions replaced = " << report.counts.nbReplaced
            << ", time = " << report.seconds << " sec\n";
}

/// Nodes are saved against one for each expression of the model, or added where an expression needs
/// several.
void printCreation(const PassReport& report, const OXModel& model, const DagFixedFields& fields) {
  const long long nbSaved = model.getNbExpressions() - static_cast<long long>(fields.nbNodes);
  std::cout << "  " << report.name << (nbSaved >= 0 ? ": nodes saved = " : ": nodes added = ")
            << std::abs(nbSaved) << ", time = " << report.seconds << " sec\n";
}

void printPasses(const OXModel& model) {
  const DagBuilder& builder = *ModelRecord::dagBuilder(model);
  const std::vector<PassReport>& reports = builder.passReports();
  const std::size_t nbPasses = reports.size() - (builder.isInconsistent() ? 0 : 1);
  std::cout << "Passes:\n";
  for (std::size_t i = 0; i < nbPasses; ++i) printPass(reports[i]);
  if (nbPasses < reports.size()) {
    printCreation(reports.back(), model, builder.getFixedFields());
  }
}

/// Which constraint an expression is, if it is one.
std::string constraintOf(const OXModel& model, const OXExpression* e) {
  for (int i = 0; i < model.getNbConstraints(); ++i) {
    if (model.getConstraint(i) == e) return ", constraint " + std::to_string(i);
  }
  return "";
}

/// The first contradiction, where to start looking: the ones after it often follow from it.
void printContradiction(const OXModel& model) {
  const DagBuilder& builder = *ModelRecord::dagBuilder(model);
  const OXExpression* e = builder.conflicts().front();
  const std::vector<PassReport>& reports = builder.passReports();
  const auto pass = std::find_if(reports.begin(), reports.end(),
                                 [](const PassReport& report) { return report.nbConflicts > 0; });
  std::cout << "  contradictions = " << builder.conflicts().size() << "\n"
            << "  first contradiction = " << e->toString() << constraintOf(model, e) << ", met by "
            << pass->name << "\n";
}

void printClosed(const OXModel& model) {
  const DagBuilder& builder = *ModelRecord::dagBuilder(model);
  long long nbFixed = 0;
  for (int i = 0; i < model.getNbExpressions(); ++i) {
    if (builder.isFixed(static_cast<std::size_t>(i))) ++nbFixed;
  }
  std::cout << "Closed model:\n"
            << "  inconsistent = " << (builder.isInconsistent() ? "yes" : "no") << "\n"
            << "  expressions fixed = " << nbFixed << "\n";
  if (builder.isInconsistent()) {
    printContradiction(model);
  } else {
    printNodes(builder.getFixedFields());
  }
}

}  // namespace

int runInfo(const CommandLine& line) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  const bool isEnvironment = isEnvironmentFile(line.model);
  if (!isEnvironment) {
    const OpbModel file = OpbReader::read(line.model);
    const OpbModelBuilder builder(file, model);
  }
  for (const auto& [key, value] : line.advancedParams) {
    solver.getParam()->setAdvancedParam(key, value);
  }
  if (isEnvironment) {
    // The load closes the model: opened again, it is the one of the file.
    loadEnvironmentFile(line.model, solver);
    for (const auto& [key, value] : line.advancedParams) {
      solver.getParam()->setAdvancedParam(key, value);
    }
    model.open();
  }
  printModel(model);
  malloc_trim(0);  // memory freed so far would hide what closing takes
  const long long memoryBefore = residentMemory();
  const auto start = std::chrono::steady_clock::now();
  model.close();
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  const long long memory = residentMemory() - memoryBefore;
  printPasses(model);
  printClosed(model);
  std::cout << "  closing time = " << elapsed.count() << " sec\n"
            << "  closing memory = " << static_cast<double>(memory) / 1e6 << " MB\n";
  return kSolutionFound;
}

}  // namespace ombrix::cli
