#include <gmock/gmock.h>

#include <memory>
#include <set>
#include <string>

#include "solver/kernel/heuristicautoannealing.h"
#include "solver/move/movebinpacking.h"
#include "solver/move/moveejectionchain.h"
#include "solver/move/movekbalance.h"
#include "solver/move/movekcycle.h"
#include "solver/move/movekmirror.h"
#include "solver/move/movekswap.h"
#include "solver/move/movesequence.h"
#include "solver/move/movesetpartition.h"
#include "solver/move/movesimplekflip.h"
#include "tests/solver/move/randomplan.h"

namespace ombrix {
namespace {

/// Compares the mirror with the graph after every iteration, whatever became of its move.
class MirrorWatch : public HeuristicCallback {
public:
  MirrorWatch(const test::PlanGraph& watched, Heuristic& search)
      : graph(watched), heuristic(search) {}

  void onStart() override {}
  void onEnd() override {}
  void onIteration() override {
    EXPECT_EQ(graph.nbPending(), 0u);
    graph.expectAgrees(graph.dag->values);
    if (testing::Test::HasFailure()) heuristic.stopRequested = true;
  }

private:
  const test::PlanGraph& graph;
  Heuristic& heuristic;
};

/// Moves that plan in the mirror, and beside them some that know nothing of it.
template <class M>
void addPlanned(Heuristic& heuristic, test::PlanGraph& graph) {
  for (const std::uint32_t size : {2u, 3u, 4u}) {
    heuristic.movePool.addMove(
        std::make_unique<M>(*graph.dag, graph.rng, size, size, size / 2, 50, *graph.structure));
  }
}

void addOthers(Heuristic& heuristic, test::PlanGraph& graph, BasicMoveStructure& lists) {
  MovePool& pool = heuristic.movePool;
  pool.addMove(std::make_unique<MoveSimpleKFlip>(*graph.dag, graph.rng, 1, 2, 50));
  pool.addMove(std::make_unique<MoveKBalance>(*graph.dag, graph.rng, 1, 2));
  pool.addMove(std::make_unique<MoveKSwap>(*graph.dag, graph.rng, 2, 2, 50, lists));
  pool.addMove(std::make_unique<MoveKCycle>(*graph.dag, graph.rng, 4, 2, 50, lists));
  pool.addMove(std::make_unique<MoveKMirror>(*graph.dag, graph.rng, 3, 2, 2, 50, lists));
  pool.addMove(std::make_unique<MoveSequence>(*graph.dag, graph.rng, 3, 1, 50, heuristic, lists));
  pool.addMove(std::make_unique<MoveSetPartition>(*graph.dag, graph.rng, lists));
}

/// A search over a graph, watched all the way. Returns the names of the moves that were accepted.
std::set<std::string> search(test::PlanGraph& graph, std::uint64_t nbIterations) {
  const ConstraintAnalysis analysis(graph.builder.fields);
  BasicMoveStructure lists(*graph.dag, analysis, graph.rng);
  HeuristicAutoAnnealing heuristic(*graph.dag, &graph.rng);
  addPlanned<MoveBinPacking>(heuristic, graph);
  addPlanned<MoveEjectionChain>(heuristic, graph);
  addOthers(heuristic, graph, lists);
  heuristic.setAnnealingWindow(6);
  MirrorWatch watch(graph, heuristic);
  heuristic.addCallback(&watch);
  heuristic.reset();
  heuristic.iterationLimit = nbIterations;
  heuristic.run();
  heuristic.removeCallback(&watch);
  std::set<std::string> accepted;
  for (const auto& move : heuristic.movePool.moves) {
    if (move->nbAccepted > 0) accepted.insert(move->name);
  }
  return accepted;
}

/// An assignment with a budget, of which some items cannot stand beside others.
void buildAssignment(test::GraphBuilder& builder, std::uint32_t n) {
  const auto x = builder.booleans(n * n);
  std::vector<std::int64_t> costs;
  for (std::uint32_t i = 0; i < n * n; ++i) costs.push_back(1 + i * 7 % 11);
  for (std::uint32_t i = 0; i < n; ++i) {
    std::vector<std::uint32_t> row;
    std::vector<std::uint32_t> column;
    for (std::uint32_t j = 0; j < n; ++j) {
      row.push_back(x[i * n + j]);
      column.push_back(x[j * n + i]);
    }
    for (const auto& operands : {row, column}) {
      const auto list = builder.node(NodeType::BooleanSum, operands);
      builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(1)}));
    }
    const auto next = (i + 1) % n;
    const auto pair = builder.node(NodeType::And, {x[i * n + next], x[next * n + i]});
    builder.constraint(builder.node(NodeType::Leq, {pair, builder.constant(0)}));
  }
  const auto cost = builder.minimise(builder.node(NodeType::ScalarSum, x, costs));
  builder.constraint(builder.node(NodeType::Leq, {cost, builder.constant(9 * n)}));
}

TEST(MirrorSearch, TheMirrorAgreesAfterEveryIterationOfAnAssignment) {
  std::set<std::string> accepted;
  for (std::uint32_t seed = 1; seed <= 4; ++seed) {
    test::PlanGraph graph;
    buildAssignment(graph.builder, 6);
    graph.start(seed);
    accepted.merge(search(graph, 5000));
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_THAT(accepted, testing::IsSupersetOf({"4-BinPacking", "4-EjectionChain", "4-Cycle"}));
}

TEST(MirrorSearch, TheMirrorAgreesAfterEveryIterationOnRandomGraphs) {
  for (std::uint32_t seed = 1; seed <= 40 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    test::RandomPlan random(seed, 1 + seed % 20);
    search(random.graph, 1000);
  }
}

TEST(MirrorSearch, TheMirrorAgreesAfterEveryIterationOnWideRandomGraphs) {
  for (const std::uint32_t width : {64u, 128u, 256u, 512u, 1024u, 1500u}) {
    SCOPED_TRACE(width);
    test::RandomPlan random(width, width);
    search(random.graph, 60);
    if (testing::Test::HasFailure()) return;
  }
}

}  // namespace
}  // namespace ombrix
