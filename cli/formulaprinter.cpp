#include "cli/formulaprinter.h"

#include <algorithm>

#include "builder/operatortools.h"
#include "cli/numbertext.h"

namespace ombrix::cli {
namespace {

constexpr int kOwnLine = -1;
constexpr int kMaxHeight = 3;

std::size_t slotOf(const OXExpression& expr) {
  return static_cast<std::size_t>(expr.getIndex());
}

bool isLeaf(const OXExpression& expr) {
  return expr.isConstant() || expr.isDecision();
}

std::string constantText(const OXExpression& expr) {
  return expr.isDouble() ? numberText(expr.getDoubleValue()) : std::to_string(expr.getIntValue());
}

/// An operator between its operands, and how closely it binds them.
struct Infix {
  const char* sign;
  int binding;
};

constexpr int kLoose = 0;
constexpr int kComparing = 3;
constexpr int kTight = 6;

/// Without a sign for an operator that is written as a function.
Infix infixOf(OXOperator op) {
  switch (op) {
    case OXOperator::Or:
      return {" or ", 1};
    case OXOperator::Xor:
      return {" xor ", 1};
    case OXOperator::And:
      return {" and ", 2};
    case OXOperator::Eq:
      return {" == ", kComparing};
    case OXOperator::Neq:
      return {" != ", kComparing};
    case OXOperator::Geq:
      return {" >= ", kComparing};
    case OXOperator::Leq:
      return {" <= ", kComparing};
    case OXOperator::Gt:
      return {" > ", kComparing};
    case OXOperator::Lt:
      return {" < ", kComparing};
    case OXOperator::Sum:
      return {" + ", 4};
    case OXOperator::Prod:
      return {" * ", 5};
    case OXOperator::Div:
      return {" / ", 5};
    case OXOperator::Mod:
      return {" % ", 5};
    default:
      return {nullptr, kTight};
  }
}

bool isInfix(const OXExpression& expr) {
  return infixOf(expr.getOperator()).sign != nullptr && expr.getNbOperands() > 1;
}

int bindingOf(const OXExpression& expr) {
  if (expr.getOperator() == OXOperator::Not) return kTight;
  return isInfix(expr) ? infixOf(expr.getOperator()).binding : kTight + 1;
}

}  // namespace

std::string nameOfExpression(const OXExpression& expr) {
  if (!expr.isNamed()) return "#" + std::to_string(expr.getIndex());
  std::string name = expr.getName();
  std::replace_if(
      name.begin(), name.end(),
      [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }, '?');
  return name;
}

FormulaPrinter::FormulaPrinter(const OXModel& shown, long long nbMaxOperands)
    : model(shown), maxOperands(nbMaxOperands) {
  countUses();
  findInlined();
}

void FormulaPrinter::countUses() {
  nbUses.assign(static_cast<std::size_t>(model.getNbExpressions()), 0);
  users.assign(nbUses.size(), 0);
  for (int i = 0; i < model.getNbExpressions(); ++i) {
    const OXExpression& expr = *model.getExpression(i);
    for (int k = 0; k < expr.getNbOperands(); ++k) {
      const std::size_t operand = slotOf(*expr.getOperand(k));
      nbUses[operand] = std::min(nbUses[operand] + 1, 2);
      users[operand] = i;
    }
  }
}

/// In index order: an expression created behind its user keeps a line of its own, so that what
/// stands inside a formula has been looked at before it.
void FormulaPrinter::findInlined() {
  heights.assign(nbUses.size(), kOwnLine);
  for (int i = 0; i < model.getNbExpressions(); ++i) {
    const OXExpression& expr = *model.getExpression(i);
    const bool isRoot = expr.isConstraint() || expr.isObjective();
    if (isLeaf(expr) || isRoot || expr.isNamed()) continue;
    if (nbUses[slotOf(expr)] != 1 || users[slotOf(expr)] < i) continue;
    int height = 0;
    for (int k = 0; k < expr.getNbOperands(); ++k) {
      height = std::max(height, heights[slotOf(*expr.getOperand(k))] + 1);
    }
    if (height <= kMaxHeight) heights[slotOf(expr)] = height;
  }
}

bool FormulaPrinter::isInlined(const OXExpression& expr) const {
  return heights[slotOf(expr)] != kOwnLine;
}

bool FormulaPrinter::hasOwnFormula(const OXExpression& expr) const {
  return !isLeaf(expr) && !isInlined(expr);
}

std::string FormulaPrinter::nameOf(const OXExpression& expr) const {
  return expr.isConstant() && !expr.isNamed() ? constantText(expr) : nameOfExpression(expr);
}

std::string FormulaPrinter::formulaOf(const OXExpression& expr) const {
  const OXOperator op = expr.getOperator();
  if (expr.isConstant()) return constantText(expr);
  if (op == OXOperator::Array) return "[" + joined(expr, ", ", kLoose) + "]";
  if (op == OXOperator::At)
    return operandOf(expr, 0, kTight) + "[" + operandOf(expr, 1, kLoose) + "]";
  if (op == OXOperator::Not) return "not " + operandOf(expr, 0, kTight);
  if (isInfix(expr)) return joined(expr, infixOf(op).sign, bindingOf(expr));
  return OperatorTools::getName(op) + "(" + joined(expr, ", ", kLoose) + ")";
}

std::string FormulaPrinter::operandOf(const OXExpression& expr, int position, int binding) const {
  const OXExpression& operand = *expr.getOperand(position);
  if (!isInlined(operand)) return nameOf(operand);
  const std::string formula = formulaOf(operand);
  return bindingOf(operand) > binding ? formula : "(" + formula + ")";
}

std::string FormulaPrinter::joined(const OXExpression& expr, const std::string& separator,
                                   int binding) const {
  std::string text;
  const int nbOperands = expr.getNbOperands();
  const int nbShown = static_cast<int>(std::min<long long>(nbOperands, maxOperands));
  for (int i = 0; i < nbShown; ++i) {
    if (i > 0) text += separator;
    text += operandOf(expr, i, binding);
  }
  if (nbShown < nbOperands) {
    text +=
        (nbShown > 0 ? separator : "") + "... " + std::to_string(nbOperands - nbShown) + " more";
  }
  return text;
}

}  // namespace ombrix::cli
