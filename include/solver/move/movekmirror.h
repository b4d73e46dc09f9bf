#ifndef OMBRIX_SOLVER_MOVE_MOVEKMIRROR_H
#define OMBRIX_SOLVER_MOVE_MOVEKMIRROR_H

#include "solver/move/moverun.h"

namespace ombrix {

/// Turns a run of rows around: the contents of its ends are exchanged, then those of their inner
/// neighbours, and so on. On a tour this is the exchange of two edges.
class MoveKMirror : public MoveRun {
public:
  /// The run has from smallest to length rows. Raises code 6 when length is below 2.
  MoveKMirror(Dag& workerDag, std::uint32_t& state, std::uint32_t length, std::uint32_t smallest,
              std::uint32_t moveWeight, std::uint32_t rate, BasicMoveStructure& lists);

  bool apply() override;
  double getSelectionFactor() const override { return selectionFactorOfRun(k); }

private:
  bool exchange(std::uint32_t rowA, std::uint32_t rowB);

  std::uint32_t minSize;
};

}  // namespace ombrix

#endif
