#include "solver/move/movekscramble.h"

#include <algorithm>

#include "solver/kernel/random.h"

namespace ombrix {

MoveKScramble::MoveKScramble(Dag& workerDag, std::uint32_t& state, std::uint32_t length,
                             std::uint32_t moveWeight, std::uint32_t rate,
                             BasicMoveStructure& lists)
    : MoveRun(formatMoveName(length, "Scramble"), workerDag, state, length, moveWeight, rate,
              lists),
      slots(std::min(length, lists.constraintAnalysis->nbExactlyOneLists)) {}

bool MoveKScramble::apply() {
  forgetChain();
  const auto [first, last] = pickRun(k);
  if (first == last) return false;
  const bool goesUp = first < last;
  const std::uint32_t size = std::max(first, last) - std::min(first, last) + 1;
  const auto rowOf = [this, start = first, goesUp](std::uint32_t place) {
    return rowAt(goesUp ? start + place : start - place);
  };
  slots.clear();
  for (std::uint32_t place = 0; place < size; ++place) slots.add(place);
  for (std::uint32_t place = 0; place < size; ++place) {
    const std::uint32_t slot = slots[randomIndex(*rng, slots.size())];
    if (slot != place && !moveContent(rowOf(place), rowOf(slot))) return false;
    slots.remove(slot);
  }
  return nbFlips > 0;
}

bool MoveKScramble::moveContent(std::uint32_t from, std::uint32_t to) {
  ChainLink column;
  return takeContent(from, column) && putContent(to, column);
}

}  // namespace ombrix
