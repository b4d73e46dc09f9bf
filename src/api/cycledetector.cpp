#include "api/cycledetector.h"

namespace ombrix {

CycleDetector::CycleDetector(const OXModel& model)
    : expressions(ModelRecord::expressions(model)),
      visited(expressions.size()),
      onPath(expressions.size()) {}

std::vector<std::int32_t> CycleDetector::findCycle() {
  std::vector<std::int32_t> trail;
  for (std::size_t index = 0; index < expressions.size(); ++index) {
    if (searchFrom(static_cast<std::int32_t>(index))) {
      for (const Step& step : path) trail.push_back(step.index);
      return trail;
    }
  }
  return trail;
}

bool CycleDetector::searchFrom(std::int32_t start) {
  if (visited[static_cast<std::size_t>(start)]) return false;
  enter(start);
  while (!path.empty()) {
    Step& top = path.back();
    const OXExpression& expr = *expressions[static_cast<std::size_t>(top.index)];
    if (top.nextPosition == ModelRecord::nbOperands(expr)) {
      leave();
      continue;
    }
    const std::int32_t operand = ModelRecord::operandIndex(expr, top.nextPosition++);
    if (visited[static_cast<std::size_t>(operand)]) continue;
    if (onPath[static_cast<std::size_t>(operand)]) return true;
    enter(operand);
  }
  return false;
}

void CycleDetector::enter(std::int32_t index) {
  onPath[static_cast<std::size_t>(index)] = true;
  path.push_back({index, 0});
}

void CycleDetector::leave() {
  const auto index = static_cast<std::size_t>(path.back().index);
  visited[index] = true;
  onPath[index] = false;
  path.pop_back();
}

}  // namespace ombrix
