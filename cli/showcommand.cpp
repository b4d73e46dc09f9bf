#include "cli/showcommand.h"

#include <ombrix/ombrix.h>

#include <algorithm>
#include <climits>
#include <iostream>
#include <sstream>
#include <string>

#include "cli/environmentfile.h"
#include "cli/formulaprinter.h"
#include "cli/numbertext.h"
#include "cli/program.h"

namespace ombrix::cli {
namespace {

/// Prints one solver, section by section; each list is cut at the limit.
class Show {
public:
  Show(const Ombrix& shown, long long nbMaxItems)
      : solver(shown), model(*shown.getModel()), limit(nbMaxItems), printer(model, limit) {}

  void print() {
    printExpressions();
    printConstraints();
    printObjectives();
    printPhases();
    printParameters();
    printSolution();
  }

private:
  void printExpressions() {
    begin("Expressions");
    for (int i = 0; i < model.getNbExpressions(); ++i) {
      const OXExpression& expr = *model.getExpression(i);
      if (expr.isConstraint() || expr.isObjective() || !printer.hasOwnFormula(expr)) continue;
      item([&] { return definitionOf(expr); });
    }
    end();
  }

  void printConstraints() {
    begin("Constraints");
    for (int i = 0; i < model.getNbConstraints(); ++i) {
      item([&] { return definitionOf(*model.getConstraint(i)); });
    }
    end();
  }

  void printObjectives() {
    begin("Objectives");
    for (int i = 0; i < model.getNbObjectives(); ++i) {
      const bool isMaximized = model.getObjectiveDirection(i) == OXObjectiveDirection::Maximize;
      item([&] {
        return (isMaximized ? "maximize " : "minimize ") + definitionOf(*model.getObjective(i));
      });
    }
    end();
  }

  void printPhases() {
    begin("Phases");
    for (int i = 0; i < solver.getNbPhases(); ++i) {
      item([&] { return solver.getPhase(i)->toString(); });
    }
    end();
  }

  /// The library lists the bounds of all objectives among the parameters.
  void printParameters() {
    std::istringstream text(solver.getParam()->toString());
    nbItems = 0;
    for (std::string line; std::getline(text, line);) {
      if (!line.starts_with("  Obj ")) {
        end();
        nbItems = 0;
        std::cout << line << "\n";
      } else if (nbItems++ < limit) {
        std::cout << line << "\n";
      }
    }
    end();
  }

  void printSolution() {
    begin("Solution");
    item([&] { return "status = " + statusText(); });
    for (int i = 0; i < model.getNbObjectives(); ++i) {
      item([&] {
        return "objective " + std::to_string(i) + " = " + valueText(*model.getObjective(i));
      });
    }
    end();
    begin("Decisions");
    for (int i = 0; i < model.getNbDecisions(); ++i) {
      const OXExpression& decision = *model.getDecision(i);
      item([&] { return nameOfExpression(decision) + " = " + valueText(decision); });
    }
    end();
  }

  std::string definitionOf(const OXExpression& expr) const {
    if (expr.isDecision() || expr.isConstant()) return printer.nameOf(expr);
    return printer.nameOf(expr) + " = " + printer.formulaOf(expr);
  }

  /// A value may not exist where the decisions stand.
  std::string valueText(const OXExpression& expr) const {
    try {
      return expr.isDouble() ? numberText(expr.getDoubleValue())
                             : std::to_string(expr.getIntValue());
    } catch (const OXException& failure) {
      return "none (" + failure.getExplanation() + ")";
    }
  }

  std::string statusText() const {
    try {
      static constexpr const char* kWords[] = {"inconsistent", "infeasible", "feasible", "optimal"};
      return kWords[static_cast<int>(solver.getSolution()->getStatus())];
    } catch (const OXException& failure) {
      return "none (" + failure.getExplanation() + ")";
    }
  }

  void begin(const char* title) {
    std::cout << title << ":\n";
    nbItems = 0;
  }
  template <typename Text>
  void item(const Text& text) {
    if (nbItems++ < limit) std::cout << "  " << text() << "\n";
  }
  void end() const {
    if (nbItems > limit) std::cout << "  ... " << nbItems - limit << " more\n";
  }

  const Ombrix& solver;
  const OXModel& model;
  long long limit;
  FormulaPrinter printer;
  long long nbItems = 0;
};

}  // namespace

int runShow(const CommandLine& line) {
  Ombrix solver;
  loadAnyFile(line.model, solver);
  Show(solver, line.limit.value_or(LLONG_MAX)).print();
  return kSolutionFound;
}

}  // namespace ombrix::cli
