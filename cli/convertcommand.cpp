#include "cli/convertcommand.h"

#include <ombrix/ombrix.h>

#include "cli/environmentfile.h"
#include "cli/program.h"

namespace ombrix::cli {

int runConvert(const CommandLine& line) {
  EnvironmentFile target(line.target);
  Ombrix solver;
  loadAnyFile(line.model, solver);
  target.commit(solver);
  return kSolutionFound;
}

}  // namespace ombrix::cli
