#include "solver/kernel/nodetypeutils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "api/oxexception.h"
#include "support/graphs.h"

namespace ombrix {
namespace {

using test::GraphBuilder;

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Ints = std::pair<std::int64_t, std::int64_t>;
using Doubles = std::pair<double, double>;

/// A graph whose nodes are made with wanted intervals.
class Bounds : public testing::Test {
protected:
  /// Some node with this interval: 0-1 decisions are scaled and shifted.
  std::uint32_t within(std::int64_t low, std::int64_t high) {
    if (low == high) return g.constant(low);
    return g.node(NodeType::If, {g.boolean(), g.constant(low), g.constant(high)});
  }
  std::uint32_t within(double low, double high) { return g.floating(low, high); }

  Ints of(std::uint32_t id) {
    const DagFixedFields& fields = g.finish();
    EXPECT_NE(fields.domains[id], kDoubleDomain);
    return {fields.minValues[id].intValue, fields.maxValues[id].intValue};
  }
  Doubles doublesOf(std::uint32_t id) {
    const DagFixedFields& fields = g.finish();
    EXPECT_EQ(fields.domains[id], kDoubleDomain);
    return {fields.minValues[id].doubleValue, fields.maxValues[id].doubleValue};
  }

  GraphBuilder g;
};

TEST(NodeTypeUtils, namesAllTypes) {
  const char* names[] = {"boolean",
                         "integer",
                         "float",
                         "abs",
                         "and",
                         "boolean_sum",
                         "constant",
                         "distance",
                         "divide",
                         "eq",
                         "geq",
                         "gt",
                         "if",
                         "leq",
                         "lt",
                         "max",
                         "min",
                         "modulo",
                         "neq",
                         "not",
                         "or",
                         "product",
                         "scalar_max",
                         "scalar_min",
                         "scalar_product",
                         "scalar_sum",
                         "sum",
                         "xor",
                         "array",
                         "const_array",
                         "at",
                         "double_abs",
                         "double_constant",
                         "double_distance",
                         "double_divide",
                         "double_eq",
                         "double_geq",
                         "double_gt",
                         "double_if",
                         "double_leq",
                         "double_lt",
                         "double_max",
                         "double_min",
                         "double_neq",
                         "double_product",
                         "double_scalar_max",
                         "double_scalar_min",
                         "double_scalar_product",
                         "double_scalar_sum",
                         "double_sum",
                         "double_at",
                         "double_ceil",
                         "double_floor",
                         "double_round",
                         "double_sqrt",
                         "double_log",
                         "double_exp",
                         "double_pow",
                         "double_cos",
                         "double_sin",
                         "double_tan"};
  static_assert(std::size(names) == kNbNodeTypes);
  for (std::uint32_t type = 0; type < kNbNodeTypes; ++type) {
    EXPECT_EQ(NodeTypeUtils::toString(static_cast<NodeType>(type)), names[type]);
  }
}

TEST(NodeTypeUtils, refusesANumberThatIsNoType) {
  try {
    NodeTypeUtils::toString(static_cast<NodeType>(61));
    FAIL();
  } catch (const OXException& e) {
    EXPECT_EQ(e.getCode(), 6);
    EXPECT_EQ(e.getExplanation(), "Unknown node type 61");
  }
}

TEST(NodeTypeUtils, boundsRefuseANumberThatIsNoType) {
  GraphBuilder g;
  const auto a = g.boolean();
  g.finish();
  g.fields.types[a] = static_cast<NodeType>(200);
  OXValue low;
  OXValue high;
  try {
    NodeTypeUtils::computeBounds(g.fields, a, low, high);
    FAIL();
  } catch (const OXException& e) {
    EXPECT_EQ(e.getCode(), 6);
    EXPECT_EQ(e.getExplanation(), "Unknown node type 200");
    EXPECT_EQ(e.getFunctionName(), "ombrix::NodeTypeUtils::computeBounds");
  }
}

TEST(NodeTypeUtils, domainsFollowTheType) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto i = g.integer();
  const auto x = g.floating(0, 1);
  const auto sum = g.node(NodeType::Sum, {a});
  const auto comparison = g.node(NodeType::DoubleLeq, {x, a});
  const auto array = g.node(NodeType::Array, {a, i});
  const auto rounded = g.node(NodeType::DoubleRound, {x});
  const auto cosine = g.node(NodeType::DoubleCos, {x});
  const DagFixedFields& fields = g.finish();
  EXPECT_EQ(fields.domains[a], kBooleanDomain);
  EXPECT_EQ(fields.domains[i], kIntegerDomain);
  EXPECT_EQ(fields.domains[x], kDoubleDomain);
  EXPECT_EQ(fields.domains[sum], kIntegerDomain);
  EXPECT_EQ(fields.domains[comparison], kBooleanDomain);
  EXPECT_EQ(fields.domains[array], kArrayDomain);
  EXPECT_EQ(fields.domains[rounded], kIntegerDomain);
  EXPECT_EQ(fields.domains[cosine], kDoubleDomain);
}

TEST(NodeTypeUtils, constantsZeroAndOneAreBooleanAndTwoIsInteger) {
  GraphBuilder g;
  const auto zero = g.constant(0);
  const auto one = g.constant(1);
  const auto two = g.constant(2);
  const auto minusOne = g.constant(-1);
  const DagFixedFields& fields = g.finish();
  EXPECT_EQ(fields.domains[zero], kBooleanDomain);
  EXPECT_EQ(fields.domains[one], kBooleanDomain);
  EXPECT_EQ(fields.domains[two], kIntegerDomain);
  EXPECT_EQ(fields.domains[minusOne], kIntegerDomain);
}

TEST(NodeTypeUtils, conditionalIsBooleanOnlyOverTwoBooleanBranches) {
  GraphBuilder g;
  const auto c = g.boolean();
  const auto a = g.boolean();
  const auto two = g.constant(2);
  const auto both = g.node(NodeType::If, {c, a, c});
  const auto first = g.node(NodeType::If, {c, two, a});
  const auto second = g.node(NodeType::If, {c, a, two});
  const DagFixedFields& fields = g.finish();
  EXPECT_EQ(fields.domains[both], kBooleanDomain);
  EXPECT_EQ(fields.domains[first], kIntegerDomain);
  EXPECT_EQ(fields.domains[second], kIntegerDomain);
}

TEST_F(Bounds, ofDecisionsAndConstants) {
  const auto a = g.boolean();
  const auto i = g.integer();
  const auto c = g.constant(-7);
  const auto d = g.doubleConstant(2.5);
  EXPECT_EQ(of(a), Ints(0, 1));
  EXPECT_EQ(of(i), Ints(kMin, kMax));
  EXPECT_EQ(of(c), Ints(-7, -7));
  EXPECT_EQ(doublesOf(d), Doubles(2.5, 2.5));
}

TEST_F(Bounds, ofAFloatWithIntegerConstantsAsItsOperands) {
  const auto low = g.constant(-2);
  const auto high = g.constant(3);
  const auto x = g.node(NodeType::Float, {low, high});
  EXPECT_EQ(doublesOf(x), Doubles(-2.0, 3.0));
}

TEST_F(Bounds, ofAnd) {
  const auto a = g.boolean();
  const auto t = g.constant(1);
  const auto f = g.constant(0);
  const auto open = g.node(NodeType::And, {a, t});
  const auto certain = g.node(NodeType::And, {t, t});
  const auto impossible = g.node(NodeType::And, {a, f});
  EXPECT_EQ(of(open), Ints(0, 1));
  EXPECT_EQ(of(certain), Ints(1, 1));
  EXPECT_EQ(of(impossible), Ints(0, 0));
}

TEST_F(Bounds, ofOr) {
  const auto a = g.boolean();
  const auto t = g.constant(1);
  const auto f = g.constant(0);
  const auto open = g.node(NodeType::Or, {a, f});
  const auto certain = g.node(NodeType::Or, {a, t});
  const auto impossible = g.node(NodeType::Or, {f, f});
  EXPECT_EQ(of(open), Ints(0, 1));
  EXPECT_EQ(of(certain), Ints(1, 1));
  EXPECT_EQ(of(impossible), Ints(0, 0));
}

TEST_F(Bounds, ofXorAreKnownOnlyWhenAllOperandsAreFixedAlike) {
  const auto t = g.constant(1);
  const auto f = g.constant(0);
  const auto even = g.node(NodeType::Xor, {t, t});
  const auto odd = g.node(NodeType::Xor, {t, t, t});
  const auto none = g.node(NodeType::Xor, {f, f});
  const auto mixed = g.node(NodeType::Xor, {t, f});
  EXPECT_EQ(of(even), Ints(0, 0));
  EXPECT_EQ(of(odd), Ints(1, 1));
  EXPECT_EQ(of(none), Ints(0, 0));
  EXPECT_EQ(of(mixed), Ints(0, 1));
}

TEST_F(Bounds, ofNot) {
  const auto open = g.node(NodeType::Not, {g.boolean()});
  const auto yes = g.node(NodeType::Not, {g.constant(0)});
  const auto no = g.node(NodeType::Not, {g.constant(1)});
  EXPECT_EQ(of(open), Ints(0, 1));
  EXPECT_EQ(of(yes), Ints(1, 1));
  EXPECT_EQ(of(no), Ints(0, 0));
}

TEST_F(Bounds, ofBooleanSum) {
  const auto sum =
      g.node(NodeType::BooleanSum, {g.boolean(), g.constant(1), g.constant(0), g.boolean()});
  EXPECT_EQ(of(sum), Ints(1, 3));
}

TEST_F(Bounds, ofSums) {
  const auto a = within(std::int64_t{-2}, std::int64_t{3});
  const auto b = within(std::int64_t{4}, std::int64_t{10});
  const auto sum = g.node(NodeType::Sum, {a, b});
  const auto scalarSum = g.node(NodeType::ScalarSum, {a, b}, {-2, 3});
  EXPECT_EQ(of(sum), Ints(2, 13));
  EXPECT_EQ(of(scalarSum), Ints(-6 + 12, 4 + 30));
}

TEST_F(Bounds, ofSumsSaturate) {
  const auto big = g.constant(kMax - 1);
  const auto sum = g.node(NodeType::Sum, {big, big});
  const auto plain = g.node(NodeType::Sum, {big});
  const auto negated = g.node(NodeType::ScalarSum, {big}, {-1});
  EXPECT_EQ(of(sum), Ints(kMax, kMax));
  EXPECT_EQ(of(plain), Ints(kMax - 1, kMax - 1));
  EXPECT_EQ(of(negated), Ints(kMin, kMin));
}

TEST_F(Bounds, ofExtrema) {
  const auto a = within(std::int64_t{-2}, std::int64_t{3});
  const auto b = within(std::int64_t{0}, std::int64_t{1});
  const auto max = g.node(NodeType::Max, {a, b});
  const auto min = g.node(NodeType::Min, {a, b});
  const auto scalarMax = g.node(NodeType::ScalarMax, {a, b}, {-2, 5});
  const auto scalarMin = g.node(NodeType::ScalarMin, {a, b}, {-2, 5});
  EXPECT_EQ(of(max), Ints(0, 3));
  EXPECT_EQ(of(min), Ints(-2, 1));
  EXPECT_EQ(of(scalarMax), Ints(0, 5));
  EXPECT_EQ(of(scalarMin), Ints(-6, 4));
}

// Such nodes are refused by the ranks, but the rule stands for whoever asks.
TEST_F(Bounds, ofExtremaWithoutOperandsAreTheLimits) {
  g.finish();
  DagFixedFields fields;
  const auto max = fields.addNode(NodeType::Max);
  const auto min = fields.addNode(NodeType::Min);
  fields.domains = {kIntegerDomain, kIntegerDomain};
  OXValue low;
  OXValue high;
  NodeTypeUtils::computeBounds(fields, max, low, high);
  EXPECT_EQ(low.intValue, kMin);
  EXPECT_EQ(high.intValue, kMin);
  NodeTypeUtils::computeBounds(fields, min, low, high);
  EXPECT_EQ(low.intValue, kMax);
  EXPECT_EQ(high.intValue, kMax);
}

TEST_F(Bounds, ofProducts) {
  const auto a = within(std::int64_t{-2}, std::int64_t{3});
  const auto b = within(std::int64_t{-5}, std::int64_t{1});
  const auto product = g.node(NodeType::Product, {a, b});
  const auto scaled = g.node(NodeType::ScalarProduct, {a, b}, {2});
  const auto opposite = g.node(NodeType::ScalarProduct, {a}, {-4});
  EXPECT_EQ(of(product), Ints(-15, 10));
  EXPECT_EQ(of(scaled), Ints(-30, 20));
  EXPECT_EQ(of(opposite), Ints(-12, 8));
}

TEST_F(Bounds, ofAbs) {
  const auto positive = g.node(NodeType::Abs, {within(std::int64_t{2}, std::int64_t{5})});
  const auto negative = g.node(NodeType::Abs, {within(std::int64_t{-5}, std::int64_t{-2})});
  const auto both = g.node(NodeType::Abs, {within(std::int64_t{-5}, std::int64_t{2})});
  const auto smallest = g.node(NodeType::Abs, {within(kMin, std::int64_t{-1})});
  const auto doubles = g.node(NodeType::DoubleAbs, {within(-0.5, 2.5)});
  EXPECT_EQ(of(positive), Ints(2, 5));
  EXPECT_EQ(of(negative), Ints(2, 5));
  EXPECT_EQ(of(both), Ints(0, 5));
  EXPECT_EQ(of(smallest), Ints(1, kMax));
  EXPECT_EQ(doublesOf(doubles), Doubles(0.0, 2.5));
}

struct Comparison {
  NodeType type;
  Ints below, equal, above, overlapping;
};

TEST_F(Bounds, ofComparisonsTellWhatTheIntervalsDecide) {
  const Ints yes{1, 1}, no{0, 0}, open{0, 1};
  const Comparison rows[] = {
      {NodeType::Eq, no, yes, no, open},       {NodeType::Neq, yes, no, yes, open},
      {NodeType::Lt, yes, no, no, open},       {NodeType::Leq, yes, yes, no, open},
      {NodeType::Gt, no, no, yes, open},       {NodeType::Geq, no, yes, yes, open},
      {NodeType::DoubleEq, no, yes, no, open}, {NodeType::DoubleNeq, yes, no, yes, open},
      {NodeType::DoubleLt, yes, no, no, open}, {NodeType::DoubleLeq, yes, yes, no, open},
      {NodeType::DoubleGt, no, no, yes, open}, {NodeType::DoubleGeq, no, yes, yes, open}};
  const auto low = within(std::int64_t{-4}, std::int64_t{-2});
  const auto high = within(std::int64_t{3}, std::int64_t{7});
  const auto wide = within(std::int64_t{-3}, std::int64_t{5});
  const auto five = g.constant(5);
  std::vector<std::uint32_t> ids;
  for (const Comparison& row : rows) {
    ids.push_back(g.node(row.type, {low, high}));
    ids.push_back(g.node(row.type, {five, g.constant(5)}));
    ids.push_back(g.node(row.type, {high, low}));
    ids.push_back(g.node(row.type, {wide, high}));
  }
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const std::string name = NodeTypeUtils::toString(rows[i].type);
    EXPECT_EQ(of(ids[4 * i]), rows[i].below) << name;
    EXPECT_EQ(of(ids[4 * i + 1]), rows[i].equal) << name;
    EXPECT_EQ(of(ids[4 * i + 2]), rows[i].above) << name;
    EXPECT_EQ(of(ids[4 * i + 3]), rows[i].overlapping) << name;
  }
}

