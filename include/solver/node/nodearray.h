#ifndef OMBRIX_SOLVER_NODE_NODEARRAY_H
#define OMBRIX_SOLVER_NODE_NODEARRAY_H

#include "solver/node/nodeincremental.h"
#include "solver/node/plainpicks.h"

namespace ombrix {

/// The elements of an array, standing between them and the nodes that index it. It has no value:
/// that it was touched is what tells its parents that an element changed.
class NodeArray : public NoPicks<NodeInner> {
public:
  bool isConsistent(const Dag&, std::uint32_t) const override { return true; }
  std::int64_t computeValue(const Dag&, std::uint32_t) const override { return 0; }
};

template <typename S>
class NodeArrayTemplate final : public NodeIncremental<NodeArray, S> {
public:
  using NodeIncremental<NodeArray, S>::NodeIncremental;

  void init(Dag&, std::uint32_t) override { modified.clear(); }
  void commit(Dag&, std::uint32_t) override { modified.clear(); }
  void rollback(Dag&, std::uint32_t) override { modified.clear(); }

private:
  using NodeIncremental<NodeArray, S>::modified;
};

}  // namespace ombrix

#endif
