#include "solver/kernel/dag.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "api/oxexception.h"
#include "support/graphs.h"

namespace ombrix {
namespace {

using test::expectConsistent;
using test::GraphBuilder;

template <typename Action>
OXException failureOf(Action action) {
  try {
    action();
  } catch (const OXException& e) {
    return e;
  }
  ADD_FAILURE() << "no failure";
  return OXException(0, "", 0, "", "");
}

TEST(Dag, startsWithDecisionsAtZeroAndEveryNodeEvaluated) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto notA = g.node(NodeType::Not, {a});
  const auto sum = g.minimise(g.node(NodeType::Sum, {a, notA, g.constant(5)}));
  const auto dag = g.makeDag();
  EXPECT_EQ(dag->values[a].intValue, 0);
  EXPECT_EQ(dag->values[notA].intValue, 1);
  EXPECT_EQ(dag->values[sum].intValue, 6);
  EXPECT_EQ(dag->tValues[sum].intValue, 6);
  expectConsistent(*dag);
}

TEST(Dag, aSmallNodeStandsInItsCellAndAWideOneInAPool) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto narrow = g.node(NodeType::Sum, std::vector<std::uint32_t>(64, a));
  const auto wide = g.node(NodeType::Sum, std::vector<std::uint32_t>(65, a));
  g.minimise(g.node(NodeType::Sum, {narrow, wide}));
  const auto dag = g.makeDag();
  const auto isInCell = [&](std::uint32_t id) {
    return reinterpret_cast<const std::byte*>(dag->nodes[id]) == dag->cells[id].state;
  };
  EXPECT_TRUE(isInCell(a));
  EXPECT_TRUE(isInCell(narrow));
  EXPECT_FALSE(isInCell(wide));
  EXPECT_EQ(dag->nodes.size(), dag->cells.size());
}

TEST(Dag, theColumnsOfTheCellsReadAsArrays) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto notA = g.minimise(g.node(NodeType::Not, {a}));
  const auto dag = g.makeDag();
  dag->tValues[notA].intValue = 0;
  EXPECT_EQ(dag->cells[notA].tValue.intValue, 0);
  EXPECT_EQ(dag->cells[notA].value.intValue, 1);
  EXPECT_EQ(dag->values.size(), dag->cells.size());
  EXPECT_EQ(dag->values.copy()[notA].intValue, 1);
}

TEST(Dag, refusesAGraphWithoutObjective) {
  DagFixedFields fields;
  fields.addNode(NodeType::Boolean);
  fields.finish();
  const OXException e = failureOf([&] { Dag dag(fields); });
  EXPECT_EQ(e.getCode(), 6);
  EXPECT_EQ(e.getExplanation(), "No objective.");
  EXPECT_EQ(e.getFunctionName(), "ombrix::Dag::Dag");
}

TEST(Dag, refusesObjectiveListsOfUnequalLength) {
  DagFixedFields fields;
  fields.directions.push_back(0);
  fields.objectives = {fields.addNode(NodeType::Boolean), 0};
  fields.finish();
  const OXException e = failureOf([&] { Dag dag(fields); });
  EXPECT_EQ(e.getCode(), 6);
  EXPECT_EQ(e.getExplanation(), "Different number of directions and operators in the objective.");
}

TEST(Dag, refusesATypeThatIsNone) {
  GraphBuilder g;
  const auto ids = g.booleans(200);
  const auto strange = g.boolean();
  g.minimise(ids[0]);
  g.finish();
  g.fields.types[strange] = static_cast<NodeType>(77);
  const OXException e = failureOf([&] { Dag dag(g.fields); });
  EXPECT_EQ(e.getCode(), 6);
  EXPECT_EQ(e.getExplanation(), "Unknown type (77) for node 200");
  EXPECT_EQ(e.getFunctionName(), "ombrix::Dag::createNode");
}

// The wide node owns arrays of its own, which a leak check would miss.
TEST(Dag, failureOfTheFirstEvaluationDestroysWhatStood) {
  GraphBuilder g;
  const auto ids = g.booleans(2000);
  g.node(NodeType::And, ids);
  g.minimise(g.node(NodeType::Divide, {ids[0], ids[1]}));
  const OXException e = failureOf([&] { g.makeDag(); });
  EXPECT_EQ(e.getCode(), 5);
  EXPECT_EQ(e.getExplanation(), "Division by zero.");
}

