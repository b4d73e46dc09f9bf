#ifndef OMBRIX_BUILDER_VALUETOOLS_H
#define OMBRIX_BUILDER_VALUETOOLS_H

#include "builder/valuetype.h"
#include "solver/kernel/oxvalue.h"

namespace ombrix {

/// Questions about an OXValue whose type is told beside it. A type that is not boolean, integer or
/// double fails with code 6.
class ValueTools {
public:
  ValueTools() = delete;

  /// -1, 0 or 1. Doubles within tolerance compare as equal, and so does a NaN with everything.
  static int compare(ValueType type, OXValue a, OXValue b);
  /// The 1 of the type.
  static OXValue one(ValueType type);
  /// Exact: no tolerance.
  static bool isZero(ValueType type, OXValue value);
  /// Exact: no tolerance.
  static bool isOne(ValueType type, OXValue value);
};

}  // namespace ombrix

#endif
