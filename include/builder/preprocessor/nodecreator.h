#ifndef OMBRIX_BUILDER_PREPROCESSOR_NODECREATOR_H
#define OMBRIX_BUILDER_PREPROCESSOR_NODECREATOR_H

#include <cstdint>
#include <deque>
#include <unordered_map>
#include <vector>

#include "builder/preprocessor/creationframe.h"
#include "builder/preprocessor/operandcollector.h"
#include "builder/preprocessor/preprocessor.h"
#include "builder/preprocessor/sumgrouper.h"
#include "builder/valuetype.h"
#include "solver/kernel/dagfixedfields.h"

namespace ombrix {

/// The last pass: walks the model from its roots and writes the kernel graph. Here operators become
/// node types, and trees of arithmetic become flat: nested sums and extreme values are merged,
/// constants folded, constant factors turned into coefficients, and a scalar product with a
/// constant array becomes a weighted sum.
///
/// The walk is a post-order with an explicit stack, so the depth of a model is limited by memory
/// only. Each expression is created once, however many others reach it; the operands of an
/// expression are created from the last to the first. The stack holds expressions; a frame is taken
/// when an expression is opened and is free again once its node stands, so there are only as many
/// as the deepest path has expressions.
class NodeCreator {
public:
  explicit NodeCreator(Preprocessor& state);

  /// Creates the nodes, then registers constraints and objectives. Requires a model without
  /// conflicts.
  void run();

private:
  enum State : std::uint8_t { kNew, kOpened, kDone };

  /// The four node types of an operator that is associative: plain and with coefficients.
  struct SumTypes {
    NodeType plain;
    NodeType doublePlain;
    NodeType scalar;
    NodeType doubleScalar;
  };

  // The three rounds of run.
  void createRoots();
  void createConstraints();
  void createObjectives();
  void registerConstraints();
  bool isSatisfied(const OXExpression& constraint) const;

  // The walk.
  void preprocessStack();
  void createTop(OXExpression& e);
  bool isNew(const OXExpression& e) const { return states[Preprocessor::at(e)] == kNew; }
  CreationFrame& openFrame(OXExpression& e, const CreationFlags& flags);
  CreationFrame& topFrame() { return frames[nbOpenFrames - 1]; }
  /// At the first visit collects the operands and puts those without a node on the stack. Answers
  /// whether all operands of e, now in the top frame, have their nodes.
  bool open(OXExpression& e, const CreationFlags& flags);
  /// Answers whether no operand had to be put on the stack.
  bool pushOperands(const CreationFrame& frame);
  void finish(OXExpression& e, std::uint32_t node);

  // What every case draws on.
  std::uint32_t nodeOf(const OXExpression& e) const {
    return preprocessor.nodeIds[Preprocessor::at(e)];
  }
  const std::vector<std::uint32_t>& gatherOperandNodes(const CreationFrame& frame);
  std::uint32_t addConstant(ValueType type, OXValue value);
  std::uint32_t addFoldedConstants(const CreationFrame& frame);

  // One case for each way to make a node.
  void createFixed(OXExpression& e);
  void createPlain(OXExpression& e, NodeType type);
  void createPlain(OXExpression& e, NodeType type, NodeType doubleType);
  void createSumFamily(OXExpression& e, const CreationFlags& flags, const SumTypes& types);
  std::uint32_t addPlainFamily(const CreationFrame& frame, NodeType type);
  std::uint32_t addScalarFamily(const CreationFrame& frame, NodeType type);
  void createProduct(OXExpression& e);
  void createLogical(OXExpression& e, NodeType type);
  void createArray(OXExpression& e);
  std::uint32_t addConstantArray(const OXExpression& array, bool isDoubleArray);
  void createAt(OXExpression& e);
  void createScalarArray(OXExpression& e);
  std::uint32_t addFixedScalar(const OXExpression& e, const OXExpression& a, const OXExpression& b);
  bool openWeighted(OXExpression& e, const OXExpression& weights, const OXExpression& variables);
  bool openGeneral(OXExpression& e, const OXExpression& a, const OXExpression& b);
  std::uint32_t addWeighted(const CreationFrame& frame);
  std::uint32_t addGeneral(const CreationFrame& frame);
  bool areElementsFixed(const OXExpression& array) const;
  bool hasDoubleElement(const OXExpression& array) const;

  Preprocessor& preprocessor;
  DagFixedFields& fixedFields;
  const OXModel& model;
  OperandCollector collector;
  SumGrouper grouper;
  std::vector<std::uint8_t> states;  ///< per expression: a State
  std::vector<bool> hasDoubles;      ///< per array with a node: some element is a double
  std::vector<OXExpression*> stack;  ///< the top is worked on; canonical
  std::deque<CreationFrame> frames;  ///< the open ones first, as they stand on the stack
  std::size_t nbOpenFrames = 0;
  /// Equal integers share a node; only looked up, never walked.
  std::unordered_map<std::int64_t, std::uint32_t> intConstants;
  std::vector<std::uint32_t> operandNodes;  ///< scratch, as is the next one
  std::vector<OXValue> scalars;
};

}  // namespace ombrix

#endif
