#ifndef OMBRIX_SOLVER_NODE_NODEDOUBLESCALAREXTREMUM_H
#define OMBRIX_SOLVER_NODE_NODEDOUBLESCALAREXTREMUM_H

#include <algorithm>
#include <cmath>
#include <iostream>

#include "common/failure.h"
#include "solver/kernel/random.h"
#include "solver/node/arithmetic.h"
#include "solver/node/nodeincremental.h"
#include "solver/node/picking.h"
#include "solver/node/selectors.h"

namespace ombrix {

/// The smallest (or, in the mirror, the largest) of double terms. Equality with the value is no
/// meaningful test here, so one position bears witness to it, where the integer form counts its
/// supports; the candidates are the positions whose term could pass the value. An evaluation that
/// leaves the witness alone, or brings a term to the value or past it, costs O(k) for k changed
/// operands; otherwise all are read again.
///
/// "Beyond" means smaller for a minimum and larger for a maximum. Sense tells the direction, the
/// labels and the names in failures.
template <typename S, typename Selector, typename Sense>
class NodeDoubleScalarExtremumTemplate final : public NodeIncremental<NodeDoubleInner, S, S> {
public:
  explicit NodeDoubleScalarExtremumTemplate(std::uint32_t nbOperands)
      : NodeIncremental<NodeDoubleInner, S, S>(nbOperands) {
    candidates.init(nbOperands);
  }

  double computeValue(const Dag& dag, std::uint32_t id) const override {
    const DoubleOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    double best = Sense::kWorst;
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i) {
      const double term = operands.value(i) * coefficients[i];
      if (!std::isfinite(term)) {
        fail(kComputation, Sense::kComputeValue, "Cannot compute the product of zero and infinity");
      }
      best = better(best, term);
    }
    return best;
  }

  bool isConsistent(const Dag& dag, std::uint32_t id) const override {
    return NodeDoubleInner::isConsistent(dag, id) && areCandidatesInit(dag, id) &&
           isSupportInit(dag, id) && modified.size() == 0;
  }

  void dump(const Dag& dag, std::uint32_t id) const override {
    NodeDoubleInner::dump(dag, id);
    std::cout << Sense::kCandidatesTestLabel << areCandidatesInit(dag, id) << '\n'
              << Sense::kCandidatesLabel;
    candidates.print(std::cout, dag.fixedFields->nbOperands(id));
    std::cout << "isSupportInit=" << isSupportInit(dag, id) << "\nsupportNodePos=" << supportNodePos
              << '\n';
    printCoefficients<Selector>(std::cout, dag, id);
  }

  void init(Dag& dag, std::uint32_t id) override {
    NodeDoubleInner::init(dag, id);
    modified.clear();
    const BoundedDoubleOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    const double value = dag.values[id].doubleValue;
    candidates.fill(operands.nbOperands, [&](std::uint32_t i) {
      return isCandidate(operands, i, coefficients[i], value);
    });
    supportAmongAll(operands, coefficients);
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    const DoubleOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    double best = Sense::kWorst;
    modified.forEach(operands.nbOperands, [&](std::uint32_t i) {
      const double term = operands.tValue(i) * coefficients[i];
      if (!std::isfinite(term))
        fail(kComputation, Sense::kEval, "Cannot compute product of zero and infinity");
      best = better(best, term);
    });
    if (!Sense::isBeyond(dag.values[id].doubleValue, best)) {
      dag.tValues[id].doubleValue = best;
    } else if (modified.contains(supportNodePos, operands.nbOperands)) {
      modified.forEachNonMember(operands.nbOperands, [&](std::uint32_t i) {
        best = better(best, operands.tValue(i) * coefficients[i]);
      });
      dag.tValues[id].doubleValue = best;
    }
  }

  void commit(Dag& dag, std::uint32_t id) override {
    commitSupport(dag, id);
    commitCandidates(dag, id);
    this->settle(dag, id);
  }

  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    if (isAtMin<DoubleArithmetic>(dag, id)) return false;
    const std::uint32_t position = Sense::kIsMax ? supportNodePos : randomCandidate(dag, id, rng);
    return pickTerm(dag, id, position, pickDown, pickUp, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    if (isAtMax<DoubleArithmetic>(dag, id)) return false;
    const std::uint32_t position = Sense::kIsMax ? randomCandidate(dag, id, rng) : supportNodePos;
    return pickTerm(dag, id, position, pickUp, pickDown, rng, decision);
  }

  /// Acts only at the ends of the bounds: strictly inside them the caller chooses a direction.
  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    const bool isTop = isAtMax<DoubleArithmetic>(dag, id);
    const bool isBottom = isAtMin<DoubleArithmetic>(dag, id);
    if (isTop == isBottom) return false;
    step(rng);
    return isTop ? pickToDecrease(dag, id, rng, decision) : pickToIncrease(dag, id, rng, decision);
  }

