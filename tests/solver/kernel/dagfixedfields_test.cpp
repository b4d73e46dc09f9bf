#include "solver/kernel/dagfixedfields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "api/oxexception.h"
#include "solver/kernel/nodetypeutils.h"
#include "support/failures.h"
#include "support/graphs.h"

namespace ombrix {
namespace {

using test::GraphBuilder;
using testing::ElementsAre;

std::vector<std::uint32_t> parentsOf(const DagFixedFields& fields, std::uint32_t id) {
  const auto begin = fields.parents.begin() + fields.parentOffsets[id];
  return {begin, begin + fields.parentEndsOf(id)[fields.objectives.size()]};
}

std::vector<std::uint32_t> positionsOf(const DagFixedFields& fields, std::uint32_t id) {
  const auto begin = fields.parentPositions.begin() + fields.parentOffsets[id];
  return {begin, begin + fields.parentEndsOf(id)[fields.objectives.size()]};
}

std::string failureOf(DagFixedFields& fields) {
  try {
    fields.finish();
  } catch (const OXException& e) {
    EXPECT_EQ(e.getCode(), 6);
    return e.getExplanation();
  }
  return "no failure";
}

TEST(DagFixedFields, numbersNodesInTheOrderOfTheirAddition) {
  DagFixedFields fields;
  EXPECT_EQ(fields.addNode(NodeType::Boolean), 0u);
  EXPECT_EQ(fields.addNode(NodeType::Constant, {}, {OXValue::ofInt(7)}), 1u);
  EXPECT_EQ(fields.addNode(NodeType::Sum, {0, 1, 0}), 2u);
  EXPECT_EQ(fields.nbNodes, 3u);
  EXPECT_EQ(fields.nbOperands(2), 3u);
  EXPECT_THAT(fields.operands, ElementsAre(0, 1, 0));
  EXPECT_EQ(fields.nbScalars(1), 1u);
  EXPECT_EQ(fields.scalarsOf(1)->intValue, 7);
}

TEST(DagFixedFields, countsNodesByTypeUpToTheLargestInUse) {
  GraphBuilder g;
  g.booleans(3);
  g.minimise(g.constant(4));
  EXPECT_THAT(g.finish().nbNodesByType, ElementsAre(3, 0, 0, 0, 0, 0, 1));
}

TEST(DagFixedFields, ranksAreOneAboveTheLargestOperandRank) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.boolean();
  const auto andNode = g.node(NodeType::And, {a, b});
  const auto orNode = g.node(NodeType::Or, {a, andNode});
  g.minimise(orNode);
  const DagFixedFields& fields = g.finish();
  EXPECT_THAT(fields.ranks, ElementsAre(0, 0, 1, 2));
  ASSERT_EQ(fields.nodesByRank.size(), 3u);
  EXPECT_THAT(fields.nodesByRank[0], ElementsAre(a, b));
  EXPECT_THAT(fields.nodesByRank[1], ElementsAre(andNode));
  EXPECT_THAT(fields.nodesByRank[2], ElementsAre(orNode));
}

TEST(DagFixedFields, floatDecisionHasRankOneBecauseOfItsBounds) {
  GraphBuilder g;
  const auto x = g.floating(-1.5, 2.5);
  const DagFixedFields& fields = g.finish();
  EXPECT_EQ(fields.ranks[x], 1u);
  EXPECT_EQ(fields.minValues[x].doubleValue, -1.5);
  EXPECT_EQ(fields.maxValues[x].doubleValue, 2.5);
}

TEST(DagFixedFields, largestRankOfDecisionsAloneIsZero) {
  GraphBuilder g;
  g.minimise(g.boolean());
  EXPECT_EQ(g.finish().nodesByRank.size(), 1u);
}

TEST(DagFixedFields, groupsDecisionsByKindThenInnerNodesWithoutConstants) {
  GraphBuilder g;
  const auto two = g.constant(2);
  const auto array = g.constArray({1, 2});
  const auto x = g.floating(0.0, 1.0);
  const auto i = g.integer();
  const auto b = g.boolean();
  const auto notNode = g.node(NodeType::Not, {b});
  const auto c = g.boolean();
  g.minimise(two);
  const DagFixedFields& fields = g.finish();
  EXPECT_THAT(fields.nodesByGroup, ElementsAre(b, c, i, x, notNode));
  EXPECT_EQ(fields.nbBooleanVars, 2u);
  EXPECT_EQ(fields.nbIntegerVars, 1u);
  EXPECT_EQ(fields.nbFloatVars, 1u);
  EXPECT_EQ(fields.nbInnerNodes, 1u);
  EXPECT_EQ(fields.firstIntegerVar, 2u);
  EXPECT_EQ(fields.firstFloatVar, 3u);
  EXPECT_EQ(fields.firstInnerNode, 4u);
  EXPECT_EQ(fields.posInGroups[x], 3u);
  EXPECT_EQ(fields.posInGroups[array], kNone);
}

TEST(DagFixedFields, sameOperandTwiceGivesTwoParentEntries) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto sum = g.node(NodeType::Sum, {a, a});
  g.minimise(sum);
  const DagFixedFields& fields = g.finish();
  EXPECT_THAT(parentsOf(fields, a), ElementsAre(sum, sum));
  EXPECT_THAT(positionsOf(fields, a), ElementsAre(0, 1));
}

