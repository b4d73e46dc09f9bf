#ifndef OMBRIX_SOLVER_KERNEL_EVALUATIONRISK_H
#define OMBRIX_SOLVER_KERNEL_EVALUATIONRISK_H

#include "solver/kernel/dagfixedfields.h"

namespace ombrix {

/// Whether some node cannot be evaluated for every value that its operands may take: an array read
/// outside itself, a division by zero, a root of a negative number, a double that grows to
/// infinity. The bounds of the nodes decide, so the answer may be true without need; what wraps at
/// 64 bits or overflows between finite bounds is left out, since no constraint keeps the search
/// from that. Where it is true, only the constraints may be what keeps the search from such values.
/// Costs one look at every node.
bool canEvaluationFail(const DagFixedFields& fields);

}  // namespace ombrix

#endif
