#ifndef OMBRIX_SOLVER_NODE_NODESCALAREXTREMUM_H
#define OMBRIX_SOLVER_NODE_NODESCALAREXTREMUM_H

#include <iostream>

#include "solver/kernel/random.h"
#include "solver/kernel/saturating.h"
#include "solver/node/nodeincremental.h"
#include "solver/node/operandview.h"
#include "solver/node/picking.h"
#include "solver/node/selectors.h"

namespace ombrix {

/// The direction in which a maximum is better, and what it is called.
struct MaxSense {
  static constexpr bool kIsMax = true;
  static constexpr std::int64_t kWorst = kIntMin;
  static constexpr const char* kCandidatesLabel = "increaseCandidates=";
  static bool isBeyond(std::int64_t a, std::int64_t b) { return a > b; }
};

struct MinSense {
  static constexpr bool kIsMax = false;
  static constexpr std::int64_t kWorst = kIntMax;
  static constexpr const char* kCandidatesLabel = "decreaseCandidates=";
  static bool isBeyond(std::int64_t a, std::int64_t b) { return a < b; }
};

/// The largest (or, in the mirror, the smallest) of integer terms. Keeps the positions that support
/// the value, and the candidates: those whose term could pass it, judged by the operand's bounds.
/// While a support stays or a changed term reaches the value, a change of k operands costs O(k);
/// all operands are read again only when every support has gone.
///
/// "Beyond" means larger for a maximum and smaller for a minimum; the value recedes when it moves
/// the other way.
template <typename S, typename Selector, typename Sense>
class NodeScalarExtremumTemplate final : public NodeIncremental<NodeInner, S, S> {
public:
  explicit NodeScalarExtremumTemplate(std::uint32_t nbOperands)
      : NodeIncremental<NodeInner, S, S>(nbOperands) {
    supports.init(nbOperands);
    candidates.init(nbOperands);
  }

  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    const Selector coefficients(dag, id);
    std::int64_t best = Sense::kWorst;
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i)
      best = better(best, wrappingMul(operands.value(i), coefficients[i]));
    return best;
  }

  bool isConsistent(const Dag& dag, std::uint32_t id) const override {
    return NodeInner::isConsistent(dag, id) && areSupportsInit(dag, id) &&
           areCandidatesInit(dag, id) && modified.size() == 0;
  }

  void dump(const Dag& dag, std::uint32_t id) const override {
    const std::uint32_t n = dag.fixedFields->nbOperands(id);
    Node::dump(dag, id);
    std::cout << "isSupportsInit=" << areSupportsInit(dag, id) << "\nsupports=";
    supports.print(std::cout, n);
    std::cout << Sense::kCandidatesLabel;
    candidates.print(std::cout, n);
    printCoefficients<Selector>(std::cout, dag, id);
  }

  void init(Dag& dag, std::uint32_t id) override {
    NodeInner::init(dag, id);
    modified.clear();
    const BoundedOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    const std::int64_t value = dag.values[id].intValue;
    supports.fill(operands.nbOperands, [&](std::uint32_t i) {
      return wrappingMul(operands.value(i), coefficients[i]) == value;
    });
    candidates.fill(operands.nbOperands, [&](std::uint32_t i) {
      return Sense::isBeyond(saturatingReach(operands, i, coefficients[i]), value);
    });
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    const Selector coefficients(dag, id);
    const std::int64_t value = dag.values[id].intValue;
    std::uint32_t nbLeft = supports.size();
    std::int64_t best = Sense::kWorst;
    modified.forEach(operands.nbOperands, [&](std::uint32_t i) {
      if (wrappingMul(operands.value(i), coefficients[i]) == value) --nbLeft;
      best = better(best, wrappingMul(operands.tValue(i), coefficients[i]));
    });
    if (modified.size() != 0 && !Sense::isBeyond(value, best)) {
      dag.tValues[id].intValue = best;
    } else if (nbLeft == 0 && (modified.size() != 0 || value != Sense::kWorst)) {
      dag.tValues[id].intValue = rescan(operands, coefficients, best);
    }
  }

  void commit(Dag& dag, std::uint32_t id) override {
    commitSupports(dag, id);
    commitCandidates(dag, id);
    this->settle(dag, id);
  }

  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    if (dag.values[id].intValue <= dag.fixedFields->minValues[id].intValue) return false;
    return pickTerm(Sense::kIsMax ? supports : candidates, dag, id, pickDown, pickUp, rng,
                    decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    if (dag.values[id].intValue >= dag.fixedFields->maxValues[id].intValue) return false;
    return pickTerm(Sense::kIsMax ? candidates : supports, dag, id, pickUp, pickDown, rng,
                    decision);
  }

  /// Acts only at the ends of the bounds: strictly inside them the caller chooses a direction.
  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    const std::int64_t value = dag.values[id].intValue;
    const std::int64_t min = dag.fixedFields->minValues[id].intValue;
    const std::int64_t max = dag.fixedFields->maxValues[id].intValue;
    if (value >= max && value > min) {
      step(rng);
      return pickToDecrease(dag, id, rng, decision);
    }
    if (value <= min && value < max) {
      step(rng);
      return pickToIncrease(dag, id, rng, decision);
    }
    return false;
  }

