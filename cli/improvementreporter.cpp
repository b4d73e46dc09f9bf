#include "cli/improvementreporter.h"

#include "builder/solverrecord.h"

namespace ombrix::cli {

ImprovementReporter::ImprovementReporter(Ombrix& observed, OXExpression& minimized,
                                         OXObjectiveDirection better, std::ostream& lines)
    : solver(observed), objective(minimized), direction(better), output(lines) {
  SolverRecord::setObserver(
      solver, [](void* self) { static_cast<ImprovementReporter*>(self)->report(); }, this);
}

ImprovementReporter::~ImprovementReporter() {
  SolverRecord::setObserver(solver, nullptr, nullptr);
}

void ImprovementReporter::report() {
  const OXSolutionStatus status = solver.getSolution()->getStatus();
  if (status != OXSolutionStatus::Feasible && status != OXSolutionStatus::Optimal) return;
  const long long value = objective.getIntValue();
  if (!isBetter(value)) return;
  best = value;
  output << "o " << value << std::endl;
}

bool ImprovementReporter::isBetter(long long value) const {
  if (!best) return true;
  return direction == OXObjectiveDirection::Minimize ? value < *best : value > *best;
}

}  // namespace ombrix::cli
