#ifndef OMBRIX_BUILDER_PREPROCESSOR_FIXEDVALUE_H
#define OMBRIX_BUILDER_PREPROCESSOR_FIXEDVALUE_H

#include "builder/preprocessor/preprocessor.h"
#include "builder/valuetype.h"
#include "solver/kernel/oxvalue.h"

// The values of expressions that were proved constant, which are their bounds.
namespace ombrix {

/// Reads a value of any scalar type as a double.
inline double asDouble(ValueType type, OXValue value) {
  return type == kDoubleType ? value.doubleValue : static_cast<double>(value.intValue);
}

/// In the member of the type of the expression.
inline OXValue fixedValue(const Preprocessor& preprocessor, const OXExpression& e) {
  return preprocessor.lowerBounds[Preprocessor::at(e)];
}

inline double fixedDouble(const Preprocessor& preprocessor, const OXExpression& e) {
  return asDouble(ModelRecord::valueType(e), fixedValue(preprocessor, e));
}

/// As an expression of the given type holds it.
inline OXValue fixedValueAs(const Preprocessor& preprocessor, ValueType type,
                            const OXExpression& e) {
  return type == kDoubleType ? OXValue::ofDouble(fixedDouble(preprocessor, e))
                             : fixedValue(preprocessor, e);
}

}  // namespace ombrix

#endif
