#include "solver/move/distinctsampler.h"

#include "solver/kernel/random.h"

namespace ombrix {

void DistinctSampler::reserve(std::uint32_t k) {
  places.reserve(k);
  entries.reserve(k);
}

void DistinctSampler::sample(std::uint32_t& rng, std::uint32_t n, std::uint32_t k,
                             std::vector<std::uint32_t>& out) {
  out.clear();
  places.clear();
  entries.clear();
  for (std::uint32_t left = n; left > n - k; --left) {
    const std::uint32_t place = randomIndex(rng, left);
    out.push_back(entryAt(place));
    if (place != left - 1) setEntry(place, entryAt(left - 1));
  }
}

std::uint32_t DistinctSampler::entryAt(std::uint32_t place) const {
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (places[i] == place) return entries[i];
  }
  return place;
}

void DistinctSampler::setEntry(std::uint32_t place, std::uint32_t entry) {
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (places[i] == place) {
      entries[i] = entry;
      return;
    }
  }
  places.push_back(place);
  entries.push_back(entry);
}

}  // namespace ombrix
