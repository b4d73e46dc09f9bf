#include "solver/move/movekmirror.h"

#include <algorithm>

namespace ombrix {

namespace {

std::string mirrorName(std::uint32_t length, std::uint32_t smallest) {
  const std::string name = formatMoveName(length, "Mirror");
  return smallest == length ? name : formatMoveName(smallest, name);
}

}  // namespace

MoveKMirror::MoveKMirror(Dag& workerDag, std::uint32_t& state, std::uint32_t length,
                         std::uint32_t smallest, std::uint32_t moveWeight, std::uint32_t rate,
                         BasicMoveStructure& lists)
    : MoveRun(mirrorName(length, smallest), workerDag, state, length, moveWeight, rate, lists),
      minSize(smallest) {}

bool MoveKMirror::apply() {
  forgetChain();
  const auto [first, last] = pickRun(drawLength(minSize));
  if (first == last) return false;
  std::uint32_t a = std::min(first, last);
  std::uint32_t b = std::max(first, last);
  for (; a < b; ++a, --b) {
    if (!exchange(rowAt(a), rowAt(b))) return false;
  }
  return nbFlips > 0;
}

bool MoveKMirror::exchange(std::uint32_t rowA, std::uint32_t rowB) {
  ChainLink columnA;
  ChainLink columnB;
  return takeContent(rowA, columnA) && takeContent(rowB, columnB) && putContent(rowA, columnB) &&
         putContent(rowB, columnA);
}

}  // namespace ombrix
