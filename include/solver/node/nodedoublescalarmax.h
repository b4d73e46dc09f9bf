#ifndef OMBRIX_SOLVER_NODE_NODEDOUBLESCALARMAX_H
#define OMBRIX_SOLVER_NODE_NODEDOUBLESCALARMAX_H

#include <limits>

#include "solver/node/nodedoublescalarextremum.h"

namespace ombrix {

/// The sense of a maximum: a larger term is beyond a smaller one.
struct DoubleMaxSense {
  static constexpr bool kIsMax = true;
  static constexpr double kWorst = -std::numeric_limits<double>::infinity();
  static constexpr const char* kCandidatesTestLabel = "isIncreaseCandidatesInit=";
  static constexpr const char* kCandidatesLabel = "increaseCandidates=";
  static constexpr Where kComputeValue = OMBRIX_HERE("NodeDoubleScalarMaxTemplate::computeValue");
  static constexpr Where kEval = OMBRIX_HERE("NodeDoubleScalarMaxTemplate::eval");
  static bool isBeyond(double a, double b) { return a > b; }
};

template <typename S, typename Selector>
using NodeDoubleScalarMaxTemplate = NodeDoubleScalarExtremumTemplate<S, Selector, DoubleMaxSense>;

}  // namespace ombrix

#endif