TEST(DagFixedFields, levelIsTheSmallestOfAnythingThatDependsOnTheNode) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.boolean();
  const auto c = g.boolean();
  const auto constraint = g.constraint(g.node(NodeType::Or, {a, b}));
  const auto objective = g.minimise(g.node(NodeType::Sum, {b, c}));
  const DagFixedFields& fields = g.finish();
  EXPECT_EQ(fields.levels[a], 0u);
  EXPECT_EQ(fields.levels[b], 0u);
  EXPECT_EQ(fields.levels[c], 1u);
  EXPECT_EQ(fields.levels[constraint], 0u);
  EXPECT_EQ(fields.levels[objective], 1u);
}

TEST(DagFixedFields, constraintThatIsAnObjectiveHasLevelZero) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto node = g.constraint(g.node(NodeType::Not, {a}));
  g.minimise(node);
  const DagFixedFields& fields = g.finish();
  EXPECT_EQ(fields.levels[node], 0u);
  EXPECT_EQ(fields.levels[a], 0u);
}

TEST(DagFixedFields, nodeThatIsTwoObjectivesHasTheLevelOfTheFirst) {
  GraphBuilder g;
  const auto a = g.boolean();
  g.minimise(a);
  g.maximise(a);
  EXPECT_EQ(g.finish().levels[a], 1u);
}

TEST(DagFixedFields, idleNodeHasTheLevelBehindAllObjectivesAndComesLastAmongParents) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto idle = g.node(NodeType::Not, {a});
  const auto objective = g.minimise(g.node(NodeType::Sum, {a}));
  const auto constraint = g.constraint(g.node(NodeType::Or, {a}));
  const DagFixedFields& fields = g.finish();
  EXPECT_EQ(fields.levels[idle], 2u);
  EXPECT_THAT(parentsOf(fields, a), ElementsAre(constraint, objective, idle));
  EXPECT_EQ(fields.parentEndsOf(a)[0], 1u);
  EXPECT_EQ(fields.parentEndsOf(a)[1], 3u);
}

TEST(DagFixedFields, parentsOfEachLevelAreASlice) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto second = g.node(NodeType::Sum, {a});
  const auto idle = g.node(NodeType::Sum, {a, a});
  const auto first = g.node(NodeType::Not, {a});
  const auto constraint = g.constraint(g.node(NodeType::Or, {a, a}));
  g.minimise(first);
  g.minimise(second);
  const DagFixedFields& fields = g.finish();
  EXPECT_THAT(parentsOf(fields, a), ElementsAre(constraint, constraint, first, second, idle, idle));
  EXPECT_THAT(std::vector(fields.parentEndsOf(a), fields.parentEndsOf(a) + 3),
              ElementsAre(2, 3, 6));
  EXPECT_EQ(fields.parentEndsOf(constraint)[2], 0u);
}

