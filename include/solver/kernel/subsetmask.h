#ifndef OMBRIX_SOLVER_KERNEL_SUBSETMASK_H
#define OMBRIX_SOLVER_KERNEL_SUBSETMASK_H

#include <cstdint>

#include "solver/kernel/bitops.h"
#include "solver/kernel/subsetoperations.h"

namespace ombrix {

/// A set of positions below the bit count of T, one bit each: a node with few operands keeps its
/// sets in a word of its own object. No bit at or above n is ever set.
template <typename T>
class SubsetMask : public BitSetOperations<SubsetMask<T>> {
public:
  void init(std::uint32_t) { mask = 0; }
  void clear() { mask = 0; }
  std::uint32_t size() const { return countBits(mask); }
  bool contains(std::uint32_t i, std::uint32_t) const { return (bits() >> i) & 1; }
  void add(std::uint32_t i, std::uint32_t) { mask = static_cast<T>(bits() | bit(i)); }
  void remove(std::uint32_t i, std::uint32_t) { mask = static_cast<T>(bits() & ~bit(i)); }

  /// Iteration in rising order; n stands for the end.
  std::uint32_t first(std::uint32_t n) const { return mask == 0 ? n : lowestBit(mask); }
  std::uint32_t next(std::uint32_t i, std::uint32_t n) const {
    const std::uint64_t rest = bits() & ~(bit(i) | (bit(i) - 1));
    return rest == 0 ? n : lowestBit(rest);
  }

  /// The k-th member; for k from size() on, the positions outside the set.
  std::uint32_t at(std::uint32_t k, std::uint32_t) const {
    const std::uint32_t nbMembers = size();
    return k < nbMembers ? selectBit(bits(), k) : selectBit(~bits(), k - nbMembers);
  }

  template <typename Function>
  void forEach(std::uint32_t, Function&& function) const {
    for (std::uint64_t rest = bits(); rest != 0; rest &= rest - 1) function(lowestBit(rest));
  }
  template <typename Function>
  void forEachNonMember(std::uint32_t n, Function&& function) const {
    for (std::uint64_t rest = ~bits() & lowBits(n); rest != 0; rest &= rest - 1)
      function(lowestBit(rest));
  }
  /// Whether the predicate holds for some member; stops at the first.
  template <typename Predicate>
  bool any(std::uint32_t, Predicate&& holds) const {
    for (std::uint64_t rest = bits(); rest != 0; rest &= rest - 1) {
      if (holds(lowestBit(rest))) return true;
    }
    return false;
  }

private:
  std::uint64_t bits() const { return mask; }
  static std::uint64_t bit(std::uint32_t i) { return std::uint64_t{1} << i; }

  T mask = 0;
};

}  // namespace ombrix

#endif
