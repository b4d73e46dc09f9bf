#ifndef OMBRIX_SOLVER_KERNEL_LARGEPAGES_H
#define OMBRIX_SOLVER_KERNEL_LARGEPAGES_H

#include <cstddef>
#include <vector>

namespace ombrix {

/// Asks the system to back a stretch of fresh memory with large pages, where it can. The search
/// reads the big arrays at random, and with small pages nearly every read of a large model would
/// also miss the address cache of the processor. Only advice: nothing depends on it. Stretches
/// below a large page are left alone.
void adviseLargePages(void* data, std::size_t bytes);

/// Reserves exactly so many elements of an empty vector, on large pages if it is big.
template <typename T, typename Allocator>
void reserveLarge(std::vector<T, Allocator>& elements, std::size_t nbElements) {
  elements.reserve(nbElements);
  adviseLargePages(elements.data(), nbElements * sizeof(T));
}

/// Sizes an empty vector, on large pages if it is big.
template <typename T, typename Allocator>
void resizeLarge(std::vector<T, Allocator>& elements, std::size_t nbElements,
                 const T& value = T()) {
  reserveLarge(elements, nbElements);
  elements.resize(nbElements, value);
}

}  // namespace ombrix

#endif