TEST(DagFixedFields, levelsThatNoParentHasEndWhereTheLevelBeforeEnds) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.boolean();
  const auto fourth = g.node(NodeType::Not, {a});
  const auto second = g.node(NodeType::Or, {a, b});
  g.minimise(g.node(NodeType::Not, {b}));
  g.minimise(second);
  g.minimise(g.node(NodeType::Not, {b}));
  g.minimise(fourth);
  g.minimise(g.node(NodeType::Not, {b}));
  const DagFixedFields& fields = g.finish();
  EXPECT_THAT(parentsOf(fields, a), ElementsAre(second, fourth));
  EXPECT_THAT(std::vector(fields.parentEndsOf(a), fields.parentEndsOf(a) + 6),
              ElementsAre(0, 0, 1, 1, 2, 2));
}

// The order within a level is that of the exchanges: here the third parent is pulled to the front
// in exchange for the first.
TEST(DagFixedFields, parentsAreSortedByExchanges) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto x = g.node(NodeType::Not, {a});
  const auto y = g.node(NodeType::Not, {a});
  const auto z = g.constraint(g.node(NodeType::Not, {a}));
  g.minimise(g.node(NodeType::Sum, {x, y}));
  EXPECT_THAT(parentsOf(g.finish(), a), ElementsAre(z, y, x));
}

TEST(DagFixedFields, innerNodeWithoutOperandsIsNotAccessible) {
  DagFixedFields fields;
  fields.addNode(NodeType::Boolean);
  fields.addNode(NodeType::And);
  EXPECT_EQ(failureOf(fields),
            "The operator 1 (and) is not accessible from the variables and constants.");
}

TEST(DagFixedFields, cycleIsNotAccessible) {
  DagFixedFields fields;
  fields.addNode(NodeType::Boolean);
  fields.addNode(NodeType::Or, {0, 2});
  fields.addNode(NodeType::Not, {1});
  EXPECT_EQ(failureOf(fields),
            "The operator 1 (or) is not accessible from the variables and constants.");
}

TEST(DagFixedFields, constraintTwiceFails) {
  DagFixedFields fields;
  fields.addNode(NodeType::Boolean);
  fields.constraints = {0, 0};
  EXPECT_EQ(failureOf(fields), "This node is already a constraint.");
}

TEST(DagFixedFields, posInConstraintsIsTheIndexOrNone) {
  GraphBuilder g;
  const auto ids = g.booleans(3);
  g.constraint(ids[2]);
  g.constraint(ids[0]);
  EXPECT_THAT(
      std::vector(g.finish().posInConstraints.begin(), g.finish().posInConstraints.begin() + 3),
      ElementsAre(1, kNone, 0));
}

// The operands are counted before any of them is read.
TEST(DagFixedFields, moreThanThirtyTwoBitsCanNumberFails) {
  DagFixedFields fields;
  const auto x = fields.addNode(NodeType::Boolean);
  const std::size_t tooMany = std::size_t{kNone} + 1;
  const OXValue one = OXValue::ofInt(1);
  const std::string text =
      "The model is too large : its graph has more than 4294967295 nodes, operands or scalars.";
  test::expectFailure(6, "DagFixedFields::addNode", text,
                      [&] { fields.addNode(NodeType::Sum, std::span(&x, tooMany), {}); });
  test::expectFailure(6, "DagFixedFields::addNode", text,
                      [&] { fields.addNode(NodeType::ConstArray, {}, std::span(&one, tooMany)); });
  EXPECT_EQ(fields.nbNodes, 1u);
}

