#include "solver/move/constraintnodesum.h"

namespace ombrix {

template class StaticConstraintNodeVariadic<DoubleSumKind>;

}  // namespace ombrix
