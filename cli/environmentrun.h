#ifndef OMBRIX_CLI_ENVIRONMENTRUN_H
#define OMBRIX_CLI_ENVIRONMENTRUN_H

#include "cli/commandline.h"

namespace ombrix::cli {

/// The command solve for an environment file: goes on with the search from where the file stands,
/// with its phases and parameters unless the command line gives others; returns the exit status.
int runSolveEnvironment(const CommandLine& line);

}  // namespace ombrix::cli

#endif
