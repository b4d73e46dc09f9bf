#ifndef OMBRIX_SOLVER_KERNEL_SUBSET_H
#define OMBRIX_SOLVER_KERNEL_SUBSET_H

#include <cstddef>
#include <cstdint>
#include <utility>

#include "solver/kernel/cacheline.h"
#include "solver/kernel/largepages.h"
#include "solver/kernel/subsetoperations.h"

namespace ombrix {

/// A set of positions of a wide node: a sparse set in one heap block, with entries of 16 bits where
/// they suffice. The first n entries are a permutation of the positions, the members in front; the
/// second n tell where each position stands in the first. Members come in no particular order.
template <typename T>
class Subset : public SubsetOperations<Subset<T>> {
public:
  void init(std::uint32_t n) {
    data = makeCacheLineArray<T>(std::size_t{2} * n);
    adviseLargePages(data.get(), std::size_t{2} * n * sizeof(T));
    for (std::uint32_t i = 0; i < n; ++i) {
      data[i] = static_cast<T>(i);
      data[n + i] = static_cast<T>(i);
    }
    nbMembers = 0;
  }
  void clear() { nbMembers = 0; }
  std::uint32_t size() const { return nbMembers; }
  bool contains(std::uint32_t i, std::uint32_t n) const { return positions(n)[i] < nbMembers; }
  void add(std::uint32_t i, std::uint32_t n) {
    const std::uint32_t index = positions(n)[i];
    if (index < nbMembers) return;
    if (index > nbMembers) exchange(index, nbMembers, n);
    ++nbMembers;
  }
  void remove(std::uint32_t i, std::uint32_t n) {
    const std::uint32_t index = positions(n)[i];
    if (index >= nbMembers) return;
    --nbMembers;
    if (index < nbMembers) exchange(index, nbMembers, n);
  }

  /// Iteration over the members; n stands for the end.
  std::uint32_t first(std::uint32_t n) const { return nbMembers == 0 ? n : data[0]; }
  std::uint32_t next(std::uint32_t i, std::uint32_t n) const {
    const std::uint32_t index = positions(n)[i] + std::uint32_t{1};
    return index < nbMembers ? data[index] : n;
  }

  /// The k-th member; for k from size() on, the positions outside the set.
  std::uint32_t at(std::uint32_t k, std::uint32_t) const { return data[k]; }

  template <typename Function>
  void forEach(std::uint32_t, Function&& function) const {
    const T* const items = data.get();
    for (std::uint32_t k = 0, end = nbMembers; k < end; ++k) function(std::uint32_t{items[k]});
  }
  template <typename Function>
  void forEachNonMember(std::uint32_t n, Function&& function) const {
    const T* const items = data.get();
    for (std::uint32_t k = nbMembers; k < n; ++k) function(std::uint32_t{items[k]});
  }
  /// Whether the predicate holds for some member; stops at the first.
  template <typename Predicate>
  bool any(std::uint32_t, Predicate&& holds) const {
    const T* const items = data.get();
    for (std::uint32_t k = 0, end = nbMembers; k < end; ++k) {
      if (holds(std::uint32_t{items[k]})) return true;
    }
    return false;
  }
  /// Walks the members from the front; after a removal the index stays on what moved in.
  template <typename Predicate>
  void removeIf(std::uint32_t n, Predicate&& holds) {
    for (std::uint32_t k = 0; k < nbMembers;) {
      if (holds(std::uint32_t{data[k]})) {
        remove(data[k], n);
      } else {
        ++k;
      }
    }
  }
  /// Walks the positions outside the set from the end; after an addition the index stays on what
  /// moved in.
  template <typename Predicate>
  void addIf(std::uint32_t n, Predicate&& holds) {
    for (std::uint32_t k = n; k > nbMembers;) {
      if (holds(std::uint32_t{data[k - 1]})) {
        add(data[k - 1], n);
      } else {
        --k;
      }
    }
  }

private:
  T* positions(std::uint32_t n) { return data.get() + n; }
  const T* positions(std::uint32_t n) const { return data.get() + n; }

  void exchange(std::uint32_t i, std::uint32_t j, std::uint32_t n) {
    std::swap(data[i], data[j]);
    positions(n)[data[i]] = static_cast<T>(i);
    positions(n)[data[j]] = static_cast<T>(j);
  }

  CacheLineArray<T> data;
  T nbMembers = 0;
};

}  // namespace ombrix

#endif
