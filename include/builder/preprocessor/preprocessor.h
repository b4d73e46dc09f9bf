#ifndef OMBRIX_BUILDER_PREPROCESSOR_PREPROCESSOR_H
#define OMBRIX_BUILDER_PREPROCESSOR_PREPROCESSOR_H

#include <cstdint>
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
struct Preprocessor {
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

  static std::size_t at(const OXExpression& e) {
    return static_cast<std::size_t>(ModelRecord::index(e));
  }
  bool isFixed(const OXExpression& e) const { return fixed[at(e)]; }
  OXExpression& canonical(const OXExpression& e) const { return *unaries[at(e)]; }
  OXExpression& canonicalOperand(const OXExpression& e, std::int32_t position) const {
    return *unaries[static_cast<std::size_t>(ModelRecord::operandIndex(e, position))];
  }

  /// The bounds of a boolean or integer expression.
  IntInterval intBounds(const OXExpression& e) const {
    return {lowerBounds[at(e)].intValue, upperBounds[at(e)].intValue};
  }
  /// The bounds read as doubles: those of a boolean or integer expression are converted.
  DoubleInterval doubleBounds(const OXExpression& e) const;

  /// Intersects the bounds of a boolean or integer expression with [low, high].
  void intersectIntBounds(OXExpression& e, std::int64_t low, std::int64_t high);
  /// Intersects the bounds of a double expression with [low, high]. Bounds that miss each other by
  /// less than the tolerance still meet; a NaN on either side leaves everything as it is.
  void intersectDoubleBounds(OXExpression& e, double low, double high);
  void intersectIntBounds(OXExpression& e, IntInterval bounds) {
    intersectIntBounds(e, bounds.low, bounds.high);
  }
  void intersectDoubleBounds(OXExpression& e, DoubleInterval bounds) {
    intersectDoubleBounds(e, bounds.low, bounds.high);
  }
  void fixTo(OXExpression& e, std::int64_t value) { intersectIntBounds(e, value, value); }
  void markFixed(const OXExpression& e) {
    if (fixed[at(e)]) return;
    fixed[at(e)] = true;
    ++counts.nbFixed;
  }
  /// Makes another expression the canonical one of e; e itself is no replacement.
  void replace(const OXExpression& e, OXExpression& replacement) {
    if (&e == &replacement) return;
    unaries[at(e)] = &replacement;
    ++counts.nbReplaced;
  }
  /// Whether both bounds are equal: exactly for booleans and integers, within tolerance for
  /// doubles.
  bool hasEqualBounds(const OXExpression& e) const;
  /// Whether the canonical form of some operand is a double.
  bool hasDoubleOperand(const OXExpression& e) const;

private:
  void countUses();
  void collectRoots();
  void initBounds(const OXExpression& e);
  void setBounds(const OXExpression& e, OXValue low, OXValue high);
};

}  // namespace ombrix

#endif
