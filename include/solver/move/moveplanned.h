#ifndef OMBRIX_SOLVER_MOVE_MOVEPLANNED_H
#define OMBRIX_SOLVER_MOVE_MOVEPLANNED_H

#include <cstdint>
#include <string>
#include <vector>

#include "solver/move/autonomousstructure.h"
#include "solver/move/move.h"

namespace ombrix {

/// A move that plans its change in the mirror of the constraints and touches the Dag only when the
/// plan stands: it changes something, at a targeted decision or anywhere, and then repairs what
/// this violated, a step at a time, trying first what its kind is made for. A plan that violates
/// more constraints than before is dropped.
///
/// The pending flips of a candidate stay in the mirror until finish: an accepted one is real by
/// then, a refused one is taken back. Costs the few flips it tries, and a look at every violated
/// constraint per repair.
class MovePlanned : public Move {
public:
  bool apply() override;
  void finish(MoveStatus status) override;
  double getSelectionFactor() const override { return 1.0 / (maxSteps * 2.0); }

protected:
  MovePlanned(const std::string& kind, Dag& workerDag, std::uint32_t& state, std::uint32_t nbSteps,
              std::uint32_t nbFlips, std::uint32_t nbNewViolated, std::uint32_t rate,
              AutonomousStructure& mirror);

  /// Where a walk down from a node ends: a flat node, and which way it must go.
  struct End {
    const StaticConstraintNode* node = nullptr;
    bool up = true;
  };

  /// The first changes, at a targeted decision.
  virtual void changeFrom(DynamicConstraintNodeBool& decision) = 0;
  /// What this kind of move tries before a plain repair. Some node is violated.
  virtual bool tryOwnStep() = 0;

  /// A random parent that the mirror has, or null.
  DynamicConstraintNode* randomParent(const DynamicConstraintNode& node);
  std::uint32_t randomViolated();
  /// Follows random operands to a flat node; false where no operand helps.
  bool walkDown(std::uint32_t index, bool up, End& end);
  /// Puts the decisions below a flat node into filter, sorted.
  void gatherDecisions(const StaticConstraintNode& flat);
  /// Flips the first decision of filter that takes the end its way.
  bool changeShared(const End& end);

  std::uint32_t maxSteps;
  std::uint32_t maxPending;
  AutonomousStructure* structure;
  std::uint32_t origin = kNone;  ///< static index of the node that the first changes were told to
  DecisionList filter;
  DecisionList shared;

private:
  bool plan();
  void start();
  void startTargeted();
  void startAnywhere();
  bool trim();
  bool repair();

  std::uint32_t targetingRate;
  std::uint32_t maxNewViolated;
  std::uint32_t nbViolatedBefore = 0;
};

}  // namespace ombrix

#endif