TEST_F(Bounds, ofDoubleComparisonsKeepTheTolerance) {
  const auto a = g.doubleConstant(1.0);
  const auto b = g.doubleConstant(1.0000001);
  const auto less = g.node(NodeType::DoubleLt, {a, b});
  const auto equal = g.node(NodeType::DoubleEq, {a, b});
  EXPECT_EQ(of(less), Ints(0, 0));
  EXPECT_EQ(of(equal), Ints(1, 1));
}

TEST_F(Bounds, ofRoundings) {
  const auto x = within(-1.5, 2.9999999);
  const auto huge = within(-1e30, 1e30);
  const auto half = g.doubleConstant(0.4999999);
  const auto ceil = g.node(NodeType::DoubleCeil, {x});
  const auto floor = g.node(NodeType::DoubleFloor, {x});
  const auto round = g.node(NodeType::DoubleRound, {x});
  const auto clampedCeil = g.node(NodeType::DoubleCeil, {huge});
  const auto clampedRound = g.node(NodeType::DoubleRound, {huge});
  const auto bothEnds = g.node(NodeType::DoubleRound, {half});
  EXPECT_EQ(of(ceil), Ints(-1, 3));
  EXPECT_EQ(of(floor), Ints(-2, 3));
  EXPECT_EQ(of(round), Ints(-1, 3));
  EXPECT_EQ(of(clampedCeil), Ints(kMin, kMax));
  EXPECT_EQ(of(clampedRound), Ints(kMin, kMax));
  // The tolerance applies to the lower end too.
  EXPECT_EQ(of(bothEnds), Ints(1, 1));
}

