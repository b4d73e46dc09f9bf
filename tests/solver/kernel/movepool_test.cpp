#include "solver/kernel/movepool.h"

#include <gtest/gtest.h>

#include <sstream>

#include "common/failure.h"
#include "tests/support/failures.h"
#include "tests/support/graphs.h"
#include "tests/support/scriptedmove.h"

namespace ombrix {
namespace {

class MovePoolTest : public testing::Test {
protected:
  MovePoolTest() {
    builder.boolean();
    dag = builder.makeDag();
  }

  Move* add(std::uint32_t weight, const std::string& name = "Scripted") {
    pool.addMove(std::make_unique<test::ScriptedMove>(
        *dag, rng, std::vector<std::vector<std::uint32_t>>{}, weight, name));
    return pool.moves.back().get();
  }

  test::GraphBuilder builder;
  std::unique_ptr<Dag> dag;
  std::uint32_t rng = 1;
  MovePool pool;
};

TEST_F(MovePoolTest, DrawIsEmptyAfterAnAdditionUntilTheNextRebuild) {
  add(2);
  pool.rebuild();
  EXPECT_EQ(pool.weightedMoves.size(), 2u);
  add(3);
  EXPECT_TRUE(pool.weightedMoves.empty());
  pool.rebuild();
  EXPECT_EQ(pool.weightedMoves.size(), 5u);
}

TEST_F(MovePoolTest, EachMoveStandsAsOftenAsItsCurrentWeightSaysInTheOrderOfAddition) {
  Move* first = add(2);
  Move* absent = add(0);
  Move* last = add(3);
  pool.rebuild();
  EXPECT_EQ(pool.weightedMoves, (CacheLineVector<Move*>{first, first, last, last, last}));
  first->weight = 0;
  absent->weight = 1;
  EXPECT_EQ(pool.weightedMoves.size(), 5u) << "a change of a weight waits for the rebuild";
  pool.rebuild();
  EXPECT_EQ(pool.weightedMoves, (CacheLineVector<Move*>{absent, last, last, last}));
}

TEST_F(MovePoolTest, GetMoveRefusesAnIndexBeyondTheLastMove) {
  add(1);
  Move* last = add(1);
  EXPECT_EQ(pool.getNbMoves(), 2u);
  EXPECT_EQ(pool.getMove(1), last);
  test::expectFailure(kInternal, "MovePool::getMove", "The asked move (idx 2) is not in the pool",
                      [&] { pool.getMove(2); });
}

TEST_F(MovePoolTest, TableHasOneRowPerMoveInTheOrderOfAddition) {
  Move* first = add(1, "1-SimpleFlip");
  Move* second = add(8, "2-Flip");
  first->nbAttempted = 123;
  first->nbAccepted = 45;
  first->nbImprovements = 6;
  first->nbInfeasibles = 7;
  second->nbAttempted = 1234567890;
  second->weight = 3;
  std::ostringstream out;
  pool.printStatistics(out);
  EXPECT_EQ(out.str(),
            "Heur. stats              moves  accepted  improved    infeas    rate\n"
            "  1-SimpleFlip             123        45         6         7       1\n"
            "  2-Flip            1234567890         0         0         0       3\n");
}

}  // namespace
}  // namespace ombrix
