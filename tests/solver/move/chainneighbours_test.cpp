#include <algorithm>
#include <compare>
#include <map>

#include "solver/move/movekcycle.h"
#include "solver/move/moveklforkcycle.h"
#include "solver/move/moveklforkpath.h"
#include "solver/move/movekpath.h"
#include "tests/solver/move/reachedneighbours.h"

namespace ombrix {
namespace {

using test::Neighbours;
using test::reachedBy;
using Decisions = std::set<std::uint32_t>;

/// Lists of booleans and one state of them, with all that a chain may take by the rules: every
/// choice is followed, none is drawn.
class ChainRules {
public:
  struct Link {
    std::size_t list;
    bool side;  ///< whether the next decision must raise the list
    auto operator<=>(const Link&) const = default;
  };
  struct Chain {
    Decisions flipped;
    Link end;
    auto operator<=>(const Chain&) const = default;
  };
  struct List {
    std::map<std::uint32_t, std::int64_t> terms;
    bool isFree;
  };

  Neighbours paths(std::uint32_t k) const {
    Neighbours result;
    for (const Link& start : freeStarts()) {
      for (const Chain& chain : walk(start, k - 1)) {
        for (const auto last : fitting(chain.end)) result.insert(with(chain.flipped, last));
      }
    }
    return result;
  }

  Neighbours forkPaths(std::uint32_t k, std::uint32_t l) const {
    Neighbours result;
    for (const Link& start : freeStarts()) {
      for (const Chain& trunk : walk(start, k - 2)) {
        Neighbours grown = {trunk.flipped};
        for (std::uint32_t i = 0; i < l; ++i) {
          Neighbours next;
          for (const Decisions& flipped : grown) {
            for (const Chain& branch : steps({flipped, trunk.end})) {
              for (const auto last : fitting(branch.end)) next.insert(with(branch.flipped, last));
            }
          }
          grown = next;
        }
        result.merge(grown);
      }
    }
    return result;
  }

  /// Where chains can leave the constrained lists a cycle starts on either side, else on the rarer.
  Neighbours cycles(std::uint32_t k, bool startsOnEitherSide) const {
    Neighbours result;
    for (std::size_t list = 0; list < lists.size(); ++list) {
      for (const bool side : {true, false}) {
        const bool isRarer = side == rarerSide(list);
        if (startsOnEitherSide ? lists[list].isFree : !isRarer) continue;
        for (const Chain& chain : walk({list, side}, isRarer ? k - 1 : k - 2)) {
          if (isRarer) {
            close({list, !side}, chain, result);
            continue;
          }
          for (const Chain& arm : steps({chain.flipped, {list, !side}})) {
            close(arm.end, {arm.flipped, chain.end}, result);
          }
        }
      }
    }
    return result;
  }

  Neighbours forkCycles(std::uint32_t k, std::uint32_t l) const {
    Neighbours result;
    for (std::size_t list = 0; list < lists.size(); ++list) {
      const bool firstSide = rarerSide(list);
      for (const Chain& trunk : walk({list, firstSide}, k - 2)) {
        Neighbours grown = {trunk.flipped};
        for (std::uint32_t i = 0; i < l; ++i) {
          const Link closing = {list, i % 2 == 0 ? firstSide : !firstSide};
          Neighbours next;
          for (const Decisions& flipped : grown) {
            for (const Chain& branch : steps({flipped, trunk.end})) close(closing, branch, next);
          }
          grown = next;
        }
        result.merge(grown);
      }
    }
    return result;
  }

  std::vector<List> lists;
  Decisions raised;

private:
  using Chains = std::set<Chain>;

  static Decisions with(Decisions flipped, std::uint32_t decision) {
    flipped.insert(decision);
    return flipped;
  }

  /// Whether the decision can raise the list, else it can lower it.
  bool canRaise(std::size_t list, std::uint32_t decision) const {
    return (lists[list].terms.at(decision) > 0) != raised.contains(decision);
  }
  std::vector<std::uint32_t> fitting(const Link& link) const {
    std::vector<std::uint32_t> result;
    for (const auto& [decision, coefficient] : lists[link.list].terms) {
      if (canRaise(link.list, decision) == link.side) result.push_back(decision);
    }
    return result;
  }
  /// The side of which a list has no more than of the other: at most as many to raise as to lower.
  bool rarerSide(std::size_t list) const {
    return 2 * fitting({list, true}).size() <= lists[list].terms.size();
  }

