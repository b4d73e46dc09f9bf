#include <algorithm>

#include "solver/kernel/heuristicautoannealing.h"
#include "solver/kernel/random.h"
#include "solver/move/movefloatbalance.h"
#include "solver/move/movefloatsimplekflip.h"
#include "solver/move/movefloattight.h"
#include "solver/move/poolfiller.h"
#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

/// What a move did, told as one number: every decision written, in order, and every random state.
class Trace {
public:
  void add(std::uint32_t number) { hash = (hash ^ number) * 1099511628211u; }
  std::uint64_t value() const { return hash; }

private:
  std::uint64_t hash = 14695981039346656037u;
};

/// An assignment of six items to six places with a budget over them, and six free decisions.
void buildGraph(test::GraphBuilder& builder, std::vector<std::uint32_t>& assigned) {
  constexpr std::uint32_t n = 6;
  const auto x = builder.booleans(n * n);
  const auto spare = builder.booleans(n);
  for (const bool isRow : {true, false}) {
    for (std::uint32_t i = 0; i < n; ++i) {
      std::vector<std::uint32_t> operands;
      for (std::uint32_t j = 0; j < n; ++j) operands.push_back(isRow ? x[i * n + j] : x[j * n + i]);
      const auto list = builder.node(NodeType::BooleanSum, operands);
      builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(1)}));
    }
  }
  std::vector<std::uint32_t> terms = x;
  terms.insert(terms.end(), spare.begin(), spare.end());
  std::vector<std::int64_t> costs;
  for (std::uint32_t i = 0; i < terms.size(); ++i) costs.push_back(1 + i * 7 % 11);
  const auto few = builder.node(NodeType::BooleanSum, spare);
  builder.constraint(builder.node(NodeType::Leq, {few, builder.constant(4)}));
  builder.minimise(builder.node(NodeType::ScalarSum, terms, costs));
  for (std::uint32_t i = 0; i < n; ++i) assigned.push_back(x[i * n + i * 5 % n]);
}

class PinnedDrawsTest : public testing::Test {
protected:
  PinnedDrawsTest() {
    std::vector<std::uint32_t> assigned;
    buildGraph(graph.builder, assigned);
    graph.start(1);
    for (const auto decision : assigned) graph.raise(decision);
  }

  /// The moves that are searches in themselves are pinned apart.
  static PoolSettings basicSettings() {
    PoolSettings settings;
    settings.advancedMovesEnabled = false;
    return settings;
  }

  test::SearchGraph graph;
};

TEST_F(PinnedDrawsTest, EveryMoveOfThePoolWritesTheSameDecisionsInTheSameOrder) {
  HeuristicAutoAnnealing heuristic(*graph.dag, &graph.rng);
  fillMovePool(heuristic, *graph.structure, {}, basicSettings());
  std::string text;
  for (const auto& move : heuristic.movePool.moves) {
    graph.rng = 12345;
    Trace trace;
    for (int i = 0; i < 200; ++i) {
      trace.add(move->apply() ? 1 : 0);
      for (const auto decision : graph.dag->propagation.changedDecisions) trace.add(decision);
      trace.add(graph.rng);
      graph.reject();
    }
    text += move->name + " " + std::to_string(trace.value()) + "\n";
  }
  EXPECT_EQ(text,
            "2-1-Roll 5724009062055585654\n"
            "2-Mirror 9018913370689070776\n"
            "3-1-Roll 3142384244909536392\n"
            "3-Mirror 17750217740390597378\n"
            "4-1-Roll 554063058249853528\n"
            "4-2-Roll 13197727843186912216\n"
            "4-Scramble 14193426178777567184\n"
            "4-Mirror 39861676126971296\n"
            "5-1-Roll 7523892792387722397\n"
            "5-2-Roll 15596706848366165697\n"
            "5-Scramble 5155764852997644279\n"
            "5-Mirror 18043314194517769104\n"
            "6-1-Roll 2925824682124786333\n"
            "6-2-Roll 8318079038599469661\n"
            "6-3-Roll 18428676471244931681\n"
            "6-Scramble 11144984519658736432\n"
            "6-Mirror 14028905217424429015\n"
            "7-1-Roll 2925824682124786333\n"
            "7-2-Roll 8318079038599469661\n"
            "7-3-Roll 18428676471244931681\n"
            "7-Scramble 11144984519658736432\n"
            "7-Mirror 14028905217424429015\n"
            "8-1-Roll 2925824682124786333\n"
            "8-2-Roll 8318079038599469661\n"
            "8-3-Roll 18428676471244931681\n"
            "8-Scramble 11144984519658736432\n"
            "8-Mirror 14028905217424429015\n"
            "1-Balance 4370217040043056308\n"
            "1-Swap 17523875466524531716\n"
            "1-Flip 16405286783925766602\n"
            "2-Balance 16682783980593126159\n"
            "2-Swap 3476449645693483137\n"
            "2-Flip 16651827673167588552\n"
            "2-Path 7879307207406531914\n"
            "2-Cycle 9502846987980383951\n"
            "3-Balance 3679150301060700838\n"
            "3-Swap 16050209602356935679\n"
            "3-Flip 7483442629277906814\n"
            "3-Path 7433973166255496972\n"
            "3-Cycle 9928699729206979764\n"
            "3-2-ForkCycle 153286528627767917\n"
            "3-3-ForkCycle 153286528627767917\n"
            "3-2-ForkPath 7573542953914547191\n"
            "3-3-ForkPath 9459706616964647588\n"
            "4-Balance 18126219551369065431\n"
            "4-Flip 12018916546226772849\n"
            "4-Path 3086352835396272849\n"
            "4-Cycle 12433943489387565953\n"
            "5-Flip 8118373739848287606\n"
            "5-Path 14364472094940818138\n"
            "5-Cycle 11835360759690654727\n"
            "6-Flip 4883026644307189445\n"
            "6-Path 3603871144867996979\n"
            "6-Cycle 5565538662852485460\n"
            "7-Path 4293107599444234111\n"
            "7-Cycle 6116602003857399769\n"
            "8-Path 1047420614868376104\n"
            "8-Cycle 15750123460919603461\n"
            "8-12-Mirror 10540515163016388071\n"
            "8-12-1-Roll 16813711887551876939\n"
            "8-12-2-Roll 4828069913500368711\n"
            "8-12-3-Roll 6054379616016480195\n"
            "1-SimpleFlip 13245702032040851947\n");
}

