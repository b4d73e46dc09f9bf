#ifndef OMBRIX_CLI_OPBMODELBUILDER_H
#define OMBRIX_CLI_OPBMODELBUILDER_H

#include <ombrix/ombrix.h>

#include <cstdint>
#include <map>
#include <vector>

#include "cli/opbmodel.h"

namespace ombrix::cli {

/// Writes a pseudo-Boolean file into an open model, through the public objects only.
///
/// Each variable becomes a decision of the same name. A negated literal in a linear term is no
/// expression of its own: c * ~x is c - c * x, and the constants of a constraint go into its bound.
/// A constraint with mostly negative coefficients is turned round, so that rows of "at most" keep
/// the coefficient one where they can. A product of literals is an "and", built once however often
/// it occurs. The objective keeps its constant, so that its value is the one that the file means;
/// a file without objective minimises the constant 0.
class OpbModelBuilder {
public:
  /// Builds at once. The file is read during the construction only.
  OpbModelBuilder(const OpbModel& file, OXModel& model);

  /// The decisions, in the order of the names of the file.
  const std::vector<OXExpression*>& getDecisions() const { return decisions; }
  OXExpression* getObjective() const { return objective; }
  /// A value that no assignment can improve on, from the signs of the coefficients alone.
  std::int64_t getObjectiveLimit() const { return objectiveLimit; }

private:
  /// Coefficients times boolean expressions, plus a constant.
  struct LinearSum {
    struct Term {
      std::int64_t coefficient;
      OXExpression* factor;
    };
    std::vector<Term> terms;
    std::int64_t constant = 0;
  };

  void createDecisions();
  void createConstraint(const OpbConstraint& constraint);
  void createObjective();
  /// The sum of the file in scratch, without zero coefficients and contradictory products.
  void linearize(const OpbSum& sum);
  void addTerm(const OpbTerm& term);
  /// The literals of the term in scratch, sorted, each once; false if the product is always 0.
  bool collectLiterals(const OpbTerm& term);
  OXExpression* productOf(const std::vector<OpbLiteral>& literals);
  OXExpression* negationOf(std::uint32_t variable);
  OXExpression* expressionOf(const LinearSum& sum);
  OXExpression* expressionOf(const LinearSum::Term& term);

  const OpbModel& file;
  OXModel& model;
  std::vector<OXExpression*> decisions;
  std::vector<OXExpression*> negations;
  std::map<std::vector<OpbLiteral>, OXExpression*> products;
  OXExpression* objective = nullptr;
  std::int64_t objectiveLimit = 0;
  LinearSum scratch;
  std::vector<OpbLiteral> scratchLiterals;
};

}  // namespace ombrix::cli

#endif