  std::vector<Link> freeStarts() const {
    std::vector<Link> starts;
    for (std::size_t list = 0; list < lists.size(); ++list) {
      if (!lists[list].isFree) continue;
      starts.push_back({list, true});
      starts.push_back({list, false});
    }
    return starts;
  }

  /// Constrained lists first: what one of them gains through the decision it must lose again, and
  /// the other way round.
  std::vector<Link> nextLinks(std::size_t from, std::uint32_t decision) const {
    std::vector<Link> links;
    for (const bool isFree : {false, true}) {
      for (std::size_t list = 0; list < lists.size(); ++list) {
        if (list == from || lists[list].isFree != isFree) continue;
        if (lists[list].terms.contains(decision))
          links.push_back({list, !canRaise(list, decision)});
      }
      if (!links.empty()) break;
    }
    return links;
  }

  Chains steps(const Chain& chain) const {
    Chains result;
    for (const auto decision : fitting(chain.end)) {
      if (chain.flipped.contains(decision)) continue;
      for (const Link& next : nextLinks(chain.end.list, decision)) {
        result.insert({with(chain.flipped, decision), next});
      }
    }
    return result;
  }
  Chains walk(const Link& start, std::uint32_t nbSteps) const {
    Chains chains = {{{}, start}};
    for (std::uint32_t i = 0; i < nbSteps; ++i) {
      Chains longer;
      for (const Chain& chain : chains) longer.merge(steps(chain));
      chains = longer;
    }
    return chains;
  }

  /// Every untouched decision that fits both links ends the cycle.
  void close(const Link& closing, const Chain& chain, Neighbours& result) const {
    for (const auto decision : fitting(closing)) {
      const auto& other = lists[chain.end.list].terms;
      if (chain.flipped.contains(decision) || !other.contains(decision)) continue;
      if (canRaise(chain.end.list, decision) != chain.end.side) continue;
      result.insert(with(chain.flipped, decision));
    }
  }
};

class ChainNeighboursTest : public testing::Test {
protected:
  enum class Kind : std::uint8_t { Free, Constrained, ExactlyOne };

  void addList(const std::map<std::uint32_t, std::int64_t>& terms, Kind kind) {
    auto& builder = graph.builder;
    rules.lists.push_back({terms, kind == Kind::Free});
    std::vector<std::uint32_t> operands;
    std::vector<std::int64_t> coefficients;
    for (const auto& [decision, coefficient] : terms) {
      operands.push_back(decision);
      coefficients.push_back(coefficient);
    }
    const bool isPlain = std::all_of(coefficients.begin(), coefficients.end(),
                                     [](std::int64_t coefficient) { return coefficient == 1; });
    const auto list = isPlain ? builder.node(NodeType::BooleanSum, operands)
                              : builder.node(NodeType::ScalarSum, operands, coefficients);
    if (kind == Kind::Free) return;
    const auto total = builder.constant(kind == Kind::ExactlyOne ? 1 : 2);
    builder.constraint(builder.node(NodeType::Eq, {list, total}));
  }
  void addSum(const std::vector<std::uint32_t>& operands, Kind kind) {
    std::map<std::uint32_t, std::int64_t> terms;
    for (const auto operand : operands) terms[operand] = 1;
    addList(terms, kind);
  }

  void buildTable(std::uint32_t nbRows, std::uint32_t nbColumns, Kind rows, Kind columns) {
    x = graph.builder.booleans(nbRows * nbColumns);
    for (std::uint32_t r = 0; r < nbRows; ++r) {
      std::vector<std::uint32_t> row;
      for (std::uint32_t c = 0; c < nbColumns; ++c) row.push_back(x[r * nbColumns + c]);
      addSum(row, rows);
    }
    for (std::uint32_t c = 0; c < nbColumns; ++c) {
      std::vector<std::uint32_t> column;
      for (std::uint32_t r = 0; r < nbRows; ++r) column.push_back(x[r * nbColumns + c]);
      addSum(column, columns);
    }
  }

  /// A table with free lists across it and beside it: decisions of two constrained lists, with and
  /// without free ones, and decisions of one or two free lists only.
  void buildTableWithFreeLists() {
    buildTable(3, 3, Kind::ExactlyOne, Kind::Constrained);
    const auto spare = graph.builder.booleans(3);
    x.insert(x.end(), spare.begin(), spare.end());
    addSum({x[0], x[4], x[8]}, Kind::Free);
    addSum({x[1], x[9], x[10]}, Kind::Free);
    addSum({x[9], x[11]}, Kind::Free);
    addSum({x[4], x[8], x[10], x[11]}, Kind::Free);
  }

