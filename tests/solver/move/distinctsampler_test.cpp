#include "solver/move/distinctsampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "tests/support/scriptedmove.h"

namespace ombrix {
namespace {

/// The same draws on the array that the sampler never builds.
std::vector<std::uint32_t> shuffleInFull(std::uint32_t seed, std::uint32_t n, std::uint32_t k) {
  test::Draws draws(seed);
  std::vector<std::uint32_t> all(n);
  std::iota(all.begin(), all.end(), 0u);
  std::vector<std::uint32_t> drawn;
  for (std::uint32_t left = n; drawn.size() < k; --left) {
    const std::uint32_t place = draws.index(left);
    drawn.push_back(all[place]);
    all[place] = all[left - 1];
  }
  return drawn;
}

TEST(DistinctSampler, DrawsWhatAShuffleOfTheFullArrayWouldDraw) {
  DistinctSampler sampler;
  std::vector<std::uint32_t> drawn;
  for (std::uint32_t seed = 1; seed < 200; ++seed) {
    for (const std::uint32_t n : {1u, 2u, 3u, 10u, 1000u}) {
      for (const std::uint32_t k : {0u, 1u, n / 2, n}) {
        std::uint32_t rng = seed;
        sampler.sample(rng, n, k, drawn);
        ASSERT_EQ(drawn, shuffleInFull(seed, n, k)) << seed << " " << n << " " << k;
      }
    }
  }
}

TEST(DistinctSampler, AllOfThemAreAPermutation) {
  DistinctSampler sampler;
  std::vector<std::uint32_t> drawn;
  std::uint32_t rng = 99;
  sampler.sample(rng, 50, 50, drawn);
  std::sort(drawn.begin(), drawn.end());
  for (std::uint32_t i = 0; i < 50; ++i) EXPECT_EQ(drawn[i], i);
}

TEST(DistinctSampler, TheLastDrawOfAllLeavesNoChoiceAndStepsNothing) {
  DistinctSampler sampler;
  std::vector<std::uint32_t> drawn;
  std::uint32_t rng = 99;
  sampler.sample(rng, 1, 1, drawn);
  EXPECT_EQ(drawn, std::vector<std::uint32_t>{0});
  EXPECT_EQ(rng, 99u);
}

TEST(DistinctSampler, DrawsArePinned) {
  DistinctSampler sampler;
  std::vector<std::uint32_t> drawn;
  std::uint32_t rng = 1;
  sampler.sample(rng, 10, 10, drawn);
  EXPECT_EQ(drawn, (std::vector<std::uint32_t>{2, 3, 4, 7, 0, 1, 8, 6, 5, 9}));
  EXPECT_EQ(rng, 70837908u);
}

}  // namespace
}  // namespace ombrix
