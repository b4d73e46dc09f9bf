#include "builder/preprocessor/sumgrouper.h"

#include <algorithm>

#include "solver/kernel/saturating.h"

namespace ombrix {

std::uint32_t SumGrouper::addSum(NodeType type, std::span<const std::uint32_t> operands) {
  decisionOperands.clear();
  otherOperands.clear();
  for (const std::uint32_t node : operands) {
    const bool isDecision = fixedFields.types[node] == NodeType::Boolean;
    (isDecision ? decisionOperands : otherOperands).push_back(node);
  }
  if (decisionOperands.size() < 2) return fixedFields.addNode(type, operands, {});
  std::sort(decisionOperands.begin(), decisionOperands.end());
  const std::uint32_t group = fixedFields.addNode(type, decisionOperands, {});
  if (otherOperands.empty()) return group;
  otherOperands.push_back(group);
  return fixedFields.addNode(type, otherOperands, {});
}

std::uint32_t SumGrouper::addScalarSum(NodeType type, std::span<const std::uint32_t> operands,
                                       std::span<const OXValue> coefficients) {
  const bool isDouble = type == NodeType::DoubleScalarSum;
  splitScalarSum(isDouble, operands, coefficients);
  if (entries.size() < 2) return fixedFields.addNode(type, operands, coefficients);
  const std::uint32_t group = addSortedEntries(type);
  if (otherOperands.empty()) return group;
  otherOperands.push_back(group);
  otherCoefficients.push_back(isDouble ? OXValue::ofDouble(1.0) : OXValue::ofInt(1));
  return fixedFields.addNode(type, otherOperands, otherCoefficients);
}

void SumGrouper::splitScalarSum(bool isDouble, std::span<const std::uint32_t> operands,
                                std::span<const OXValue> coefficients) {
  entries.clear();
  otherOperands.clear();
  otherCoefficients.clear();
  slots.resize(fixedFields.nbNodes, kNone);
  for (std::size_t i = 0; i < operands.size(); ++i) {
    const std::uint32_t node = operands[i];
    const NodeType type = fixedFields.types[node];
    std::uint32_t& slot = slots[node];
    if (isDecisionType(type) && slot == kNone) {
      slot = static_cast<std::uint32_t>(entries.size());
      entries.push_back({node, coefficients[i]});
    } else if (type == NodeType::Boolean) {
      OXValue& sum = entries[slot].coefficient;
      if (isDouble) {
        sum.doubleValue += coefficients[i].doubleValue;
      } else {
        sum.intValue = wrappingAdd(sum.intValue, coefficients[i].intValue);
      }
    } else {
      otherOperands.push_back(node);
      otherCoefficients.push_back(coefficients[i]);
    }
  }
  for (const Entry& entry : entries) slots[entry.node] = kNone;
}

std::uint32_t SumGrouper::addSortedEntries(NodeType type) {
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.node < b.node; });
  decisionOperands.clear();
  decisionCoefficients.clear();
  for (const Entry& entry : entries) {
    decisionOperands.push_back(entry.node);
    decisionCoefficients.push_back(entry.coefficient);
  }
  return fixedFields.addNode(type, decisionOperands, decisionCoefficients);
}

}  // namespace ombrix
