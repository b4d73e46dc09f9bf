#include "solver/kernel/largepages.h"

#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace ombrix {

#ifdef MADV_HUGEPAGE

void adviseLargePages(void* data, std::size_t bytes) {
  constexpr std::uintptr_t kLargePage = std::uintptr_t{2} << 20;
  const auto begin = reinterpret_cast<std::uintptr_t>(data);
  const std::uintptr_t first = (begin + kLargePage - 1) & ~(kLargePage - 1);
  const std::uintptr_t end = (begin + bytes) & ~(kLargePage - 1);
  if (first >= end) return;
  // A refusal leaves small pages, which serve as well.
  madvise(static_cast<std::byte*>(data) + (first - begin), end - first, MADV_HUGEPAGE);
}

#else

void adviseLargePages(void*, std::size_t) {}

#endif

}  // namespace ombrix
