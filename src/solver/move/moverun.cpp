#include "solver/move/moverun.h"

#include <algorithm>

#include "solver/kernel/random.h"

namespace ombrix {

std::pair<std::uint32_t, std::uint32_t> MoveRun::pickRun(std::uint32_t length) {
  const std::uint32_t n = analysis().nbExactlyOneLists;
  if (n < 2) return {0, 0};
  const std::int64_t begin = static_cast<std::int64_t>(analysis().booleanLists.size()) - n;
  const std::int64_t first = begin + randomIndex(*rng, n);
  const std::int64_t direction = randomTopBit(*rng) ? 1 : -1;
  const std::int64_t reach = static_cast<std::int64_t>(std::min(length, n)) - 1;
  const std::int64_t farEnd = std::clamp(first + reach * direction, begin, begin + n - 1);
  // A length of 0 puts the far end behind the first row.
  const std::int64_t step = farEnd < first ? -1 : 1;
  std::int64_t last = first;
  for (std::int64_t i = first;; i += step) {
    const std::uint32_t row = rowAt(static_cast<std::uint32_t>(i));
    if (node(row).nbNotMinNodes(*dag, row) != 1) break;
    if (i != first && sharesAnEnd(row, rowAt(static_cast<std::uint32_t>(i - step)))) break;
    last = i;
    if (i == farEnd) break;
  }
  if (last == first) return {0, 0};
  return {static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last)};
}

/// Whether two neighbouring lists meet in a decision, so that they are no rows of one table.
bool MoveRun::sharesAnEnd(std::uint32_t row, std::uint32_t other) const {
  const DagFixedFields& fields = *dag->fixedFields;
  const std::uint32_t first = fields.operand(row, 0);
  const std::uint32_t last = fields.operand(row, fields.nbOperands(row) - 1);
  const std::uint32_t otherFirst = fields.operand(other, 0);
  const std::uint32_t otherLast = fields.operand(other, fields.nbOperands(other) - 1);
  return first == otherFirst || first == otherLast || last == otherFirst || last == otherLast;
}

std::uint32_t MoveRun::drawLength(std::uint32_t smallest) {
  return smallest >= k ? k : smallest + randomIndex(*rng, k - smallest + 1);
}

bool MoveRun::takeContent(std::uint32_t row, ChainLink& column) {
  const std::uint32_t position = node(row).randomNotMinNode(*dag, row, *rng);
  column.list = row;
  return position != kNone && flipOperand(row, position) && nextLink(column, position);
}

bool MoveRun::putContent(std::uint32_t row, const ChainLink& column) {
  const std::uint32_t decision = closingDecision(row, column.list, true, column.side);
  return decision != kNone && flipDecision(decision);
}

double selectionFactorOfRun(std::uint32_t length) {
  return length >= 8 ? 8.0 / length : 1.0;
}

}  // namespace ombrix
