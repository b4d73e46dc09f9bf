#include "solver/kernel/nodepool.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

namespace ombrix {
namespace {

std::byte* next(NodePool& pool) {
  return static_cast<std::byte*>(pool.allocate());
}

TEST(NodePool, consumesABlockFromItsEndTowardsItsStart) {
  NodePool pool(24);
  std::byte* previous = next(pool);
  for (int i = 1; i < 128; ++i) {
    std::byte* element = next(pool);
    EXPECT_EQ(previous - element, 24);
    previous = element;
  }
}

TEST(NodePool, aBlockBeginsWithACacheLine) {
  NodePool pool(24);
  std::byte* element = nullptr;
  for (int i = 0; i < 128; ++i) element = next(pool);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(element) % kCacheLineSize, 0u);
}

// A block ends where the next element is not the one just below.
std::vector<std::size_t> blockSizes(NodePool& pool, std::size_t nbElements) {
  std::vector<std::size_t> sizes{1};
  std::byte* previous = next(pool);
  for (std::size_t i = 1; i < nbElements; ++i) {
    std::byte* element = next(pool);
    if (previous - element == 16) {
      ++sizes.back();
    } else {
      sizes.push_back(1);
    }
    previous = element;
  }
  return sizes;
}

TEST(NodePool, blocksDoubleFrom128To8192Elements) {
  NodePool pool(16);
  const std::vector<std::size_t> expected{128, 256, 512, 1024, 2048, 4096, 8192, 8192, 8192};
  std::size_t total = 0;
  for (std::size_t size : expected) total += size;
  EXPECT_EQ(blockSizes(pool, total), expected);
}

TEST(NodePool, elementsDoNotOverlap) {
  NodePool pool(8);
  std::set<std::byte*> seen;
  for (int i = 0; i < 1000; ++i) {
    std::byte* element = next(pool);
    std::memset(element, i, 8);
    EXPECT_TRUE(seen.insert(element).second);
  }
}

}  // namespace
}  // namespace ombrix
