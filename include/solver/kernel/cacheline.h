#ifndef OMBRIX_SOLVER_KERNEL_CACHELINE_H
#define OMBRIX_SOLVER_KERNEL_CACHELINE_H

#include <cstddef>
#include <new>
#include <vector>

namespace ombrix {

/// The unit in which processors pass memory to one another.
inline constexpr std::size_t kCacheLineSize = 64;

/// Hands out whole cache lines. What a worker writes at every move must not share one with what
/// another worker reads or writes: the line would travel between their processors all the time, and
/// two threads would be hardly faster than one. Small arrays of several workers do end up side by
/// side in an ordinary heap.
template <typename T>
class CacheLineAllocator {
  static_assert(alignof(T) <= kCacheLineSize);

public:
  using value_type = T;

  CacheLineAllocator() = default;
  template <typename U>
  CacheLineAllocator(const CacheLineAllocator<U>&) noexcept {}

  T* allocate(std::size_t nbElements) {
    const std::size_t nbLines = (nbElements * sizeof(T) + kCacheLineSize - 1) / kCacheLineSize;
    const std::size_t nbBytes = nbLines * kCacheLineSize;
    return static_cast<T*>(::operator new (nbBytes, std::align_val_t{kCacheLineSize}));
  }
  void deallocate(T* elements, std::size_t) {
    ::operator delete (elements, std::align_val_t{kCacheLineSize});
  }

  template <typename U>
  bool operator==(const CacheLineAllocator<U>&) const {
    return true;
  }
};

template <typename T>
using CacheLineVector = std::vector<T, CacheLineAllocator<T>>;

}  // namespace ombrix

#endif
