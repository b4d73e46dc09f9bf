#ifndef OMBRIX_BENCH_DRAWS_H
#define OMBRIX_BENCH_DRAWS_H

#include <cstdint>
#include <random>
#include <vector>

namespace ombrix::bench {

/// Draws that do not depend on the standard library's distributions, so that every host builds the
/// same models.
class Draws {
public:
  explicit Draws(std::uint32_t seed) : engine(seed) {}

  int below(int n) {
    return static_cast<int>(
        (static_cast<std::uint64_t>(engine()) * static_cast<std::uint64_t>(n)) >> 32);
  }

  template <typename Item>
  Item of(const std::vector<Item>& items) {
    return items[static_cast<std::size_t>(below(static_cast<int>(items.size())))];
  }

private:
  std::mt19937 engine;
};

}  // namespace ombrix::bench

#endif
