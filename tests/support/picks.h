#ifndef OMBRIX_TESTS_SUPPORT_PICKS_H
#define OMBRIX_TESTS_SUPPORT_PICKS_H

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

#include "solver/kernel/dag.h"
#include "solver/kernel/random.h"

namespace ombrix::test {

/// What a pick answered, and the random state that it left.
struct Pick {
  bool isFound = false;
  std::uint32_t decision = kNone;
  std::uint32_t rng = 0;
};

inline Pick pickDown(const Dag& dag, std::uint32_t id, std::uint32_t rng = 1) {
  Pick pick{false, kNone, rng};
  pick.isFound = dag.nodes[id]->pickToDecrease(dag, id, pick.rng, pick.decision);
  return pick;
}

inline Pick pickUp(const Dag& dag, std::uint32_t id, std::uint32_t rng = 1) {
  Pick pick{false, kNone, rng};
  pick.isFound = dag.nodes[id]->pickToIncrease(dag, id, pick.rng, pick.decision);
  return pick;
}

inline Pick pickAny(const Dag& dag, std::uint32_t id, std::uint32_t rng = 1) {
  Pick pick{false, kNone, rng};
  pick.isFound = dag.nodes[id]->pickToChange(dag, id, pick.rng, pick.decision);
  return pick;
}

/// The state after a number of draws.
inline std::uint32_t afterDraws(std::uint32_t rng, int nbDraws) {
  for (int i = 0; i < nbDraws; ++i) step(rng);
  return rng;
}

/// A state from which the next draws have these top bits.
inline std::uint32_t seedForTopBits(std::initializer_list<int> bits) {
  for (std::uint32_t seed = 1;; ++seed) {
    std::uint32_t rng = seed;
    bool isWanted = true;
    for (int bit : bits) isWanted &= randomTopBit(rng) == (bit == 1);
    if (isWanted) return seed;
  }
}

/// Writes integer decisions in one move, evaluates all levels, and leaves the move open.
inline void openMove(Dag& dag,
                     std::initializer_list<std::pair<std::uint32_t, std::int64_t>> written) {
  for (const auto& [decision, value] : written) dag.propagation.setValue(dag, decision, value);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag));
  ASSERT_TRUE(dag.propagation.evaluateLevels(dag, dag.fixedFields->nbObjectives()));
}

/// The same, accepted.
inline void acceptMove(Dag& dag,
                       std::initializer_list<std::pair<std::uint32_t, std::int64_t>> written) {
  openMove(dag, written);
  dag.propagation.accept(dag);
}

/// The text that an action writes to the standard output.
template <typename Action>
std::string captured(const Action& action) {
  testing::internal::CaptureStdout();
  action();
  return testing::internal::GetCapturedStdout();
}

inline void expectPick(const Pick& pick, std::uint32_t decision, std::uint32_t rng) {
  EXPECT_TRUE(pick.isFound);
  EXPECT_EQ(pick.decision, decision);
  EXPECT_EQ(pick.rng, rng);
}

inline void expectNoPick(const Pick& pick, std::uint32_t rng) {
  EXPECT_FALSE(pick.isFound);
  EXPECT_EQ(pick.rng, rng);
}

}  // namespace ombrix::test

#endif
