#ifndef OMBRIX_CLI_CONVERTCOMMAND_H
#define OMBRIX_CLI_CONVERTCOMMAND_H

#include "cli/commandline.h"

namespace ombrix::cli {

/// Reads a model or an environment and writes it as an environment, in the form that the name of
/// the target tells; returns the exit status.
int runConvert(const CommandLine& line);

}  // namespace ombrix::cli

#endif
