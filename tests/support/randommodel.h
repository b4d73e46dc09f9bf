#ifndef OMBRIX_TESTS_SUPPORT_RANDOMMODEL_H
#define OMBRIX_TESTS_SUPPORT_RANDOMMODEL_H

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

#include "support/models.h"

namespace ombrix::test {

inline constexpr std::int64_t kMaxMagnitude = 1000000;

/// Draws a model in which every expression has a value at every assignment. Left out on purpose is
/// what the transformation reads in a way of its own: divisors fixed at 1, integer divisors of
/// double quotients, negative exponents, indices that fill the interval of an integer "at" when
/// bounds are computed.
class RandomModel {
public:
  /// At most five decisions.
  RandomModel(TestModel& target, unsigned seed, bool hasBounds)
      : m(target), random(seed), computesBounds(hasBounds) {
    build(1 + pick(5));
  }
  RandomModel(TestModel& target, unsigned seed, bool hasBounds, int nbDecisions)
      : m(target), random(seed), computesBounds(hasBounds) {
    build(nbDecisions);
  }

private:
  void build(int nbDecisions) {
    for (int i = 0; i < nbDecisions; ++i) addBoolean(m.boolean());
    for (const int value : {0, 1}) addBoolean(m.constant(value));
    for (const int value : {2, 3, -1, -2}) addInteger(m.constant(value), 3);
    for (const double value : {0.5, 2.0, -1.25}) addDouble(m.constant(value), 3);
    const int nbExpressions = 5 + pick(25);
    for (int i = 0; i < nbExpressions; ++i) addExpression();
    addGoals();
  }

  int pick(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }
  OXExpression* pickFrom(const std::vector<OXExpression*>& pool) {
    // Late expressions are preferred, so that models become deep.
    const int n = static_cast<int>(pool.size());
    return pool[static_cast<std::size_t>(std::max(pick(n), pick(n)))];
  }
  OXExpression* boolean() { return pickFrom(booleans); }
  OXExpression* integer() { return pick(3) == 0 ? boolean() : pickFrom(integers); }
  OXExpression* real() { return pickFrom(doubles); }
  OXExpression* number() { return pick(2) == 0 ? integer() : real(); }

  void addBoolean(OXExpression* e) {
    booleans.push_back(e);
    magnitudes[e] = 1;
  }
  void addInteger(OXExpression* e, std::int64_t magnitude) {
    if (magnitude <= kMaxMagnitude) {
      integers.push_back(e);
      magnitudes[e] = magnitude;
    }
  }
  void addDouble(OXExpression* e, std::int64_t magnitude) {
    if (magnitude <= kMaxMagnitude) {
      doubles.push_back(e);
      magnitudes[e] = magnitude;
    }
  }

  void addExpression() {
    switch (pick(3)) {
      case 0:
        return addBooleanExpression();
      case 1:
        return addIntegerExpression();
      default:
        return addDoubleExpression();
    }
  }

  void addBooleanExpression() {
    static constexpr OXOperator kComparisons[] = {OXOperator::Eq,  OXOperator::Neq, OXOperator::Geq,
                                                  OXOperator::Leq, OXOperator::Gt,  OXOperator::Lt};
    static constexpr OXOperator kLogical[] = {OXOperator::And, OXOperator::Or, OXOperator::Xor};
    switch (pick(5)) {
      case 0:
        return addBoolean(m.make(OXOperator::Not, boolean()));
      case 1:
        return addBoolean(m.make(OXOperator::Iif, boolean(), boolean(), boolean()));
      case 2:
        return addBoolean(m.make(kComparisons[pick(6)], number(), number()));
      case 3:
        return addBoolean(m.make(kComparisons[pick(6)], integer(), integer()));
      default: {
        OXExpression* e = m.make(kLogical[pick(3)], boolean());
        for (int n = pick(4); n > 0; --n) e->addOperand(boolean());
        return addBoolean(e);
      }
    }
  }

  void addIntegerExpression() {
    switch (pick(11)) {
      case 0:
      case 1:
        return addSum(false);
      case 2:
        return addProduct(false);
      case 3:
        return addExtreme(false);
      case 4: {
        OXExpression* a = integer();
        OXExpression* b = integer();
        return addInteger(m.make(OXOperator::Iif, boolean(), a, b), larger(a, b));
      }
      case 5: {
        OXExpression* a = integer();
        return addInteger(m.make(OXOperator::Abs, a), magnitudes[a]);
      }
      case 6: {
        OXExpression* a = integer();
        OXExpression* b = integer();
        return addInteger(m.make(OXOperator::Dist, a, b), magnitudes[a] + magnitudes[b]);
      }
      case 7: {
        OXExpression* a = integer();
        const OXOperator op = pick(2) == 0 ? OXOperator::Div : OXOperator::Mod;
        return addInteger(m.make(op, a, divisor()), magnitudes[a]);
      }
      case 8: {
        static constexpr OXOperator kRoundings[] = {OXOperator::Ceil, OXOperator::Floor,
                                                    OXOperator::Round};
        OXExpression* a = number();
        return addInteger(m.make(kRoundings[pick(3)], a), magnitudes[a] + 1);
      }
      case 9:
        return addAt();
      default:
        return addScalar(false);
    }
  }

