#ifndef OMBRIX_BUILDER_PREPROCESSOR_POSTORDERWALK_H
#define OMBRIX_BUILDER_PREPROCESSOR_POSTORDERWALK_H

#include <cstdint>
#include <vector>

#include "builder/modelrecord.h"

namespace ombrix {

/// Visits every expression that the roots reach exactly once, operands before their users, in time
/// proportional to the operands. The stack is explicit: the depth of a model is limited by memory
/// only. The last root is served first, and so is the last operand of each expression.
class PostOrderWalk {
public:
  template <typename Visit>
  void run(const OXModel& model, const std::vector<OXExpression*>& roots, const Visit& visit) {
    states.assign(ModelRecord::expressions(model).size(), kNew);
    stack = roots;
    while (!stack.empty()) {
      OXExpression& e = *stack.back();
      std::int32_t& state = states[static_cast<std::size_t>(ModelRecord::index(e))];
      if (state == kNew) {
        state = kOperandsPushed;
        pushOperands(e);
        continue;
      }
      if (state == kOperandsPushed) {
        visit(e);
        state = kDone;
      }
      stack.pop_back();
    }
  }

private:
  static constexpr std::int32_t kNew = 0;
  static constexpr std::int32_t kOperandsPushed = 1;
  static constexpr std::int32_t kDone = 2;

  void pushOperands(const OXExpression& e) {
    for (std::int32_t i = 0; i < ModelRecord::nbOperands(e); ++i) {
      const auto index = static_cast<std::size_t>(ModelRecord::operandIndex(e, i));
      if (states[index] != kDone) stack.push_back(ModelRecord::operand(e, i));
    }
  }

  std::vector<std::int32_t> states;
  std::vector<OXExpression*> stack;
};

}  // namespace ombrix

#endif
