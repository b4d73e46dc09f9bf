#ifndef OMBRIX_SOLVER_MOVE_DISTINCTSAMPLER_H
#define OMBRIX_SOLVER_MOVE_DISTINCTSAMPLER_H

#include <cstdint>
#include <vector>

namespace ombrix {

/// Draws k distinct integers below n by the first k steps of a shuffle of 0, 1, ..., n - 1. The
/// array is never built: only the displaced entries are held and searched linearly. Time O(k) per
/// draw and memory O(k), whatever n is.
class DistinctSampler {
public:
  /// Takes the memory for k draws, so that sample allocates nothing.
  void reserve(std::uint32_t k);
  /// Puts the draws into out; k is at most n.
  void sample(std::uint32_t& rng, std::uint32_t n, std::uint32_t k,
              std::vector<std::uint32_t>& out);

private:
  std::uint32_t entryAt(std::uint32_t place) const;
  void setEntry(std::uint32_t place, std::uint32_t entry);

  std::vector<std::uint32_t> places;
  std::vector<std::uint32_t> entries;
};

}  // namespace ombrix

#endif
