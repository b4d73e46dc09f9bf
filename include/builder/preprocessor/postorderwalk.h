#ifndef OMBRIX_BUILDER_PREPROCESSOR_POSTORDERWALK_H
#define OMBRIX_BUILDER_PREPROCESSOR_POSTORDERWALK_H

#include <cstdint>
#include <vector>

#include "builder/preprocessor/preprocessor.h"

namespace ombrix {

/// Finds every expression that the roots reach, each once, operands before their users, in time
/// proportional to the operands. The stack is explicit: the depth of a model is limited by memory
/// only. The last root is served first, and so is the last operand of each expression.
class PostOrderWalk {
public:
  explicit PostOrderWalk(const Preprocessor& shared)
      : preprocessor(shared), states(shared.nbExpressions(), kNew) {}

  std::vector<Preprocessor::Index> run() {
    std::vector<Preprocessor::Index> order;
    order.reserve(states.size());
    for (const OXExpression* root : preprocessor.roots) stack.push_back(Preprocessor::at(*root));
    while (!stack.empty()) {
      const Preprocessor::Index e = stack.back();
      if (states[e] == kNew) {
        states[e] = kOperandsPushed;
        if (pushOperands(e)) continue;
      }
      if (states[e] == kOperandsPushed) {
        order.push_back(e);
        states[e] = kDone;
      }
      stack.pop_back();
    }
    return order;
  }

private:
  enum State : std::uint8_t { kNew, kOperandsPushed, kDone };

  /// Answers whether there was one to push.
  bool pushOperands(Preprocessor::Index e) {
    const std::size_t size = stack.size();
    for (const Preprocessor::Index x : preprocessor.operands(e)) {
      if (states[x] != kDone) stack.push_back(x);
    }
    return stack.size() > size;
  }

  const Preprocessor& preprocessor;
  std::vector<std::uint8_t> states;
  std::vector<Preprocessor::Index> stack;
};

}  // namespace ombrix

#endif
