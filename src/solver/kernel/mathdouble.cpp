#include "solver/kernel/mathdouble.h"

namespace ombrix {

void MathDouble::refuse(const Where& where, const char* message) {
  errno = 0;
  fail(kComputation, where, message);
}

}  // namespace ombrix
