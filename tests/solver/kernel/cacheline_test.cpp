#include "solver/kernel/cacheline.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <utility>
#include <vector>

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

TEST(CacheLineArray, HoldsItsElementsInLinesOfItsOwn) {
  std::vector<CacheLineArray<std::uint16_t>> arrays;
  std::set<std::uintptr_t> lines;
  std::size_t nbLines = 0;
  for (std::size_t size = 1; size <= 100; ++size) {
    arrays.push_back(makeCacheLineArray<std::uint16_t>(size));
    const std::uintptr_t begin = addressOf(arrays.back().get());
    EXPECT_EQ(begin % kCacheLineSize, 0u);
    for (std::size_t i = 0; i < size; ++i) arrays.back()[i] = static_cast<std::uint16_t>(i);
    for (std::size_t i = 0; i < size * sizeof(std::uint16_t); i += kCacheLineSize) {
      lines.insert(begin + i);
      ++nbLines;
    }
  }
  EXPECT_EQ(lines.size(), nbLines);
  EXPECT_NE(makeCacheLineArray<std::uint16_t>(0), nullptr);
}

TEST(CacheLineResource, HandsOutWholeLines) {
  CacheLineResource resource;
  std::vector<void*> blocks;
  std::set<std::uintptr_t> lines;
  for (int i = 0; i < 100; ++i) {
    blocks.push_back(resource.allocate(24, 8));
    EXPECT_EQ(addressOf(blocks.back()) % kCacheLineSize, 0u);
    lines.insert(addressOf(blocks.back()));
  }
  EXPECT_EQ(lines.size(), blocks.size());
  for (void* block : blocks) resource.deallocate(block, 24, 8);
}

}  // namespace
}  // namespace ombrix
