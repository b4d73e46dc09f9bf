#include "solver/move/moveplanned.h"

#include <gmock/gmock.h>

#include <set>

#include "solver/move/movebinpacking.h"
#include "solver/move/moveejectionchain.h"
#include "tests/solver/move/randomplan.h"
#include "tests/support/scriptedmove.h"

namespace ombrix {
namespace {

using Decisions = std::set<std::uint32_t>;

template <class M>
class MovePlannedTest : public testing::Test {
protected:
  M make(std::uint32_t nbSteps, std::uint32_t nbFlips, std::uint32_t nbNew,
         std::uint32_t rate = 50) {
    return M(*graph.dag, graph.rng, nbSteps, nbFlips, nbNew, rate, *graph.structure);
  }

  /// Items of which each is in one of two bins, of that capacity each. The first half starts in
  /// bin 0.
  void startBins(const std::vector<std::int64_t>& sizes, std::int64_t capacity) {
    auto& builder = graph.builder;
    placed = builder.booleans(static_cast<std::uint32_t>(2 * sizes.size()));
    std::vector<std::uint32_t> bins[2];
    for (std::size_t i = 0; i < sizes.size(); ++i) {
      const auto row = builder.node(NodeType::BooleanSum, {placed[2 * i], placed[2 * i + 1]});
      builder.constraint(builder.node(NodeType::Eq, {row, builder.constant(1)}));
      for (std::size_t bin = 0; bin < 2; ++bin) bins[bin].push_back(placed[2 * i + bin]);
    }
    for (const auto& bin : bins) {
      const auto load = builder.node(NodeType::ScalarSum, bin, sizes);
      builder.constraint(builder.node(NodeType::Leq, {load, builder.constant(capacity)}));
    }
    graph.start();
    for (std::size_t i = 0; i < sizes.size(); ++i) {
      graph.flipAndAccept(placed[2 * i + (2 * i < sizes.size() ? 0 : 1)]);
    }
    ASSERT_EQ(graph.dag->propagation.infeasibility.nbViolated, 0);
  }

  Decisions changed() const {
    const auto& written = graph.dag->propagation.changedDecisions;
    return {written.begin(), written.end()};
  }
  /// The candidates of many draws; each must do in the Dag what it did in the plan.
  std::set<Decisions> reach(M& move, int nbDraws) {
    std::set<Decisions> reached;
    const std::uint32_t nbBefore = graph.structure->violatedNodes.size();
    for (int i = 0; i < nbDraws && !testing::Test::HasFailure(); ++i) {
      graph.rng = static_cast<std::uint32_t>(i) * 2654435761U;
      if (move.apply()) {
        reached.insert(changed());
        graph.dag->propagation.evaluateConstraints(*graph.dag);
        graph.expectAgrees(graph.dag->tValues);
        EXPECT_LE(graph.structure->violatedNodes.size(), nbBefore);
        EXPECT_EQ(graph.dag->propagation.tInfeasibility.nbViolated,
                  graph.structure->violatedNodes.size());
      } else {
        EXPECT_TRUE(changed().empty());
        EXPECT_EQ(graph.nbPending(), 0u);
      }
      move.finish(MoveStatus::Rejected);
      EXPECT_EQ(graph.nbPending(), 0u);
      graph.expectAgrees(graph.dag->values);
    }
    return reached;
  }

