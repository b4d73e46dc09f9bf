#ifndef OMBRIX_API_OXSOLUTION_H
#define OMBRIX_API_OXSOLUTION_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "oxsolutionstatus.h"

namespace ombrix {

class Ombrix;
class OXExpression;
union OXValue;
struct Where;

/// One assignment of the decisions, owned by its Ombrix: where the next search starts, and after it
/// the best solution found. Every other expression is evaluated from the decisions when it is read,
/// once per assignment.
///
/// Of an expression given as argument: null or of another solver gives code 0, the wrong type
/// code 2.
class OXSolution {
public:
  OXSolution(const OXSolution&) = delete;
  OXSolution& operator=(const OXSolution&) = delete;
  ~OXSolution();

  /// The solver that owns the solution. Not while Running.
  Ombrix* getOmbrix() const;

  /// Sets a boolean decision to 0 or 1; all values derived from decisions are forgotten. In state
  /// Stopped only. Code 0: the expression is no decision, or the value is not allowed.
  void setIntValue(OXExpression* expr, long long value);
  /// Always fails, as decisions are boolean: code 2 for a boolean or integer expression, code 0 for
  /// one of type double.
  void setDoubleValue(OXExpression* expr, double value);
  /// setIntValue or setDoubleValue, by the type of the value.
  void setValue(OXExpression* expr, long long value);
  void setValue(OXExpression* expr, double value);
  void setValue(OXExpression* expr, int value) { setValue(expr, static_cast<long long>(value)); }
  void setValue(OXExpression* expr, long value) { setValue(expr, static_cast<long long>(value)); }

  /// The value of a boolean or integer expression. In states Paused and Stopped. Code 5: it has no
  /// value at this assignment, as for an index out of an array or a division by zero.
  long long getIntValue(OXExpression* expr) const;
  /// The value of an expression of type double; states and codes as for getIntValue.
  double getDoubleValue(OXExpression* expr) const;
  /// getIntValue under another name.
  long long getValue(OXExpression* expr) const;

  /// What is known of the assignment: what the search found, or, when a decision was set since or
  /// no search has run, whether constraints hold and objectives reach their bounds. In states
  /// Paused and Stopped. Code 5 as for getIntValue; code 6: the closing of the model had failed on
  /// the way.
  OXSolutionStatus getStatus() const;

  /// Sets every decision to 0 and forgets the status. In state Stopped only.
  void clear();

private:
  friend class Ombrix;
  friend class OXExpression;
  friend class OXModel;
  friend struct SolverRecord;

  explicit OXSolution(Ombrix* owner);

  void reset();
  void writeInt(const OXExpression* expr, long long value, const Where& where);
  [[noreturn]] void writeDouble(const OXExpression* expr, const Where& where);
  long long readInt(const OXExpression* expr, const Where& where) const;
  double readDouble(const OXExpression* expr, const Where& where) const;
  OXValue valueOf(const OXExpression& expr) const;
  void evaluate(const OXExpression& start) const;
  bool settle(const OXExpression& operand) const;
  void compute(const OXExpression& expr) const;
  void forgetIfDirty() const;
  OXSolutionStatus computeStatus() const;
  bool violatesConstraint() const;
  bool reachesBound(std::size_t objective) const;

  Ombrix* ombrix;
  /// Caches filled by reads: values of decisions are settled, all others follow from them.
  mutable std::vector<OXValue> values;
  mutable std::vector<bool> evaluated;
  mutable std::int32_t status;
  mutable bool dirty = false;
};

}  // namespace ombrix

#endif
