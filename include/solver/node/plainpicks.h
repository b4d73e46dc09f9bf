#ifndef OMBRIX_SOLVER_NODE_PLAINPICKS_H
#define OMBRIX_SOLVER_NODE_PLAINPICKS_H

#include "solver/node/picking.h"

namespace ombrix {

/// The picks that do not hang on the wanted direction. Base is what the node derives from
/// otherwise.

/// None: no pick finds a decision here.
template <typename Base>
class NoPicks : public Base {
public:
  bool pickToDecrease(const Dag&, std::uint32_t, std::uint32_t&, std::uint32_t&) const override {
    return false;
  }
  bool pickToIncrease(const Dag&, std::uint32_t, std::uint32_t&, std::uint32_t&) const override {
    return false;
  }
  bool pickToChange(const Dag&, std::uint32_t, std::uint32_t&, std::uint32_t&) const override {
    return false;
  }
};

/// An operand at random, up or down at random: for a node whose dependence on an operand has no
/// sign of its own.
template <typename Base>
class AnyWayPicks : public Base {
public:
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickOperandAnyWay(dag, id, rng, decision);
  }
  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickOperandAnyWay(dag, id, rng, decision);
  }
  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickOperandAnyWay(dag, id, rng, decision);
  }
};

}  // namespace ombrix

#endif
