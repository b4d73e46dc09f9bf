#ifndef OMBRIX_SOLVER_NODE_NODEAT_H
#define OMBRIX_SOLVER_NODE_NODEAT_H

#include <string>

#include "common/failure.h"
#include "solver/kernel/random.h"
#include "solver/node/arithmetic.h"
#include "solver/node/picking.h"

namespace ombrix {

/// What the failures of an element say: the type of the node, and the operation that met it.
struct AtNames {
  static constexpr const char* kOperator = "at";
  static constexpr Where kComputeValue = OMBRIX_HERE("NodeAt::computeValue");
  static constexpr Where kEval = OMBRIX_HERE("NodeAt::eval");
};

struct DoubleAtNames {
  static constexpr const char* kOperator = "double_at";
  static constexpr Where kComputeValue = OMBRIX_HERE("NodeDoubleAt::computeValue");
  static constexpr Where kEval = OMBRIX_HERE("NodeDoubleAt::eval");
};

/// The element of an array at an index. The array holds numbers, which are its scalars, or nodes,
/// which are its operands. Only the low 32 bits of the index count, without a sign, so that a
/// negative index is beyond any array; an index beyond the array is a failure.
template <typename Arithmetic, typename Names>
class NodeAtTemplate final : public Arithmetic::Inner {
public:
  using Number = typename Arithmetic::Number;

  Number computeValue(const Dag& dag, std::uint32_t id) const override {
    return element(dag, dag.values, id, Names::kComputeValue);
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    dag.tValues[id] = Arithmetic::box(element(dag, dag.tValues, id, Names::kEval));
  }

  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickElementOrIndex(dag, id, isAtMin<Arithmetic>, pickDown, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickElementOrIndex(dag, id, isAtMax<Arithmetic>, pickUp, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickElementOrIndex(dag, id, isAtMax<Arithmetic>, pickAny, rng, decision);
  }

private:
  static bool isConstArray(const Dag& dag, std::uint32_t array) {
    return dag.fixedFields->types[array] == NodeType::ConstArray;
  }

  static Number element(const Dag& dag, const NodeValues& values, std::uint32_t id,
                        const Where& where) {
    const DagFixedFields& fields = *dag.fixedFields;
    const std::uint32_t array = fields.operand(id, 0);
    const auto index = static_cast<std::uint32_t>(values[fields.operand(id, 1)].intValue);
    const std::uint32_t size =
        isConstArray(dag, array) ? fields.nbScalars(array) : fields.nbOperands(array);
    if (index >= size) failIndex(index, size, where);
    if (isConstArray(dag, array)) return Arithmetic::number(fields.scalarsOf(array)[index]);
    return Arithmetic::read(dag, values, fields.operand(array, index));
  }

  [[noreturn]] static void failIndex(std::uint32_t index, std::uint32_t size, const Where& where) {
    fail(kComputation, where,
         std::string("Index out of bounds for '") + Names::kOperator + "' operator (index: " +
             std::to_string(index) + ", array size: " + std::to_string(size) + ").");
  }

  /// Goes to the element at the committed index if nothing else can move, or if it can move and a
  /// coin says so; otherwise to the index.
  static bool pickElementOrIndex(const Dag& dag, std::uint32_t id,
                                 bool (*isAtEnd)(const Dag&, std::uint32_t), PickFunction pick,
                                 std::uint32_t& rng, std::uint32_t& decision) {
    const DagFixedFields& fields = *dag.fixedFields;
    const std::uint32_t array = fields.operand(id, 0);
    const std::uint32_t index = fields.operand(id, 1);
    if (isConstArray(dag, array)) return pickAny(dag, index, rng, decision);
    const std::uint32_t element =
        fields.operand(array, static_cast<std::uint32_t>(dag.values[index].intValue));
    const bool movesElement =
        isFixed<IntArithmetic>(dag, index) || (!isAtEnd(dag, element) && !randomTopBit(rng));
    return movesElement ? pick(dag, element, rng, decision) : pickAny(dag, index, rng, decision);
  }
};

using NodeAt = NodeAtTemplate<IntArithmetic, AtNames>;
using NodeDoubleAt = NodeAtTemplate<DoubleArithmetic, DoubleAtNames>;

}  // namespace ombrix

#endif
