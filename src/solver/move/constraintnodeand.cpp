#include "solver/move/constraintnodelogical.h"

namespace ombrix {

template class StaticConstraintNodeVariadic<AndKind>;

}  // namespace ombrix
