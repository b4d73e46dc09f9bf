#ifndef OMBRIX_SOLVER_NODE_NODEDOUBLESCALARMIN_H
#define OMBRIX_SOLVER_NODE_NODEDOUBLESCALARMIN_H

#include <limits>

#include "solver/node/nodedoublescalarextremum.h"

namespace ombrix {

/// The sense of a minimum: a smaller term is beyond a larger one.
struct DoubleMinSense {
  static constexpr bool kIsMax = false;
  static constexpr double kWorst = std::numeric_limits<double>::infinity();
  static constexpr const char* kCandidatesTestLabel = "isDecreaseCandidatesInit=";
  static constexpr const char* kCandidatesLabel = "decreaseCandidates=";
  static constexpr Where kComputeValue = OMBRIX_HERE("NodeDoubleScalarMinTemplate::computeValue");
  static constexpr Where kEval = OMBRIX_HERE("NodeDoubleScalarMinTemplate::eval");
  static bool isBeyond(double a, double b) { return a < b; }
};

template <typename S, typename Selector>
using NodeDoubleScalarMinTemplate = NodeDoubleScalarExtremumTemplate<S, Selector, DoubleMinSense>;

}  // namespace ombrix

#endif
