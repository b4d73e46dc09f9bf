#ifndef OMBRIX_SOLVER_NODE_NODEIF_H
#define OMBRIX_SOLVER_NODE_NODEIF_H

#include "solver/kernel/random.h"
#include "solver/node/arithmetic.h"
#include "solver/node/picking.h"

namespace ombrix {

/// The second operand if the condition is non-zero, otherwise the third. A pick either flips the
/// condition or moves the selected branch; where both help, a coin decides.
template <typename Arithmetic>
class NodeIfTemplate final : public Arithmetic::Inner {
public:
  using Number = typename Arithmetic::Number;

  Number computeValue(const Dag& dag, std::uint32_t id) const override {
    return select(dag, dag.values, id);
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    dag.tValues[id] = Arithmetic::box(select(dag, dag.tValues, id));
  }

  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    if (isAtMin<Arithmetic>(dag, id)) return false;
    const Branches branches(dag, id);
    const bool switchHelps =
        branches.canSwitch && Arithmetic::isLess(committed<Arithmetic>(dag, branches.other),
                                                 committed<Arithmetic>(dag, branches.selected));
    const bool branchHelps = !isAtMin<Arithmetic>(dag, branches.selected);
    return pickBranch(dag, branches, switchHelps, branchHelps, pickDown, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    if (isAtMax<Arithmetic>(dag, id)) return false;
    const Branches branches(dag, id);
    const bool switchHelps =
        branches.canSwitch && Arithmetic::isLess(committed<Arithmetic>(dag, branches.selected),
                                                 committed<Arithmetic>(dag, branches.other));
    const bool branchHelps = !isAtMax<Arithmetic>(dag, branches.selected);
    return pickBranch(dag, branches, switchHelps, branchHelps, pickUp, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    const Branches branches(dag, id);
    const bool switchHelps =
        branches.canSwitch && !Arithmetic::isEqual(committed<Arithmetic>(dag, branches.other),
                                                   committed<Arithmetic>(dag, branches.selected));
    const bool branchHelps = !isFixed<Arithmetic>(dag, branches.selected);
    return pickBranch(dag, branches, switchHelps, branchHelps, pickAny, rng, decision);
  }

private:
  struct Branches {
    std::uint32_t condition;
    bool isConditionOne;
    std::uint32_t selected;
    std::uint32_t other;
    bool canSwitch;

    Branches(const Dag& dag, std::uint32_t id)
        : condition(dag.fixedFields->operand(id, 0)),
          isConditionOne(dag.values[condition].intValue == 1),
          selected(dag.fixedFields->operand(id, isConditionOne ? 1 : 2)),
          other(dag.fixedFields->operand(id, isConditionOne ? 2 : 1)),
          canSwitch(!isFixed<IntArithmetic>(dag, condition)) {}
  };

  static Number select(const Dag& dag, const NodeValues& values, std::uint32_t id) {
    const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
    const std::uint32_t branch = values[operands[0]].intValue != 0 ? operands[1] : operands[2];
    return Arithmetic::read(dag, values, branch);
  }

  static bool pickBranch(const Dag& dag, const Branches& branches, bool switchHelps,
                         bool branchHelps, PickFunction pick, std::uint32_t& rng,
                         std::uint32_t& decision) {
    if (!switchHelps && !branchHelps) return false;
    const bool movesBranch = branchHelps && (!switchHelps || randomTopBit(rng));
    if (movesBranch) return pick(dag, branches.selected, rng, decision);
    return branches.isConditionOne ? pickDown(dag, branches.condition, rng, decision)
                                   : pickUp(dag, branches.condition, rng, decision);
  }
};

using NodeIf = NodeIfTemplate<IntArithmetic>;
using NodeDoubleIf = NodeIfTemplate<DoubleArithmetic>;

}  // namespace ombrix

#endif
