#ifndef OMBRIX_SOLVER_KERNEL_SUBSETBITS_H
#define OMBRIX_SOLVER_KERNEL_SUBSETBITS_H

#include <array>
#include <cstdint>

#include "solver/kernel/bitops.h"
#include "solver/kernel/subsetoperations.h"

namespace ombrix {

/// A set of positions below 64 N, one bit each, with its size kept beside the words: the sets of a
/// node of medium width stand in the node's object. No bit at or above n is ever set.
template <std::uint32_t N>
class SubsetBits : public BitSetOperations<SubsetBits<N>> {
public:
  void init(std::uint32_t) {
    words.fill(0);
    nbMembers = 0;
  }
  void clear() {
    if (nbMembers != 0) init(0);
  }
  std::uint32_t size() const { return nbMembers; }
  bool contains(std::uint32_t i, std::uint32_t) const { return (words[i / 64] >> (i % 64)) & 1; }
  void add(std::uint32_t i, std::uint32_t n) {
    nbMembers += contains(i, n) ? 0 : 1;
    words[i / 64] |= bit(i);
  }
  void remove(std::uint32_t i, std::uint32_t n) {
    nbMembers -= contains(i, n) ? 1 : 0;
    words[i / 64] &= ~bit(i);
  }

  /// Iteration in rising order; n stands for the end.
  std::uint32_t first(std::uint32_t n) const { return firstFrom(0, words[0], n); }
  std::uint32_t next(std::uint32_t i, std::uint32_t n) const {
    return firstFrom(i / 64, words[i / 64] & ~(bit(i) | (bit(i) - 1)), n);
  }

  /// The k-th member; for k from size() on, the positions outside the set.
  std::uint32_t at(std::uint32_t k, std::uint32_t) const {
    return k < nbMembers ? select(k, 0) : select(k - nbMembers, ~std::uint64_t{0});
  }

  template <typename Function>
  void forEach(std::uint32_t n, Function&& function) const {
    for (std::uint32_t w = 0; w < nbWords(n); ++w) {
      for (std::uint64_t rest = words[w]; rest != 0; rest &= rest - 1)
        function(w * 64 + lowestBit(rest));
    }
  }
  template <typename Function>
  void forEachNonMember(std::uint32_t n, Function&& function) const {
    for (std::uint32_t w = 0; w < nbWords(n); ++w) {
      for (std::uint64_t rest = ~words[w] & lowBits(n - w * 64); rest != 0; rest &= rest - 1)
        function(w * 64 + lowestBit(rest));
    }
  }
  /// Whether the predicate holds for some member; stops at the first.
  template <typename Predicate>
  bool any(std::uint32_t n, Predicate&& holds) const {
    for (std::uint32_t w = 0; w < nbWords(n); ++w) {
      for (std::uint64_t rest = words[w]; rest != 0; rest &= rest - 1) {
        if (holds(w * 64 + lowestBit(rest))) return true;
      }
    }
    return false;
  }

private:
  static std::uint64_t bit(std::uint32_t i) { return std::uint64_t{1} << (i % 64); }
  static std::uint32_t nbWords(std::uint32_t n) { return (n + 63) / 64; }

  std::uint32_t firstFrom(std::uint32_t w, std::uint64_t rest, std::uint32_t n) const {
    while (rest == 0) {
      if (++w == N) return n;
      rest = words[w];
    }
    return w * 64 + lowestBit(rest);
  }

  /// The k-th set bit of the words, each combined with the flip: all ones select clear bits.
  std::uint32_t select(std::uint32_t k, std::uint64_t flip) const {
    std::uint32_t w = 0;
    for (std::uint32_t inWord = countBits(words[0] ^ flip); k >= inWord;
         inWord = countBits(words[w] ^ flip)) {
      k -= inWord;
      ++w;
    }
    return w * 64 + selectBit(words[w] ^ flip, k);
  }

  std::array<std::uint64_t, N> words{};
  std::uint32_t nbMembers = 0;
};

}  // namespace ombrix

#endif
