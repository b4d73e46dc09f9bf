#ifndef OMBRIX_SOLVER_MOVE_DISTINCTSAMPLER_H
#define OMBRIX_SOLVER_MOVE_DISTINCTSAMPLER_H

#include <cstdint>

#include "solver/kernel/cacheline.h"
#include "solver/kernel/random.h"

namespace ombrix {

/// Draws k distinct integers below n by the first k steps of a shuffle of 0, 1, ..., n - 1. The
/// array is never built: only the displaced entries are held and searched linearly. Time O(k) per
/// draw and memory O(k), whatever n is.
class DistinctSampler {
public:
  /// Takes the memory for k draws, so that sample allocates nothing.
  void reserve(std::uint32_t k);
  /// Puts the draws into out; k is at most n.
  template <typename Vector>
  void sample(std::uint32_t& rng, std::uint32_t n, std::uint32_t k, Vector& out) {
    out.clear();
    places.clear();
    entries.clear();
    for (std::uint32_t left = n; left > n - k; --left) {
      const std::uint32_t place = randomIndex(rng, left);
      out.push_back(entryAt(place));
      if (place != left - 1) setEntry(place, entryAt(left - 1));
    }
  }

private:
  std::uint32_t entryAt(std::uint32_t place) const;
  void setEntry(std::uint32_t place, std::uint32_t entry);

  CacheLineVector<std::uint32_t> places;
  CacheLineVector<std::uint32_t> entries;
};

}  // namespace ombrix

#endif