TEST(DagFixedFields, unknownTypeFails) {
  DagFixedFields fields;
  fields.addNode(NodeType::Boolean);
  fields.addNode(static_cast<NodeType>(61), {0});
  EXPECT_EQ(failureOf(fields), "Unknown node type 61");
}

TEST(DagFixedFields, queuesOfARankHoldItsConstraintsThenItsOtherNodes) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.constraint(g.boolean());
  g.minimise(g.node(NodeType::Not, {a}));
  const DagFixedFields& fields = g.finish();
  EXPECT_THAT(fields.queueOffsets, ElementsAre(0, 1, 2, 2, 3));
  EXPECT_TRUE(fields.isConstraint(b));
}

std::vector<std::uint32_t> recordOf(const DagFixedFields& fields, std::uint32_t id) {
  const std::uint32_t* words = fields.linksOf(id);
  return {words, words + kParentEnds + fields.nbObjectives() + 1};
}

TEST(DagFixedFields, theRecordOfANodeHoldsWhatAChangeReads) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.constraint(g.boolean());
  const auto sum = g.minimise(g.node(NodeType::ScalarSum, {a, b}, {4, 5}));
  const DagFixedFields& fields = g.finish();
  EXPECT_THAT(recordOf(fields, a), ElementsAre(4 * 1 + 0, 0, 0, 0, 0, kNone, 0, 1));
  EXPECT_THAT(recordOf(fields, b), ElementsAre(4 * 0 + 0, 1, 0, 0, 0, 0, 0, 1));
  EXPECT_THAT(recordOf(fields, sum), ElementsAre(4 * 3 + 1, 2, 0, 2, 0, kNone, 0, 0));
}

TEST(DagFixedFields, theRecordGrowsWithTheObjectives) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.boolean();
  for (int i = 0; i < 5; ++i) g.minimise(g.node(NodeType::Not, {i < 2 ? a : b}));
  const DagFixedFields& fields = g.finish();
  EXPECT_THAT(recordOf(fields, a), ElementsAre(4 * 1, 0, 0, 0, 0, kNone, 0, 1, 2, 2, 2, 2));
  EXPECT_THAT(recordOf(fields, b), ElementsAre(4 * 1, 2, 0, 0, 0, kNone, 0, 0, 0, 1, 2, 3));
}

TEST(DagFixedFields, parentUsesArePairsOfParentAndPosition) {
  GraphBuilder g;
  const auto ids = g.booleans(2);
  const auto both = g.node(NodeType::And, {ids[0], ids[1], ids[0]});
  g.minimise(both);
  const DagFixedFields& fields = g.finish();
  ASSERT_EQ(fields.parentUses.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(fields.parentUses[i].parent, both);
    EXPECT_EQ(fields.parentUses[i].position, fields.parentPositions[i]);
  }
}

TEST(DagFixedFields, displaysItsStatistics) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto x = g.floating(-0.5, 1.25);
  g.constraint(g.node(NodeType::Not, {a}));
  g.minimise(a);
  g.maximise(x);
  std::ostringstream out;
  g.finish().display(out);
  std::ostringstream expected;
  expected << "Kernel dag statistics:\n"
              "  nodes=5\n  variables=2\n  constraints=1\n  objectives=2\n  maxRank=1\n"
              "  boolean=1\n  integer=0\n  float=1\n";
  for (int type = 3; type <= 32; ++type) {
    const auto nodeType = static_cast<NodeType>(type);
    const int count = nodeType == NodeType::Not ? 1 : nodeType == NodeType::DoubleConstant ? 2 : 0;
    expected << "  " << NodeTypeUtils::toString(nodeType) << "=" << count << "\n";
  }
  expected << "Objective bounds:\n"
              "  Obj 0: min = 0, max = 1\n  Obj 1: min = -0.5, max = 1.25\n";
  EXPECT_EQ(out.str(), expected.str());
}

}  // namespace
}  // namespace ombrix
