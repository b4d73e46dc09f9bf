#ifndef OMBRIX_SOLVER_MOVE_MOVESEQUENCE_H
#define OMBRIX_SOLVER_MOVE_MOVESEQUENCE_H

#include <cstdint>
#include <memory>
#include <vector>

#include "solver/kernel/cacheline.h"
#include "solver/move/basicmovestructure.h"
#include "solver/move/move.h"

namespace ombrix {

class BasicMoveFactory;
class Heuristic;

/// Strings ordinary moves together and judges only where they end. Each of them is committed before
/// the next one is drawn, so a later step is aimed at what an earlier one broke; the constraints
/// are inactive meanwhile, unless evaluating the graph outside of them may fail. Steps up to a
/// level may make matters worse, the later ones must stand up to the start.
///
/// Between apply and finish the graph stands at the end of the sequence, with no move open, while
/// the move answers with the values of the start: so it is compared like any other candidate.
/// No decision changes twice in a sequence, so a refused one is undone by flipping each back. A
/// sequence costs as much as its steps, each of them kept, and once more if it is refused.
class MoveSequence : public Move {
public:
  /// nbSteps moves, of which those behind freeLevel must not be worse than the start. Raises code 6
  /// when rate is above 100.
  MoveSequence(Dag& workerDag, std::uint32_t& state, std::uint32_t nbSteps, std::uint32_t freeLevel,
               std::uint32_t rate, const Heuristic& owner, BasicMoveStructure& lists);

  bool apply() override;
  /// All was evaluated on the way.
  bool evaluate(std::uint32_t) override { return true; }
  bool evaluateAll() override { return true; }
  void finish(MoveStatus status) override;
  OXValue getObjectiveValue(std::uint32_t objective) const override;
  Infeasibility getInfeasibility() const override { return infeasibility; }
  double getSelectionFactor() const override { return 1.0 / (size * 2.0); }

  bool exploreInfeasible = true;   ///< steps may be worse than the one before
  bool keepConstraintsOff = true;  ///< no constraint is active during a sequence

private:
  void addFirstMoves(const BasicMoveFactory& factory, std::uint32_t rate);
  void addNextMoves(BasicMoveStructure& lists);
  void add(std::vector<Move*>& draw, std::unique_ptr<Move> move);

  void saveStart();
  bool performStep();
  MoveStatus judge(bool& isBetter);
  bool repeatsDecision() const;
  int compareWith(const Move& reference) const;
  void recordChanges();
  void undo();
  void forget();

  std::vector<std::unique_ptr<Move>> subMoves;
  std::vector<Move*> firstMoves;  ///< for the first step, each as often as its weight says
  std::vector<Move*> nextMoves;   ///< for the others
  std::uint32_t step = 0;
  Move* current = nullptr;
  std::uint32_t nbPerformed = 0;
  bool isStarted = false;                           ///< between saveStart and finish
  Infeasibility infeasibility;                      ///< at the start
  CacheLineVector<OXValue> objectiveValues;         ///< at the start
  CacheLineVector<std::uint32_t> changedDecisions;  ///< by the steps that were kept
  CacheLineVector<std::uint64_t> changedBits;       ///< the same, a bit per decision
  std::uint32_t size;
  std::uint32_t level;
  const Heuristic* heuristic;
};

}  // namespace ombrix

#endif
