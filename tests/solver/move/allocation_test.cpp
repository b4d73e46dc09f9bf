#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "solver/kernel/heuristicautoannealing.h"
#include "solver/move/poolfiller.h"
#include "tests/support/searchgraph.h"

namespace {

std::atomic<std::uint64_t> nbAllocations{0};

void* countedAllocation(std::size_t size) {
  nbAllocations.fetch_add(1, std::memory_order_relaxed);
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

}  // namespace

// The whole test program counts what it takes from the heap.
void* operator new(std::size_t size) {
  return countedAllocation(size);
}
void* operator new[](std::size_t size) {
  return countedAllocation(size);
}
// Neither is inlined: seeing through one only, the compiler takes the pair for a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size, std::align_val_t alignment) {
  nbAllocations.fetch_add(1, std::memory_order_relaxed);
  const auto unit = static_cast<std::size_t>(alignment);
  if (void* memory = std::aligned_alloc(unit, (size + unit - 1) / unit * unit)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace ombrix {
namespace {

/// Rows of which exactly one decision is chosen, a budget over all of them, doubles that share an
/// amount, and two objectives. Answers the comparison of doubles.
std::uint32_t buildAssignment(test::GraphBuilder& builder, std::uint32_t nbRows) {
  const auto x = builder.booleans(4 * nbRows);
  std::vector<std::int64_t> costs;
  for (std::uint32_t i = 0; i < nbRows; ++i) {
    const auto first = x.begin() + 4 * i;
    const auto row = builder.node(NodeType::BooleanSum, {first, first + 4});
    builder.constraint(builder.node(NodeType::Eq, {row, builder.constant(1)}));
    for (const std::int64_t cost : {5, 3, 8, 2}) costs.push_back(cost + i % 7);
  }
  const auto spare = builder.booleans(nbRows);
  const auto count = builder.node(NodeType::BooleanSum, spare);
  builder.constraint(builder.node(NodeType::Leq, {count, builder.constant(nbRows / 2)}));
  builder.maximise(builder.node(NodeType::Min, {count, builder.constant(nbRows / 4)}));
  builder.minimise(builder.node(NodeType::ScalarSum, x, costs));
  const auto shares =
      builder.doubleNode(NodeType::DoubleSum,
                         {builder.floating(0, 1), builder.floating(0, 2), builder.floating(0, 3)});
  return builder.constraint(
      builder.node(NodeType::DoubleLeq, {shares, builder.doubleConstant(2.5)}));
}

TEST(Allocation, NoneInAnIterationOnceWarm) {
  test::SearchGraph graph;
  const std::vector<std::uint32_t> comparisons = {buildAssignment(graph.builder, 50)};
  graph.start(3);
  const MoveAnalysis analysis(graph.builder.fields, true);
  AutonomousStructure mirror(*graph.dag, analysis, graph.rng);
  mirror.rebuild();
  HeuristicAutoAnnealing heuristic(*graph.dag, &graph.rng);
  fillMovePool(heuristic, *graph.structure, comparisons, PoolSettings{}, &mirror);
  heuristic.setAnnealingWindow(6);
  heuristic.reset();
  heuristic.iterationLimit = 20000;
  heuristic.run();
  ASSERT_EQ(heuristic.nbIterations, 20000u);

  const std::uint64_t before = nbAllocations;
  heuristic.iterationLimit = 200000;
  heuristic.run();
  EXPECT_EQ(nbAllocations - before, 0u);
  EXPECT_EQ(heuristic.nbIterations, 200000u);
}

TEST(Allocation, TheCounterCounts) {
  const std::uint64_t before = nbAllocations;
  delete new std::uint32_t(1);
  EXPECT_GE(nbAllocations - before, 1u);
}

}  // namespace
}  // namespace ombrix
