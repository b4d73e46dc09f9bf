#ifndef OMBRIX_API_CHECKS_H
#define OMBRIX_API_CHECKS_H

#include "common/failure.h"

namespace ombrix {

class OXExpression;
class Ombrix;

/// The tests that open the public operations. Each returns if the call may go on and throws code 0
/// otherwise; the Where names the public operation called.
namespace checks {

void modelingOnly(const Ombrix& solver, const Where& where);
void stoppedOnly(const Ombrix& solver, const Where& where);
void pausedOrStopped(const Ombrix& solver, const Where& where);
void notRunning(const Ombrix& solver, const Where& where);
/// The solver has been started at least once since its model was closed.
void started(const Ombrix& solver, const Where& where);

/// A closed model has its kernel: code 6 after a closing whose last step failed.
void transformed(const Ombrix& solver, const Where& where);

/// The argument is neither null nor an expression of another solver.
void ownExpression(const Ombrix& solver, const OXExpression* expr, const char* name,
                   const Where& where);
void notNull(const OXExpression* expr, const char* name, const Where& where);

}  // namespace checks

}  // namespace ombrix

#endif