TEST_F(PinnedDrawsTest, EveryAdvancedMoveLeadsToTheSameDecisionsWithTheSameDraws) {
  const MoveAnalysis analysis(graph.builder.fields, true);
  AutonomousStructure mirror(*graph.dag, analysis, graph.rng);
  mirror.rebuild();
  HeuristicAutoAnnealing heuristic(*graph.dag, &graph.rng);
  PoolSettings settings;
  settings.basicMovesEnabled = settings.tspMovesEnabled = false;
  fillMovePool(heuristic, *graph.structure, {}, settings, &mirror);
  std::string text;
  for (const auto& move : heuristic.movePool.moves) {
    graph.rng = 12345;
    Trace trace;
    std::uint32_t nbBuilt = 0;
    for (int i = 0; i < 200; ++i) {
      const bool isBuilt = move->apply();
      nbBuilt += isBuilt ? 1 : 0;
      for (std::uint32_t j = 0; j < graph.builder.fields.firstInnerNode; ++j) {
        const std::uint32_t decision = graph.builder.fields.nodesByGroup[j];
        if (graph.dag->tValues[decision].intValue == 1) trace.add(decision);
      }
      trace.add(graph.rng);
      move->finish(MoveStatus::Rejected);
    }
    text += move->name + " " + std::to_string(nbBuilt) + " " + std::to_string(trace.value()) + "\n";
  }
  EXPECT_EQ(text,
            "2-Sequence 1 12879569725706216026\n"
            "3-Sequence 136 2077585141269216597\n"
            "4-Sequence 197 6084183396075571256\n"
            "2-BinPacking 15 262174253061005543\n"
            "3-BinPacking 8 2483136379467150994\n"
            "4-BinPacking 50 14888248210183507770\n"
            "2-EjectionChain 12 3818005048114913107\n"
            "3-EjectionChain 10 443146471855815597\n"
            "4-EjectionChain 133 15956454372261926527\n"
            "SetPartition 200 983282141876258807\n"
            "1-SimpleFlip 200 12629830163036653907\n");
}

TEST_F(PinnedDrawsTest, AWholeSearchEndsInTheSameStateWithTheSameCounters) {
  HeuristicAutoAnnealing heuristic(*graph.dag, &graph.rng);
  fillMovePool(heuristic, *graph.structure, {}, basicSettings());
  heuristic.setAnnealingWindow(6);
  heuristic.setRestartingRatio(30);
  graph.rng = 1;
  heuristic.reset();
  heuristic.iterationLimit = 150000;
  heuristic.run();
  Trace trace;
  for (const auto& move : heuristic.movePool.moves) {
    for (const auto count : {move->weight, move->nbAttempted, move->nbAccepted, move->nbRejected,
                             move->nbImprovements, move->nbInfeasibles}) {
      trace.add(count);
    }
  }
  EXPECT_EQ(trace.value(), 13014101127188356346u);
  EXPECT_EQ(graph.rng, 2492113400u);
  EXPECT_EQ(heuristic.bestIteration, 75u);
  EXPECT_EQ(heuristic.bestSolution.objectiveValues[0].intValue, 15);
  test::expectConsistent(*graph.dag);
}

