#ifndef OMBRIX_TESTS_SUPPORT_SCRIPTEDMOVE_H
#define OMBRIX_TESTS_SUPPORT_SCRIPTEDMOVE_H

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "solver/move/move.h"

namespace ombrix::test {

/// A move that flips the decisions of the next line of its script, and starts over at the end. An
/// empty line, or an empty script, is a candidate that could not be built.
class ScriptedMove : public Move {
public:
  ScriptedMove(Dag& workerDag, std::uint32_t& state, std::vector<std::vector<std::uint32_t>> lines,
               std::uint32_t moveWeight = 1, const std::string& moveName = "Scripted")
      : Move(moveName, workerDag, state, moveWeight), script(std::move(lines)) {}

  bool apply() override {
    if (script.empty()) return false;
    const std::vector<std::uint32_t>& line = script[nextLine];
    nextLine = (nextLine + 1) % script.size();
    for (const std::uint32_t decision : line) flip(decision);
    return !line.empty();
  }

  using Move::flip;
  using Move::setClamped;
  using Move::setRandom;

private:
  std::vector<std::vector<std::uint32_t>> script;
  std::size_t nextLine = 0;
};

/// The draws of a worker, told apart from the engine's own: what a test expects of a state.
class Draws {
public:
  explicit Draws(std::uint32_t seed) : state(seed) {}

  std::uint32_t step() { return state = state * 1664525U + 1013904223U; }
  std::uint32_t index(std::uint32_t n) {
    return n <= 1 ? 0 : static_cast<std::uint32_t>((std::uint64_t{step()} * n) >> 32);
  }
  bool percent(std::uint32_t rate) { return ((std::uint64_t{step()} * 100) >> 32) < rate; }

  std::uint32_t state;
};

}  // namespace ombrix::test

#endif
