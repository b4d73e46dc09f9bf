#ifndef OMBRIX_CLI_SEARCHOPTIONS_H
#define OMBRIX_CLI_SEARCHOPTIONS_H

#include <ombrix/ombrix.h>

#include "cli/commandline.h"

namespace ombrix::cli {

/// Gives a solver whose model is closed the parameters of the command line. What was not asked for
/// keeps its value.
void applyParameters(const CommandLine& line, Ombrix& solver);

/// Sets the bounds of objectives that the command line gives. An InputError for an objective that
/// the model does not have and for a number that its type cannot take.
void setObjectiveBounds(const CommandLine& line, Ombrix& solver);

/// Adds the phases of the command line. An InputError for an objective that the model does not
/// have.
void createPhases(const CommandLine& line, Ombrix& solver);

/// Refuses two options that would write the same file with an InputError.
void requireDistinctFiles(const CommandLine& line);

}  // namespace ombrix::cli

#endif