TEST(Dag, memoryIsAlignedWritableAndDistinct) {
  GraphBuilder g;
  const auto dag = g.makeDag();
  void* a = dag->allocate(200);
  void* b = dag->allocate(200);
  EXPECT_NE(a, b);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a) % 8, 0u);
  std::memset(a, 1, 200);
  std::memset(b, 2, 200);
  EXPECT_EQ(static_cast<unsigned char*>(a)[199], 1);
}

TEST(Dag, requestOfNoBytesGivesTheSameBlockEachTime) {
  GraphBuilder g;
  const auto dag = g.makeDag();
  EXPECT_NE(dag->allocate(0), nullptr);
  EXPECT_EQ(dag->allocate(0), dag->allocate(0));
}

TEST(Dag, workersShareTheFieldsAndNoValue) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto notA = g.minimise(g.node(NodeType::Not, {a}));
  const auto first = g.makeDag();
  const auto second = g.makeDag();
  test::setAndAccept(*first, a, 1);
  EXPECT_EQ(first->values[notA].intValue, 0);
  EXPECT_EQ(second->values[notA].intValue, 1);
  EXPECT_EQ(first->fixedFields, second->fixedFields);
}

TEST(Dag, comparesTheTentativeObjectiveByDirection) {
  GraphBuilder g;
  const auto a = g.boolean();
  g.minimise(a);
  g.maximise(a);
  const auto dag = g.makeDag();
  dag->propagation.setValue(*dag, a, std::int64_t{1});
  EXPECT_TRUE(dag->isWorseThan(0, OXValue::ofInt(0)));
  EXPECT_FALSE(dag->isBetterThan(0, OXValue::ofInt(0)));
  EXPECT_FALSE(dag->isWorseThan(1, OXValue::ofInt(0)));
  EXPECT_TRUE(dag->isBetterThan(1, OXValue::ofInt(0)));
  EXPECT_FALSE(dag->isWorseThan(0, OXValue::ofInt(1)));
  EXPECT_FALSE(dag->isBetterThan(0, OXValue::ofInt(1)));
  EXPECT_TRUE(dag->isBetterThan(0, OXValue::ofInt(2)));
  EXPECT_TRUE(dag->isWorseThan(1, OXValue::ofInt(2)));
  dag->propagation.reject(*dag);
}

TEST(Dag, comparesADoubleObjectiveWithinTheTolerance) {
  GraphBuilder g;
  const auto x = g.floating(0, 10);
  g.minimise(x);
  g.maximise(x);
  const auto dag = g.makeDag();
  test::setAndAccept(*dag, x, 1.0);
  const OXValue close = OXValue::ofDouble(1.0000001);
  const OXValue above = OXValue::ofDouble(1.1);
  for (std::uint32_t i = 0; i < 2; ++i) {
    EXPECT_FALSE(dag->isWorseThan(i, close));
    EXPECT_FALSE(dag->isBetterThan(i, close));
  }
  EXPECT_TRUE(dag->isBetterThan(0, above));
  EXPECT_TRUE(dag->isWorseThan(1, above));
  EXPECT_FALSE(dag->isWorseThan(0, above));
}

TEST(Dag, checkFindsAValueThatNoComputationGives) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto notA = g.minimise(g.node(NodeType::Not, {a}));
  const auto dag = g.makeDag();
  dag->check();
  dag->values[notA] = dag->tValues[notA] = OXValue::ofInt(0);
  testing::internal::CaptureStdout();
  const OXException e = failureOf([&] { dag->check(); });
  EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::HasSubstr("Operator= not"));
  EXPECT_EQ(e.getCode(), 6);
  EXPECT_EQ(e.getExplanation(), "Error in check of operator.");
}

TEST(Dag, buildsNodesOfEverySubsetWidth) {
  for (std::uint32_t n : {1u, 8u, 9u, 16u, 17u, 32u, 33u, 64u, 65u, 128u, 129u, 256u, 257u, 512u,
                          513u, 1024u, 1025u, 65534u, 65535u}) {
    GraphBuilder g;
    const auto ids = g.booleans(n);
    const auto sum = g.minimise(g.node(NodeType::Sum, ids));
    const auto all = g.node(NodeType::And, ids);
    const auto dag = g.makeDag();
    for (std::uint32_t id : {ids.front(), ids.back()}) test::setAndAccept(*dag, id, 1);
    EXPECT_EQ(dag->values[sum].intValue, std::min(n, 2u)) << n;
    EXPECT_EQ(dag->values[all].intValue, n <= 2 ? 1 : 0) << n;
    dag->check();
  }
}

}  // namespace
}  // namespace ombrix
