#include "solver/move/distinctsampler.h"

namespace ombrix {

void DistinctSampler::reserve(std::uint32_t k) {
  places.reserve(k);
  entries.reserve(k);
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