// ---- the moves of doubles

/// A decision with the value that a move gives it. A move that writes none could not be built.
struct Write {
  std::uint32_t decision;
  double value;
};
using Writes = std::vector<Write>;

/// Three booleans and four doubles under three sums and two comparisons that always hold. What a
/// move must do is worked out from its state alone, draw by draw.
class PinnedDoubleDrawsTest : public testing::Test {
protected:
  struct Term {
    std::uint32_t decision;
    double coefficient;
  };

  PinnedDoubleDrawsTest() {
    auto& builder = graph.builder;
    const auto x = builder.booleans(3);
    const std::vector<std::uint32_t> y = {builder.floating(-2, 3), builder.floating(0, 4),
                                          builder.floating(5, 9), builder.floating(-1, 1)};
    decisions = x;
    decisions.insert(decisions.end(), y.begin(), y.end());
    lists = {{{x[2], 1}, {y[0], 1}, {y[1], 1}},
             {{y[1], 2}, {y[2], -3}},
             {{x[0], 1.5}, {y[0], -1}, {y[2], 0.25}, {y[3], 4}}};
    const auto sum = builder.doubleNode(NodeType::DoubleSum, {x[2], y[0], y[1]});
    builder.doubleNode(NodeType::DoubleScalarSum, {y[1], y[2]}, {2, -3});
    builder.doubleNode(NodeType::DoubleScalarSum, {x[0], y[0], y[2], y[3]}, {1.5, -1, 0.25, 4});
    const auto capacity = builder.doubleConstant(100);
    comparisons = {builder.constraint(builder.node(NodeType::DoubleLeq, {sum, capacity})),
                   builder.constraint(builder.node(NodeType::DoubleGeq, {y[2], y[1]}))};
    objective = builder.maximise(y[0]);
    graph.start(2718);
    for (const auto decision : y) test::setAndAccept(*graph.dag, decision, middleOf(decision));
  }

  bool isDouble(std::uint32_t node) const {
    return graph.builder.fields.domains[node] == kDoubleDomain;
  }
  double asDouble(std::uint32_t node, OXValue value) const {
    return isDouble(node) ? value.doubleValue : static_cast<double>(value.intValue);
  }
  double value(std::uint32_t node) const { return asDouble(node, graph.dag->values[node]); }
  double low(std::uint32_t node) const {
    return asDouble(node, graph.builder.fields.minValues[node]);
  }
  double high(std::uint32_t node) const {
    return asDouble(node, graph.builder.fields.maxValues[node]);
  }
  double middleOf(std::uint32_t node) const { return (low(node) + high(node)) / 2; }

  /// A double goes to the nearest value within its bounds, anything else to its other value.
  Write writeOf(std::uint32_t decision, double wanted) const {
    if (!isDouble(decision)) return {decision, 1 - value(decision)};
    return {decision, std::clamp(wanted, low(decision), high(decision))};
  }

  /// The objective one step further, unless it stands at its bound.
  bool hasTarget() const { return value(objective) < high(objective); }
  Write target() const { return writeOf(objective, value(objective) + 1); }

  Writes simpleFlip(test::Draws& draws, std::uint32_t rate) const {
    if (rate != 0 && draws.percent(rate) && hasTarget()) return {target()};
    const auto decision = decisions[draws.index(7)];
    if (!isDouble(decision)) return {writeOf(decision, 0)};
    const double scaled = static_cast<double>((std::uint64_t{draws.step()} * 2147483647U) >> 32);
    const double unit = static_cast<float>(scaled / 2147483647.0);
    return {{decision, low(decision) + unit * (high(decision) - low(decision))}};
  }

  /// How far a term can move in a direction.
  double room(const Term& term, double direction) const {
    const double slope = direction * term.coefficient;
    const double bound = slope > 0 ? high(term.decision) : low(term.decision);
    return (bound - value(term.decision)) * slope;
  }

  Writes balance(test::Draws& draws, std::uint32_t rate) const {
    const bool isTargeted = rate != 0 && draws.percent(rate) && hasTarget();
    const auto decision = isTargeted ? objective : decisions[draws.index(7)];
    const auto isOwn = [&](const Term& term) { return term.decision == decision; };
    std::vector<std::vector<Term>> own;
    for (const auto& list : lists) {
      if (std::any_of(list.begin(), list.end(), isOwn)) own.push_back(list);
    }
    if (own.empty()) return {};
    const auto& list = own[draws.index(static_cast<std::uint32_t>(own.size()))];
    const auto size = static_cast<std::uint32_t>(list.size());
    const auto place = std::find_if(list.begin(), list.end(), isOwn) - list.begin();
    const auto otherPlace = (static_cast<std::uint32_t>(place) + 1 + draws.index(size - 1)) % size;
    const Term& first = *std::find_if(list.begin(), list.end(), isOwn);
    const Term& second = list[otherPlace];
    for (const double direction : {1.0, -1.0}) {
      const double shift = std::min(room(first, direction), room(second, -direction));
      if (approxEqual(shift, 0.0)) continue;
      const auto moved = [&](const Term& term, double way) {
        return writeOf(term.decision, value(term.decision) + shift / (way * term.coefficient));
      };
      return {moved(first, direction), moved(second, -direction)};
    }
    return {};
  }

