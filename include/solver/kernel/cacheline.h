#ifndef OMBRIX_SOLVER_KERNEL_CACHELINE_H
#define OMBRIX_SOLVER_KERNEL_CACHELINE_H

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <new>
#include <type_traits>
#include <vector>

namespace ombrix {

/// The unit in which processors pass memory to one another.
inline constexpr std::size_t kCacheLineSize = 64;

/// Whole cache lines that hold so many bytes; freed by freeCacheLines.
inline void* allocateCacheLines(std::size_t nbBytes) {
  const std::size_t nbLines = (nbBytes + kCacheLineSize - 1) / kCacheLineSize;
  return ::operator new (nbLines* kCacheLineSize, std::align_val_t{kCacheLineSize});
}
inline void freeCacheLines(void* lines) {
  ::operator delete (lines, std::align_val_t{kCacheLineSize});
}

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
    // T may be a pointer: its own size is meant.
    const std::size_t elementSize = sizeof(T);  // NOLINT(bugprone-sizeof-expression)
    return static_cast<T*>(allocateCacheLines(nbElements * elementSize));
  }
  void deallocate(T* elements, std::size_t) { freeCacheLines(elements); }

  template <typename U>
  bool operator==(const CacheLineAllocator<U>&) const {
    return true;
  }
};

template <typename T>
using CacheLineVector = std::vector<T, CacheLineAllocator<T>>;

struct CacheLineDeleter {
  void operator()(void* lines) const { freeCacheLines(lines); }
};

/// A plain array in cache lines of its own, as small as a pointer.
template <typename T>
using CacheLineArray = std::unique_ptr<T[], CacheLineDeleter>;

/// Its elements are not initialised.
template <typename T>
CacheLineArray<T> makeCacheLineArray(std::size_t nbElements) {
  static_assert(std::is_trivial_v<T>);
  return CacheLineArray<T>(static_cast<T*>(allocateCacheLines(nbElements * sizeof(T))));
}

/// Feeds an arena with whole cache lines.
class CacheLineResource : public std::pmr::memory_resource {
private:
  void* do_allocate(std::size_t nbBytes, std::size_t) override {
    return allocateCacheLines(nbBytes);
  }
  void do_deallocate(void* lines, std::size_t, std::size_t) override { freeCacheLines(lines); }
  bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
    return this == &other;
  }
};

}  // namespace ombrix

#endif
