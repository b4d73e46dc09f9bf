#include "api/oxexpression.h"

#include <algorithm>
#include <limits>
#include <sstream>

#include "api/checks.h"
#include "builder/modelrecord.h"
#include "builder/operatortools.h"
#include "builder/solverrecord.h"
#include "common/failure.h"
#include "common/messages.h"

namespace ombrix {

static_assert(sizeof(OXExpression) == 32, "a model may hold millions of records");

namespace {

constexpr std::int32_t kSentinel = -1;
constexpr std::int32_t kFirstCapacity = 4;

/// Twice the room and two more slots, as far as 32 bits can count them.
std::int32_t grownCapacity(std::int32_t position) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  return position < largest / 2 ? 2 * position + 2 : largest;
}

}  // namespace

OXExpression::OXExpression(OXModel* owner, int position, OXOperator operation)
    : data{0}, model(owner), index(position), op(static_cast<std::uint8_t>(operation)) {}

void OXExpression::appendOperand(std::int32_t operandIndex) {
  const std::int32_t position = nbOperands;
  if (position < 2) {
    data.inlineOperands[position] = operandIndex;
  } else {
    if (position == 2) {
      growOperands(data.inlineOperands, kFirstCapacity);
    } else if (data.operandArray[position] == kSentinel) {
      std::int32_t* outgrown = data.operandArray;
      growOperands(outgrown, grownCapacity(position));
      delete[] outgrown;
    }
    data.operandArray[position] = operandIndex;
  }
  ++nbOperands;
  ++model->nbOperands;
}

void OXExpression::growOperands(const std::int32_t* stored, std::int32_t capacity) {
  auto* larger = new std::int32_t[static_cast<std::size_t>(capacity)];
  std::fill(std::copy_n(stored, nbOperands, larger), larger + capacity - 1, 0);
  larger[capacity - 1] = kSentinel;
  data.operandArray = larger;
}

Ombrix* OXExpression::getOmbrix() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::getOmbrix"));
  return model->ombrix;
}

OXModel* OXExpression::getModel() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::getModel"));
  return model;
}

OXOperator OXExpression::getOperator() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::getOperator"));
  return static_cast<OXOperator>(op);
}

int OXExpression::getIndex() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::getIndex"));
  return index;
}

bool OXExpression::isConstant() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::isConstant"));
  return ModelRecord::op(*this) == OXOperator::Const;
}

bool OXExpression::isDecision() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::isDecision"));
  return ModelRecord::op(*this) == OXOperator::Bool;
}

bool OXExpression::isConstraint() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::isConstraint"));
  return constraint;
}

bool OXExpression::isObjective() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::isObjective"));
  return objective;
}

bool OXExpression::isDouble() const {
  checks::pausedOrStopped(*model->ombrix, OMBRIX_HERE("OXExpression::isDouble"));
  return valueType == kDoubleType;
}

bool OXExpression::isInt() const {
  checks::pausedOrStopped(*model->ombrix, OMBRIX_HERE("OXExpression::isInt"));
  return isIntegral(valueType);
}

bool OXExpression::isBool() const {
  checks::pausedOrStopped(*model->ombrix, OMBRIX_HERE("OXExpression::isBool"));
  return valueType == kBoolType;
}

bool OXExpression::isArray() const {
  checks::pausedOrStopped(*model->ombrix, OMBRIX_HERE("OXExpression::isArray"));
  return valueType == kArrayType;
}

void OXExpression::addOperand(OXExpression* expr) {
  addChecked(expr, OMBRIX_HERE("OXExpression::addOperand"));
}

void OXExpression::addOperand(long long constant) {
  const Where where = OMBRIX_HERE("OXExpression::addOperand");
  addChecked(model->findOrCreateConstant(static_cast<std::int64_t>(constant), where), where);
}

void OXExpression::addOperand(double constant) {
  const Where where = OMBRIX_HERE("OXExpression::addOperand");
  addChecked(model->findOrCreateConstant(constant, where), where);
}

void OXExpression::addChecked(const OXExpression* expr, const Where& where) {
  checks::notRunning(*model->ombrix, where);
  checks::notNull(expr, "expr", where);
  checks::modelingOnly(*model->ombrix, where);
  model->checkRoomForOperand(0, where);
  checkNextOperand(*expr, where);
  appendOperand(expr->index);
}

void OXExpression::checkNextOperand(const OXExpression& expr, const Where& where) const {
  if (expr.model != model) fail(kMisuse, where, messages::foreignArgument(expr.text()));
  const OXOperator operation = ModelRecord::op(*this);
  const int allowed = OperatorTools::getNbMaxOperands(operation);
  if (nbOperands >= allowed) {
    fail(
        kInvalidModel, where,
        messages::tooManyOperands(nbOperands + 1LL, allowed,
                                  messages::expressionWithType(OperatorTools::getName(operation))));
  }
  if (!OperatorTools::isOperandAllowed(operation, nbOperands, ModelRecord::op(expr))) {
    fail(kInvalidModel, where,
         messages::wrongOperand(nbOperands,
                                messages::expressionWithType(OperatorTools::getName(operation)),
                                OperatorTools::valueTypesToString(
                                    OperatorTools::getOperandValueTypes(operation, nbOperands))));
  }
}

void OXExpression::setOperand(int position, OXExpression* expr) {
  setChecked(position, expr, OMBRIX_HERE("OXExpression::setOperand"));
}

void OXExpression::setOperand(int position, long long constant) {
  const Where where = OMBRIX_HERE("OXExpression::setOperand");
  setChecked(position, model->findOrCreateConstant(static_cast<std::int64_t>(constant), where),
             where);
}

