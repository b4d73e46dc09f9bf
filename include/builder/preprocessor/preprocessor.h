#ifndef OMBRIX_BUILDER_PREPROCESSOR_PREPROCESSOR_H
#define OMBRIX_BUILDER_PREPROCESSOR_PREPROCESSOR_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "builder/modelrecord.h"
#include "builder/passreport.h"
#include "solver/kernel/intervals.h"
#include "solver/kernel/oxvalue.h"

namespace ombrix {

class DagFixedFields;

/// What all passes of the transformation know about a closed model, and write down for each other:
/// for every expression, by its index, an interval that holds its values, whether it is proved
/// constant, which expression stands for it, and which node it became. It lives only while the
/// graph is built. The passes run one after the other on one thread, so the fields are open.
///
/// An interval only shrinks. Where it would become empty it stays as it was and the expression is
/// noted in conflicts: a contradiction is no failure, it makes the model inconsistent.
///
/// The passes before the nodes are made see the model as expression indices only: what they ask of
/// an expression stands in flat arrays, so that a walk over a large model does not wait for one
/// record after the other.
struct Preprocessor {
  using Index = std::uint32_t;
  static constexpr std::uint32_t kNoNode = 4294967295U;

  /// Counts uses, collects roots and gives every expression the widest bounds of its type.
  Preprocessor(OXModel& closedModel, DagFixedFields& fields);

  OXModel* model;
  DagFixedFields* fixedFields;
  /// The canonical expression of each expression: itself, until a pass finds a simpler one.
  std::vector<OXExpression*> unaries;
  /// The expressions at which a contradiction was met, in the order of meeting.
  std::vector<OXExpression*> conflicts;
  /// The node of each canonical expression, or kNoNode.
  std::vector<std::uint32_t> nodeIds;
  /// The constraints and objectives that no other expression uses, by index.
  std::vector<OXExpression*> roots;
  /// How many operand positions of the model refer to each expression.
  std::vector<std::uint32_t> useCounts;
  std::vector<bool> fixed;
  /// In the member of the type of the expression; an "array" keeps zeros.
  std::vector<OXValue> lowerBounds;
  std::vector<OXValue> upperBounds;
  /// What the passes have changed since the state was made.
  PassCounts counts;

  static Index at(const OXExpression& e) { return static_cast<Index>(ModelRecord::index(e)); }

  // The shape of the model.
  Index nbExpressions() const { return static_cast<Index>(ops.size()); }
  OXExpression& expression(Index e) const { return *ModelRecord::expressions(*model)[e]; }
  OXOperator op(Index e) const { return static_cast<OXOperator>(ops[e]); }
  bool isArray(Index e) const { return types[e] == kArrayType; }
  bool isBool(Index e) const { return types[e] == kBoolType; }
  bool isDouble(Index e) const { return types[e] == kDoubleType; }
  std::span<const Index> operands(Index e) const {
    return {operandLists.data() + operandStarts[e], operandStarts[e + 1] - operandStarts[e]};
  }
  Index operand(Index e, Index position) const { return operandLists[operandStarts[e] + position]; }
  Index nbOperands(Index e) const {
    return static_cast<Index>(operandStarts[e + 1] - operandStarts[e]);
  }
  /// Every expression that the roots reach, operands before their users: the last root first, and
  /// of each expression the last operand. Found at the first call.
  const std::vector<Index>& bottomUp();

  bool isFixed(Index e) const { return fixed[e]; }
  bool isFixed(const OXExpression& e) const { return isFixed(at(e)); }
  OXExpression& canonical(const OXExpression& e) const { return *unaries[at(e)]; }
  OXExpression& canonicalOperand(const OXExpression& e, std::int32_t position) const {
    return *unaries[static_cast<Index>(ModelRecord::operandIndex(e, position))];
  }

  /// The bounds of a boolean or integer expression.
  IntInterval intBounds(Index e) const {
    return {lowerBounds[e].intValue, upperBounds[e].intValue};
  }
  /// The bounds read as doubles: those of a boolean or integer expression are converted.
  DoubleInterval doubleBounds(Index e) const {
    if (!isDouble(e)) return toDouble(intBounds(e));
    return {lowerBounds[e].doubleValue, upperBounds[e].doubleValue};
  }

  /// Intersects the bounds of a boolean or integer expression with [low, high].
  void intersectIntBounds(Index e, std::int64_t low, std::int64_t high);
  void intersectIntBounds(Index e, IntInterval bounds) {
    intersectIntBounds(e, bounds.low, bounds.high);
  }
  /// Intersects the bounds of a double expression with [low, high]. Bounds that miss each other by
  /// less than the tolerance still meet; a NaN on either side leaves everything as it is.
  void intersectDoubleBounds(Index e, double low, double high);
  void intersectDoubleBounds(Index e, DoubleInterval bounds) {
    intersectDoubleBounds(e, bounds.low, bounds.high);
  }
  void fixTo(Index e, std::int64_t value) { intersectIntBounds(e, value, value); }
  void noteConflict(Index e) { conflicts.push_back(&expression(e)); }
  void markFixed(Index e) {
    if (fixed[e]) return;
    fixed[e] = true;
    ++counts.nbFixed;
  }
  /// Makes another expression the canonical one of e; e itself is no replacement.
  void replace(Index e, Index replacement) {
    if (e == replacement) return;
    unaries[e] = &expression(replacement);
    ++counts.nbReplaced;
  }
  /// Whether both bounds are equal: exactly for booleans and integers, within tolerance for
  /// doubles.
  bool hasEqualBounds(Index e) const {
    if (!isDouble(e)) return lowerBounds[e].intValue == upperBounds[e].intValue;
    return approxEqual(lowerBounds[e].doubleValue, upperBounds[e].doubleValue);
  }
  /// Whether the canonical form of some operand is a double.
  bool hasDoubleOperand(Index e) const {
    const auto all = operands(e);
    return std::any_of(all.begin(), all.end(),
                       [this](Index x) { return isDouble(at(*unaries[x])); });
  }

private:
  void readShape();
  void readOperands();
  void initBounds(const OXExpression& e);
  void setBounds(Index e, OXValue low, OXValue high) {
    lowerBounds[e] = low;
    upperBounds[e] = high;
  }

  std::vector<std::uint8_t> ops;
  std::vector<ValueType> types;
  /// The operands of e are those of operandLists from operandStarts[e] up to operandStarts[e + 1].
  std::vector<std::size_t> operandStarts;
  std::vector<Index> operandLists;
  std::vector<Index> order;  ///< see bottomUp
};

inline void Preprocessor::intersectIntBounds(Index e, std::int64_t low, std::int64_t high) {
  const IntInterval known = intBounds(e);
  const IntInterval both = {std::max(low, known.low), std::min(high, known.high)};
  if (both == known) return;
  if (both.low > both.high) return noteConflict(e);
  ++counts.nbNarrowed;
  setBounds(e, OXValue::ofInt(both.low), OXValue::ofInt(both.high));
}

}  // namespace ombrix

#endif
