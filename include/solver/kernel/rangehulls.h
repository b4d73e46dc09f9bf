#ifndef OMBRIX_SOLVER_KERNEL_RANGEHULLS_H
#define OMBRIX_SOLVER_KERNEL_RANGEHULLS_H

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "solver/kernel/intervals.h"

namespace ombrix {

/// The hulls of ranges of array elements, the last one asked of each array kept: models read one
/// long array at many places over the same range of indices, and each of them would cost the length
/// of the range again. The intervals of the elements must not change while this stands.
template <typename Interval>
class RangeHulls {
public:
  /// The hull of the elements first to end - 1, of which there is one at least, of the array with
  /// that number; element(i) is the interval of one.
  template <typename Element>
  Interval of(std::size_t array, std::int64_t first, std::int64_t end, const Element& element) {
    Range& range = ranges[array];
    if (range.first != first || range.end != end) {
      Interval result = element(first);
      for (std::int64_t i = first + 1; i < end; ++i) result = hull(result, element(i));
      range = {first, end, result};
    }
    return range.elements;
  }

private:
  struct Range {
    std::int64_t first = 0;
    std::int64_t end = 0;
    Interval elements{};
  };

  std::unordered_map<std::size_t, Range> ranges;  ///< per array; only looked up, never walked
};

}  // namespace ombrix

#endif
