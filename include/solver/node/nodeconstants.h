#ifndef OMBRIX_SOLVER_NODE_NODECONSTANTS_H
#define OMBRIX_SOLVER_NODE_NODECONSTANTS_H

#include "solver/node/plainpicks.h"

namespace ombrix {

/// The nodes that never change. They hold nothing, since their numbers stand in the scalars of the
/// fixed fields; no move settles them and no pick finds a decision in them.
class NodeConstantBase : public NoPicks<Node> {
public:
  void commit(Dag& dag, std::uint32_t id) override;
  void rollback(Dag& dag, std::uint32_t id) override;
};

class NodeConstant final : public NodeConstantBase {
public:
  bool isConsistent(const Dag& dag, std::uint32_t id) const override;
  void init(Dag& dag, std::uint32_t id) override;
};

class NodeDoubleConstant final : public NodeConstantBase {
public:
  bool isConsistent(const Dag& dag, std::uint32_t id) const override;
  void init(Dag& dag, std::uint32_t id) override;
};

/// An array of numbers: the nodes that index it read its scalars, it has no value of its own.
class NodeConstArray final : public NodeConstantBase {
public:
  bool isConsistent(const Dag& dag, std::uint32_t id) const override;
  void init(Dag& dag, std::uint32_t id) override;
};

}  // namespace ombrix

#endif
