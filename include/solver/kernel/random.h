#ifndef OMBRIX_SOLVER_KERNEL_RANDOM_H
#define OMBRIX_SOLVER_KERNEL_RANDOM_H

#include <cstdint>

namespace ombrix {

/// All random draws of the system, over a state of 32 bits that belongs to one worker. Each draw
/// steps the state once, except for an index that leaves no choice. The same state gives the same
/// draws on every machine, which makes a run repeatable: no other source of chance is used.

/// Moves to the next state and returns it.
inline std::uint32_t step(std::uint32_t& state) {
  state = state * 1664525U + 1013904223U;
  return state;
}

/// An index below n. No step, and 0, if n is at most 1.
inline std::uint32_t randomIndex(std::uint32_t& state, std::uint32_t n) {
  if (n <= 1) return 0;
  return static_cast<std::uint32_t>((static_cast<std::uint64_t>(step(state)) * n) >> 32);
}

/// True in rate cases out of a hundred.
inline bool randomPercent(std::uint32_t& state, std::int64_t rate) {
  return static_cast<std::int64_t>((static_cast<std::uint64_t>(step(state)) * 100U) >> 32) < rate;
}

/// A coin: true in the lower half of the range.
inline bool randomBool(std::uint32_t& state) {
  return step(state) <= 2147483647U;
}

/// A number from 0 up to 1. The rounding to single precision belongs to the draw: dropping it would
/// change what a seed leads to.
inline double randomUnit(std::uint32_t& state) {
  const std::uint64_t scaled = (static_cast<std::uint64_t>(step(state)) * 2147483647U) >> 32;
  return static_cast<double>(static_cast<float>(static_cast<double>(scaled) / 2147483647.0));
}

/// A coin on the top bit: true in the upper half of the range.
inline bool randomTopBit(std::uint32_t& state) {
  return step(state) > 2147483647U;
}

}  // namespace ombrix

#endif
