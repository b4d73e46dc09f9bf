#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/heuristicautoannealing.h"
#include "solver/kernel/solution.h"
#include "solver/kernel/sparseset.h"
#include "solver/move/poolfiller.h"
#include "support/graphs.h"
#include "support/mirrorchecks.h"

namespace ombrix {
namespace {

using test::expectConsistent;
using test::GraphBuilder;
using test::recompute;
using test::sameValue;

struct Draws {
  std::mt19937 engine;

  std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(engine() % n); }
  std::int64_t between(int low, int high) {
    return low + static_cast<std::int64_t>(below(static_cast<std::uint32_t>(high - low + 1)));
  }
  bool oneIn(std::uint32_t n) { return below(n) == 0; }
  template <typename T>
  const T& among(const std::vector<T>& from) {
    return from[below(static_cast<std::uint32_t>(from.size()))];
  }
};

/// A node as an operand of others.
struct Number {
  std::uint32_t id;
  double size;   ///< no value is larger in magnitude
  bool isExact;  ///< its values have few binary digits, so that sums and products of it are exact
  bool isHuge;   ///< its bounds may be those of the 64-bit range, whatever its values are
};

/// A graph in which every node type occurs, every family over position sets with the given number
/// of operands. The types come in random order over operands at random, so that each may stand
/// above or below each other one. No value overflows, fails, or depends on how often it was
/// rounded.
class RandomGraph {
public:
  RandomGraph(Draws& draws, std::uint32_t nbOperands) : random(draws), width(nbOperands) {
    addSources();
    std::vector<std::uint8_t> types;
    for (std::uint8_t type = 3; type < kNbNodeTypes; ++type) types.push_back(type);
    std::shuffle(types.begin(), types.end(), random.engine);
    for (std::uint8_t type : types) add(static_cast<NodeType>(type));
    addGoals();
    graph.finish();
  }

  GraphBuilder graph;

private:
  using Numbers = std::vector<Number>;

  void addSources() {
    for (std::uint32_t id : graph.booleans(std::clamp(width, 12U, 2000U))) addBoolean(id);
    for (int i = 0; i < 4; ++i) {
      integers.push_back({graph.integer(), 9, true, true});
      floats.push_back({graph.floating(-2, 3), 3, true, false});
      doubles.push_back(floats.back());
    }
    one = graph.constant(1);
    integers.push_back({one, 1, true, false});
    doubleOne = graph.doubleConstant(1);
    doubles.push_back({doubleOne, 1, true, false});
  }

  void addGoals() {
    for (int i = 0; i < 4; ++i) {
      const std::uint32_t id = random.among(booleans);
      const auto& posted = graph.fields.constraints;
      if (std::find(posted.begin(), posted.end(), id) == posted.end()) graph.constraint(id);
    }
    for (int i = 0; i < 3; ++i) {
      const std::uint32_t id = anyNumber().id;
      random.oneIn(2) ? graph.minimise(id) : graph.maximise(id);
    }
  }

  // ---- results

  void addBoolean(std::uint32_t id) {
    booleans.push_back(id);
    integers.push_back({id, 1, true, false});
  }
  void addInteger(std::uint32_t id, double size, bool isHuge) {
    integers.push_back({id, size, true, isHuge});
  }
  void addDouble(std::uint32_t id, double size, bool isExact) {
    doubles.push_back({id, size, isExact, true});
  }

  // ---- operands

  template <typename Predicate>
  Number drawThat(const Numbers& from, Predicate fits) {
    for (;;) {
      const Number& number = random.among(from);
      if (fits(number)) return number;
    }
  }
  static bool isAny(const Number&) { return true; }
  static bool isModest(const Number& number) { return number.isExact && number.size <= 1000; }
  static bool isSmall(const Number& number) { return !number.isHuge && number.size <= 3; }

  Number anyInteger() { return random.among(integers); }
  Number anyNumber() { return random.among(random.oneIn(2) ? doubles : integers); }
  Number modestNumber() { return drawThat(random.oneIn(2) ? doubles : integers, isModest); }

  /// The operands of a family: any, or a few of them many times.
  template <typename Predicate>
  Numbers operandsThat(const Numbers& from, Predicate fits) {
    const bool areFew = random.oneIn(2);
    const std::uint32_t nbDistinct = areFew ? 2 + random.below(4) : width;
    Numbers distinct;
    for (std::uint32_t i = 0; i < nbDistinct; ++i) distinct.push_back(drawThat(from, fits));
    Numbers result;
    for (std::uint32_t i = 0; i < width; ++i)
      result.push_back(areFew ? random.among(distinct) : distinct[i]);
    return result;
  }

