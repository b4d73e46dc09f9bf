#include "solver/move/annealingstrategy.h"

#include <cmath>
#include <sstream>

#include "strategies_fixture.h"

namespace ombrix {
namespace {

/// A minimised double decision, so that every objective value can be set by hand.
class AnnealingStrategyTest : public StrategyTest {
protected:
  void start(bool isMaximised = false) {
    y = builder.floating(0, 100);
    if (isMaximised) {
      builder.maximise(y);
    } else {
      builder.minimise(y);
    }
    StrategyTest::start();
    strategy = std::make_unique<AnnealingStrategy>(*heuristic);
    strategy->reset();
  }
  void improveTo(double value) {
    test::setAndAccept(*dag, y, value);
    strategy->afterMove(MoveStatus::Improved);
  }
  std::optional<MoveStatus> verdictOn(double value) {
    move->setClamped(y, value);
    return settle(*strategy);
  }

  std::uint32_t y = 0;
  std::unique_ptr<AnnealingStrategy> strategy;
};

TEST_F(AnnealingStrategyTest, DefaultsAreAWindowOfTwoAndAPlateauOfAMillion) {
  start();
  EXPECT_EQ(strategy->windowSize, 2u);
  EXPECT_EQ(strategy->plateauLength, 1000000u);
  EXPECT_TRUE(strategy->degradationActivated);
  EXPECT_EQ(strategy->lastValues, (std::vector<CacheLineVector<double>>{{0.0, 0.0}}));
}

TEST_F(AnnealingStrategyTest, BetweenTheLatestValueAndTheMeanTheChanceFallsToOneOverE) {
  start();
  improveTo(10);
  improveTo(8);
  EXPECT_EQ(strategy->windowSums[0], 18.0);
  EXPECT_EQ(verdictOn(9.5), MoveStatus::Rejected) << "worse than the mean of 9";
  EXPECT_EQ(rng, 1u) << "refused before the draw";

  for (const std::uint32_t seed : {1u, 123456789u, 4000000000u}) {
    rng = seed;
    test::Draws draws(seed);
    const double unit = static_cast<float>(
        static_cast<double>((std::uint64_t{draws.step()} * 2147483647) >> 32) / 2147483647.0);
    const bool isKept = std::exp(-0.5) >= unit;
    const auto expected = isKept ? std::optional(MoveStatus::Accepted) : std::nullopt;
    EXPECT_EQ(verdictOn(8.5), expected) << seed;
    EXPECT_DOUBLE_EQ(strategy->lastProbability, std::exp(-0.5));
    EXPECT_EQ(rng, draws.state);
  }
  EXPECT_EQ(verdictOn(8.0), MoveStatus::Accepted) << "certain at the latest value";
}

TEST_F(AnnealingStrategyTest, AtTheMeanWithinToleranceACandidateIsNotRefusedAtOnce) {
  start();
  improveTo(10);
  improveTo(8);
  verdictOn(9.0 + 1e-7);
  EXPECT_NEAR(strategy->lastProbability, std::exp(-1.0), 1e-6);
}

TEST_F(AnnealingStrategyTest, AMaximisedObjectiveIsMirrored) {
  start(true);
  improveTo(8);
  improveTo(10);
  EXPECT_EQ(verdictOn(8.5), MoveStatus::Rejected);
  verdictOn(9.5);
  EXPECT_DOUBLE_EQ(strategy->lastProbability, std::exp(-0.5));
}

TEST_F(AnnealingStrategyTest, AcceptedDegradationsAreCounted) {
  start();
  improveTo(10);
  improveTo(8);
  verdictOn(8.0);
  verdictOn(8.0);
  EXPECT_EQ(strategy->nbDegradingMoves, 2u);
}

TEST_F(AnnealingStrategyTest, TheFirstImprovementWritesAtPlaceOneOfTheRing) {
  start();
  improveTo(10);
  EXPECT_EQ(strategy->lastValues[0], (CacheLineVector<double>{0, 10}));
  improveTo(8);
  EXPECT_EQ(strategy->lastValues[0], (CacheLineVector<double>{8, 10}));
  improveTo(7);
  EXPECT_EQ(strategy->lastValues[0], (CacheLineVector<double>{8, 7}));
  EXPECT_EQ(strategy->windowSums[0], 15.0);
}

TEST_F(AnnealingStrategyTest, NothingDegradesWhileTheRingIsFilling) {
  start();
  improveTo(10);
  strategy->beforeIteration();
  EXPECT_FALSE(strategy->degradationActivated);
  EXPECT_EQ(verdictOn(10.0), MoveStatus::Rejected);
  improveTo(8);
  strategy->beforeIteration();
  EXPECT_TRUE(strategy->degradationActivated);
}

TEST_F(AnnealingStrategyTest, AfterAPlateauTheSearchOnlyDescendsUntilItImproves) {
  start();
  strategy->plateauLength = 3;
  improveTo(10);
  improveTo(8);
  for (int i = 0; i < 3; ++i) strategy->afterMove(MoveStatus::Rejected);
  strategy->beforeIteration();
  EXPECT_TRUE(strategy->degradationActivated) << "the length itself is not above it";
  strategy->afterMove(MoveStatus::Accepted);
  strategy->beforeIteration();
  EXPECT_FALSE(strategy->degradationActivated);
  improveTo(7);
  strategy->beforeIteration();
  EXPECT_TRUE(strategy->degradationActivated);
}

TEST_F(AnnealingStrategyTest, AWindowOfOneIsPureDescent) {
  start();
  strategy->setWindowSize(1);
  improveTo(10);
  EXPECT_EQ(strategy->nbImprovements, 0u);
  EXPECT_EQ(strategy->nbSinceImprovement, 0u);
  strategy->beforeIteration();
  EXPECT_FALSE(strategy->degradationActivated);
  EXPECT_EQ(verdictOn(10.0), MoveStatus::Rejected);
}

TEST_F(AnnealingStrategyTest, AMeanEqualToTheLatestValueRefuses) {
  start();
  improveTo(8);
  improveTo(8);
  EXPECT_EQ(verdictOn(8.0), std::nullopt) << "zero by zero";
  EXPECT_EQ(verdictOn(8.0 + 1e-7), std::nullopt) << "an infinite distance";
  EXPECT_EQ(strategy->lastProbability, 0.0);
}

TEST_F(AnnealingStrategyTest, ANewWindowSizeStartsTheWindowAnew) {
  start();
  improveTo(10);
  improveTo(8);
  strategy->afterMove(MoveStatus::Rejected);
  strategy->degradationActivated = false;
  strategy->setWindowSize(4);
  EXPECT_EQ(strategy->windowSize, 4u);
  EXPECT_EQ(strategy->lastValues[0], CacheLineVector<double>(4, 0.0));
  EXPECT_EQ(strategy->windowSums[0], 0.0);
  EXPECT_EQ(strategy->nbImprovements, 0u);
  EXPECT_EQ(strategy->nbSinceImprovement, 0u);
  EXPECT_TRUE(strategy->degradationActivated);
}

TEST_F(AnnealingStrategyTest, AnotherObjectiveStartsTheWindowAnewInTheSameIteration) {
  const auto first = builder.floating(0, 100);
  builder.minimise(first);
  start();
  improveTo(10);
  EXPECT_EQ(strategy->objectiveIndex, 1u);
  heuristic->objectiveIndex = 0;
  strategy->beforeIteration();
  EXPECT_EQ(strategy->objectiveIndex, 0u);
  EXPECT_EQ(strategy->nbImprovements, 0u);
  EXPECT_TRUE(strategy->degradationActivated) << "set again, for this iteration";
  strategy->beforeIteration();
  EXPECT_FALSE(strategy->degradationActivated);
}

TEST_F(AnnealingStrategyTest, EveryObjectiveHasItsOwnRing) {
  const auto first = builder.floating(0, 100);
  builder.minimise(first);
  start();
  test::setAndAccept(*dag, first, 3.0);
  improveTo(10);
  EXPECT_EQ(strategy->windowSums, (CacheLineVector<double>{3, 10}));
}

TEST_F(AnnealingStrategyTest, ResetForgetsCountsAndWindow) {
  start();
  improveTo(10);
  improveTo(8);
  verdictOn(8.0);
  strategy->reset();
  EXPECT_EQ(strategy->nbDegradingMoves, 0u);
  EXPECT_EQ(strategy->lastProbability, 0.0);
  EXPECT_EQ(strategy->windowSums[0], 0.0);
}

TEST_F(AnnealingStrategyTest, StatisticsAreTwoLines) {
  start();
  std::ostringstream out;
  strategy->printStatistics(out);
  strategy->degradationActivated = false;
  strategy->nbDegradingMoves = 5;
  strategy->lastProbability = 0.25;
  strategy->printStatistics(out);
  EXPECT_EQ(out.str(),
            "annealing window size: 2, plateau length: 1000000\n"
            "degradation activated: yes, nb degrading moves: 0, last degradation probability: 0\n"
            "annealing window size: 2, plateau length: 1000000\n"
            "degradation activated: no, nb degrading moves: 5, last degradation probability: "
            "0.25\n");
}

}  // namespace
}  // namespace ombrix
