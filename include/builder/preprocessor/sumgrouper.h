#ifndef OMBRIX_BUILDER_PREPROCESSOR_SUMGROUPER_H
#define OMBRIX_BUILDER_PREPROCESSOR_SUMGROUPER_H

#include <cstdint>
#include <span>
#include <vector>

#include "solver/kernel/dagfixedfields.h"

namespace ombrix {

/// Adds sums to the graph with their decisions apart: the moves look for sums over decisions only,
/// so the decisions of a mixed sum stand in a node of their own below it, in rising order. Linear
/// but for that sort; its memory is reused from call to call.
class SumGrouper {
public:
  explicit SumGrouper(DagFixedFields& fields) : fixedFields(fields) {}

  /// type is sum or double_sum.
  std::uint32_t addSum(NodeType type, std::span<const std::uint32_t> operands);
  /// type is scalar_sum or double_scalar_sum. The coefficients of a boolean decision that occurs
  /// several times are added up.
  std::uint32_t addScalarSum(NodeType type, std::span<const std::uint32_t> operands,
                             std::span<const OXValue> coefficients);

private:
  struct Entry {
    std::uint32_t node;
    OXValue coefficient;
  };

  void splitScalarSum(bool isDouble, std::span<const std::uint32_t> operands,
                      std::span<const OXValue> coefficients);
  std::uint32_t addSortedEntries(NodeType type);

  DagFixedFields& fixedFields;
  std::vector<std::uint32_t> slots;  ///< per node: its index in entries, or kNone
  std::vector<Entry> entries;
  std::vector<std::uint32_t> decisionOperands;
  std::vector<OXValue> decisionCoefficients;
  std::vector<std::uint32_t> otherOperands;
  std::vector<OXValue> otherCoefficients;
};

}  // namespace ombrix

#endif
