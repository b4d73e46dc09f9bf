#ifndef OMBRIX_SOLVER_KERNEL_SUBSETCHOICE_H
#define OMBRIX_SOLVER_KERNEL_SUBSETCHOICE_H

#include <cstdint>
#include <limits>
#include <type_traits>

#include "solver/kernel/subset.h"
#include "solver/kernel/subsetbits.h"
#include "solver/kernel/subsetmask.h"

namespace ombrix {

/// Calls the function with the type identity of the subset type for an operand count: a mask of one
/// word up to 64, some words up to 1024, beyond that a list of positions as narrow as it may be.
template <typename Function>
auto withSubset(std::uint32_t nbOperands, Function&& function) {
  if (nbOperands <= 8) return function(std::type_identity<SubsetMask<std::uint8_t>>{});
  if (nbOperands <= 16) return function(std::type_identity<SubsetMask<std::uint16_t>>{});
  if (nbOperands <= 32) return function(std::type_identity<SubsetMask<std::uint32_t>>{});
  if (nbOperands <= 64) return function(std::type_identity<SubsetMask<std::uint64_t>>{});
  if (nbOperands <= 128) return function(std::type_identity<SubsetBits<2>>{});
  if (nbOperands <= 256) return function(std::type_identity<SubsetBits<4>>{});
  if (nbOperands <= 512) return function(std::type_identity<SubsetBits<8>>{});
  if (nbOperands <= 1024) return function(std::type_identity<SubsetBits<16>>{});
  if (nbOperands < std::numeric_limits<std::uint16_t>::max())
    return function(std::type_identity<Subset<std::uint16_t>>{});
  return function(std::type_identity<Subset<std::uint32_t>>{});
}

}  // namespace ombrix

#endif
