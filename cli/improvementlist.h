#ifndef OMBRIX_CLI_IMPROVEMENTLIST_H
#define OMBRIX_CLI_IMPROVEMENTLIST_H

#include <ombrix/ombrix.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "solver/kernel/infeasibility.h"
#include "solver/kernel/oxvalue.h"

namespace ombrix::cli {

/// A solution better than all before it, and where it came from.
struct Improvement {
  double time = 0;              ///< in seconds since the start of the search
  std::uint64_t iteration = 0;  ///< iterations that the worker had done before
  std::size_t worker = 0;
  Infeasibility infeasibility;
  std::vector<OXValue> objectives;  ///< as the types of the objectives in the model tell

  bool isFeasible() const { return infeasibility.nbViolated == 0; }
};

/// The improvements of a run of any length in bounded memory. As long as there are few, all are
/// kept; beyond the capacity, of those that lie within one span of time, the resolution, only the
/// last one is, and the resolution doubles each time the list is full again. So the late ones,
/// which are rare, stay. The first one, the first feasible one and the last one are always there.
class ImprovementList {
public:
  explicit ImprovementList(std::size_t mostKept = 10'000) : capacity(mostKept) {}

  /// In order of time.
  void add(Improvement improvement);

  const std::vector<Improvement>& getKept() const { return kept; }
  /// Also those that are not kept.
  std::uint64_t getCount() const { return count; }
  /// In seconds; 0 while all are kept.
  double getResolution() const { return resolution; }

private:
  void thin();
  bool isSuperseded(std::size_t i, const Improvement& next) const;

  std::size_t capacity;
  std::vector<Improvement> kept;
  std::uint64_t count = 0;
  double resolution = 0;
};

}  // namespace ombrix::cli

#endif
