#include "solver/move/movekroll.h"

#include <algorithm>

#include "solver/kernel/random.h"

namespace ombrix {

namespace {

std::string rollName(std::uint32_t length, std::uint32_t smallest, std::uint32_t distance) {
  const std::string name = formatMoveName(length, formatMoveName(distance, "Roll"));
  return smallest == length ? name : formatMoveName(smallest, name);
}

}  // namespace

MoveKRoll::MoveKRoll(Dag& workerDag, std::uint32_t& state, std::uint32_t length,
                     std::uint32_t smallest, std::uint32_t distance, std::uint32_t moveWeight,
                     std::uint32_t rate, BasicMoveStructure& lists)
    : MoveRun(rollName(length, smallest, distance), workerDag, state, length, moveWeight, rate,
              lists),
      l(distance),
      minSize(smallest) {}

bool MoveKRoll::apply() {
  forgetChain();
  const auto [first, last] = pickRun(drawLength(minSize));
  if (first == last) return false;
  const Run run{first, first < last, std::max(first, last) - std::min(first, last) + 1};
  const std::uint32_t shift = drawShift(run.size);
  // The cycles of the shift begin among the first rows; one that was gone through already is left
  // as it is.
  for (std::uint32_t start = 0; start < shift; ++start) {
    if (!rotate(run, start, shift)) return false;
  }
  return nbFlips > 0;
}

std::uint32_t MoveKRoll::drawShift(std::uint32_t size) {
  const std::uint32_t largest = std::min(l, (size + 1) / 2);
  return l > 3 ? 1 + randomIndex(*rng, largest) : largest;
}

bool MoveKRoll::rotate(const Run& run, std::uint32_t start, std::uint32_t shift) {
  std::uint32_t place = start;
  do {
    const std::uint32_t next = (place + shift) % run.size;
    if (!moveContent(rowOf(run, place), rowOf(run, next))) return false;
    place = next;
  } while (place != start);
  return true;
}

bool MoveKRoll::moveContent(std::uint32_t from, std::uint32_t to) {
  const std::uint32_t position = node(from).randomNotMinNode(*dag, from, *rng);
  if (position == kNone) return false;
  if (!flipOperand(from, position)) return true;
  ChainLink column{from, false};
  return nextLink(column, position) && putContent(to, column);
}

}  // namespace ombrix
