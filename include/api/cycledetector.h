#ifndef OMBRIX_API_CYCLEDETECTOR_H
#define OMBRIX_API_CYCLEDETECTOR_H

#include <cstdint>
#include <vector>

#include "builder/modelrecord.h"

namespace ombrix {

/// Looks for a cycle in the expressions of a model: a depth-first search from each index upwards,
/// operands in order. Two bits per expression tell the visited ones and those on the path; the path
/// is an explicit stack, so the depth of a model is limited by memory only. Linear in the number of
/// expressions and operands.
class CycleDetector {
public:
  explicit CycleDetector(const OXModel& model);

  /// Searches until the first cycle. The answer is empty if there is none; otherwise it is the
  /// trail from the first expression of the search to the last one of the cycle, which may be
  /// longer than the cycle alone.
  std::vector<std::int32_t> findCycle();

private:
  struct Step {
    std::int32_t index;
    std::int32_t nextPosition;
  };

  bool searchFrom(std::int32_t start);
  void enter(std::int32_t index);
  void leave();

  const std::vector<OXExpression*>& expressions;
  std::vector<bool> visited;
  std::vector<bool> onPath;
  std::vector<Step> path;
};

}  // namespace ombrix

#endif
