#ifndef OMBRIX_CLI_FORMULAPRINTER_H
#define OMBRIX_CLI_FORMULAPRINTER_H

#include <ombrix/ombrix.h>

#include <cstddef>
#include <string>
#include <vector>

namespace ombrix::cli {

/// The expressions of a closed model as formulas. An expression that has no name and is used once
/// stands inside the formula of its user, to a small depth; every other one has a formula of its
/// own and is called by its name, or "#" and its index.
class FormulaPrinter {
public:
  /// At most nbMaxOperands operands of an expression are printed.
  FormulaPrinter(const OXModel& model, long long nbMaxOperands);

  /// Whether the expression has a line of its own: it is no constant, no decision and stands inside
  /// no other formula.
  bool hasOwnFormula(const OXExpression& expr) const;
  /// How other formulas call the expression.
  std::string nameOf(const OXExpression& expr) const;
  /// What the expression is made of, whatever it is called.
  std::string formulaOf(const OXExpression& expr) const;

private:
  void countUses();
  void findInlined();
  bool isInlined(const OXExpression& expr) const;
  /// An operand in a place where only formulas that bind closer stand without brackets.
  std::string operandOf(const OXExpression& expr, int position, int binding) const;
  std::string joined(const OXExpression& expr, const std::string& separator, int binding) const;

  const OXModel& model;
  long long maxOperands;
  std::vector<int> nbUses;  ///< per expression, 2 for more
  std::vector<int> users;   ///< per expression, the index of one
  /// Per expression, the levels of formulas inside its formula, or kOwnLine.
  std::vector<int> heights;
};

/// The name of an expression, without characters that a terminal would act upon, or "#" and its
/// index if it has none.
std::string nameOfExpression(const OXExpression& expr);

}  // namespace ombrix::cli

#endif