  std::vector<std::uint32_t> someBooleans() {
    Numbers all;
    for (std::uint32_t id : booleans) all.push_back({id, 1, true, false});
    return idsOf(operandsThat(all, isAny));
  }

  /// Numbers of every kind.
  template <typename Predicate>
  Numbers mixedOperandsThat(Predicate fits) {
    Numbers all = integers;
    all.insert(all.end(), doubles.begin(), doubles.end());
    return operandsThat(all, fits);
  }

  /// Ones for the most part, so that the product stays small and is not always 0.
  std::vector<std::uint32_t> factors(const Numbers& from) {
    std::vector<std::uint32_t> result(width, one);
    for (int i = 0; i < 4; ++i) result[random.below(width)] = drawThat(from, isSmall).id;
    return result;
  }

  static std::vector<std::uint32_t> idsOf(const Numbers& numbers) {
    std::vector<std::uint32_t> ids;
    for (const Number& number : numbers) ids.push_back(number.id);
    return ids;
  }
  static double sizeOf(const Numbers& numbers, bool isSum) {
    double sum = 0;
    double largest = 0;
    for (const Number& number : numbers) {
      sum += number.size;
      largest = std::max(largest, number.size);
    }
    return isSum ? sum : largest;
  }
  static bool areExact(const Numbers& numbers) {
    return std::all_of(numbers.begin(), numbers.end(), [](const Number& x) { return x.isExact; });
  }
  static bool areHuge(const Numbers& numbers) {
    return std::any_of(numbers.begin(), numbers.end(), [](const Number& x) { return x.isHuge; });
  }

  /// At least 1.
  std::uint32_t positiveInteger() {
    const std::uint32_t size = graph.node(NodeType::Abs, {anyInteger().id});
    return graph.node(NodeType::Sum, {size, one});
  }
  std::uint32_t positiveDouble(const Number& number) {
    const std::uint32_t size = graph.node(NodeType::DoubleAbs, {number.id});
    return graph.node(NodeType::DoubleSum, {size, doubleOne});
  }
  /// From 0 to n - 1.
  std::uint32_t index(std::uint32_t n) {
    const std::uint32_t size = graph.node(NodeType::Abs, {anyInteger().id});
    return graph.node(NodeType::Modulo, {size, graph.constant(n)});
  }

  // ---- node types

  void add(NodeType type) {
    switch (type) {
      case NodeType::And:
      case NodeType::Or:
      case NodeType::Xor:
        return addBoolean(graph.node(type, someBooleans()));
      case NodeType::Not:
        return addBoolean(graph.node(type, {random.among(booleans)}));
      case NodeType::BooleanSum:
        return addInteger(graph.node(type, someBooleans()), width, false);
      case NodeType::Eq:
      case NodeType::Neq:
      case NodeType::Geq:
      case NodeType::Gt:
      case NodeType::Leq:
      case NodeType::Lt:
        return addBoolean(graph.node(type, {anyInteger().id, anyInteger().id}));
      case NodeType::DoubleEq:
      case NodeType::DoubleNeq:
      case NodeType::DoubleGeq:
      case NodeType::DoubleGt:
      case NodeType::DoubleLeq:
      case NodeType::DoubleLt:
        return addBoolean(graph.node(type, {anyNumber().id, anyNumber().id}));
      case NodeType::Sum:
      case NodeType::ScalarSum:
      case NodeType::Max:
      case NodeType::ScalarMax:
      case NodeType::Min:
      case NodeType::ScalarMin:
        return addIntegerAggregate(type);
      case NodeType::DoubleSum:
      case NodeType::DoubleScalarSum:
      case NodeType::DoubleMax:
      case NodeType::DoubleScalarMax:
      case NodeType::DoubleMin:
      case NodeType::DoubleScalarMin:
        return addDoubleAggregate(type);
      case NodeType::Product:
        return addInteger(graph.node(type, factors(integers)), 81, false);
      case NodeType::ScalarProduct:
        return addInteger(graph.node(type, factors(integers), {-2}), 162, false);
      case NodeType::DoubleProduct:
        return addDouble(graph.node(type, factors(floats)), 81, true);
      case NodeType::DoubleScalarProduct:
        return addDouble(graph.doubleNode(type, factors(floats), {-0.5}), 41, true);
      default:
        addOfFewOperands(type);
    }
  }

