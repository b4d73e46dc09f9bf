#include "api/expressionpool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace ombrix {
namespace {

TEST(ExpressionPoolTest, ChunksDoubleUpToTheCap) {
  ExpressionPool pool(32);
  std::vector<std::size_t> capacities;
  while (pool.getNbChunks() < 9) {
    pool.allocate();
    if (pool.getNbChunks() > capacities.size()) capacities.push_back(pool.getChunkCapacity());
  }
  EXPECT_EQ(capacities,
            (std::vector<std::size_t>{128, 256, 512, 1024, 2048, 4096, 8192, 8192, 8192}));
}

TEST(ExpressionPoolTest, AChunkIsFilledBeforeTheNext) {
  ExpressionPool pool(32);
  EXPECT_EQ(pool.getNbChunks(), 0u);
  for (int i = 0; i < 128; ++i) pool.allocate();
  EXPECT_EQ(pool.getNbChunks(), 1u);
  pool.allocate();
  EXPECT_EQ(pool.getNbChunks(), 2u);
}

TEST(ExpressionPoolTest, RecordsDoNotOverlapAndAreAligned) {
  ExpressionPool pool(32);
  std::vector<unsigned char*> records;
  for (int i = 0; i < 1000; ++i) {
    records.push_back(static_cast<unsigned char*>(pool.allocate()));
    std::memset(records.back(), i % 251, 32);
  }
  for (std::size_t i = 0; i < records.size(); ++i) {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(records[i]) % 8, 0u);
    EXPECT_EQ(records[i][0], i % 251);
    EXPECT_EQ(records[i][31], i % 251);
  }
}

}  // namespace
}  // namespace ombrix
