// Maximum clique: the largest set of vertices that are adjacent to one another.
//
// File: "p edge n m", then "e u v" for each edge, numbers from 1; other lines are passed over.
//
// Two vertices without an edge exclude each other.

#include <stdexcept>

#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

namespace {

/// The pairs of vertices without an edge.
Conflicts readNonEdges(const std::string& fileName) {
  Conflicts excludes;
  for (const auto& words : readLines(fileName)) {
    if (words.size() == 4 && words[0] == "p") {
      const auto n = static_cast<std::size_t>(toInteger(fileName, words[2]));
      excludes.assign(n, std::vector<char>(n, 1));
      for (std::size_t v = 0; v < n; ++v) excludes[v][v] = 0;
    } else if (words.size() == 3 && words[0] == "e") {
      const auto u = static_cast<std::size_t>(toInteger(fileName, words[1]) - 1);
      const auto v = static_cast<std::size_t>(toInteger(fileName, words[2]) - 1);
      if (u >= excludes.size() || v >= excludes.size()) {
        throw std::runtime_error(fileName + ": found an edge of a vertex that does not exist");
      }
      excludes[u][v] = excludes[v][u] = 0;
    }
  }
  if (excludes.empty()) throw std::runtime_error(fileName + ": found no line 'p edge'");
  return excludes;
}

}  // namespace

void buildClique(OXModel& model, const std::string& fileName) {
  const Conflicts excludes = readNonEdges(fileName);
  std::vector<OXExpression*> isChosen;
  OXExpression* nbChosen = model.createExpression(OXOperator::Sum);
  for (std::size_t v = 0; v < excludes.size(); ++v) {
    isChosen.push_back(createDecision(model, {v}));
    nbChosen->addOperand(isChosen[v]);
  }
  forbidConflicts(model, excludes, isChosen);
  model.addObjective(nbChosen, OXObjectiveDirection::Maximize);
}

}  // namespace bench