  void addIntegerAggregate(NodeType type) {
    const bool isSum = type == NodeType::Sum || type == NodeType::ScalarSum;
    const Numbers operands = operandsThat(integers, isModest);
    std::vector<std::int64_t> coefficients;
    const bool isScalar =
        type == NodeType::ScalarSum || type == NodeType::ScalarMax || type == NodeType::ScalarMin;
    for (std::uint32_t i = 0; i < width && isScalar; ++i) {
      // Bounds take 0 times the largest integer for the smallest one.
      const std::int64_t drawn = random.between(-3, 3);
      coefficients.push_back(drawn == 0 && operands[i].isHuge ? 1 : drawn);
    }
    addInteger(graph.node(type, idsOf(operands), coefficients), 3 * sizeOf(operands, isSum),
               areHuge(operands));
  }

  void addDoubleAggregate(NodeType type) {
    const bool isSum = type == NodeType::DoubleSum || type == NodeType::DoubleScalarSum;
    const Numbers operands = isSum ? mixedOperandsThat(isModest) : mixedOperandsThat(isAny);
    const bool isScalar = type == NodeType::DoubleScalarSum || type == NodeType::DoubleScalarMax ||
                          type == NodeType::DoubleScalarMin;
    std::vector<double> coefficients;
    for (std::uint32_t i = 0; i < width && isScalar; ++i)
      coefficients.push_back(0.5 * static_cast<double>(random.between(-3, 3)));
    addDouble(graph.doubleNode(type, idsOf(operands), coefficients), 2 * sizeOf(operands, isSum),
              areExact(operands));
  }

  void addOfFewOperands(NodeType type) {
    const Number a = anyInteger();
    const Number b = anyInteger();
    const Number x = anyNumber();
    const Number y = anyNumber();
    const std::uint32_t condition = random.among(booleans);
    switch (type) {
      case NodeType::Constant:
        return addInteger(graph.constant(random.between(-5, 5)), 5, false);
      case NodeType::DoubleConstant:
        return addDouble(graph.doubleConstant(0.5 * double(random.between(-5, 5))), 3, true);
      case NodeType::Abs:
        return addInteger(graph.node(type, {a.id}), a.size, a.isHuge);
      case NodeType::Distance:
        return addInteger(graph.node(type, {a.id, b.id}), a.size + b.size, a.isHuge || b.isHuge);
      case NodeType::Divide:
      case NodeType::Modulo:
        return addInteger(graph.node(type, {a.id, positiveInteger()}), a.size, true);
      case NodeType::If:
        return addInteger(graph.node(type, {condition, a.id, b.id}), std::max(a.size, b.size),
                          a.isHuge || b.isHuge);
      case NodeType::DoubleAbs:
        return addDouble(graph.node(type, {x.id}), x.size, x.isExact);
      case NodeType::DoubleDistance:
        return addDouble(graph.node(type, {x.id, y.id}), x.size + y.size, x.isExact && y.isExact);
      case NodeType::DoubleIf:
        return addDouble(graph.node(type, {condition, x.id, y.id}), std::max(x.size, y.size),
                         x.isExact && y.isExact);
      case NodeType::DoubleCeil:
      case NodeType::DoubleFloor:
      case NodeType::DoubleRound:
        return addInteger(graph.node(type, {x.id}), x.size + 1, true);
      case NodeType::Array:
      case NodeType::ConstArray:
      case NodeType::At:
      case NodeType::DoubleAt:
        return addReader(type);
      default:
        addFunction(type);
    }
  }

  /// Results with as many digits as a double has.
  void addFunction(NodeType type) {
    const std::uint32_t x = random.among(floats).id;
    switch (type) {
      case NodeType::DoubleDivide: {
        const Number dividend = modestNumber();
        return addDouble(graph.node(type, {dividend.id, positiveDouble(modestNumber())}),
                         dividend.size, false);
      }
      case NodeType::DoubleSqrt:
        return addDouble(graph.node(type, {graph.node(NodeType::DoubleAbs, {x})}), 2, false);
      case NodeType::DoubleLog:
        return addDouble(graph.node(type, {positiveDouble(modestNumber())}), 7, false);
      case NodeType::DoublePow: {
        const std::uint32_t exponent =
            random.oneIn(2) ? index(4) : graph.node(NodeType::DoubleAbs, {x});
        const Number base = random.among(floats);
        return addDouble(graph.node(type, {positiveDouble(base), exponent}), 64, false);
      }
      default:  // exp, cos, sin, tan
        return addDouble(graph.node(type, {x}), 25, false);
    }
  }