  void addDoubleExpression() {
    OXExpression* a = number();
    OXExpression* b = real();
    switch (pick(16)) {
      case 14:
        return addPower();
      case 15: {
        OXExpression* half = m.make(OXOperator::Prod, 0.5, boolean());
        return addDouble(m.make(OXOperator::Tan, m.make(OXOperator::Sum, half, 0.25)), 1);
      }
      case 9:
      case 10:
        return addSum(true);
      case 11:
        return addProduct(true);
      case 12:
        return addExtreme(true);
      case 13:
        return addScalar(true);
      case 0:
        return addDouble(m.make(OXOperator::Sqrt, m.make(OXOperator::Abs, a)), magnitudes[a] + 1);
      case 1:
        return addDouble(m.make(OXOperator::Log, atLeastTwo()), kMaxMagnitude / 1000);
      case 2:
        if (magnitudes[a] > 5) return;
        return addDouble(m.make(OXOperator::Exp, a), 150);
      case 3: {
        static constexpr OXOperator kWaves[] = {OXOperator::Cos, OXOperator::Sin};
        return addDouble(m.make(kWaves[pick(2)], a), 1);
      }
      case 4:
        return addDouble(m.make(OXOperator::Abs, b), magnitudes[b]);
      case 5:
        return addDouble(m.make(OXOperator::Dist, a, b), magnitudes[a] + magnitudes[b]);
      case 6:
        return addDouble(m.make(OXOperator::Iif, boolean(), a, b), larger(a, b));
      case 7: {
        static constexpr double kDivisors[] = {0.5, 2.0, -4.0};
        return addDouble(m.make(OXOperator::Div, a, kDivisors[pick(3)]), 2 * magnitudes[a]);
      }
      default: {
        OXExpression* array = m.array(a, b);
        return addDouble(m.make(OXOperator::At, array, boolean()), larger(a, b));
      }
    }
  }

  /// A base of at least 1 to an exponent of at least 0, which have the interval of their values.
  void addPower() {
    OXExpression* size = number();
    OXExpression* exponent = pick(2) == 0 ? integer() : real();
    if (magnitudes[size] > 9 || magnitudes[exponent] > 3) return;
    OXExpression* base = m.make(OXOperator::Sum, m.make(OXOperator::Abs, size), 1);
    addDouble(m.make(OXOperator::Pow, base, m.make(OXOperator::Abs, exponent)), 1000);
  }

  /// An operand of an operator; sometimes one of the same kind that nothing else uses, which the
  /// transformation opens.
  OXExpression* operandOf(OXOperator op, bool isReal) {
    if (pick(4) != 0) return isReal ? number() : integer();
    OXExpression* a = isReal ? number() : integer();
    OXExpression* b = integer();
    OXExpression* e = m.make(op, a, b);
    magnitudes[e] =
        op == OXOperator::Prod ? magnitudes[a] * magnitudes[b] : magnitudes[a] + magnitudes[b];
    return e;
  }

  /// From -3 to 3, in halves for doubles.
  OXExpression* coefficient(bool isReal) {
    return isReal && pick(2) == 0 ? m.constant((pick(13) - 6) / 2.0) : m.constant(pick(7) - 3);
  }
  /// A double aggregate has at least one operand that is a double.
  void add(OXExpression* e, std::int64_t magnitude, bool isReal) {
    if (isReal) {
      OXExpression* last = real();
      e->addOperand(last);
      const bool isProduct = e->getOperator() == OXOperator::Prod;
      addDouble(e, isProduct ? magnitude * magnitudes[last] : magnitude + magnitudes[last]);
    } else {
      addInteger(e, magnitude);
    }
  }

  void addSum(bool isReal) {
    OXExpression* e = m.model().createExpression(OXOperator::Sum);
    std::int64_t magnitude = 0;
    for (int n = 1 + pick(5); n > 0; --n) {
      OXExpression* term = operandOf(OXOperator::Sum, isReal);
      magnitude += 3 * magnitudes[term];
      switch (pick(4)) {
        case 0:
          e->addOperand(m.make(OXOperator::Prod, coefficient(isReal), term));
          break;
        case 1:
          magnitude += 3;
          e->addOperand(m.make(OXOperator::Iif, boolean(), coefficient(isReal), 0));
          break;
        default:
          e->addOperand(term);
      }
    }
    add(e, magnitude, isReal);
  }

