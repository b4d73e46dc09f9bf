#ifndef OMBRIX_SOLVER_KERNEL_SUBSETOPERATIONS_H
#define OMBRIX_SOLVER_KERNEL_SUBSETOPERATIONS_H

#include <cstdint>
#include <ostream>

#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/random.h"

namespace ombrix {

/// What the three representations of a set of operand positions have in common, written over their
/// own operations. Empty, so that it costs a node nothing. A node passes its operand count n to
/// every operation that needs it, since no set stores it.
template <typename Set>
class SubsetOperations {
public:
  /// Makes the set hold exactly the positions for which the predicate holds.
  template <typename Predicate>
  void fill(std::uint32_t n, Predicate&& holds) {
    for (std::uint32_t i = 0; i < n; ++i) {
      if (holds(i)) {
        self().add(i, n);
      } else {
        self().remove(i, n);
      }
    }
  }

  /// Whether the set holds exactly the positions for which the predicate holds.
  template <typename Predicate>
  bool agrees(std::uint32_t n, Predicate&& holds) const {
    for (std::uint32_t i = 0; i < n; ++i) {
      if (self().contains(i, n) != static_cast<bool>(holds(i))) return false;
    }
    return true;
  }

  /// A random member, or kNone if there is none. A single member is found without a draw.
  std::uint32_t randomMember(std::uint32_t n, std::uint32_t& rng) const {
    const std::uint32_t nbMembers = self().size();
    return nbMembers == 0 ? kNone : self().at(randomIndex(rng, nbMembers), n);
  }

  /// A random position outside the set, or kNone if there is none.
  std::uint32_t randomNonMember(std::uint32_t n, std::uint32_t& rng) const {
    const std::uint32_t nbMembers = self().size();
    const std::uint32_t nbOthers = n - nbMembers;
    return nbOthers == 0 ? kNone : self().at(nbMembers + randomIndex(rng, nbOthers), n);
  }

  /// The members, each behind a space, and the end of the line.
  void print(std::ostream& out, std::uint32_t n) const {
    self().forEach(n, [&out](std::uint32_t position) { out << ' ' << position; });
    out << '\n';
  }

protected:
  Set& self() { return static_cast<Set&>(*this); }
  const Set& self() const { return static_cast<const Set&>(*this); }
};

/// What the two representations with a bit a position add. They iterate over a copy of a word, so
/// that the set may change under the iteration.
template <typename Set>
class BitSetOperations : public SubsetOperations<Set> {
public:
  template <typename Predicate>
  void removeIf(std::uint32_t n, Predicate&& holds) {
    this->self().forEach(n, [&](std::uint32_t i) {
      if (holds(i)) this->self().remove(i, n);
    });
  }
  template <typename Predicate>
  void addIf(std::uint32_t n, Predicate&& holds) {
    this->self().forEachNonMember(n, [&](std::uint32_t i) {
      if (holds(i)) this->self().add(i, n);
    });
  }
};

}  // namespace ombrix

#endif