  /// A node that indexes an array of numbers or of nodes.
  void addReader(NodeType type) {
    const bool isDouble = type == NodeType::DoubleAt || (type != NodeType::At && random.oneIn(2));
    const bool isConst =
        type == NodeType::ConstArray || (type != NodeType::Array && random.oneIn(2));
    if (isConst) return addReaderOfNumbers(isDouble);
    const Numbers elements = isDouble ? mixedOperandsThat(isAny) : operandsThat(integers, isAny);
    const std::uint32_t array = graph.node(NodeType::Array, idsOf(elements));
    if (isDouble) {
      addDouble(graph.node(NodeType::DoubleAt, {array, index(width)}), sizeOf(elements, false),
                areExact(elements));
    } else {
      addInteger(graph.node(NodeType::At, {array, index(width)}), sizeOf(elements, false),
                 areHuge(elements));
    }
  }

  void addReaderOfNumbers(bool isDouble) {
    if (isDouble) {
      const std::uint32_t array = graph.doubleConstArray({0.5, -1.25, 4});
      return addDouble(graph.node(NodeType::DoubleAt, {array, index(3)}), 4, true);
    }
    const std::uint32_t array = graph.constArray({7, -3, 0, 2});
    addInteger(graph.node(NodeType::At, {array, index(4)}), 7, false);
  }

  Draws& random;
  const std::uint32_t width;
  std::vector<std::uint32_t> booleans;
  Numbers integers;  ///< booleans too
  Numbers floats;    ///< decisions
  Numbers doubles;
  std::uint32_t one = 0;
  std::uint32_t doubleOne = 0;
};

std::vector<std::uint32_t> membersOf(const SparseSet& set) {
  std::vector<std::uint32_t> members;
  for (std::uint32_t i = 0; i < set.size(); ++i) members.push_back(set[i]);
  std::sort(members.begin(), members.end());
  return members;
}

/// Takes a Dag through random moves as a search would: evaluated up to some stage, kept or not,
/// under changing levels and active constraints, with states saved and restored in between. After
/// each step all that the search follows is compared with a computation from nothing.
class Walk {
public:
  Walk(const DagFixedFields& walked, Draws& draws)
      : fields(walked), random(draws), dag(walked), saved(dag) {
    remember();
  }

  void step() {
    changeLevel();
    activate();
    if (random.oneIn(6)) {
      saved.save();
      remember();
    }
    if (random.oneIn(6)) {
      saved.restore(dag);
      expectRestored();
    }
    move();
    expectStep();
  }

  void settle() {
    dag.propagation.synchronize(dag);
    expectConsistent(dag);
  }

  /// What a walk has to come across to prove something.
  bool hasMetStaleNodes = false;
  bool hasMetABrokenConstraint = false;

private:
  void changeLevel() {
    if (!random.oneIn(4)) return;
    const std::uint32_t level = random.below(fields.nbObjectives() + 1);
    if (level > dag.propagation.activeLevel) dag.propagation.synchronize(dag);
    dag.propagation.activeLevel = level;
  }

  void activate() {
    if (!random.oneIn(4)) return;
    if (random.oneIn(2)) {
      dag.propagation.activateSatisfiedConstraints(dag);
    } else {
      dag.propagation.activateConstraints(dag, {random.among(fields.constraints)});
    }
  }

  void move() {
    const bool isLarge = random.oneIn(12);
    for (std::uint32_t k = isLarge ? fields.firstInnerNode : 1 + random.below(4); k > 0; --k)
      write(fields.nodesByGroup[random.below(fields.firstInnerNode)]);
    const std::uint32_t stage = random.below(fields.nbObjectives() + 2);
    const bool isSound = evaluate(stage);
    hasMetABrokenConstraint |= !isSound;
    const bool isEvaluated = stage > 0 || dag.propagation.activeConstraints.size() == 0;
    if (isSound && isEvaluated && !random.oneIn(3)) {
      dag.propagation.accept(dag);
    } else {
      dag.propagation.reject(dag);
    }
  }

  void write(std::uint32_t decision) {
    switch (fields.types[decision]) {
      case NodeType::Boolean:
        return test::flip(dag, decision);
      case NodeType::Integer:
        return dag.propagation.setValue(dag, decision, random.between(-9, 9));
      default:
        dag.propagation.setValue(dag, decision, 0.25 * static_cast<double>(random.between(-8, 12)));
    }
  }

