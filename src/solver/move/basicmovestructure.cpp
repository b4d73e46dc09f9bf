#include "solver/move/basicmovestructure.h"

namespace ombrix {

BasicMoveStructure::BasicMoveStructure(Dag& workerDag, const ConstraintAnalysis& analysis,
                                       std::uint32_t& state)
    : dag(&workerDag), constraintAnalysis(&analysis), rng(&state) {
  dag->propagation.addListener(this);
}

BasicMoveStructure::~BasicMoveStructure() {
  dag->propagation.removeListener(this);
}

}  // namespace ombrix