  void start(const std::vector<std::uint32_t>& raisedPlaces) {
    graph.start(7);
    for (const auto place : raisedPlaces) {
      graph.raise(x[place]);
      rules.raised.insert(x[place]);
    }
  }
  Decisions at(const std::vector<std::uint32_t>& places) const {
    Decisions result;
    for (const auto place : places) result.insert(x[place]);
    return result;
  }

  Neighbours reachedPaths(std::uint32_t k) {
    MoveKPath move(*graph.dag, graph.rng, k, 1, 0, *graph.structure);
    return reachedBy(move, graph);
  }
  Neighbours reachedForkPaths(std::uint32_t k, std::uint32_t l) {
    MoveKLForkPath move(*graph.dag, graph.rng, k, l, 1, 0, *graph.structure);
    return reachedBy(move, graph);
  }
  Neighbours reachedCycles(std::uint32_t k) {
    MoveKCycle move(*graph.dag, graph.rng, k, 1, 0, *graph.structure);
    return reachedBy(move, graph);
  }
  Neighbours reachedForkCycles(std::uint32_t k, std::uint32_t l) {
    MoveKLForkCycle move(*graph.dag, graph.rng, k, l, 1, 0, *graph.structure);
    return reachedBy(move, graph);
  }

  test::SearchGraph graph;
  ChainRules rules;
  std::vector<std::uint32_t> x;
};

// ---- an exactly-one table

class ExactlyOneTable : public ChainNeighboursTest {
protected:
  ExactlyOneTable() {
    buildTable(3, 3, Kind::ExactlyOne, Kind::ExactlyOne);
    start({0, 4, 8});
  }
};

TEST_F(ExactlyOneTable, CyclesReachTheExchangesAndTheRotationsOfItsRows) {
  const Neighbours exchanges = {at({0, 1, 3, 4}), at({0, 2, 6, 8}), at({4, 5, 7, 8})};
  const Neighbours rotations = {at({0, 1, 4, 5, 6, 8}), at({0, 2, 3, 4, 7, 8})};
  ASSERT_FALSE(graph.analysis->hasFreeOrMixed);
  EXPECT_EQ(reachedCycles(4), exchanges);
  EXPECT_EQ(reachedCycles(6), rotations);
  for (const std::uint32_t k : {2u, 3u, 5u, 7u}) EXPECT_EQ(reachedCycles(k), Neighbours{}) << k;
  for (const std::uint32_t k : {2u, 3u, 4u, 5u, 6u, 7u}) {
    EXPECT_EQ(reachedCycles(k), rules.cycles(k, false)) << k;
  }
}

TEST_F(ExactlyOneTable, HasNoPath) {
  EXPECT_EQ(rules.paths(2), Neighbours{});
  for (const std::uint32_t k : {2u, 3u, 4u}) EXPECT_EQ(reachedPaths(k), Neighbours{}) << k;
  EXPECT_EQ(reachedForkPaths(3, 2), Neighbours{});
}

TEST_F(ExactlyOneTable, NoForkCycleCloses) {
  for (const std::uint32_t k : {2u, 3u, 4u, 5u}) {
    EXPECT_EQ(rules.forkCycles(k, 1), Neighbours{}) << k;
    EXPECT_EQ(reachedForkCycles(k, 1), Neighbours{}) << k;
  }
}

// ---- free rows

class FreeRows : public ChainNeighboursTest {
protected:
  FreeRows() {
    buildTable(3, 3, Kind::Free, Kind::Constrained);
    start({0, 4, 5, 6});
  }
};

TEST_F(FreeRows, PathsReachWhatTheRulesDescribe) {
  EXPECT_EQ(reachedPaths(2), rules.paths(2));
  // In a column two decisions exchange their values, or the path ends where it began.
  EXPECT_TRUE(rules.paths(2).contains(at({0, 3})));
  EXPECT_FALSE(rules.paths(2).contains(at({0, 6})));
  for (const std::uint32_t k : {3u, 4u, 5u}) {
    EXPECT_FALSE(rules.paths(k).empty()) << k;
    EXPECT_EQ(reachedPaths(k), rules.paths(k)) << k;
  }
}

TEST_F(FreeRows, ForkPathsReachWhatTheRulesDescribe) {
  for (const auto& [k, l] : {std::pair{2u, 1u}, {2u, 2u}, {3u, 2u}, {4u, 1u}}) {
    EXPECT_FALSE(rules.forkPaths(k, l).empty()) << k << " " << l;
    EXPECT_EQ(reachedForkPaths(k, l), rules.forkPaths(k, l)) << k << " " << l;
  }
}

// ---- a table in any state

class FilledTable : public ChainNeighboursTest {
protected:
  FilledTable() {
    buildTable(3, 4, Kind::Constrained, Kind::Constrained);
    start({0, 1, 5, 7, 10});
  }
};

TEST_F(FilledTable, CyclesReachWhatTheRulesDescribe) {
  ASSERT_FALSE(graph.analysis->hasFreeOrMixed);
  for (const std::uint32_t k : {2u, 3u, 4u, 5u, 6u}) {
    EXPECT_EQ(rules.cycles(k, false).empty(), k < 4 || k % 2 == 1) << k;
    EXPECT_EQ(reachedCycles(k), rules.cycles(k, false)) << k;
  }
}

TEST_F(FilledTable, NoForkCycleCloses) {
  for (const auto& [k, l] : {std::pair{2u, 1u}, {3u, 1u}, {4u, 1u}, {3u, 2u}, {4u, 2u}}) {
    EXPECT_EQ(rules.forkCycles(k, l), Neighbours{}) << k << " " << l;
    EXPECT_EQ(reachedForkCycles(k, l), Neighbours{}) << k << " " << l;
  }
}

// ---- a table with free lists

class TableWithFreeLists : public ChainNeighboursTest {
protected:
  TableWithFreeLists() {
    buildTableWithFreeLists();
    start({0, 4, 8, 9});
  }
};

TEST_F(TableWithFreeLists, PathsReachWhatTheRulesDescribe) {
  for (const std::uint32_t k : {2u, 3u, 4u}) {
    EXPECT_FALSE(rules.paths(k).empty()) << k;
    EXPECT_EQ(reachedPaths(k), rules.paths(k)) << k;
  }
}

TEST_F(TableWithFreeLists, ForkPathsReachWhatTheRulesDescribe) {
  for (const auto& [k, l] : {std::pair{2u, 1u}, {2u, 2u}, {3u, 1u}, {3u, 2u}}) {
    EXPECT_FALSE(rules.forkPaths(k, l).empty()) << k << " " << l;
    EXPECT_EQ(reachedForkPaths(k, l), rules.forkPaths(k, l)) << k << " " << l;
  }
}

TEST_F(TableWithFreeLists, CyclesReachWhatTheRulesDescribe) {
  ASSERT_TRUE(graph.analysis->hasFreeOrMixed);
  EXPECT_FALSE(rules.cycles(4, true).empty());
  for (const std::uint32_t k : {2u, 3u, 4u, 5u, 6u}) {
    EXPECT_EQ(reachedCycles(k), rules.cycles(k, true)) << k;
  }
}

TEST_F(TableWithFreeLists, ForkCyclesReachWhatTheRulesDescribe) {
  EXPECT_FALSE(rules.forkCycles(3, 1).empty()) << "three free lists make a ring";
  for (const auto& [k, l] : {std::pair{2u, 1u}, {3u, 1u}, {3u, 2u}, {4u, 2u}}) {
    EXPECT_EQ(reachedForkCycles(k, l), rules.forkCycles(k, l)) << k << " " << l;
  }
}

// ---- coefficients of both signs

class SignedLists : public ChainNeighboursTest {
protected:
  SignedLists() {
    x = graph.builder.booleans(9);
    addSum({x[0], x[3], x[4], x[5], x[6]}, Kind::Constrained);
    addSum({x[0], x[1], x[2], x[7]}, Kind::Constrained);
    addSum({x[1], x[3], x[8]}, Kind::Constrained);
    addList({{x[2], 1}, {x[4], -1}, {x[8], 3}}, Kind::ExactlyOne);
    addList({{x[5], 1}, {x[7], -2}}, Kind::Constrained);
    start({1, 2, 4, 5, 6, 7});
  }
};

TEST_F(SignedLists, ForkCyclesCloseOnAlternatingSidesAsTheRulesDescribe) {
  EXPECT_TRUE(rules.forkCycles(3, 2).contains(at({0, 1, 2, 3, 4})));
  for (const auto& [k, l] : {std::pair{3u, 1u}, {3u, 2u}, {3u, 3u}, {4u, 1u}, {4u, 2u}}) {
    EXPECT_EQ(reachedForkCycles(k, l), rules.forkCycles(k, l)) << k << " " << l;
  }
}

TEST_F(SignedLists, CyclesReachWhatTheRulesDescribe) {
  for (const std::uint32_t k : {2u, 3u, 4u, 5u}) {
    EXPECT_EQ(reachedCycles(k), rules.cycles(k, graph.analysis->hasFreeOrMixed)) << k;
  }
}

}  // namespace
}  // namespace ombrix
