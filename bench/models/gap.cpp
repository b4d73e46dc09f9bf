// Generalised assignment: every job on one agent, within the capacities, at the smallest cost.
//
// File: "agents jobs", the costs agent by agent, the requirements agent by agent, the capacities.

#include "instancefile.h"
#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

void buildGap(OXModel& model, const std::string& fileName) {
  examples::InstanceFile file(fileName);
  const auto nbAgents = static_cast<std::size_t>(file.nextInt(1, 100000, "the number of agents"));
  const auto nbJobs = static_cast<std::size_t>(file.nextInt(1, 1000000, "the number of jobs"));
  const examples::Table runsOn = createNamedTable(model, nbJobs, nbAgents);
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (std::size_t i = 0; i < nbAgents; ++i) {
    for (std::size_t j = 0; j < nbJobs; ++j) {
      addTerm(model, cost, file.nextInt("a cost"), runsOn[j][i]);
    }
  }
  std::vector<OXExpression*> loads;
  for (std::size_t i = 0; i < nbAgents; ++i) {
    loads.push_back(model.createExpression(OXOperator::Sum));
    for (std::size_t j = 0; j < nbJobs; ++j) {
      addTerm(model, loads[i], file.nextInt("a requirement"), runsOn[j][i]);
    }
  }
  for (OXExpression* load : loads) {
    examples::requireAtMost(model, load, file.nextInt("a capacity"));
  }
  model.addObjective(cost, OXObjectiveDirection::Minimize);
}

}  // namespace bench
