#ifndef OMBRIX_SOLVER_NODE_NODEDECISIONS_H
#define OMBRIX_SOLVER_NODE_NODEDECISIONS_H

#include "solver/node/plainpicks.h"

namespace ombrix {

/// The nodes that are written rather than computed. They hold nothing: the value of a decision is
/// its entry in the arrays of the Dag. The chains of picks end here, and a decision that the open
/// move has already written never offers itself again.

class NodeBooleanVar final : public Node {
public:
  bool isConsistent(const Dag& dag, std::uint32_t id) const override;
  /// A boolean has one other value: the target is not read.
  bool pickForTarget(const Dag& dag, std::uint32_t id, std::uint32_t& rng, OXValue& target,
                     std::uint32_t& decision, OXValue& decisionValue) const override;
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override;
  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override;
  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override;
  void init(Dag& dag, std::uint32_t id) override;
};

/// Over the whole 64-bit range there is no step that a pick could mean, so it refuses them all.
class NodeIntegerVar final : public NoPicks<Node> {
public:
  bool isConsistent(const Dag& dag, std::uint32_t id) const override;
  void check(const Dag& dag, std::uint32_t id) const override;
  void dump(const Dag& dag, std::uint32_t id) const override;
  void init(Dag& dag, std::uint32_t id) override;
};

/// A float moves only towards a target value, which it clamps to its bounds.
class NodeFloatVar final : public NoPicks<Node> {
public:
  bool isConsistent(const Dag& dag, std::uint32_t id) const override;
  void check(const Dag& dag, std::uint32_t id) const override;
  void dump(const Dag& dag, std::uint32_t id) const override;
  bool pickForTarget(const Dag& dag, std::uint32_t id, std::uint32_t& rng, OXValue& target,
                     std::uint32_t& decision, OXValue& decisionValue) const override;
  void init(Dag& dag, std::uint32_t id) override;
};

}  // namespace ombrix

#endif
