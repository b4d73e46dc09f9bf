#ifndef OMBRIX_CLI_STATISTICSTEXT_H
#define OMBRIX_CLI_STATISTICSTEXT_H

#include <ombrix/ombrix.h>

#include <string>

#include "cli/searchrecorder.h"

namespace ombrix::cli {

/// One JSON object with what is needed to plot a search: its improvements, the counters of every
/// worker, and the solution as it stands in the solver. docs/statistics.md tells the members.
std::string statisticsText(const std::string& modelName, const Ombrix& solver,
                           const SearchRecorder& recorder);

}  // namespace ombrix::cli

#endif
