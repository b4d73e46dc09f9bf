#ifndef OMBRIX_TESTS_SUPPORT_MODELS_H
#define OMBRIX_TESTS_SUPPORT_MODELS_H

#include <cstdint>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "api/ombrix.h"
#include "builder/dagbuilder.h"
#include "builder/modelrecord.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/nodetypeutils.h"

namespace ombrix::test {

/// A solver with short words to write a model in, through the public interface only.
class TestModel {
public:
  OXExpression* boolean() { return model().createExpression(OXOperator::Bool); }
  std::vector<OXExpression*> booleans(int count) {
    std::vector<OXExpression*> all;
    for (int i = 0; i < count; ++i) all.push_back(boolean());
    return all;
  }
  /// Operands are expressions, integers or doubles.
  template <typename... Operands>
  OXExpression* make(OXOperator op, Operands... operands) {
    OXExpression* e = model().createExpression(op);
    (e->addOperand(operands), ...);
    return e;
  }
  template <typename... Operands>
  OXExpression* array(Operands... operands) {
    return make(OXOperator::Array, operands...);
  }
  OXExpression* constant(int value) { return model().createConstant(value); }
  OXExpression* constant(double value) { return model().createConstant(value); }

  void minimize(OXExpression* e) { model().addObjective(e, OXObjectiveDirection::Minimize); }
  void maximize(OXExpression* e) { model().addObjective(e, OXObjectiveDirection::Maximize); }
  void constrain(OXExpression* e) { model().addConstraint(e); }
  void set(const std::string& key, int value) { solver.getParam()->setAdvancedParam(key, value); }

  OXModel& model() { return *solver.getModel(); }
  /// Closes the model and returns its graph.
  const DagFixedFields& close() {
    model().close();
    return builder().getFixedFields();
  }
  const DagBuilder& builder() { return *ModelRecord::dagBuilder(model()); }
  std::uint32_t nodeOf(OXExpression* e) {
    return builder().nodeId(static_cast<std::size_t>(e->getIndex()));
  }

  Ombrix solver;
};

inline bool hasDoubleScalars(const DagFixedFields& fields, std::uint32_t id) {
  switch (fields.types[id]) {
    case NodeType::DoubleConstant:
    case NodeType::DoubleScalarMax:
    case NodeType::DoubleScalarMin:
    case NodeType::DoubleScalarProduct:
    case NodeType::DoubleScalarSum:
      return true;
    default:
      return false;
  }
}

/// One node as text: type name, operands and scalars in order, as in "scalar_sum (0 1) [2 3]".
inline std::string nodeText(const DagFixedFields& fields, std::uint32_t id) {
  std::ostringstream out;
  out.precision(17);
  out << fields.getTypeName(id);
  for (std::uint32_t i = 0; i < fields.nbOperands(id); ++i) {
    out << (i == 0 ? " (" : " ") << fields.operand(id, i);
  }
  if (fields.nbOperands(id) > 0) out << ")";
  for (std::uint32_t i = 0; i < fields.nbScalars(id); ++i) {
    const OXValue scalar = fields.scalarsOf(id)[i];
    out << (i == 0 ? " [" : " ");
    if (hasDoubleScalars(fields, id)) {
      out << scalar.doubleValue;
    } else {
      out << scalar.intValue;
    }
  }
  if (fields.nbScalars(id) > 0) out << "]";
  return out.str();
}

/// All nodes in number order.
inline std::vector<std::string> graphText(const DagFixedFields& fields) {
  std::vector<std::string> lines;
  for (std::uint32_t id = 0; id < fields.nbNodes; ++id) lines.push_back(nodeText(fields, id));
  return lines;
}

}  // namespace ombrix::test

#endif
