#ifndef OMBRIX_CLI_SHOWCOMMAND_H
#define OMBRIX_CLI_SHOWCOMMAND_H

#include "cli/commandline.h"

namespace ombrix::cli {

/// Prints a model or an environment for people: decisions, formulas, goals, phases, parameters and
/// the solution; returns the exit status.
int runShow(const CommandLine& line);

}  // namespace ombrix::cli

#endif
