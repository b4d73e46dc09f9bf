#ifndef OMBRIX_SOLVER_KERNEL_BITOPS_H
#define OMBRIX_SOLVER_KERNEL_BITOPS_H

#include <bit>
#include <cstdint>

namespace ombrix {

/// The number of set bits. Without the instruction the compiler would call a table-driven library
/// function; the inline arithmetic is several times faster, and evaluations ask at every step.
inline std::uint32_t countBits(std::uint64_t word) {
#ifdef __POPCNT__
  return static_cast<std::uint32_t>(std::popcount(word));
#else
  word -= (word >> 1) & 0x5555555555555555;
  word = (word & 0x3333333333333333) + ((word >> 2) & 0x3333333333333333);
  word = (word + (word >> 4)) & 0x0f0f0f0f0f0f0f0f;
  return static_cast<std::uint32_t>((word * 0x0101010101010101) >> 56);
#endif
}

/// The index of the lowest set bit of a word that has one.
inline std::uint32_t lowestBit(std::uint64_t word) {
  return static_cast<std::uint32_t>(std::countr_zero(word));
}

/// The index of the k-th set bit, counted from 0, of a word that has so many.
inline std::uint32_t selectBit(std::uint64_t word, std::uint32_t k) {
  for (; k != 0; --k) word &= word - 1;
  return lowestBit(word);
}

/// The lowest n bits, for n up to 64.
inline std::uint64_t lowBits(std::uint32_t n) {
  return n >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << n) - 1;
}

}  // namespace ombrix

#endif