TEST_F(Bounds, ofTranscendentals) {
  const auto x = within(-1.0, 1.0);
  const auto wide = within(-2.0, 1.0);
  const auto point = g.doubleConstant(2.0);
  const auto cos = g.node(NodeType::DoubleCos, {g.doubleConstant(0.0)});
  const auto sin = g.node(NodeType::DoubleSin, {x});
  const auto tan = g.node(NodeType::DoubleTan, {x});
  const auto wideTan = g.node(NodeType::DoubleTan, {wide});
  const auto pointTan = g.node(NodeType::DoubleTan, {point});
  const auto exp = g.node(NodeType::DoubleExp, {x});
  const auto log = g.node(NodeType::DoubleLog, {x});
  const auto sqrt = g.node(NodeType::DoubleSqrt, {wide});
  EXPECT_EQ(doublesOf(cos), Doubles(-1.0, 1.0));
  EXPECT_EQ(doublesOf(sin), Doubles(-1.0, 1.0));
  EXPECT_EQ(doublesOf(tan), Doubles(std::tan(-1.0), std::tan(1.0)));
  EXPECT_EQ(doublesOf(wideTan), Doubles(-kInfinity, kInfinity));
  EXPECT_EQ(doublesOf(pointTan), Doubles(-kInfinity, kInfinity));
  EXPECT_EQ(doublesOf(exp), Doubles(std::exp(-1.0), std::exp(1.0)));
  EXPECT_EQ(doublesOf(log), Doubles(-kInfinity, 0.0));
  EXPECT_EQ(doublesOf(sqrt), Doubles(0.0, 1.0));
}