  /// Stage 0 evaluates nothing, stage 1 the constraints, the others the objectives as far as they
  /// are followed.
  bool evaluate(std::uint32_t stage) {
    Propagation& propagation = dag.propagation;
    if (stage == 0) return true;
    if (!propagation.evaluateConstraints(dag)) return false;
    for (std::uint32_t level = 1; level < std::min(stage, propagation.activeLevel + 1); ++level) {
      if (!propagation.evaluateLevels(dag, level)) return false;
    }
    return true;
  }

  void remember() {
    rememberedValues = dag.values.copy();
    rememberedInfeasibility = dag.propagation.infeasibility;
    rememberedActive = membersOf(dag.propagation.activeConstraints);
  }

  void expectRestored() const {
    for (std::uint32_t id = 0; id < fields.nbNodes; ++id) {
      EXPECT_TRUE(sameValue(fields.domains[id], dag.values[id], rememberedValues[id]))
          << "restored value of node " << id << " (" << fields.getTypeName(id) << ")";
    }
    const Infeasibility& infeasibility = dag.propagation.infeasibility;
    EXPECT_EQ(infeasibility.nbViolated, rememberedInfeasibility.nbViolated);
    EXPECT_EQ(infeasibility.nbViolatedEqualities, rememberedInfeasibility.nbViolatedEqualities);
    EXPECT_EQ(membersOf(dag.propagation.activeConstraints), rememberedActive);
    expectConsistent(dag);
  }

  void expectStep() {
    if (dag.propagation.staleNodes.size() == 0) return expectConsistent(dag);
    hasMetStaleNodes = true;
    expectFollowed();
  }

  /// What stands above the active level may be out of date; the rest may not.
  void expectFollowed() const {
    const auto fresh = recompute(dag);
    for (std::uint32_t id = 0; id < fields.nbNodes; ++id) {
      if (fields.levels[id] > dag.propagation.activeLevel) continue;
      EXPECT_NO_THROW(dag.nodes[id]->check(dag, id));
      EXPECT_TRUE(sameValue(fields.domains[id], dag.values[id], fresh->values[id]))
          << "value of node " << id << " (" << fields.getTypeName(id) << ")";
      EXPECT_TRUE(sameValue(fields.domains[id], dag.tValues[id], dag.values[id]))
          << "tentative value of node " << id << " (" << fields.getTypeName(id) << ")";
    }
    const Infeasibility& infeasibility = dag.propagation.infeasibility;
    EXPECT_EQ(infeasibility.nbViolated, fresh->propagation.infeasibility.nbViolated);
    EXPECT_EQ(dag.propagation.tInfeasibility, infeasibility);
  }

  const DagFixedFields& fields;
  Draws& random;
  Dag dag;
  Solution saved;
  std::vector<OXValue> rememberedValues;
  Infeasibility rememberedInfeasibility;
  std::vector<std::uint32_t> rememberedActive;
};

/// Takes a Dag through iterations of a search, and compares after each what the search and its
/// moves follow with a computation from nothing.
class SearchWalk {
public:
  SearchWalk(const DagFixedFields& walked, std::uint32_t seed)
      : fields(walked),
        rng(seed),
        dag(walked),
        lists(walked),
        plannable(walked, true),
        structure(dag, lists, rng),
        mirror(dag, plannable, rng),
        search(dag, &rng) {
    mirror.rebuild();
    fillMovePool(search, structure, plannable.doubleComparisons, PoolSettings{}, &mirror);
    for (const auto& move : search.movePool.moves) move->initialWeight = weightOf(*move);
    search.setAnnealingWindow(3);
    search.reset();
    search.iterationLimit = 0;
    if (dag.propagation.infeasibility.nbViolated > 0) dag.propagation.activeLevel = 0;
  }

  void step() {
    ++search.iterationLimit;
    search.run();
    expectStep();
  }

  std::uint32_t nbAccepted(const std::string& kind) const {
    std::uint32_t sum = 0;
    for (const auto& move : search.movePool.moves) {
      if (move->name.ends_with(kind)) sum += move->nbAccepted;
    }
    return sum;
  }

private:
  /// The moves that are searches in themselves are what is to be proved here. Those of doubles
  /// would write values of many digits.
  static std::uint32_t weightOf(const Move& move) {
    if (isOneOf(move, {"Sequence", "BinPacking", "EjectionChain", "SetPartition"})) return 10;
    return isOneOf(move, {"FloatSimpleFlip", "Tight", "FloatBalance"}) ? 0 : 1;
  }
  static bool isOneOf(const Move& move, std::initializer_list<const char*> kinds) {
    return std::any_of(kinds.begin(), kinds.end(),
                       [&](const char* kind) { return move.name.ends_with(kind); });
  }

