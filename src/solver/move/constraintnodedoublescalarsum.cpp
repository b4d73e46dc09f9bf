#include "solver/move/constraintnodesum.h"

namespace ombrix {

template class StaticConstraintNodeVariadic<DoubleScalarSumKind>;

}  // namespace ombrix
