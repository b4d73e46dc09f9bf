#ifndef OMBRIX_TESTS_SUPPORT_INTERVALPRINTER_H
#define OMBRIX_TESTS_SUPPORT_INTERVALPRINTER_H

#include <ostream>

#include "solver/kernel/intervals.h"

namespace ombrix {

// Where GoogleTest finds them: a failed comparison shows both intervals.

inline void PrintTo(const IntInterval& x, std::ostream* out) {
  *out << "[" << x.low << ", " << x.high << "]";
}

inline void PrintTo(const DoubleInterval& x, std::ostream* out) {
  *out << "[" << x.low << ", " << x.high << "]";
}

}  // namespace ombrix

#endif
