#include "solver/kernel/cacheline.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

namespace ombrix {
namespace {

std::uintptr_t addressOf(const void* place) {
  return reinterpret_cast<std::uintptr_t>(place);
}

TEST(CacheLineVector, SmallArraysNeverShareALine) {
  std::vector<CacheLineVector<std::uint32_t>> arrays;
  for (std::size_t size = 1; size <= 40; ++size) {
    arrays.emplace_back(size, std::uint32_t{7});
    EXPECT_EQ(addressOf(arrays.back().data()) % kCacheLineSize, 0u);
  }
  for (const auto& one : arrays) {
    const std::uintptr_t begin = addressOf(one.data());
    const std::uintptr_t end = begin + (one.size() * sizeof(std::uint32_t) + kCacheLineSize - 1) /
                                           kCacheLineSize * kCacheLineSize;
    for (const auto& other : arrays) {
      const std::uintptr_t place = addressOf(other.data());
      EXPECT_TRUE(&one == &other || place < begin || place >= end);
    }
  }
}

TEST(CacheLineVector, IsCopiedMovedAndGrownLikeAnyVector) {
  CacheLineVector<std::uint64_t> values;
  for (std::uint64_t i = 0; i < 100; ++i) values.push_back(i);
  const CacheLineVector<std::uint64_t> copy = values;
  const std::uint64_t* const place = values.data();
  const CacheLineVector<std::uint64_t> moved = std::move(values);
  EXPECT_EQ(moved.data(), place);
  EXPECT_EQ(copy, moved);
  EXPECT_NE(copy.data(), moved.data());
  EXPECT_EQ(addressOf(copy.data()) % kCacheLineSize, 0u);
  EXPECT_EQ(addressOf(moved.data()) % kCacheLineSize, 0u);
}

}  // namespace
}  // namespace ombrix
