#include "builder/valuetools.h"

#include <cstdint>

#include "common/failure.h"

namespace ombrix {

namespace {

int compareInts(std::int64_t a, std::int64_t b) {
  return a < b ? -1 : static_cast<int>(a > b);
}

int compareDoubles(double a, double b) {
  if (b > a && !approxEqual(a, b)) return -1;
  if (a > b && !approxEqual(a, b)) return 1;
  return 0;
}

/// The three sets that hold exactly one scalar kind; a union is no type of a value.
bool isOneIntegralKind(ValueType type) {
  return type == kBoolType || type == kIntType;
}

bool isExactly(ValueType type, OXValue value, std::int64_t number, const Where& where,
               const char* failure) {
  if (isOneIntegralKind(type)) return value.intValue == number;
  if (type == kDoubleType) return value.doubleValue == static_cast<double>(number);
  fail(kInternal, where, failure);
}

}  // namespace

int ValueTools::compare(ValueType type, OXValue a, OXValue b) {
  if (isOneIntegralKind(type)) return compareInts(a.intValue, b.intValue);
  if (type == kDoubleType) return compareDoubles(a.doubleValue, b.doubleValue);
  fail(kInternal, OMBRIX_HERE("ValueTools::compare"), "ValueType not supported");
}

OXValue ValueTools::one(ValueType type) {
  if (isOneIntegralKind(type)) return OXValue::ofInt(1);
  if (type == kDoubleType) return OXValue::ofDouble(1.0);
  fail(kInternal, OMBRIX_HERE("ValueTools::one"), "one not supported for the given ValueType");
}

bool ValueTools::isZero(ValueType type, OXValue value) {
  return isExactly(type, value, 0, OMBRIX_HERE("ValueTools::isZero"),
                   "isZero not supported for the given ValueType");
}

bool ValueTools::isOne(ValueType type, OXValue value) {
  return isExactly(type, value, 1, OMBRIX_HERE("ValueTools::isOne"),
                   "isOne not supported for the given ValueType");
}

}  // namespace ombrix
