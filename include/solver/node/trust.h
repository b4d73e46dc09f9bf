#ifndef OMBRIX_SOLVER_NODE_TRUST_H
#define OMBRIX_SOLVER_NODE_TRUST_H

#include <cmath>

namespace ombrix {

/// The relative change from which on an incremental update is not trusted.
inline constexpr double kBigChange = 0.999999;

/// Whether an update from x to y may have lost its digits: the result is tiny against the value, or
/// either is 0. False for a NaN. A change far below the limit, the usual one, costs no division.
inline bool isBigChange(double x, double y) {
  const double change = std::fabs(x - y);
  if (x * y == 0.0) return change > kBigChange;
  const double size = std::fabs(x) + std::fabs(y);
  return !(change < 0.5 * size) && change / size > kBigChange;
}

}  // namespace ombrix

#endif
