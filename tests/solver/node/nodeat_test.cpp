#include "solver/node/nodeat.h"

#include <gtest/gtest.h>

#include "support/failures.h"
#include "support/nodefixtures.h"

namespace ombrix {
namespace {

using test::acceptMove;
using test::afterDraws;
using test::expectNoPick;
using test::expectPick;
using test::GraphBuilder;
using test::OneNodeTest;

TEST(NodeAtTest, ReadsNumbersAndNodes) {
  GraphBuilder graph;
  const std::uint32_t index = graph.integer();
  const std::uint32_t element = graph.boolean();
  const std::uint32_t numbers =
      graph.minimise(graph.node(NodeType::At, {graph.constArray({4, -5}), index}));
  const std::uint32_t array = graph.node(NodeType::Array, {graph.constant(9), element});
  const std::uint32_t nodes = graph.minimise(graph.node(NodeType::At, {array, index}));
  const auto dag = graph.makeDag();
  EXPECT_EQ(dag->values[numbers].intValue, 4);
  EXPECT_EQ(dag->values[nodes].intValue, 9);
  acceptMove(*dag, {{index, 1}});
  EXPECT_EQ(dag->values[numbers].intValue, -5);
  EXPECT_EQ(dag->values[nodes].intValue, 0);
  acceptMove(*dag, {{element, 1}});
  EXPECT_EQ(dag->values[nodes].intValue, 1);
  test::expectConsistent(*dag);
}

TEST(NodeAtTest, TheDoubleFormReadsDoublesAndConvertsElements) {
  GraphBuilder graph;
  const std::uint32_t index = graph.integer();
  const std::uint32_t numbers =
      graph.minimise(graph.node(NodeType::DoubleAt, {graph.doubleConstArray({0.5, -5.5}), index}));
  const std::uint32_t array =
      graph.node(NodeType::Array, {graph.constant(9), graph.doubleConstant(2.5)});
  const std::uint32_t nodes = graph.minimise(graph.node(NodeType::DoubleAt, {array, index}));
  const auto dag = graph.makeDag();
  EXPECT_EQ(dag->values[numbers].doubleValue, 0.5);
  EXPECT_EQ(dag->values[nodes].doubleValue, 9.0);
  acceptMove(*dag, {{index, 1}});
  EXPECT_EQ(dag->values[numbers].doubleValue, -5.5);
  EXPECT_EQ(dag->values[nodes].doubleValue, 2.5);
  test::expectConsistent(*dag);
}

TEST(NodeAtTest, OnlyTheLow32BitsOfTheIndexCount) {
  GraphBuilder graph;
  const std::uint32_t index = graph.integer();
  const std::uint32_t node =
      graph.minimise(graph.node(NodeType::At, {graph.constArray({4, -5}), index}));
  const auto dag = graph.makeDag();
  acceptMove(*dag, {{index, 4294967297}});
  EXPECT_EQ(dag->values[node].intValue, -5);
  acceptMove(*dag, {{index, 4294967296}});
  EXPECT_EQ(dag->values[node].intValue, 4);
}

TEST(NodeAtTest, AnIndexBeyondTheArrayFails) {
  GraphBuilder graph;
  const std::uint32_t index = graph.integer();
  const std::uint32_t node =
      graph.minimise(graph.node(NodeType::At, {graph.constArray({4, -5}), index}));
  const auto dag = graph.makeDag();
  test::expectFailure(5, "NodeAt::eval",
                      "Index out of bounds for 'at' operator (index: 2, array size: 2).", [&] {
                        acceptMove(*dag, {{index, 2}});
                      });
  const auto other = graph.makeDag();
  test::expectFailure(5, "NodeAt::eval",
                      "Index out of bounds for 'at' operator (index: 4294967295, array size: 2).",
                      [&] {
                        acceptMove(*other, {{index, -1}});
                      });
  dag->propagation.reject(*dag);
  EXPECT_EQ(dag->values[node].intValue, 4);
}

TEST(NodeAtTest, AnEmptyArrayHasNoElement) {
  for (const std::int64_t index : {std::int64_t{0}, std::int64_t{4294967296}}) {
    GraphBuilder graph;
    graph.node(NodeType::At, {graph.constArray({}), graph.constant(index)});
    test::expectFailure(5, "NodeAt::computeValue",
                        "Index out of bounds for 'at' operator (index: 0, array size: 0).",
                        [&] { graph.makeDag(); });
  }
}

TEST(NodeAtTest, TheDoubleFormFailsUnderItsOwnName) {
  GraphBuilder graph;
  const std::uint32_t index = graph.integer();
  const std::uint32_t array = graph.node(NodeType::Array, {graph.boolean()});
  graph.minimise(graph.node(NodeType::DoubleAt, {array, index}));
  const auto dag = graph.makeDag();
  test::expectFailure(5, "NodeDoubleAt::eval",
                      "Index out of bounds for 'double_at' operator (index: 7, array size: 1).",
                      [&] {
                        acceptMove(*dag, {{index, 7}});
                      });
  GraphBuilder empty;
  empty.node(NodeType::DoubleAt, {empty.doubleConstArray({}), empty.constant(0)});
  test::expectFailure(5, "NodeDoubleAt::computeValue",
                      "Index out of bounds for 'double_at' operator (index: 0, array size: 0).",
                      [&] { empty.makeDag(); });
}

/// Picks over an array of two booleans and a boolean index, in both forms.
class NodeAtPickTest : public OneNodeTest, public testing::WithParamInterface<NodeType> {
protected:
  void make(bool isIndexFixed) {
    first = graph.boolean();
    second = graph.boolean();
    index = isIndexFixed ? graph.constant(1) : graph.boolean();
    const std::uint32_t array = graph.node(NodeType::Array, {first, second});
    build(graph.node(GetParam(), {array, index}));
  }

