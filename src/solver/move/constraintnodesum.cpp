#include "solver/move/constraintnodesum.h"

namespace ombrix {

template class StaticConstraintNodeVariadic<SumKind>;

}  // namespace ombrix
