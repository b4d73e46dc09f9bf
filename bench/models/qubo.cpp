// Unconstrained quadratic minimisation over 0-1 variables.
//
// File: "n m", then "i j q" for each entry, numbers from 1 and i <= j; an entry beside the diagonal
// counts twice.

#include "instancefile.h"
#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

void buildQubo(OXModel& model, const std::string& fileName) {
  examples::InstanceFile file(fileName);
  const long long n = file.nextInt(1, 10000000, "the number of variables");
  const long long nbEntries = file.nextInt(0, 1000000000, "the number of entries");
  std::vector<OXExpression*> x;
  for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) {
    x.push_back(createDecision(model, {i}));
  }
  OXExpression* value = model.createExpression(OXOperator::Sum);
  for (long long e = 0; e < nbEntries; ++e) {
    const std::size_t i = file.nextIndex(n, "a variable");
    const std::size_t j = file.nextIndex(n, "a variable");
    const long long entry = file.nextInt("an entry");
    if (i == j) {
      addTerm(model, value, entry, x[i]);
    } else {
      addTerm(model, value, 2 * entry, model.createExpression(OXOperator::And, x[i], x[j]));
    }
  }
  if (value->getNbOperands() == 0) value->addOperand(0);
  model.addObjective(value, OXObjectiveDirection::Minimize);
}

}  // namespace bench
