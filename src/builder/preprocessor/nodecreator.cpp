#include "builder/preprocessor/nodecreator.h"

#include <string>

#include "builder/modelrecord.h"
#include "builder/preprocessor/fixedvalue.h"
#include "builder/valuetools.h"
#include "common/failure.h"

namespace ombrix {

namespace {

constexpr CreationFlags kPlain{};
constexpr CreationFlags kSumFlags{.collectCoefficients = true,
                                  .flattenNonNegative = true,
                                  .flattenNonPositive = true,
                                  .foldConstants = true};
/// A negative coefficient turns a largest value into a smallest one: it stays a node of its own.
constexpr CreationFlags kExtremeFlags{.collectCoefficients = true,
                                      .flattenNonNegative = true,
                                      .flattenNonPositive = false,
                                      .foldConstants = true};

}  // namespace

NodeCreator::NodeCreator(Preprocessor& state)
    : preprocessor(state),
      fixedFields(*state.fixedFields),
      model(*state.model),
      collector(state),
      grouper(*state.fixedFields),
      states(ModelRecord::expressions(*state.model).size(), kNew),
      hasDoubles(states.size(), false) {}

void NodeCreator::run() {
  createRoots();
  createConstraints();
  createObjectives();
}

void NodeCreator::createRoots() {
  for (const OXExpression* root : preprocessor.roots) {
    if (ModelRecord::isConstraint(*root) && isSatisfied(*root)) continue;
    stack.push_back(&preprocessor.canonical(*root));
  }
  preprocessStack();
}

void NodeCreator::createConstraints() {
  for (const OXExpression* constraint : ModelRecord::constraints(model)) {
    OXExpression& c = preprocessor.canonical(*constraint);
    if (!isSatisfied(c)) stack.push_back(&c);
  }
  preprocessStack();
  registerConstraints();
}

/// A constraint proved false stays as a constant node: a contradiction that no pass reported is
/// seen as a violated constraint.
void NodeCreator::registerConstraints() {
  std::vector<bool> isRegistered(fixedFields.nbNodes, false);
  for (const OXExpression* constraint : ModelRecord::constraints(model)) {
    const OXExpression& c = preprocessor.canonical(*constraint);
    if (isSatisfied(c)) continue;
    const std::uint32_t node = nodeOf(c);
    if (isRegistered[node]) continue;
    isRegistered[node] = true;
    fixedFields.constraints.push_back(node);
  }
}

void NodeCreator::createObjectives() {
  const auto& objectives = ModelRecord::objectives(model);
  for (const OXExpression* objective : objectives) {
    stack.push_back(&preprocessor.canonical(*objective));
  }
  preprocessStack();
  const auto& directions = ModelRecord::objectiveDirections(model);
  for (std::size_t i = 0; i < objectives.size(); ++i) {
    if (directions[i] != 0 && directions[i] != 1) continue;
    fixedFields.addObjective(nodeOf(preprocessor.canonical(*objectives[i])),
                             static_cast<std::uint32_t>(directions[i]));
  }
}

bool NodeCreator::isSatisfied(const OXExpression& constraint) const {
  return preprocessor.isFixed(constraint) &&
         !ValueTools::isZero(ModelRecord::valueType(constraint),
                             fixedValue(preprocessor, constraint));
}

void NodeCreator::preprocessStack() {
  while (!stack.empty()) {
    OXExpression& e = *stack.back();
    if (states[Preprocessor::at(e)] == kDone) {
      stack.pop_back();
    } else if (ModelRecord::op(e) != OXOperator::Array && preprocessor.isFixed(e)) {
      createFixed(e);
    } else {
      createTop(e);
    }
  }
}

void NodeCreator::createTop(OXExpression& e) {
  switch (ModelRecord::op(e)) {
    case OXOperator::Bool:
      return createPlain(e, NodeType::Boolean);
    case OXOperator::Const:
      return createFixed(e);
    case OXOperator::Sum:
      return createSumFamily(
          e, kSumFlags,
          {NodeType::Sum, NodeType::DoubleSum, NodeType::ScalarSum, NodeType::DoubleScalarSum});
    case OXOperator::Prod:
      return createProduct(e);
    case OXOperator::Max:
      return createSumFamily(
          e, kExtremeFlags,
          {NodeType::Max, NodeType::DoubleMax, NodeType::ScalarMax, NodeType::DoubleScalarMax});
    case OXOperator::Min:
      return createSumFamily(
          e, kExtremeFlags,
          {NodeType::Min, NodeType::DoubleMin, NodeType::ScalarMin, NodeType::DoubleScalarMin});
    case OXOperator::Eq:
      return createPlain(e, NodeType::Eq, NodeType::DoubleEq);
    case OXOperator::Neq:
      return createPlain(e, NodeType::Neq, NodeType::DoubleNeq);
    case OXOperator::Geq:
      return createPlain(e, NodeType::Geq, NodeType::DoubleGeq);
    case OXOperator::Leq:
      return createPlain(e, NodeType::Leq, NodeType::DoubleLeq);
    case OXOperator::Gt:
      return createPlain(e, NodeType::Gt, NodeType::DoubleGt);
    case OXOperator::Lt:
      return createPlain(e, NodeType::Lt, NodeType::DoubleLt);
    case OXOperator::Iif:
      return createPlain(e, NodeType::If, NodeType::DoubleIf);
    case OXOperator::Not:
      return createPlain(e, NodeType::Not);
    case OXOperator::And:
      return createLogical(e, NodeType::And);
    case OXOperator::Or:
      return createLogical(e, NodeType::Or);
    case OXOperator::Xor:
      return createLogical(e, NodeType::Xor);
    case OXOperator::Abs:
      return createPlain(e, NodeType::Abs, NodeType::DoubleAbs);
    case OXOperator::Dist:
      return createPlain(e, NodeType::Distance, NodeType::DoubleDistance);
    case OXOperator::Div:
      return createPlain(e, NodeType::Divide, NodeType::DoubleDivide);
    case OXOperator::Mod:
      return createPlain(e, NodeType::Modulo);
    case OXOperator::Array:
      return createArray(e);
    case OXOperator::At:
      return createAt(e);
    case OXOperator::Scalar:
      return createScalarArray(e);
    case OXOperator::Ceil:
      return createPlain(e, NodeType::DoubleCeil);
    case OXOperator::Floor:
      return createPlain(e, NodeType::DoubleFloor);
    case OXOperator::Round:
      return createPlain(e, NodeType::DoubleRound);
    case OXOperator::Sqrt:
      return createPlain(e, NodeType::DoubleSqrt);
    case OXOperator::Log:
      return createPlain(e, NodeType::DoubleLog);
    case OXOperator::Exp:
      return createPlain(e, NodeType::DoubleExp);
    case OXOperator::Pow:
      return createPlain(e, NodeType::DoublePow);
    case OXOperator::Cos:
      return createPlain(e, NodeType::DoubleCos);
    case OXOperator::Sin:
      return createPlain(e, NodeType::DoubleSin);
    case OXOperator::Tan:
      return createPlain(e, NodeType::DoubleTan);
  }
  const auto number = static_cast<std::int32_t>(ModelRecord::op(e));
  fail(kInternal, OMBRIX_HERE("NodeCreator::preprocessStack"),
       "Node type " + std::to_string(number) + " not supported");
}

CreationFrame& NodeCreator::openFrame(OXExpression& e, const CreationFlags& flags) {
  states[Preprocessor::at(e)] = kOpened;
  if (nbOpenFrames == frames.size()) frames.emplace_back();
  CreationFrame& frame = frames[nbOpenFrames++];
  frame.reset(&e, flags);
  return frame;
}

bool NodeCreator::open(OXExpression& e, const CreationFlags& flags) {
  if (!isNew(e)) return true;
  CreationFrame& frame = openFrame(e, flags);
  collector.collect(frame);
  return pushOperands(frame);
}

/// Puts the operands of a frame that have no node yet on the stack; answers whether there were
/// none.
bool NodeCreator::pushOperands(const CreationFrame& frame) {
  const std::size_t before = stack.size();
  for (OXExpression* operand : frame.operands) {
    if (states[Preprocessor::at(*operand)] != kDone) stack.push_back(operand);
  }
  return stack.size() == before;
}

void NodeCreator::finish(OXExpression& e, std::uint32_t node) {
  const std::size_t index = Preprocessor::at(e);
  if (states[index] == kOpened) --nbOpenFrames;
  states[index] = kDone;
  preprocessor.nodeIds[index] = node;
  stack.pop_back();
}

const std::vector<std::uint32_t>& NodeCreator::gatherOperandNodes(const CreationFrame& frame) {
  operandNodes.clear();
  for (const OXExpression* operand : frame.operands) operandNodes.push_back(nodeOf(*operand));
  return operandNodes;
}

/// Doubles are not shared: no look-up of a double is worth its cost.
std::uint32_t NodeCreator::addConstant(ValueType type, OXValue value) {
  if (type == kDoubleType) return fixedFields.addNode(NodeType::DoubleConstant, {}, {value});
  const auto [entry, isAbsent] = intConstants.try_emplace(value.intValue, fixedFields.nbNodes);
  if (isAbsent) fixedFields.addNode(NodeType::Constant, {}, {value});
  return entry->second;
}

void NodeCreator::createFixed(OXExpression& e) {
  finish(e, addConstant(ModelRecord::valueType(e), fixedValue(preprocessor, e)));
}

void NodeCreator::createPlain(OXExpression& e, NodeType type) {
  if (!open(e, kPlain)) return;
  finish(e, fixedFields.addNode(type, gatherOperandNodes(topFrame()), {}));
}

/// The double type applies when the expression or any of its operands is a double.
void NodeCreator::createPlain(OXExpression& e, NodeType type, NodeType doubleType) {
  if (!open(e, kPlain)) return;
  bool isDouble = ModelRecord::valueType(e) == kDoubleType;
  for (const OXExpression* operand : topFrame().operands) {
    isDouble = isDouble || ModelRecord::valueType(*operand) == kDoubleType;
  }
  finish(e, fixedFields.addNode(isDouble ? doubleType : type, gatherOperandNodes(topFrame()), {}));
}

}  // namespace ombrix
