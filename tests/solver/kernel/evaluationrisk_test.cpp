#include "solver/kernel/evaluationrisk.h"

#include <limits>
#include <utility>

#include "tests/support/graphs.h"

namespace ombrix {
namespace {

class EvaluationRiskTest : public testing::Test {
protected:
  /// A node whose value lies between two numbers, depending on one boolean.
  std::uint32_t between(std::int64_t low, std::int64_t high) {
    return builder.node(NodeType::ScalarSum, {builder.boolean(), builder.constant(1)},
                        {high - low, low});
  }
  std::uint32_t doubleBetween(double low, double high) {
    return builder.doubleNode(NodeType::DoubleScalarSum,
                              {builder.boolean(), builder.doubleConstant(1.0)}, {high - low, low});
  }

  bool canFail(std::uint32_t node) {
    builder.minimise(node);
    return canEvaluationFail(builder.finish());
  }

  test::GraphBuilder builder;
};

TEST_F(EvaluationRiskTest, SumsOfDecisionsNeverFail) {
  EXPECT_FALSE(canFail(builder.node(NodeType::BooleanSum, builder.booleans(3))));
}

TEST_F(EvaluationRiskTest, AnIndexInsideAConstantArrayIsSafe) {
  EXPECT_FALSE(canFail(builder.node(NodeType::At, {builder.constArray({4, 5}), between(0, 1)})));
}

TEST_F(EvaluationRiskTest, AnIndexBelowAnArrayIsARisk) {
  EXPECT_TRUE(canFail(builder.node(NodeType::At, {builder.constArray({4, 5}), between(-1, 1)})));
}

TEST_F(EvaluationRiskTest, AnIndexBehindAnArrayIsARisk) {
  EXPECT_TRUE(canFail(builder.node(NodeType::At, {builder.constArray({4, 5}), between(0, 2)})));
}

TEST_F(EvaluationRiskTest, AnArrayOfNodesHasTheSizeOfItsOperands) {
  const auto array = builder.node(NodeType::Array, builder.booleans(3));
  EXPECT_FALSE(canFail(builder.node(NodeType::At, {array, between(0, 2)})));
}

TEST_F(EvaluationRiskTest, AnIndexBehindAnArrayOfDoublesIsARisk) {
  const auto array = builder.doubleConstArray({0.5, 1.5});
  EXPECT_TRUE(canFail(builder.node(NodeType::DoubleAt, {array, between(0, 2)})));
}

TEST_F(EvaluationRiskTest, AnInfiniteElementIsARiskThoughItsReaderHasFiniteBounds) {
  const auto array = builder.doubleConstArray({0.5, std::numeric_limits<double>::infinity()});
  const auto element = builder.node(NodeType::DoubleAt, {array, between(0, 1)});
  EXPECT_TRUE(canFail(builder.node(NodeType::DoubleMin, {element, doubleBetween(0.0, 2.0)})));
}

TEST_F(EvaluationRiskTest, ADivisorAwayFromZeroIsSafe) {
  EXPECT_FALSE(canFail(builder.node(NodeType::Divide, {between(0, 9), between(1, 4)})));
}

TEST_F(EvaluationRiskTest, ADivisorThatMayBeZeroIsARisk) {
  EXPECT_TRUE(canFail(builder.node(NodeType::Divide, {between(0, 9), between(-1, 4)})));
}

TEST_F(EvaluationRiskTest, AModulusThatMayBeZeroIsARisk) {
  EXPECT_TRUE(canFail(builder.node(NodeType::Modulo, {between(0, 9), between(0, 4)})));
}

TEST_F(EvaluationRiskTest, RootsOfWhatIsNotNegativeAreSafe) {
  EXPECT_FALSE(canFail(builder.node(NodeType::DoubleSqrt, {doubleBetween(0.0, 2.0)})));
}

TEST_F(EvaluationRiskTest, RootsOfWhatMayBeNegativeAreARisk) {
  EXPECT_TRUE(canFail(builder.node(NodeType::DoubleSqrt, {doubleBetween(-1.0, 2.0)})));
}

TEST_F(EvaluationRiskTest, ALogarithmThatMayBeInfiniteIsARisk) {
  EXPECT_TRUE(canFail(builder.node(NodeType::DoubleLog, {doubleBetween(0.0, 2.0)})));
}

TEST_F(EvaluationRiskTest, APowerOfABaseFromOneOnIsSafe) {
  EXPECT_FALSE(
      canFail(builder.node(NodeType::DoublePow, {doubleBetween(0.0, 2.0), between(0, 3)})));
}

TEST_F(EvaluationRiskTest, APowerToADoubleExponentIsSafe) {
  EXPECT_FALSE(canFail(
      builder.node(NodeType::DoublePow, {doubleBetween(0.0, 0.5), doubleBetween(0.5, 1.5)})));
}

TEST_F(EvaluationRiskTest, APowerOfWhatMayBeNegativeIsARisk) {
  EXPECT_TRUE(
      canFail(builder.node(NodeType::DoublePow, {doubleBetween(-1.0, 2.0), between(0, 3)})));
}

TEST_F(EvaluationRiskTest, ANegativeIntegerExponentIsARiskThoughTheBoundsAreFinite) {
  EXPECT_TRUE(
      canFail(builder.node(NodeType::DoublePow, {doubleBetween(1.0, 2.0), between(-1, 1)})));
}

TEST_F(EvaluationRiskTest, ANegativeDoubleExponentIsARiskThoughTheBoundsAreFinite) {
  EXPECT_TRUE(canFail(
      builder.node(NodeType::DoublePow, {doubleBetween(0.0, 2.0), doubleBetween(-1.0, 1.0)})));
}

TEST_F(EvaluationRiskTest, APowerWhoseBoundsAreTooNarrowIsARisk) {
  EXPECT_TRUE(canFail(builder.node(NodeType::DoublePow, {doubleBetween(0.0, 0.5), between(0, 3)})));
}

TEST_F(EvaluationRiskTest, AQuotientOfDoublesThatMayBeInfiniteIsARisk) {
  EXPECT_TRUE(canFail(builder.node(NodeType::DoubleDivide,
                                   {builder.doubleConstant(1.0), doubleBetween(0.0, 2.0)})));
}

TEST_F(EvaluationRiskTest, RoundingWhatFitsIntoAnIntegerIsSafe) {
  EXPECT_FALSE(canFail(builder.node(NodeType::DoubleFloor, {doubleBetween(-5.0, 1e15)})));
}

TEST_F(EvaluationRiskTest, RoundingWhatMayNotFitIntoAnIntegerIsARisk) {
  EXPECT_TRUE(canFail(builder.node(NodeType::DoubleCeil, {doubleBetween(-5.0, 1e19)})));
}

}  // namespace
}  // namespace ombrix