  std::uint32_t first = 0;
  std::uint32_t second = 0;
  std::uint32_t index = 0;
};

INSTANTIATE_TEST_SUITE_P(BothForms, NodeAtPickTest,
                         testing::Values(NodeType::At, NodeType::DoubleAt), [](const auto& tested) {
                           return tested.param == NodeType::At ? "Integer" : "Double";
                         });

TEST_P(NodeAtPickTest, NumbersAreChangedThroughTheIndex) {
  index = graph.boolean();
  const std::uint32_t array =
      GetParam() == NodeType::At ? graph.constArray({4, 5}) : graph.doubleConstArray({4, 5});
  node = graph.minimise(graph.node(GetParam(), {array, index}));
  dag = graph.makeDag();
  expectPick(test::pickDown(*dag, node, 9), index, 9);
  expectPick(test::pickUp(*dag, node, 9), index, 9);
  expectPick(test::pickAny(*dag, node, 9), index, 9);
}

TEST_P(NodeAtPickTest, AFixedIndexLeavesTheElement) {
  make(true);
  expectPick(test::pickUp(*dag, node, 9), second, 9);
  expectNoPick(test::pickDown(*dag, node, 9), 9);
  expectPick(test::pickAny(*dag, node, 9), second, 9);
  acceptMove(*dag, {{second, 1}});
  expectPick(test::pickDown(*dag, node, 9), second, 9);
  expectPick(test::pickAny(*dag, node, 9), second, 9);
}

TEST_P(NodeAtPickTest, ACoinChoosesBetweenAMovableElementAndTheIndex) {
  make(false);
  expectPick(test::pickUp(*dag, node, low), first, afterDraws(low, 1));
  expectPick(test::pickUp(*dag, node, high), index, afterDraws(high, 1));
  expectPick(test::pickAny(*dag, node, low), first, afterDraws(low, 1));
  expectPick(test::pickAny(*dag, node, high), index, afterDraws(high, 1));
  expectPick(test::pickDown(*dag, node, 9), index, 9);  // the element is at its minimum
  acceptMove(*dag, {{first, 1}});
  expectPick(test::pickDown(*dag, node, low), first, afterDraws(low, 1));
  expectPick(test::pickUp(*dag, node, 9), index, 9);
  expectPick(test::pickAny(*dag, node, 9), index, 9);  // asks whether it is below its maximum
}

}  // namespace
}  // namespace ombrix
