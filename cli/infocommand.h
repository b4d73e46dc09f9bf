#ifndef OMBRIX_CLI_INFOCOMMAND_H
#define OMBRIX_CLI_INFOCOMMAND_H

#include "cli/commandline.h"

namespace ombrix::cli {

/// Shows the expressions of the model and the graph that closing it gives; returns the exit status.
int runInfo(const CommandLine& line);

}  // namespace ombrix::cli

#endif
