#include "cli/opbmodelbuilder.h"

#include <algorithm>
#include <cstddef>

namespace ombrix::cli {

OpbModelBuilder::OpbModelBuilder(const OpbModel& opbFile, OXModel& openModel)
    : file(opbFile), model(openModel) {
  createDecisions();
  for (const OpbConstraint& constraint : file.constraints) createConstraint(constraint);
  createObjective();
}

void OpbModelBuilder::createDecisions() {
  decisions.reserve(file.names.size());
  for (const std::string& name : file.names) {
    decisions.push_back(model.createExpression(OXOperator::Bool));
    decisions.back()->setName(name);
  }
  negations.assign(decisions.size(), nullptr);
}

void OpbModelBuilder::createConstraint(const OpbConstraint& constraint) {
  linearize(constraint.sum);
  std::int64_t bound = constraint.bound - scratch.constant;
  scratch.constant = 0;
  OXOperator relation = constraint.relation == OpbRelation::AtLeast ? OXOperator::Geq
                        : constraint.relation == OpbRelation::Equal ? OXOperator::Eq
                                                                    : OXOperator::Leq;
  const auto nbNegative = static_cast<std::size_t>(
      std::count_if(scratch.terms.begin(), scratch.terms.end(),
                    [](const LinearSum::Term& term) { return term.coefficient < 0; }));
  if (nbNegative > scratch.terms.size() - nbNegative) {
    for (LinearSum::Term& term : scratch.terms) term.coefficient = -term.coefficient;
    bound = -bound;
    relation = relation == OXOperator::Geq   ? OXOperator::Leq
               : relation == OXOperator::Leq ? OXOperator::Geq
                                             : relation;
  }
  OXExpression* sum = expressionOf(scratch);
  model.addConstraint(
      model.createExpression(relation, sum, model.createConstant(static_cast<long long>(bound))));
}

void OpbModelBuilder::createObjective() {
  linearize(file.objective);
  objectiveLimit = scratch.constant;
  for (const LinearSum::Term& term : scratch.terms) {
    const bool helps = file.isMaximized ? term.coefficient > 0 : term.coefficient < 0;
    if (helps) objectiveLimit += term.coefficient;
  }
  objective = expressionOf(scratch);
  model.addObjective(objective, file.isMaximized ? OXObjectiveDirection::Maximize
                                                 : OXObjectiveDirection::Minimize);
}

void OpbModelBuilder::linearize(const OpbSum& sum) {
  scratch.terms.clear();
  scratch.constant = 0;
  for (std::size_t i = sum.firstTerm; i < sum.firstTerm + sum.nbTerms; ++i) addTerm(file.terms[i]);
}

void OpbModelBuilder::addTerm(const OpbTerm& term) {
  if (term.coefficient == 0 || !collectLiterals(term)) return;
  if (scratchLiterals.size() > 1) {
    scratch.terms.push_back({term.coefficient, productOf(scratchLiterals)});
    return;
  }
  const OpbLiteral literal = scratchLiterals.front();
  OXExpression* decision = decisions[literal.variable()];
  if (literal.isNegated()) {
    scratch.constant += term.coefficient;
    scratch.terms.push_back({-term.coefficient, decision});
  } else {
    scratch.terms.push_back({term.coefficient, decision});
  }
}

bool OpbModelBuilder::collectLiterals(const OpbTerm& term) {
  const auto first = file.literals.begin() + static_cast<std::ptrdiff_t>(term.firstLiteral);
  scratchLiterals.assign(first, first + term.nbLiterals);
  if (scratchLiterals.size() == 1) return true;
  std::sort(scratchLiterals.begin(), scratchLiterals.end());
  scratchLiterals.erase(std::unique(scratchLiterals.begin(), scratchLiterals.end()),
                        scratchLiterals.end());
  const auto opposite = [](OpbLiteral a, OpbLiteral b) { return a.variable() == b.variable(); };
  return std::adjacent_find(scratchLiterals.begin(), scratchLiterals.end(), opposite) ==
         scratchLiterals.end();
}

OXExpression* OpbModelBuilder::productOf(const std::vector<OpbLiteral>& literals) {
  const auto [entry, isNew] = products.try_emplace(literals, nullptr);
  if (isNew) {
    std::vector<OXExpression*> factors;
    factors.reserve(literals.size());
    for (const OpbLiteral literal : literals) {
      factors.push_back(literal.isNegated() ? negationOf(literal.variable())
                                            : decisions[literal.variable()]);
    }
    entry->second = model.createExpression(OXOperator::And);
    for (OXExpression* factor : factors) entry->second->addOperand(factor);
  }
  return entry->second;
}

OXExpression* OpbModelBuilder::negationOf(std::uint32_t variable) {
  OXExpression*& negation = negations[variable];
  if (negation == nullptr) {
    negation = model.createExpression(OXOperator::Not, decisions[variable]);
  }
  return negation;
}

OXExpression* OpbModelBuilder::expressionOf(const LinearSum& sum) {
  OXExpression* constant = nullptr;
  if (sum.constant != 0 || sum.terms.empty()) {
    constant = model.createConstant(static_cast<long long>(sum.constant));
  }
  if (sum.terms.empty()) return constant;
  if (sum.terms.size() == 1 && constant == nullptr) return expressionOf(sum.terms.front());
  std::vector<OXExpression*> operands;
  operands.reserve(sum.terms.size() + 1);
  for (const LinearSum::Term& term : sum.terms) operands.push_back(expressionOf(term));
  if (constant != nullptr) operands.push_back(constant);
  OXExpression* result = model.createExpression(OXOperator::Sum);
  for (OXExpression* operand : operands) result->addOperand(operand);
  return result;
}

OXExpression* OpbModelBuilder::expressionOf(const LinearSum::Term& term) {
  if (term.coefficient == 1) return term.factor;
  return model.createExpression(OXOperator::Prod,
                                model.createConstant(static_cast<long long>(term.coefficient)),
                                term.factor);
}

}  // namespace ombrix::cli
