#include "solver/kernel/largepages.h"

#include <gtest/gtest.h>

namespace ombrix {
namespace {

TEST(LargePages, adviceLeavesTheContentsOfMemoryOfAnySizeAlone) {
  for (std::size_t size : {std::size_t{0}, std::size_t{1000}, std::size_t{9} << 20}) {
    std::vector<char> bytes(size, 'x');
    adviseLargePages(bytes.data(), bytes.size());
    for (std::size_t i = 0; i < size; i += 997) ASSERT_EQ(bytes[i], 'x');
  }
}

TEST(LargePages, anArrayHasExactlyTheSizeAskedFor) {
  std::vector<int> reserved;
  reserveLarge(reserved, 3000000);
  EXPECT_EQ(reserved.capacity(), 3000000u);
  EXPECT_TRUE(reserved.empty());
  std::vector<int> resized;
  resizeLarge(resized, 3000000, 7);
  EXPECT_EQ(resized.size(), 3000000u);
  EXPECT_EQ(resized.front() + resized.back(), 14);
}

}  // namespace
}  // namespace ombrix
