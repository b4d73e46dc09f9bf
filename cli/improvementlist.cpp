#include "cli/improvementlist.h"

#include <cmath>
#include <utility>

namespace ombrix::cli {
namespace {

constexpr double kFinestResolution = 0.001;

}  // namespace

void ImprovementList::add(Improvement improvement) {
  ++count;
  if (!kept.empty() && isSuperseded(kept.size() - 1, improvement)) kept.pop_back();
  kept.push_back(std::move(improvement));
  if (kept.size() > capacity) thin();
}

/// Halves the list at least, so that thinning costs little for each improvement that comes.
void ImprovementList::thin() {
  while (kept.size() > capacity / 2 && kept.size() > 3) {
    resolution = resolution == 0 ? kFinestResolution : 2 * resolution;
    std::vector<Improvement> former = std::move(kept);
    kept.clear();
    for (Improvement& improvement : former) {
      if (!kept.empty() && isSuperseded(kept.size() - 1, improvement)) kept.pop_back();
      kept.push_back(std::move(improvement));
    }
  }
}

/// Whether the one that comes next takes the place of the kept one.
bool ImprovementList::isSuperseded(std::size_t i, const Improvement& next) const {
  if (i == 0 || resolution == 0) return false;
  const bool isFirstFeasible = kept[i].isFeasible() && !kept[i - 1].isFeasible();
  return !isFirstFeasible &&
         std::floor(kept[i].time / resolution) == std::floor(next.time / resolution);
}

}  // namespace ombrix::cli
