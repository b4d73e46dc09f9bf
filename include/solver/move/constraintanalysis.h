#ifndef OMBRIX_SOLVER_MOVE_CONSTRAINTANALYSIS_H
#define OMBRIX_SOLVER_MOVE_CONSTRAINTANALYSIS_H

#include <cstdint>
#include <span>
#include <vector>

#include "solver/kernel/dagfixedfields.h"

namespace ombrix {

/// The lists in which one decision takes part: first the free ones, below nbFree, then the
/// constrained ones, below nbConstrained, then those with double decisions.
struct DecisionIncidence {
  std::uint32_t nbFree;
  std::uint32_t nbConstrained;
  std::span<const std::uint32_t> lists;      ///< node numbers
  std::span<const std::uint32_t> positions;  ///< parallel: where the decision stands in each list

  std::uint32_t size() const { return static_cast<std::uint32_t>(lists.size()); }
};

/// What the sums of a model say about its decisions. A list is a sum with at least two operands,
/// all of them decisions. It is free when no equality constrains it, so that a move may change its
/// total; a move that respects the model keeps the total of every other list. Decisions are told by
/// node number everywhere.
///
/// Built once per model in time and memory linear in the sums, 12 bytes per decision and 8 per
/// entry (models have a million decisions, so there is no vector per decision), and shared
/// read-only by all workers.
class ConstraintAnalysis {
public:
  explicit ConstraintAnalysis(const DagFixedFields& fields);

  DecisionIncidence incidence(std::uint32_t decision) const {
    const std::uint32_t index = fixedFields->posInGroups[decision];
    const Entries& own = entries[index];
    const std::size_t count = entries[index + 1].offset - own.offset;
    return {own.nbFree,
            own.nbConstrained,
            {entryLists.data() + own.offset, count},
            {entryPositions.data() + own.offset, count}};
  }
  std::uint32_t nbFree(std::uint32_t decision) const { return incidence(decision).nbFree; }
  std::uint32_t nbConstrained(std::uint32_t decision) const {
    return incidence(decision).nbConstrained;
  }
  std::span<const std::uint32_t> listsOf(std::uint32_t decision) const {
    return incidence(decision).lists;
  }
  std::span<const std::uint32_t> positionsOf(std::uint32_t decision) const {
    return incidence(decision).positions;
  }

  const DagFixedFields* fixedFields;
  /// Every list: the free ones, the other constrained ones, the exactly-one lists, and then those
  /// over boolean and double decisions, in which the boolean lists come a second time.
  std::vector<std::uint32_t> lists;
  std::vector<std::uint32_t> booleanLists;  ///< lists but for the last group
  std::vector<std::uint32_t> floatLists;    ///< the last group of lists
  std::uint32_t nbFreeLists = 0;
  std::uint32_t nbExactlyOneLists = 0;       ///< they come last in booleanLists
  std::vector<std::uint32_t> freeDecisions;  ///< boolean, in free lists only or in none
  std::vector<std::uint32_t> swapDecisions;  ///< boolean, in some list and at most one not free
  /// Whether a chain can leave the constrained lists: false when there are some and no decision in
  /// a free list has at most one other list.
  bool hasFreeOrMixed = true;

private:
  struct Entries {
    std::uint32_t offset = 0;
    std::uint32_t nbFree = 0;
    std::uint32_t nbConstrained = 0;
  };

  void gatherLists(std::vector<std::uint32_t>& mixedLists);
  void buildIncidence(std::span<const std::uint32_t> mixedLists);
  void countEntries(std::span<const std::uint32_t> some, std::uint32_t Entries::*counter,
                    std::vector<std::uint32_t>& totals);
  void writeEntries(std::span<const std::uint32_t> some, std::vector<std::uint32_t>& ends);
  void deriveSets();

  std::vector<Entries> entries;  ///< per decision, and one more
  std::vector<std::uint32_t> entryLists;
  std::vector<std::uint32_t> entryPositions;
};

}  // namespace ombrix

#endif
