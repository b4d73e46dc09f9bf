#ifndef OMBRIX_CLI_IMPROVEMENTREPORTER_H
#define OMBRIX_CLI_IMPROVEMENTREPORTER_H

#include <ombrix/ombrix.h>

#include <optional>
#include <ostream>

namespace ombrix::cli {

/// Writes an "o" line for each feasible solution that is better than the last one written, while
/// the search runs. It observes the solver as long as it lives, on the thread that called solve.
class ImprovementReporter {
public:
  /// The objective is the one of the solver, in the direction told.
  ImprovementReporter(Ombrix& solver, OXExpression& objective, OXObjectiveDirection direction,
                      std::ostream& output);
  ~ImprovementReporter();
  ImprovementReporter(const ImprovementReporter&) = delete;
  ImprovementReporter& operator=(const ImprovementReporter&) = delete;

  /// Looks at the public solution as it stands.
  void report();

private:
  bool isBetter(long long value) const;

  Ombrix& solver;
  OXExpression& objective;
  OXObjectiveDirection direction;
  std::ostream& output;
  std::optional<long long> best;
};

}  // namespace ombrix::cli

#endif