TEST_F(Bounds, ofAtAreTheHullOfTheElementsThatTheIndexCanChoose) {
  const auto numbers = g.constArray({5, -3, 8, 100});
  const auto two = g.constant(2);
  const auto nodes =
      g.node(NodeType::Array, {g.boolean(), two, within(std::int64_t{4}, std::int64_t{6})});
  const auto fromConstants =
      g.node(NodeType::At, {numbers, within(std::int64_t{-3}, std::int64_t{2})});
  const auto fromNodes = g.node(NodeType::At, {nodes, within(std::int64_t{1}, std::int64_t{9})});
  const auto missing = g.node(NodeType::At, {numbers, within(std::int64_t{4}, std::int64_t{9})});
  const auto below = g.node(NodeType::At, {numbers, within(std::int64_t{-4}, std::int64_t{-1})});
  EXPECT_EQ(of(fromConstants), Ints(-3, 8));
  EXPECT_EQ(of(fromNodes), Ints(2, 6));
  EXPECT_EQ(of(missing), Ints(kMin, kMax));
  EXPECT_EQ(of(below), Ints(kMin, kMax));
}

TEST_F(Bounds, ofDoubleAtReadElementsAsDoubles) {
  const auto numbers = g.doubleConstArray({0.5, -3.5, 8.0});
  const auto nodes = g.node(NodeType::Array, {g.boolean(), g.floating(-1.5, 0.0)});
  const auto any = g.integer();
  const auto fromConstants = g.node(NodeType::DoubleAt, {numbers, g.boolean()});
  const auto fromNodes = g.node(NodeType::DoubleAt, {nodes, any});
  const auto missing = g.node(NodeType::DoubleAt, {numbers, g.constant(3)});
  EXPECT_EQ(doublesOf(fromConstants), Doubles(-3.5, 0.5));
  EXPECT_EQ(doublesOf(fromNodes), Doubles(-1.5, 1.0));
  EXPECT_EQ(doublesOf(missing), Doubles(-kInfinity, kInfinity));
}

