#ifndef OMBRIX_SOLVER_NODE_NODEARITHMETIC_H
#define OMBRIX_SOLVER_NODE_NODEARITHMETIC_H

#include "solver/node/binarypicks.h"

namespace ombrix {

/// Absolute value, distance, quotient and remainder, in their integer and double forms. The integer
/// forms wrap: the absolute value of the smallest integer is that integer.

template <typename Arithmetic>
class AbsPicks : public Arithmetic::Inner {
public:
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    const std::uint32_t operand = dag.fixedFields->operand(id, 0);
    const auto value = committed<Arithmetic>(dag, operand);
    if (Arithmetic::isEqual(value, 0)) return false;
    return value > 0 ? pickDown(dag, operand, rng, decision) : pickUp(dag, operand, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    const std::uint32_t operand = dag.fixedFields->operand(id, 0);
    return Arithmetic::isLess(0, committed<Arithmetic>(dag, operand))
               ? pickUp(dag, operand, rng, decision)
               : pickDown(dag, operand, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickAny(dag, dag.fixedFields->operand(id, 0), rng, decision);
  }
};

template <typename Arithmetic>
class DistancePicks : public Arithmetic::Inner {
public:
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return !Arithmetic::isEqual(committed<Arithmetic>(dag, id), 0) &&
           closeGap<Arithmetic>(dag, id, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    const std::uint32_t* const operands = dag.fixedFields->linkedOperandsOf(id);
    const auto a = committed<Arithmetic>(dag, operands[0]);
    const auto b = committed<Arithmetic>(dag, operands[1]);
    if (Arithmetic::isEqual(a, b)) return pickOperandAnyWay(dag, id, rng, decision);
    return Arithmetic::isAtLeast(a, b)
               ? raiseFirstOrLowerSecond<Arithmetic>(dag, id, rng, decision)
               : raiseSecondOrLowerFirst<Arithmetic>(dag, id, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickOperandAnyWay(dag, id, rng, decision);
  }
};

/// Any operand, unless the dividend is 0: then no divisor changes the result.
template <typename Arithmetic>
bool pickDividendIfZero(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                        std::uint32_t& decision) {
  const std::uint32_t dividend = dag.fixedFields->operand(id, 0);
  return Arithmetic::isEqual(committed<Arithmetic>(dag, dividend), 0)
             ? pickAny(dag, dividend, rng, decision)
             : pickOperandAnyWay(dag, id, rng, decision);
}

template <typename Arithmetic>
class DividePicks : public Arithmetic::Inner {
public:
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickTowards(dag, id, !isDivisorPositive(dag, id), rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickTowards(dag, id, isDivisorPositive(dag, id), rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickDividendIfZero<Arithmetic>(dag, id, rng, decision);
  }

private:
  static bool isDivisorPositive(const Dag& dag, std::uint32_t id) {
    return Arithmetic::isLess(0, committed<Arithmetic>(dag, dag.fixedFields->operand(id, 1)));
  }

  /// Moves the dividend up or down, or the divisor against it.
  static bool pickTowards(const Dag& dag, std::uint32_t id, bool isUp, std::uint32_t& rng,
                          std::uint32_t& decision) {
    const std::uint32_t dividend = dag.fixedFields->operand(id, 0);
    if (Arithmetic::isEqual(committed<Arithmetic>(dag, dividend), 0))
      return isUp ? pickUp(dag, dividend, rng, decision) : pickDown(dag, dividend, rng, decision);
    return isUp ? raiseFirstOrLowerSecond<Arithmetic>(dag, id, rng, decision)
                : raiseSecondOrLowerFirst<Arithmetic>(dag, id, rng, decision);
  }
};

class NodeAbs final : public AbsPicks<IntArithmetic> {
public:
  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override;
  void eval(Dag& dag, std::uint32_t id) const override;
};

class NodeDoubleAbs final : public AbsPicks<DoubleArithmetic> {
public:
  double computeValue(const Dag& dag, std::uint32_t id) const override;
  void eval(Dag& dag, std::uint32_t id) const override;
};

class NodeDistance final : public DistancePicks<IntArithmetic> {
public:
  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override;
  void eval(Dag& dag, std::uint32_t id) const override;
};

class NodeDoubleDistance final : public DistancePicks<DoubleArithmetic> {
public:
  double computeValue(const Dag& dag, std::uint32_t id) const override;
  void eval(Dag& dag, std::uint32_t id) const override;
};

/// Truncates towards 0; a divisor of 0 is a failure.
class NodeDivide final : public DividePicks<IntArithmetic> {
public:
  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override;
  void eval(Dag& dag, std::uint32_t id) const override;
};

/// A divisor of 0 gives an infinity or a NaN and no failure.
class NodeDoubleDivide final : public DividePicks<DoubleArithmetic> {
public:
  double computeValue(const Dag& dag, std::uint32_t id) const override;
  void eval(Dag& dag, std::uint32_t id) const override;
};

/// The remainder of the truncating division, with the sign of the dividend.
class NodeModulo final : public NodeInner {
public:
  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override;
  void eval(Dag& dag, std::uint32_t id) const override;
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override;
  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override;
  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override;
};

}  // namespace ombrix

#endif
