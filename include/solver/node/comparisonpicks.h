#ifndef OMBRIX_SOLVER_NODE_COMPARISONPICKS_H
#define OMBRIX_SOLVER_NODE_COMPARISONPICKS_H

#include "solver/node/binarypicks.h"

namespace ombrix {

/// How comparisons pass a wanted direction on to their operands. Base is the class of integer or of
/// double comparisons.

template <typename Base, typename Arithmetic>
class EqualPicks : public Base {
public:
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 0 && pickOperandAnyWay(dag, id, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 1 && closeGap<Arithmetic>(dag, id, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return dag.values[id].intValue == 0 ? pickToIncrease(dag, id, rng, decision)
                                        : pickOperandAnyWay(dag, id, rng, decision);
  }
};

template <typename Base, typename Arithmetic>
class NotEqualPicks : public Base {
public:
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 0 && closeGap<Arithmetic>(dag, id, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 1 && pickOperandAnyWay(dag, id, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return dag.values[id].intValue != 0 ? pickToDecrease(dag, id, rng, decision)
                                        : pickOperandAnyWay(dag, id, rng, decision);
  }
};

/// The order comparisons look at their tentative value, unlike all other nodes. They fall when the
/// first operand moves up against the second if kIsLess, and the other way round otherwise.
template <typename Base, typename Arithmetic, bool kIsLess>
class OrderPicks : public Base {
public:
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.tValues[id].intValue != 0 && pickToFalsify(dag, id, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.tValues[id].intValue != 1 && pickToSatisfy(dag, id, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return dag.tValues[id].intValue != 0 ? pickToFalsify(dag, id, rng, decision)
                                         : pickToSatisfy(dag, id, rng, decision);
  }

private:
  static bool pickToFalsify(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                            std::uint32_t& decision) {
    return kIsLess ? raiseFirstOrLowerSecond<Arithmetic>(dag, id, rng, decision)
                   : raiseSecondOrLowerFirst<Arithmetic>(dag, id, rng, decision);
  }

  static bool pickToSatisfy(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                            std::uint32_t& decision) {
    return kIsLess ? raiseSecondOrLowerFirst<Arithmetic>(dag, id, rng, decision)
                   : raiseFirstOrLowerSecond<Arithmetic>(dag, id, rng, decision);
  }
};

}  // namespace ombrix

#endif
