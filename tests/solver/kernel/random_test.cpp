#include "solver/kernel/random.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

// The expected numbers were computed apart from this code, from the formulas of the generator. They
// pin what a seed leads to: if one of these tests fails, every saved trajectory has changed.

namespace ombrix {
namespace {

constexpr int kNbDraws = 1000;
constexpr std::size_t kNbShown = 20;

/// FNV-1a over the little-endian bytes of 64-bit words.
class Checksum {
public:
  void add(std::uint64_t word) {
    for (int i = 0; i < 8; ++i) {
      sum = (sum ^ ((word >> (8 * i)) & 0xFF)) * 0x100000001b3U;
    }
  }
  std::uint64_t get() const { return sum; }

private:
  std::uint64_t sum = 0xcbf29ce484222325U;
};

/// Draws a thousand times from state 0: compares the first results one by one, all by checksum.
template <typename Draw, typename Expected>
void expectDraws(const Draw& draw, const std::array<Expected, kNbShown>& first,
                 std::uint64_t checksum) {
  std::uint32_t state = 0;
  Checksum sum;
  for (int i = 0; i < kNbDraws; ++i) {
    const auto result = draw(state);
    const auto at = static_cast<std::size_t>(i);
    if (at < kNbShown) {
      EXPECT_EQ(result, first[at]) << "draw " << i;
    }
    if constexpr (std::is_same_v<Expected, double>) {
      sum.add(std::bit_cast<std::uint64_t>(result));
    } else {
      sum.add(static_cast<std::uint64_t>(result));
    }
  }
  EXPECT_EQ(sum.get(), checksum);
  EXPECT_EQ(state, 3926946568U);
}

TEST(Random, StatesFromZero) {
  expectDraws(
      [](std::uint32_t& state) { return step(state); },
      std::array<std::uint32_t, kNbShown>{
          1013904223U, 1196435762U, 3519870697U, 2868466484U, 1649599747U, 2670642822U, 1476291629U,
          2748932008U, 2180890343U, 2498801434U, 3421909937U, 3167820124U, 2636375307U, 3801544430U,
          28987765U,   2210837584U, 3039689583U, 1338634754U, 1649346937U, 2768872580U},
      0x77fb1b21c301a326U);
}

TEST(Random, StepReturnsTheStateItLeaves) {
  std::uint32_t state = 12345;
  const std::uint32_t result = step(state);
  EXPECT_EQ(result, state);
  EXPECT_EQ(result, 87628868U);
}

TEST(Random, IndicesBelowTen) {
  expectDraws([](std::uint32_t& state) { return randomIndex(state, 10); },
              std::array<std::uint32_t, kNbShown>{2, 2, 8, 6, 3, 6, 3, 6, 5, 5,
                                                  7, 7, 6, 8, 0, 5, 7, 3, 3, 6},
              0xca5f3e824949426cU);
}

TEST(Random, IndicesBelowALargePrime) {
  expectDraws([](std::uint32_t& state) { return randomIndex(state, 1000003); },
              std::array<std::uint32_t, kNbShown>{
                  236068, 278567, 819536, 667868, 384078, 621809, 343726, 640037, 507779, 581799,
                  796727, 737567, 613830, 885118, 6749,   514752, 707735, 311676, 384019, 644680},
              0x48795126a1c36a7dU);
}

TEST(Random, AnIndexWithoutChoiceDoesNotStep) {
  std::uint32_t state = 7;
  EXPECT_EQ(randomIndex(state, 0), 0U);
  EXPECT_EQ(randomIndex(state, 1), 0U);
  EXPECT_EQ(state, 7U);
}

TEST(Random, PercentOfThirtySeven) {
  expectDraws([](std::uint32_t& state) { return randomPercent(state, 37); },
              std::array<bool, kNbShown>{true,  true,  false, false, false, false, true,
                                         false, false, false, false, false, false, false,
                                         true,  false, false, true,  false, false},
              0x23f11ba6b6ecc1c4U);
}

TEST(Random, PercentStepsAlsoWhenTheAnswerIsKnown) {
  std::uint32_t state = 0;
  EXPECT_FALSE(randomPercent(state, 0));
  EXPECT_EQ(state, 1013904223U);
  EXPECT_TRUE(randomPercent(state, 100));
  EXPECT_EQ(state, 1196435762U);
  EXPECT_FALSE(randomPercent(state, -1));
}

TEST(Random, BooleansAreTrueInTheLowerHalf) {
  expectDraws([](std::uint32_t& state) { return randomBool(state); },
              std::array<bool, kNbShown>{true,  true,  false, false, true,  false, true,
                                         false, false, false, false, false, false, false,
                                         true,  false, false, true,  true,  false},
              0x9a8af088e3ff5305U);
}

TEST(Random, TopBitsAreTrueInTheUpperHalf) {
  expectDraws(
      [](std::uint32_t& state) { return randomTopBit(state); },
      std::array<bool, kNbShown>{false, false, true, true, false, true, false, true,  true,  true,
                                 true,  true,  true, true, false, true, true,  false, false, true},
      0x90d1ac34cb891505U);
}

TEST(Random, UnitsAreRoundedToSinglePrecision) {
  expectDraws(
      [](std::uint32_t& state) { return randomUnit(state); },
      std::array<double, kNbShown>{
          0.2360679656267166,  0.2785668969154358,  0.8195337653160095,    0.6678668856620789,
          0.38407737016677856, 0.6218075156211853,  0.34372591972351074,   0.6400356292724609,
          0.5077781081199646,  0.5817975401878357,  0.7967255115509033,    0.7375655770301819,
          0.6138289570808411,  0.8851160407066345,  0.0067492397502064705, 0.5147507190704346,
          0.7077328562736511,  0.31167519092559814, 0.38401851058006287,   0.6446784138679504},
      0xed75d2237596f2c6U);
}

}  // namespace
}  // namespace ombrix