private:
  using NodeIncremental<NodeDoubleInner, S, S>::modified;

  static double better(double a, double b) { return Sense::isBeyond(b, a) ? b : a; }

  /// Whether the term can go beyond the value within the operand's bounds. A reach that is no
  /// number leaves it possible.
  static bool isCandidate(const BoundedDoubleOperandView& operands, std::uint32_t i,
                          double coefficient, double value) {
    const double bound = (coefficient > 0) == Sense::kIsMax ? operands.max(i) : operands.min(i);
    const double reach = coefficient * bound;
    return Sense::isBeyond(reach, value) || std::isnan(reach);
  }

  /// Moves the witness to the position if its tentative term is no worse than the best so far: of
  /// equal terms the last one stands.
  void takeSupport(std::uint32_t position, double term, double& best) {
    if (Sense::isBeyond(best, term)) return;
    best = term;
    supportNodePos = position;
  }

  void supportAmongAll(const DoubleOperandView& operands, const Selector& coefficients) {
    double best = Sense::kWorst;
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i)
      takeSupport(i, operands.tValue(i) * coefficients[i], best);
    isSupportLast = true;
  }

  /// After a move beyond the old value the terms that reach the new one all changed. The set may
  /// hold them in any order, so the witness need not be the last position.
  void supportAmongModified(const DoubleOperandView& operands, const Selector& coefficients) {
    double best = Sense::kWorst;
    std::uint32_t lastPosition = 0;
    modified.forEach(operands.nbOperands, [&](std::uint32_t i) {
      const double term = operands.tValue(i) * coefficients[i];
      if (Sense::isBeyond(best, term)) return;
      lastPosition = term == best ? std::max(lastPosition, i) : i;
      takeSupport(i, term, best);
    });
    isSupportLast = supportNodePos == lastPosition;
  }

  /// For a value that stays: if the witness still stands and was the last of its equals, only a
  /// changed term can come behind it. This gives what a walk over all positions would.
  void supportBehind(const DoubleOperandView& operands, const Selector& coefficients,
                     double value) {
    modified.forEach(operands.nbOperands, [&](std::uint32_t i) {
      if (i > supportNodePos && operands.tValue(i) * coefficients[i] == value) supportNodePos = i;
    });
  }

  void commitSupport(const Dag& dag, std::uint32_t id) {
    const DoubleOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    const double oldValue = dag.values[id].doubleValue;
    const double value = dag.tValues[id].doubleValue;
    if (Sense::isBeyond(value, oldValue)) {
      supportAmongModified(operands, coefficients);
    } else if (value == oldValue && isSupportLast &&
               operands.tValue(supportNodePos) * coefficients[supportNodePos] == value) {
      supportBehind(operands, coefficients, value);
    } else {
      supportAmongAll(operands, coefficients);
    }
  }

  void commitCandidates(const Dag& dag, std::uint32_t id) {
    const BoundedDoubleOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    const double oldValue = dag.values[id].doubleValue;
    const double value = dag.tValues[id].doubleValue;
    const auto& limits = Sense::kIsMax ? dag.fixedFields->maxValues : dag.fixedFields->minValues;
    if (value == limits[id].doubleValue) {
      candidates.clear();
    } else if (Sense::isBeyond(value, oldValue)) {
      candidates.removeIf(operands.nbOperands, [&](std::uint32_t i) {
        return !isCandidate(operands, i, coefficients[i], value);
      });
    } else if (Sense::isBeyond(oldValue, value)) {
      candidates.addIf(operands.nbOperands, [&](std::uint32_t i) {
        return isCandidate(operands, i, coefficients[i], value);
      });
    }
  }

  std::uint32_t randomCandidate(const Dag& dag, std::uint32_t id, std::uint32_t& rng) const {
    return candidates.randomMember(dag.fixedFields->nbOperands(id), rng);
  }

  static bool pickTerm(const Dag& dag, std::uint32_t id, std::uint32_t position, PickFunction pick,
                       PickFunction reversedPick, std::uint32_t& rng, std::uint32_t& decision) {
    if (position == kNone) return false;
    const bool isReversed = Selector(dag, id)[position] < 0;
    return pickAtPosition(dag, id, position, isReversed ? reversedPick : pick, rng, decision);
  }

  /// At the end of the bounds the set may have been emptied without a look at the reaches.
  bool areCandidatesInit(const Dag& dag, std::uint32_t id) const {
    const BoundedDoubleOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    const double value = dag.values[id].doubleValue;
    const auto& limits = Sense::kIsMax ? dag.fixedFields->maxValues : dag.fixedFields->minValues;
    const bool isAtLimit = value == limits[id].doubleValue;
    return candidates.agrees(operands.nbOperands, [&](std::uint32_t i) {
      return isCandidate(operands, i, coefficients[i], value) &&
             (!isAtLimit || candidates.contains(i, operands.nbOperands));
    });
  }

  bool isSupportInit(const Dag& dag, std::uint32_t id) const {
    const DoubleOperandView operands(dag, id);
    const double term = operands.value(supportNodePos) * Selector(dag, id)[supportNodePos];
    return approxEqual(term, dag.values[id].doubleValue);
  }

  S candidates;
  bool isSupportLast = true;         ///< no position behind the witness has an equal term
  std::uint32_t supportNodePos = 0;  ///< the position of a term equal to the committed value
};

}  // namespace ombrix

#endif