  void expectStep() {
    const auto fresh = recompute(dag);
    for (std::uint32_t id = 0; id < fields.nbNodes; ++id) {
      EXPECT_FALSE(dag.propagation.isTouched(id));
      if (fields.levels[id] > dag.propagation.activeLevel) continue;
      EXPECT_TRUE(sameValue(fields.domains[id], dag.tValues[id], dag.values[id]));
      EXPECT_NO_THROW(dag.nodes[id]->check(dag, id));
      EXPECT_TRUE(sameValue(fields.domains[id], dag.values[id], fresh->values[id]))
          << "value of node " << id << " (" << fields.getTypeName(id) << ")";
    }
    const Infeasibility& infeasibility = dag.propagation.infeasibility;
    EXPECT_EQ(infeasibility.nbViolated, fresh->propagation.infeasibility.nbViolated);
    EXPECT_EQ(dag.propagation.tInfeasibility, infeasibility);
    EXPECT_EQ(mirror.pendingDecisions.size(), 0u);
    test::expectMirrorAgrees(mirror, dag.values);
  }

  const DagFixedFields& fields;
  std::uint32_t rng;
  Dag dag;
  ConstraintAnalysis lists;
  MoveAnalysis plannable;
  BasicMoveStructure structure;
  AutonomousStructure mirror;
  HeuristicAutoAnnealing search;
};

/// The work of a graph grows with its width, so the wide ones get fewer.
struct Effort {
  std::uint32_t width;
  std::uint32_t nbGraphs;
  int nbSteps;
};

class GraphProperty : public testing::TestWithParam<Effort> {};

TEST_P(GraphProperty, everyStateEqualsAComputationFromNothing) {
  const auto [width, nbGraphs, nbSteps] = GetParam();
  bool metStaleNodes = false;
  bool metABrokenConstraint = false;
  for (std::uint32_t seed = 0; seed < nbGraphs && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Draws random{std::mt19937(1000 * width + seed)};
    RandomGraph graph(random, width);
    for (std::uint32_t type = 0; type < kNbNodeTypes; ++type)
      ASSERT_NE(graph.graph.fields.nbNodesByType[type], 0u) << "type " << type;
    Walk walk(graph.graph.fields, random);
    for (int i = 0; i < nbSteps && !HasFailure(); ++i) walk.step();
    walk.settle();
    metStaleNodes |= walk.hasMetStaleNodes;
    metABrokenConstraint |= walk.hasMetABrokenConstraint;
  }
  EXPECT_TRUE(metStaleNodes || nbSteps < 10);
  EXPECT_TRUE(metABrokenConstraint || nbSteps < 10);
}

TEST_P(GraphProperty, everyIterationOfASearchLeavesAStateComputedFromNothing) {
  const auto [width, nbGraphs, nbSteps] = GetParam();
  if (width > 2000) return;
  std::uint32_t nbSequences = 0;
  for (std::uint32_t seed = 0; seed < nbGraphs && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Draws random{std::mt19937(7000 * width + seed)};
    RandomGraph graph(random, width);
    SearchWalk walk(graph.graph.fields, seed);
    for (int i = 0; i < nbSteps && !HasFailure(); ++i) walk.step();
    nbSequences += walk.nbAccepted("Sequence");
  }
  EXPECT_GT(nbSequences, 0u);
}

std::string nameOf(const testing::TestParamInfo<Effort>& tested) {
  return "Of" + std::to_string(tested.param.width) + "Operands";
}

INSTANTIATE_TEST_SUITE_P(EveryWidth, GraphProperty,
                         testing::Values(Effort{8, 30, 60}, Effort{9, 30, 60}, Effort{16, 15, 60},
                                         Effort{17, 15, 60}, Effort{32, 15, 60}, Effort{33, 15, 60},
                                         Effort{64, 8, 60}, Effort{65, 8, 60}, Effort{128, 4, 60},
                                         Effort{129, 4, 60}, Effort{256, 3, 50}, Effort{257, 3, 50},
                                         Effort{512, 4, 40}, Effort{513, 4, 40},
                                         Effort{1024, 4, 60}, Effort{1025, 4, 60},
                                         Effort{65535, 1, 4}),
                         nameOf);

}  // namespace
}  // namespace ombrix
