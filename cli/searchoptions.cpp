#include "cli/searchoptions.h"

namespace ombrix::cli {

void applyParameters(const CommandLine& line, Ombrix& solver) {
  OXParam& param = *solver.getParam();
  if (line.threads) param.setNbThreads(*line.threads);
  if (line.seed) param.setSeed(*line.seed);
  if (line.annealingLevel) param.setAnnealingLevel(*line.annealingLevel);
  if (line.displayEvery) param.setTimeBetweenDisplays(*line.displayEvery);
  if (line.verbosity) {
    param.setVerbosity(*line.verbosity);
  } else if (line.output == OutputForm::Pb) {
    param.setVerbosity(0);
  }
}

void createPhases(const CommandLine& line, Ombrix& solver) {
  for (const PhaseOptions& options : line.phases) {
    OXPhase& phase = *solver.createPhase();
    if (options.time) phase.setTimeLimit(*options.time);
    if (options.iterations) phase.setIterationLimit(*options.iterations);
    if (options.objective) phase.setOptimizedObjective(*options.objective);
  }
}

}  // namespace ombrix::cli
