#ifndef OMBRIX_SOLVER_MOVE_MOVE_H
#define OMBRIX_SOLVER_MOVE_MOVE_H

#include <cstdint>
#include <iosfwd>
#include <string>

#include "solver/kernel/dag.h"
#include "solver/kernel/infeasibility.h"
#include "solver/kernel/movestatus.h"

namespace ombrix {

/// "number-base": the names of moves show their size first. Nested for a move of two sizes.
std::string formatMoveName(std::uint32_t number, const std::string& base);

/// One kind of neighbourhood: it knows how to change a few decisions at random, and owns the
/// counters of its kind. apply only writes tentative values; the strategies evaluate as far as they
/// need; finish keeps or forgets. Belongs to one worker and keeps no state from one iteration to
/// the next but counters, weight and scratch, so that apply allocates nothing once warm.
class alignas(kCacheLineSize) Move {
public:
  Move(std::string moveName, Dag& workerDag, std::uint32_t& state, std::uint32_t moveWeight = 1);
  virtual ~Move() = default;
  Move(const Move&) = delete;
  Move& operator=(const Move&) = delete;

  /// Writes the candidate. False when none could be built: what was written is then dropped.
  virtual bool apply() = 0;
  /// Constraints, then the levels up to the given one. False when an active constraint broke.
  virtual bool evaluate(std::uint32_t level);
  virtual bool evaluateAll();
  /// Counts, then keeps or forgets the candidate.
  virtual void finish(MoveStatus status);
  /// The state that the candidate is compared with: the committed one.
  virtual OXValue getObjectiveValue(std::uint32_t objective) const;
  virtual Infeasibility getInfeasibility() const;
  virtual void printStatistics(std::ostream& out) const;
  virtual bool isInfeasibilityWorse() const;
  virtual bool isInfeasibilityBetter() const;
  virtual bool isObjectiveWorse(std::uint32_t objective) const;
  virtual bool isObjectiveBetter(std::uint32_t objective) const;
  /// Scales this kind of move when weights are shifted: a heavy move counts less.
  virtual double getSelectionFactor() const { return 1.0; }

  std::string getName() const { return name; }
  /// Clears the counters and puts the weight back.
  void resetStatistics();

  std::string name;
  Dag* dag;
  std::uint32_t* rng;
  std::uint32_t initialWeight;
  std::uint32_t weight;
  std::uint32_t nbAttempted = 0;
  std::uint32_t nbAccepted = 0;  ///< the improving ones included
  std::uint32_t nbRejected = 0;
  std::uint32_t nbImprovements = 0;
  std::uint32_t nbInfeasibles = 0;

protected:
  /// The opposite of the tentative value; a second change of a decision in one move is ignored.
  void flip(std::uint32_t decision);
  /// A double decision gets the value, cut to its bounds; any other one is flipped.
  void setClamped(std::uint32_t decision, double value);
  /// A double decision gets a value between its bounds; any other one is flipped.
  void setRandom(std::uint32_t decision);
  bool isDouble(std::uint32_t node) const {
    return dag->fixedFields->domains[node] == kDoubleDomain;
  }
};

}  // namespace ombrix

#endif
