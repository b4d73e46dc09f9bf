#ifndef OMBRIX_BUILDER_PASSREPORT_H
#define OMBRIX_BUILDER_PASSREPORT_H

#include <cstddef>
#include <cstdint>

namespace ombrix {

/// What passes over a model change, counted as it happens: each count is one increment beside a
/// change that is made anyway.
struct PassCounts {
  std::int64_t nbNarrowed = 0;  ///< intersections that made an interval smaller
  std::int64_t nbFixed = 0;     ///< expressions proved constant
  std::int64_t nbReplaced = 0;  ///< expressions for which another one stands
};

/// What one pass did while a model was closed, for whoever wants to know why it took its time or
/// what it gained. The last report is that of the creation of the nodes, unless a pass before it
/// met a contradiction.
struct PassReport {
  const char* name;  ///< without the "Enabled" of the key that switches the pass off
  PassCounts counts;
  std::size_t nbConflicts;  ///< contradictions met
  double seconds;
};

}  // namespace ombrix

#endif
