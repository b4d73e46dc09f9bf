#ifndef OMBRIX_SOLVER_MOVE_MOVEKROLL_H
#define OMBRIX_SOLVER_MOVE_MOVEKROLL_H

#include "solver/move/moverun.h"

namespace ombrix {

/// Moves the contents of a run of rows on by l rows, with those that fall off its end coming in at
/// its beginning. On a tour this moves a piece of it to another place.
class MoveKRoll : public MoveRun {
public:
  /// The run has from smallest to length rows. Raises code 6 when length is below 2.
  MoveKRoll(Dag& workerDag, std::uint32_t& state, std::uint32_t length, std::uint32_t smallest,
            std::uint32_t distance, std::uint32_t moveWeight, std::uint32_t rate,
            BasicMoveStructure& lists);

  bool apply() override;
  double getSelectionFactor() const override { return selectionFactorOfRun(k); }

private:
  /// Rows at even distances along a run, with wrap-around.
  struct Run {
    std::uint32_t first;
    bool goesUp;
    std::uint32_t size;
  };

  std::uint32_t drawShift(std::uint32_t size);
  std::uint32_t rowOf(const Run& run, std::uint32_t place) const {
    return rowAt(run.goesUp ? run.first + place : run.first - place);
  }
  bool rotate(const Run& run, std::uint32_t start, std::uint32_t shift);
  bool moveContent(std::uint32_t from, std::uint32_t to);

  std::uint32_t l;  ///< the largest distance
  std::uint32_t minSize;
};

}  // namespace ombrix

#endif
