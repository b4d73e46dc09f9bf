// Maximum cut: split the vertices into two sides so that the edges between them weigh most.
//
// File: "n m", then "u v weight" for each edge, numbers from 1.
//
// Each edge is one "xor" of its ends: a flip reaches the edges of its vertex and the total, nothing
// else.

#include "instancefile.h"
#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

void buildMaxcut(OXModel& model, const std::string& fileName) {
  examples::InstanceFile file(fileName);
  const long long n = file.nextInt(1, 10000000, "the number of vertices");
  const long long nbEdges = file.nextInt(0, 1000000000, "the number of edges");
  std::vector<OXExpression*> side;
  for (std::size_t v = 0; v < static_cast<std::size_t>(n); ++v) {
    side.push_back(createDecision(model, {v}));
  }
  OXExpression* cut = model.createExpression(OXOperator::Sum);
  for (long long e = 0; e < nbEdges; ++e) {
    const std::size_t u = file.nextIndex(n, "a vertex");
    const std::size_t v = file.nextIndex(n, "a vertex");
    const long long weight = file.nextInt("a weight");
    if (u == v) continue;
    addTerm(model, cut, weight, model.createExpression(OXOperator::Xor, side[u], side[v]));
  }
  if (cut->getNbOperands() == 0) cut->addOperand(0);
  model.addObjective(cut, OXObjectiveDirection::Maximize);
}

}  // namespace bench