  test::PlanGraph graph;
  std::vector<std::uint32_t> placed;
};

using PlannedMoves = testing::Types<MoveBinPacking, MoveEjectionChain>;
TYPED_TEST_SUITE(MovePlannedTest, PlannedMoves);

TYPED_TEST(MovePlannedTest, IsNamedByItsFlipsAndWeighsOne) {
  this->startBins({1, 1}, 9);
  const auto move = this->make(3, 4, 1);
  const bool packs = std::is_same_v<TypeParam, MoveBinPacking>;
  EXPECT_EQ(move.name, packs ? "4-BinPacking" : "4-EjectionChain");
  EXPECT_EQ(move.weight, 1u);
  EXPECT_EQ(move.getSelectionFactor(), 1.0 / 6.0);
}

TYPED_TEST(MovePlannedTest, WithoutMirroredNodesThereIsNothingToPlan) {
  this->graph.builder.minimise(this->graph.builder.boolean());
  this->graph.start();
  auto move = this->make(2, 2, 1);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(this->graph.rng, 1u);
}

TYPED_TEST(MovePlannedTest, TwoFlipsTakeOneItemToTheOtherBin) {
  this->startBins({1, 2, 3, 4}, 100);
  auto move = this->make(2, 2, 1);
  const auto& x = this->placed;
  EXPECT_EQ(this->reach(move, 2000),
            (std::set<Decisions>{{x[0], x[1]}, {x[2], x[3]}, {x[4], x[5]}, {x[6], x[7]}}));
}

TYPED_TEST(MovePlannedTest, MoreFlipsExchangeItemsBetweenFullBins) {
  this->startBins({5, 5}, 5);
  auto pair = this->make(2, 2, 1);
  EXPECT_TRUE(this->reach(pair, 500).empty());
  auto move = this->make(4, 4, 2);
  const auto& x = this->placed;
  EXPECT_EQ(this->reach(move, 2000), (std::set<Decisions>{{x[0], x[1], x[2], x[3]}}));
}

TYPED_TEST(MovePlannedTest, APlanThatViolatesMoreThanBeforeReachesNothing) {
  auto& builder = this->graph.builder;
  const auto x = builder.boolean();
  builder.constraint(builder.node(NodeType::Eq, {x, builder.constant(1)}));
  this->graph.start();
  this->graph.flipAndAccept(x);
  auto move = this->make(3, 3, 1);
  EXPECT_TRUE(this->reach(move, 200).empty());
  EXPECT_EQ(move.nbRejected, 200u);
}

TYPED_TEST(MovePlannedTest, OneDecisionRepairsTwoConstraints) {
  auto& builder = this->graph.builder;
  const auto x = builder.booleans(3);
  for (std::size_t i = 0; i < 2; ++i) {
    const auto row = builder.node(NodeType::BooleanSum, {x[i], x[i + 1]});
    builder.constraint(builder.node(NodeType::Eq, {row, builder.constant(1)}));
  }
  this->graph.start();
  this->graph.flipAndAccept(x[0]);
  this->graph.flipAndAccept(x[2]);
  auto move = this->make(3, 3, 1);
  EXPECT_EQ(this->reach(move, 2000), (std::set<Decisions>{{x[0], x[1], x[2]}}));
}

TYPED_TEST(MovePlannedTest, AnAcceptedPlanIsCommitted) {
  this->startBins({1, 2}, 100);
  auto move = this->make(2, 2, 1);
  for (int i = 0; i < 50; ++i) {
    if (!move.apply()) {
      move.finish(MoveStatus::Infeasible);
      continue;
    }
    move.finish(MoveStatus::Accepted);
    EXPECT_EQ(this->graph.nbPending(), 0u);
    this->graph.expectAgrees(this->graph.dag->values);
  }
  EXPECT_GT(move.nbAccepted, 10u);
  EXPECT_EQ(move.nbAttempted, 50u);
}

TYPED_TEST(MovePlannedTest, ATargetedPlanStartsAtAViolatedConstraint) {
  auto& builder = this->graph.builder;
  const auto x = builder.booleans(40);
  const auto violated = builder.constraint(builder.node(NodeType::Or, {x[0], x[1]}));
  for (std::size_t i = 2; i < 40; i += 2) {
    const auto row = builder.node(NodeType::BooleanSum, {x[i], x[i + 1]});
    builder.constraint(builder.node(NodeType::Leq, {row, builder.constant(1)}));
  }
  this->graph.start();
  auto move = this->make(2, 2, 1, 100);
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(move.apply());
    const Decisions written = this->changed();
    EXPECT_TRUE(written.contains(x[0]) || written.contains(x[1]));
    EXPECT_EQ(this->graph.mirror(violated).getValue(), 1);
    move.finish(MoveStatus::Rejected);
  }
}

TYPED_TEST(MovePlannedTest, ATargetBelowNoConstraintStartsAnywhere) {
  auto& builder = this->graph.builder;
  const auto free = builder.boolean();
  const auto x = builder.booleans(2);
  builder.constraint(builder.node(NodeType::Or, x));
  builder.maximise(free);
  this->graph.start();
  this->graph.flipAndAccept(x[0]);
  this->graph.dag->propagation.activeLevel = 1;
  auto move = this->make(2, 2, 1, 100);
  int nbBuilt = 0;
  for (int i = 0; i < 50; ++i) {
    if (move.apply()) {
      ++nbBuilt;
      EXPECT_FALSE(this->changed().contains(free));
    }
    move.finish(MoveStatus::Rejected);
  }
  EXPECT_GT(nbBuilt, 0);
}

TYPED_TEST(MovePlannedTest, APlanGivesUpAfterElevenFailedRepairs) {
  // Two sums that can never get below 0: whatever else is done, the repair of one of them fails.
  auto& builder = this->graph.builder;
  const auto x = builder.booleans(4);
  for (std::size_t i = 0; i < 4; i += 2) {
    const auto sum = builder.node(NodeType::BooleanSum, {x[i], x[i + 1]});
    builder.constraint(builder.node(NodeType::Leq, {sum, builder.constant(-1)}));
  }
  this->graph.start();
  auto move = this->make(100000, 2, 1, 0);
  for (std::uint32_t seed = 1; seed < 50; ++seed) {
    this->graph.rng = seed * 2654435761U;
    test::Draws draws(this->graph.rng);
    EXPECT_TRUE(move.apply());
    move.finish(MoveStatus::Rejected);
    int nbDraws = 0;
    for (; draws.state != this->graph.rng && nbDraws < 100; ++nbDraws) draws.step();
    EXPECT_LT(nbDraws, 100);
    EXPECT_GE(nbDraws, 11);
  }
}

/// Plans in a random graph, with a comparison after each move.
template <class M>
void planAtRandom(test::RandomPlan& random, std::uint32_t seed, std::uint32_t nbMoves) {
  test::PlanGraph& own = random.graph;
  const std::uint32_t size = 2 + seed % 3;
  M move(*own.dag, own.rng, size, size, 1 + seed % 2, 50, *own.structure);
  for (std::uint32_t i = 0; i < nbMoves && !testing::Test::HasFailure(); ++i) {
    if (!move.apply()) {
      EXPECT_EQ(own.nbPending(), 0u);
      EXPECT_TRUE(own.dag->propagation.changedDecisions.empty());
      move.finish(MoveStatus::Infeasible);
    } else {
      // The first changes, and at most one flip in each of the steps 0 to size.
      EXPECT_LE(own.nbPending(), size + size + 1);
      EXPECT_EQ(own.dag->propagation.changedDecisions.size(), own.nbPending());
      EXPECT_TRUE(move.evaluate(0));
      own.expectAgrees(own.dag->tValues);
      move.finish(i % 2 == 0 ? MoveStatus::Accepted : MoveStatus::Rejected);
    }
    EXPECT_EQ(own.nbPending(), 0u);
    own.expectAgrees(own.dag->values);
  }
}

TYPED_TEST(MovePlannedTest, TheMirrorOfRandomGraphsAgreesAfterEveryMove) {
  for (std::uint32_t seed = 1; seed <= 60 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    test::RandomPlan random(seed, 1 + seed % 20);
    planAtRandom<TypeParam>(random, seed, 60);
  }
}

TYPED_TEST(MovePlannedTest, TheMirrorOfWideRandomGraphsAgreesAfterEveryMove) {
  for (const std::uint32_t width : {32u, 64u, 128u, 256u, 512u, 1024u, 1500u}) {
    for (std::uint32_t seed = 1; seed <= 2 && !testing::Test::HasFailure(); ++seed) {
      SCOPED_TRACE(std::to_string(width) + " operands, seed " + std::to_string(seed));
      test::RandomPlan random(seed, width);
      planAtRandom<TypeParam>(random, seed, 20);
    }
  }
}

}  // namespace
}  // namespace ombrix
