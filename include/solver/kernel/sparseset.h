#ifndef OMBRIX_SOLVER_KERNEL_SPARSESET_H
#define OMBRIX_SOLVER_KERNEL_SPARSESET_H

#include <cstdint>
#include <utility>

#include "solver/kernel/cacheline.h"

namespace ombrix {

/// A set of integers from 0 to capacity - 1 with O(1) membership, insertion and removal. items is a
/// permutation of all numbers: the members come first, and the complement stands behind them at no
/// cost. Invariant: items[positions[x]] == x for every x.
class SparseSet {
public:
  SparseSet() = default;
  explicit SparseSet(std::uint32_t capacity) { init(capacity); }

  /// Makes the set empty, over the numbers below newCapacity.
  void init(std::uint32_t newCapacity) {
    items.resize(newCapacity);
    positions.resize(newCapacity);
    for (std::uint32_t i = 0; i < newCapacity; ++i) {
      items[i] = i;
      positions[i] = i;
    }
    nbMembers = 0;
  }

  std::uint32_t size() const { return nbMembers; }
  std::uint32_t capacity() const { return static_cast<std::uint32_t>(items.size()); }
  bool contains(std::uint32_t x) const { return positions[x] < nbMembers; }
  bool isFull() const { return nbMembers == items.size(); }

  /// The members for index below size(), then the complement.
  std::uint32_t operator[](std::uint32_t index) const { return items[index]; }
  std::uint32_t position(std::uint32_t x) const { return positions[x]; }

  void add(std::uint32_t x) {
    if (contains(x)) return;
    exchange(positions[x], nbMembers);
    ++nbMembers;
  }

  void remove(std::uint32_t x) {
    if (!contains(x)) return;
    exchange(positions[x], nbMembers - 1);
    --nbMembers;
  }

  /// Cuts or extends the members along items: 0 empties the set, capacity() fills it.
  void setSize(std::uint32_t newSize) { nbMembers = newSize; }
  void clear() { nbMembers = 0; }

private:
  void exchange(std::uint32_t i, std::uint32_t j) {
    if (i == j) return;
    std::swap(items[i], items[j]);
    positions[items[i]] = i;
    positions[items[j]] = j;
  }

  CacheLineVector<std::uint32_t> items;
  CacheLineVector<std::uint32_t> positions;
  std::uint32_t nbMembers = 0;
};

}  // namespace ombrix

#endif