TEST_F(Bounds, ofArraysStayZero) {
  const auto array = g.node(NodeType::Array, {g.integer()});
  EXPECT_EQ(of(array), Ints(0, 0));
}

TEST_F(Bounds, ofConditionals) {
  const auto c = g.boolean();
  const auto t = g.constant(1);
  const auto f = g.constant(0);
  const auto a = within(std::int64_t{2}, std::int64_t{4});
  const auto b = within(std::int64_t{-1}, std::int64_t{3});
  const auto open = g.node(NodeType::If, {c, a, b});
  const auto first = g.node(NodeType::If, {t, a, b});
  const auto second = g.node(NodeType::If, {f, a, b});
  const auto doubles = g.node(NodeType::DoubleIf, {c, a, g.doubleConstant(0.5)});
  EXPECT_EQ(of(open), Ints(-1, 4));
  EXPECT_EQ(of(first), Ints(2, 4));
  EXPECT_EQ(of(second), Ints(-1, 3));
  EXPECT_EQ(doublesOf(doubles), Doubles(0.5, 4.0));
}

TEST_F(Bounds, ofDivisionsAndDistances) {
  const auto a = within(std::int64_t{-10}, std::int64_t{10});
  const auto b = within(std::int64_t{2}, std::int64_t{3});
  const auto divide = g.node(NodeType::Divide, {a, b});
  const auto modulo = g.node(NodeType::Modulo, {a, b});
  const auto distance = g.node(NodeType::Distance, {a, b});
  const auto doubleDivide = g.node(NodeType::DoubleDivide, {a, b});
  const auto doubleDistance = g.node(NodeType::DoubleDistance, {a, b});
  EXPECT_EQ(of(divide), Ints(-5, 5));
  EXPECT_EQ(of(modulo), Ints(-2, 10));
  EXPECT_EQ(of(distance), Ints(0, 20));
  EXPECT_EQ(doublesOf(doubleDivide), Doubles(-5.0, 5.0));
  EXPECT_EQ(doublesOf(doubleDistance), Doubles(0.0, 20.0));
}

