#ifndef OMBRIX_SOLVER_KERNEL_MODIFIEDSET_H
#define OMBRIX_SOLVER_KERNEL_MODIFIEDSET_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "solver/kernel/cacheline.h"
#include "solver/kernel/largepages.h"
#include "solver/kernel/subset.h"

namespace ombrix {

/// The positions of a wide node that changed in the open move: a set that only grows until it is
/// emptied, so a list of its members in the order of addition and a bit per position serve. An
/// addition touches the end of the list and one bit, both near at hand, where a permutation would
/// be written in three distant places.
template <typename T>
class ModifiedList {
public:
  void init(std::uint32_t n) {
    members = makeCacheLineArray<T>(n);
    adviseLargePages(members.get(), n * sizeof(T));
    const std::uint32_t nbWords = n / 64 + 1;
    words = makeCacheLineArray<std::uint64_t>(nbWords);
    std::fill_n(words.get(), nbWords, 0);
    nbMembers = 0;
  }
  void clear() {
    for (std::uint32_t k = 0; k < nbMembers; ++k) words[members[k] / 64] = 0;
    nbMembers = 0;
  }
  std::uint32_t size() const { return nbMembers; }
  bool contains(std::uint32_t i, std::uint32_t) const { return (words[i / 64] >> (i % 64)) & 1; }
  void add(std::uint32_t i, std::uint32_t) {
    const std::uint64_t bit = std::uint64_t{1} << (i % 64);
    if ((words[i / 64] & bit) != 0) return;
    words[i / 64] |= bit;
    members[nbMembers++] = static_cast<T>(i);
  }

  template <typename Function>
  void forEach(std::uint32_t, Function&& function) const {
    const T* const items = members.get();
    for (std::uint32_t k = 0, end = nbMembers; k < end; ++k) function(std::uint32_t{items[k]});
  }
  /// Whether the predicate holds for some member; stops at the first.
  template <typename Predicate>
  bool any(std::uint32_t, Predicate&& holds) const {
    const T* const items = members.get();
    for (std::uint32_t k = 0, end = nbMembers; k < end; ++k) {
      if (holds(std::uint32_t{items[k]})) return true;
    }
    return false;
  }

private:
  CacheLineArray<T> members;
  CacheLineArray<std::uint64_t> words;
  std::uint32_t nbMembers = 0;
};

/// The set of changed positions that goes with a subset type: the same while it is a few words.
template <typename S>
struct ModifiedSetFor {
  using type = S;
};
template <typename T>
struct ModifiedSetFor<Subset<T>> {
  using type = ModifiedList<T>;
};
template <typename S>
using ModifiedSet = typename ModifiedSetFor<S>::type;

}  // namespace ombrix

#endif
