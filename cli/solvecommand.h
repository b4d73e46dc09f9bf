#ifndef OMBRIX_CLI_SOLVECOMMAND_H
#define OMBRIX_CLI_SOLVECOMMAND_H

#include "cli/commandline.h"

namespace ombrix::cli {

/// Reads the model, searches, shows what was found; returns the exit status.
int runSolve(const CommandLine& line);

}  // namespace ombrix::cli

#endif
