#ifndef OMBRIX_SOLVER_KERNEL_MATHDOUBLE_H
#define OMBRIX_SOLVER_KERNEL_MATHDOUBLE_H

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <limits>

#include "common/failure.h"
#include "solver/kernel/oxvalue.h"
#include "solver/kernel/saturating.h"

namespace ombrix {

/// Functions of doubles that refuse a result that is no number, with code 5. An infinity is a
/// number here.
///
/// A domain error is told by the errno that the C library leaves. It is not cleared before each
/// computation, which would cost a store per call: whoever starts a walk over many computations
/// clears it once, and a failure reported here clears it, so that no computation fails for what
/// another one did.
class MathDouble {
public:
  MathDouble() = delete;

  static double dist(double a, double b) {
    const double difference = b - a;
    if (std::isnan(difference)) {
      refuse(OMBRIX_HERE("MathDouble::dist"), "Cannot compute distance between two infinities");
    }
    return std::fabs(difference);
  }

  static double sqrt(double x) {
    const double result = std::sqrt(x);
    if (isInvalid(result)) {
      refuse(OMBRIX_HERE("MathDouble::sqrt"),
             "Invalid square root operation (NaN or negative number provided)");
    }
    return result;
  }

  static double cos(double x) {
    const double result = std::cos(x);
    if (isInvalid(result)) {
      refuse(OMBRIX_HERE("MathDouble::cos"), "Invalid cosine operation (NaN or infinity provided)");
    }
    return result;
  }

  static double sin(double x) {
    const double result = std::sin(x);
    if (isInvalid(result)) {
      refuse(OMBRIX_HERE("MathDouble::sin"), "Invalid sine operation (NaN or infinity provided)");
    }
    return result;
  }

  static double tan(double x) {
    const double result = std::tan(x);
    if (isInvalid(result)) {
      refuse(OMBRIX_HERE("MathDouble::tan"),
             "Invalid tangent operation (NaN or infinity provided)");
    }
    return result;
  }

  static double exp(double x) {
    if (std::isnan(x)) {
      refuse(OMBRIX_HERE("MathDouble::exp"), "Invalid exponential operation (NaN provided)");
    }
    return std::exp(x);
  }

  static double log(double x) {
    const double result = std::log(x);
    if (isInvalid(result)) {
      refuse(OMBRIX_HERE("MathDouble::log"),
             "Invalid log operation (NaN or negative number provided)");
    }
    return result;
  }

  /// A negative exponent of a finite base gives an infinity of the sign of the base.
  static double pow(double x, double y) {
    const double result = powUnchecked(x, y);
    if (isInvalid(result)) refuse(OMBRIX_HERE("MathDouble::pow"), "Invalid pow operation");
    return result;
  }

  /// Forgives a value up to 1e-6 above an integer. A NaN gives the smallest integer.
  static std::int64_t ceil(double x) {
    const double result = std::ceil(x - kTolerance);
    if (isOutOfBounds(result)) {
      refuse(OMBRIX_HERE("MathDouble::ceil"), "Invalid ceil operation (out of bounds)");
    }
    return truncateToInt64(result);
  }

  /// Forgives a value up to 1e-6 below an integer. A NaN gives the smallest integer.
  static std::int64_t floor(double x) {
    const double result = std::floor(x + kTolerance);
    if (isOutOfBounds(result)) {
      refuse(OMBRIX_HERE("MathDouble::floor"), "Invalid floor operation (out of bounds)");
    }
    return truncateToInt64(result);
  }

private:
  static bool isInvalid(double result) { return errno == EDOM || std::isnan(result); }

  static bool isOutOfBounds(double result) { return result <= -kIntLimit || result >= kIntLimit; }

  /// An infinite exponent has no fractional part.
  static bool hasFractionalPart(double y) { return std::trunc(y) != y; }

  static double powUnchecked(double x, double y) {
    if (y == 0.0) return 1.0;
    if (y == 1.0) return x;
    if (std::isnan(y) || std::isnan(x)) return std::numeric_limits<double>::quiet_NaN();
    if (y < 0.0 && 1.0 / x < 0.0) return -std::numeric_limits<double>::infinity();
    if (y < 0.0 && 1.0 / x > 0.0) return std::numeric_limits<double>::infinity();
    if (x < 0.0 && hasFractionalPart(y)) {
      refuse(OMBRIX_HERE("MathDouble::pow"),
             "Invalid pow operation (non integer exponent with negative base)");
    }
    return std::pow(x, y);
  }

  [[noreturn]] static void refuse(const Where& where, const char* message);
};

}  // namespace ombrix

#endif