  void addProduct(bool isReal) {
    OXExpression* e = m.model().createExpression(OXOperator::Prod);
    std::int64_t magnitude = 1;
    for (int n = 1 + pick(4); n > 0; --n) {
      OXExpression* factor = operandOf(OXOperator::Prod, isReal);
      if (magnitude * magnitudes[factor] > kMaxMagnitude) continue;
      magnitude *= magnitudes[factor];
      e->addOperand(factor);
    }
    if (e->getNbOperands() == 0) e->addOperand(2);
    add(e, std::max<std::int64_t>(magnitude, 2), isReal);
  }

  void addExtreme(bool isReal) {
    const OXOperator op = pick(2) == 0 ? OXOperator::Max : OXOperator::Min;
    OXExpression* e = m.model().createExpression(op);
    std::int64_t magnitude = 0;
    for (int n = 1 + pick(4); n > 0; --n) {
      OXExpression* term = operandOf(op, isReal);
      magnitude = std::max(magnitude, 3 * magnitudes[term]);
      if (pick(3) == 0) term = m.make(OXOperator::Prod, coefficient(isReal), term);
      e->addOperand(term);
    }
    add(e, magnitude, isReal);
  }

  OXExpression* atLeastTwo() {
    return m.make(OXOperator::Sum, m.make(OXOperator::Abs, integer()), 2);
  }
  OXExpression* divisor() {
    static constexpr int kDivisors[] = {2, 3, 5, -2};
    return pick(3) == 0 ? atLeastTwo() : m.constant(kDivisors[pick(4)]);
  }

  void addAt() {
    const int n = 2 + pick(3);
    OXExpression* array = m.array();
    std::int64_t magnitude = 0;
    for (int i = 0; i < n; ++i) {
      OXExpression* element = integer();
      array->addOperand(element);
      magnitude = std::max(magnitude, magnitudes[element]);
    }
    OXExpression* index = n == 2 && !computesBounds ? boolean() : looseIndex(n);
    addInteger(m.make(OXOperator::At, array, index), magnitude);
  }
  /// Always below n, with computed bounds that reach n.
  OXExpression* looseIndex(int n) {
    OXExpression* e = integer();
    OXExpression* negative = m.make(OXOperator::Sum, e, static_cast<long long>(-magnitudes[e] - n));
    return m.make(OXOperator::Abs, m.make(OXOperator::Mod, negative, n));
  }

  void addScalar(bool isReal) {
    OXExpression* a = m.array();
    OXExpression* b = m.array();
    const int constantSide = pick(3);
    std::int64_t magnitude = 0;
    for (int n = pick(4); n > 0; --n) {
      OXExpression* x = constantSide == 0 ? coefficient(isReal) : integer();
      OXExpression* y = constantSide == 1 ? coefficient(isReal) : integer();
      a->addOperand(x);
      b->addOperand(y);
      magnitude +=
          std::max<std::int64_t>(magnitudes[x], 3) * std::max<std::int64_t>(magnitudes[y], 3);
    }
    if (isReal) {
      OXExpression* last = real();
      a->addOperand(coefficient(true));
      b->addOperand(last);
      magnitude += 3 * magnitudes[last];
    }
    OXExpression* e = m.make(OXOperator::Scalar, a, b);
    isReal ? addDouble(e, magnitude) : addInteger(e, magnitude);
  }

  std::int64_t larger(OXExpression* a, OXExpression* b) {
    return std::max(magnitudes[a], magnitudes[b]);
  }

  void addGoals() {
    for (int n = pick(4); n > 0; --n) m.constrain(boolean());
    m.minimize(integer());
    for (int n = pick(3); n > 0; --n) m.maximize(number());
  }

  TestModel& m;
  std::mt19937 random;
  bool computesBounds;
  std::vector<OXExpression*> booleans;
  std::vector<OXExpression*> integers;
  std::vector<OXExpression*> doubles;
  std::map<OXExpression*, std::int64_t> magnitudes;
};

inline void setDecisions(OXModel& model, unsigned assignment) {
  for (int i = 0; i < model.getNbDecisions(); ++i) {
    model.getDecision(i)->setValue(static_cast<int>((assignment >> i) & 1U));
  }
}

inline bool holdsAllConstraints(OXModel& model) {
  for (int i = 0; i < model.getNbConstraints(); ++i) {
    if (model.getConstraint(i)->getIntValue() == 0) return false;
  }
  return true;
}

}  // namespace ombrix::test

#endif
