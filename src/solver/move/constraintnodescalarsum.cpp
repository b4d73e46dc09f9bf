#include "solver/move/constraintnodesum.h"

namespace ombrix {

template class StaticConstraintNodeVariadic<ScalarSumKind>;

}  // namespace ombrix