private:
  using NodeIncremental<NodeInner, S, S>::modified;

  static std::int64_t better(std::int64_t a, std::int64_t b) {
    return Sense::isBeyond(b, a) ? b : a;
  }

  /// The operand's bound at which its term is furthest beyond.
  static std::int64_t reachingBound(const BoundedOperandView& operands, std::uint32_t i,
                                    std::int64_t coefficient) {
    return (coefficient > 0) == Sense::kIsMax ? operands.max(i) : operands.min(i);
  }

  static std::int64_t saturatingReach(const BoundedOperandView& operands, std::uint32_t i,
                                      std::int64_t coefficient) {
    return saturatingMul(coefficient, reachingBound(operands, i, coefficient));
  }

  static std::int64_t plainReach(const BoundedOperandView& operands, std::uint32_t i,
                                 std::int64_t coefficient) {
    return wrappingMul(coefficient, reachingBound(operands, i, coefficient));
  }

  /// The value over the changed terms, whose best is given, and all others.
  std::int64_t rescan(const OperandView& operands, const Selector& coefficients,
                      std::int64_t best) const {
    modified.forEachNonMember(operands.nbOperands, [&](std::uint32_t i) {
      best = better(best, wrappingMul(operands.tValue(i), coefficients[i]));
    });
    return best;
  }

  void commitSupports(const Dag& dag, std::uint32_t id) {
    const OperandView operands(dag, id);
    const Selector coefficients(dag, id);
    const std::uint32_t n = operands.nbOperands;
    const std::int64_t oldValue = dag.values[id].intValue;
    const std::int64_t value = dag.tValues[id].intValue;
    const auto isSupport = [&](std::uint32_t i) {
      return wrappingMul(operands.tValue(i), coefficients[i]) == value;
    };
    if (Sense::isBeyond(oldValue, value)) {
      supports.fill(n, isSupport);
      return;
    }
    if (Sense::isBeyond(value, oldValue)) supports.clear();
    modified.forEach(n, [&](std::uint32_t i) {
      if (isSupport(i)) {
        supports.add(i, n);
      } else {
        supports.remove(i, n);
      }
    });
  }

  /// What falls out is judged by the saturating product and what comes in by the plain one: they
  /// differ only where a term leaves the 64-bit range.
  void commitCandidates(const Dag& dag, std::uint32_t id) {
    const BoundedOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    const std::int64_t oldValue = dag.values[id].intValue;
    const std::int64_t value = dag.tValues[id].intValue;
    const auto& limits = Sense::kIsMax ? dag.fixedFields->maxValues : dag.fixedFields->minValues;
    if (value == limits[id].intValue) {
      candidates.clear();
    } else if (Sense::isBeyond(value, oldValue)) {
      candidates.removeIf(operands.nbOperands, [&](std::uint32_t i) {
        return !Sense::isBeyond(saturatingReach(operands, i, coefficients[i]), value);
      });
    } else if (Sense::isBeyond(oldValue, value)) {
      candidates.addIf(operands.nbOperands, [&](std::uint32_t i) {
        return Sense::isBeyond(plainReach(operands, i, coefficients[i]), value);
      });
    }
  }

  bool pickTerm(const S& set, const Dag& dag, std::uint32_t id, PickFunction pick,
                PickFunction reversedPick, std::uint32_t& rng, std::uint32_t& decision) const {
    const std::uint32_t position = set.randomMember(dag.fixedFields->nbOperands(id), rng);
    if (position == kNone) return false;
    const bool isReversed = Selector(dag, id)[position] < 0;
    return pickAtPosition(dag, id, position, isReversed ? reversedPick : pick, rng, decision);
  }

  bool areSupportsInit(const Dag& dag, std::uint32_t id) const {
    const OperandView operands(dag, id);
    const Selector coefficients(dag, id);
    return supports.agrees(operands.nbOperands, [&](std::uint32_t i) {
      return wrappingMul(operands.value(i), coefficients[i]) == dag.values[id].intValue;
    });
  }

  /// Either product may have judged a position last.
  bool areCandidatesInit(const Dag& dag, std::uint32_t id) const {
    const BoundedOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    const std::int64_t value = dag.values[id].intValue;
    return candidates.agrees(operands.nbOperands, [&](std::uint32_t i) {
      const bool isMember = candidates.contains(i, operands.nbOperands);
      const bool bySaturating =
          Sense::isBeyond(saturatingReach(operands, i, coefficients[i]), value);
      const bool byPlain = Sense::isBeyond(plainReach(operands, i, coefficients[i]), value);
      return isMember ? bySaturating || byPlain : bySaturating && byPlain;
    });
  }

  S supports;
  S candidates;
};

template <typename S, typename Selector>
using NodeScalarMaxTemplate = NodeScalarExtremumTemplate<S, Selector, MaxSense>;

template <typename S, typename Selector>
using NodeScalarMinTemplate = NodeScalarExtremumTemplate<S, Selector, MinSense>;

}  // namespace ombrix

#endif
