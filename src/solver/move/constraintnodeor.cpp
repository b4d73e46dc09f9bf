#include "solver/move/constraintnodelogical.h"

namespace ombrix {

template class StaticConstraintNodeVariadic<OrKind>;

}  // namespace ombrix