class DivisionByZero : public testing::TestWithParam<NodeType> {};

TEST_P(DivisionByZero, isRefusedWhenTheDivisorCanOnlyBeZero) {
  GraphBuilder g;
  g.node(GetParam(), {g.boolean(), g.constant(0)});
  try {
    g.finish();
    FAIL();
  } catch (const OXException& e) {
    EXPECT_EQ(e.getCode(), 5);
    EXPECT_EQ(e.getExplanation(), "Division by zero.");
  }
}

INSTANTIATE_TEST_SUITE_P(Divisions, DivisionByZero,
                         testing::Values(NodeType::Divide, NodeType::Modulo,
                                         NodeType::DoubleDivide));

TEST_F(Bounds, ofPowersFollowTheDomainOfTheExponent) {
  const auto base = within(1.0, 3.0);
  const auto integral = g.node(NodeType::DoublePow, {base, g.constant(2)});
  const auto fractional = g.node(NodeType::DoublePow, {base, g.doubleConstant(2.0)});
  EXPECT_EQ(doublesOf(integral), Doubles(-9.0, 9.0));
  EXPECT_EQ(doublesOf(fractional), Doubles(1.0, 9.0));
}

TEST_F(Bounds, ofDoubleAggregates) {
  const auto x = within(-2.0, 3.0);
  const auto y = within(0.5, 1.0);
  const auto sum = g.node(NodeType::DoubleSum, {x, y});
  const auto scalarSum = g.doubleNode(NodeType::DoubleScalarSum, {x, y}, {-2.0, 4.0});
  const auto max = g.node(NodeType::DoubleMax, {x, y});
  const auto min = g.node(NodeType::DoubleMin, {x, y});
  const auto scalarMax = g.doubleNode(NodeType::DoubleScalarMax, {x, y}, {-1.0, 1.0});
  const auto scalarMin = g.doubleNode(NodeType::DoubleScalarMin, {x, y}, {-1.0, 1.0});
  const auto product = g.node(NodeType::DoubleProduct, {x, y});
  const auto scalarProduct = g.doubleNode(NodeType::DoubleScalarProduct, {x, y}, {-2.0});
  EXPECT_EQ(doublesOf(sum), Doubles(-1.5, 4.0));
  EXPECT_EQ(doublesOf(scalarSum), Doubles(-4.0, 8.0));
  EXPECT_EQ(doublesOf(max), Doubles(0.5, 3.0));
  EXPECT_EQ(doublesOf(min), Doubles(-2.0, 1.0));
  EXPECT_EQ(doublesOf(scalarMax), Doubles(0.5, 2.0));
  EXPECT_EQ(doublesOf(scalarMin), Doubles(-3.0, 1.0));
  EXPECT_EQ(doublesOf(product), Doubles(-2.0, 3.0));
  EXPECT_EQ(doublesOf(scalarProduct), Doubles(-6.0, 4.0));
}

TEST_F(Bounds, thatAreNoNumberBecomeInfinite) {
  const auto up = g.doubleConstant(kInfinity);
  const auto down = g.doubleConstant(-kInfinity);
  const auto sum = g.node(NodeType::DoubleSum, {up, down});
  const auto scaled = g.doubleNode(NodeType::DoubleScalarSum, {up}, {0.0});
  EXPECT_EQ(doublesOf(sum), Doubles(-kInfinity, kInfinity));
  EXPECT_EQ(doublesOf(scaled), Doubles(-kInfinity, kInfinity));
}

}  // namespace
}  // namespace ombrix