void OXExpression::setOperand(int position, double constant) {
  const Where where = OMBRIX_HERE("OXExpression::setOperand");
  setChecked(position, model->findOrCreateConstant(constant, where), where);
}

void OXExpression::setChecked(int position, const OXExpression* expr, const Where& where) {
  checks::notRunning(*model->ombrix, where);
  checks::notNull(expr, "expr", where);
  checks::modelingOnly(*model->ombrix, where);
  checkPosition(position, where);
  // As for an operand behind the last one: only operators with any number of operands let one be
  // replaced.
  checkNextOperand(*expr, where);
  std::int32_t* stored = nbOperands > 2 ? data.operandArray : data.inlineOperands;
  stored[position] = expr->index;
}

void OXExpression::checkPosition(int position, const Where& where) const {
  if (position < 0 || position >= nbOperands) {
    fail(kMisuse, where, messages::badIndex("Operands", position, nbOperands - 1));
  }
}

OXExpression* OXExpression::getOperand(int position) const {
  const Where where = OMBRIX_HERE("OXExpression::getOperand");
  checks::notRunning(*model->ombrix, where);
  checkPosition(position, where);
  return ModelRecord::operand(*this, position);
}

int OXExpression::getNbOperands() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::getNbOperands"));
  return nbOperands;
}

void OXExpression::setValue(long long value) {
  writeInt(value, OMBRIX_HERE("OXExpression::setValue"));
}

void OXExpression::setValue(double) {
  writeDouble(OMBRIX_HERE("OXExpression::setValue"));
}

void OXExpression::setIntValue(long long value) {
  writeInt(value, OMBRIX_HERE("OXExpression::setIntValue"));
}

void OXExpression::setDoubleValue(double) {
  writeDouble(OMBRIX_HERE("OXExpression::setDoubleValue"));
}

void OXExpression::writeInt(long long value, const Where& where) {
  checks::pausedOrStopped(*model->ombrix, where);
  SolverRecord::solution(*model->ombrix).writeInt(this, value, where);
}

void OXExpression::writeDouble(const Where& where) {
  checks::pausedOrStopped(*model->ombrix, where);
  SolverRecord::solution(*model->ombrix).writeDouble(this, where);
}

long long OXExpression::getValue() const {
  return readInt(OMBRIX_HERE("OXExpression::getValue"));
}

long long OXExpression::getIntValue() const {
  return readInt(OMBRIX_HERE("OXExpression::getIntValue"));
}

double OXExpression::getDoubleValue() const {
  return readDouble(OMBRIX_HERE("OXExpression::getDoubleValue"));
}

long long OXExpression::readInt(const Where& where) const {
  if (hasOwnValue()) {
    if (!isIntegral(valueType)) fail(kInvalidModel, where, messages::mustBeIntegral());
    return data.intValue;
  }
  checks::pausedOrStopped(*model->ombrix, where);
  return SolverRecord::solution(*model->ombrix).readInt(this, where);
}

double OXExpression::readDouble(const Where& where) const {
  if (hasOwnValue()) {
    if (valueType != kDoubleType) fail(kInvalidModel, where, messages::mustBeDouble());
    return data.doubleValue;
  }
  checks::pausedOrStopped(*model->ombrix, where);
  return SolverRecord::solution(*model->ombrix).readDouble(this, where);
}

bool OXExpression::hasOwnValue() const {
  return ModelRecord::op(*this) == OXOperator::Const &&
         SolverRecord::state(*model->ombrix) != OXState::Running;
}

void OXExpression::setName(const std::string& name) {
  const Where where = OMBRIX_HERE("OXExpression::setName");
  checks::modelingOnly(*model->ombrix, where);
  if (name.empty()) fail(kMisuse, where, messages::emptyString("name"));
  if (model->namesToExpressions.contains(name)) {
    fail(kMisuse, where, "An operator with name \"" + name + "\" already exists.");
  }
  const auto former = model->expressionNames.find(this);
  if (former != model->expressionNames.end()) model->namesToExpressions.erase(former->second);
  model->namesToExpressions[name] = this;
  model->expressionNames[this] = name;
}

bool OXExpression::isNamed() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::isNamed"));
  return model->expressionNames.contains(this);
}

std::string OXExpression::getName() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::getName"));
  return ownName();
}

std::string OXExpression::toString() const {
  checks::notRunning(*model->ombrix, OMBRIX_HERE("OXExpression::toString"));
  return text();
}

std::string OXExpression::ownName() const {
  const auto found = model->expressionNames.find(this);
  return found == model->expressionNames.end() ? std::string() : found->second;
}

std::string OXExpression::text() const {
  std::ostringstream out;
  out << "Expression " << index << " (type = " << OperatorTools::getName(ModelRecord::op(*this));
  const std::string name = ownName();
  if (!name.empty()) out << ", name = " << name;
  out << ")";
  return out.str();
}

std::string OXExpression::getInfo() const {
  const Where where = OMBRIX_HERE("OXExpression::getInfo");
  checks::notRunning(*model->ombrix, where);
  const OXOperator operation = ModelRecord::op(*this);
  std::ostringstream out;
  out << text() << "\n";
  out << "  decision = " << (operation == OXOperator::Bool) << ", constraint = " << constraint
      << ", objective = " << objective << "\n";
  const bool searched = SolverRecord::started(*model->ombrix) &&
                        SolverRecord::state(*model->ombrix) != OXState::Modeling;
  if (valueType != kArrayType && (operation == OXOperator::Const || searched)) {
    out << "  value = ";
    if (valueType == kDoubleType) {
      out << readDouble(where);
    } else {
      out << readInt(where);
    }
    out << "\n";
  }
  return out.str();
}

}  // namespace ombrix