  /// The side that is no constant, as a draw has it, is itself the number of the node that changes.
  Writes tight(test::Draws& draws) const {
    const bool isCapacity = draws.index(2) == 0;
    const bool isUpperHalf = draws.step() > 2147483647U;
    const std::uint32_t side = !isCapacity && isUpperHalf ? 1 : 0;
    if (value(0) == value(1)) return {};
    return {writeOf(side, 0)};
  }

  /// Applies the move so many times and compares what it writes and where its state ends; keeps two
  /// thirds of what it built, unless all is to be dropped.
  template <typename Rule>
  void expectDraws(Move& move, bool isKept, const Rule& rule) {
    std::uint32_t nbBuilt = 0;
    for (int i = 0; i < 300; ++i) {
      ASSERT_EQ(graph.dag->propagation.infeasibility.nbViolated, 0);
      test::Draws draws(graph.rng);
      const Writes expected = rule(draws);
      ASSERT_EQ(move.apply(), !expected.empty()) << i;
      ASSERT_EQ(graph.rng, draws.state) << i;
      const auto& changed = graph.dag->propagation.changedDecisions;
      ASSERT_EQ(changed.size(), expected.size()) << i;
      for (std::uint32_t j = 0; j < changed.size(); ++j) {
        ASSERT_EQ(changed[j], expected[j].decision) << i;
        ASSERT_DOUBLE_EQ(asDouble(changed[j], graph.dag->tValues[changed[j]]), expected[j].value)
            << i;
      }
      nbBuilt += expected.empty() ? 0 : 1;
      const bool isAccepted = isKept && !expected.empty() && i % 3 != 0;
      move.finish(isAccepted ? MoveStatus::Accepted : MoveStatus::Rejected);
    }
    hasBuilt = nbBuilt > 0;
    test::expectConsistent(*graph.dag);
  }

  test::SearchGraph graph;
  std::vector<std::uint32_t> decisions;
  std::vector<std::vector<Term>> lists;
  std::vector<std::uint32_t> comparisons;
  std::uint32_t objective = 0;
  bool hasBuilt = false;
};

TEST_F(PinnedDoubleDrawsTest, ASimpleFlipDrawsItsDecisionAndThenItsValue) {
  MoveFloatSimpleKFlip move(*graph.dag, graph.rng, 0);
  expectDraws(move, true, [&](test::Draws& draws) { return simpleFlip(draws, 0); });
  EXPECT_TRUE(hasBuilt);
}

TEST_F(PinnedDoubleDrawsTest, ASimpleFlipWithATargetDrawsNothingMore) {
  MoveFloatSimpleKFlip move(*graph.dag, graph.rng, 50);
  expectDraws(move, true, [&](test::Draws& draws) { return simpleFlip(draws, 50); });
  EXPECT_TRUE(hasBuilt);
}

TEST_F(PinnedDoubleDrawsTest, ABalanceDrawsItsDecisionItsListAndItsOtherPosition) {
  MoveFloatBalance move(*graph.dag, graph.rng, 0, *graph.structure);
  expectDraws(move, true, [&](test::Draws& draws) { return balance(draws, 0); });
  EXPECT_TRUE(hasBuilt);
}

TEST_F(PinnedDoubleDrawsTest, ABalanceWithATargetDrawsNoDecision) {
  MoveFloatBalance move(*graph.dag, graph.rng, 50, *graph.structure);
  expectDraws(move, true, [&](test::Draws& draws) { return balance(draws, 50); });
  EXPECT_TRUE(hasBuilt);
}

TEST_F(PinnedDoubleDrawsTest, ATightComparisonDrawsTheComparisonAndThenItsSide) {
  MoveFloatTight move(*graph.dag, graph.rng, comparisons);
  const auto rule = [&](test::Draws& draws) { return tight(draws); };
  expectDraws(move, false, rule);
  EXPECT_FALSE(hasBuilt) << "nodes 0 and 1 are equal";
  for (const std::uint32_t raised : {0u, 1u}) {
    test::setAndAccept(*graph.dag, raised, 1);
    expectDraws(move, false, rule);
    EXPECT_TRUE(hasBuilt);
    test::setAndAccept(*graph.dag, raised, 0);
  }
}

}  // namespace
}  // namespace ombrix
