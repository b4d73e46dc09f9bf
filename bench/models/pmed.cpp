// The p-median: choose p vertices of a graph so that the distances of all vertices to the nearest
// chosen one have the smallest sum.
//
// File: "vertices edges p", then "i j length" for each edge, numbers from 1; the last length of a
// repeated edge counts. Distances are those of shortest paths.
//
// A vertex saves, against a distance that some chosen vertex never exceeds, what the nearest chosen
// vertex lies below it: a maximum of weighted decisions. As p vertices are chosen, one of them is
// among the nearest n - p + 1, and only these can matter.

#include <algorithm>
#include <limits>

#include "instancefile.h"
#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

namespace {

constexpr long long kFar = std::numeric_limits<long long>::max() / 4;

using Matrix = std::vector<std::vector<long long>>;

/// The lengths of the shortest paths between all vertices.
void closeUnderPaths(Matrix& length) {
  const std::size_t n = length.size();
  for (std::size_t k = 0; k < n; ++k) {
    for (std::size_t i = 0; i < n; ++i) {
      if (length[i][k] == kFar) continue;
      for (std::size_t j = 0; j < n; ++j) {
        length[i][j] = std::min(length[i][j], length[i][k] + length[k][j]);
      }
    }
  }
}

}  // namespace

void buildPmed(OXModel& model, const std::string& fileName) {
  examples::InstanceFile file(fileName);
  const long long n = file.nextInt(1, 10000, "the number of vertices");
  const long long nbEdges = file.nextInt(0, 100000000, "the number of edges");
  const long long p = file.nextInt(1, n, "the number of medians");
  const auto size = static_cast<std::size_t>(n);
  Matrix distance(size, std::vector<long long>(size, kFar));
  for (std::size_t v = 0; v < size; ++v) distance[v][v] = 0;
  for (long long e = 0; e < nbEdges; ++e) {
    const std::size_t i = file.nextIndex(n, "a vertex");
    const std::size_t j = file.nextIndex(n, "a vertex");
    const long long length = file.nextInt(0, kFar - 1, "a length");
    if (i != j) distance[i][j] = distance[j][i] = length;
  }
  closeUnderPaths(distance);

  std::vector<OXExpression*> isMedian;
  OXExpression* nbMedians = model.createExpression(OXOperator::Sum);
  for (std::size_t v = 0; v < size; ++v) {
    isMedian.push_back(createDecision(model, {v}));
    nbMedians->addOperand(isMedian[v]);
  }
  examples::requireEqual(model, nbMedians, p);
  OXExpression* saved = model.createExpression(OXOperator::Sum);
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  long long largest = 0;
  for (const std::vector<long long>& row : distance) {
    std::vector<long long> sorted = row;
    std::sort(sorted.begin(), sorted.end());
    const long long limit = sorted[static_cast<std::size_t>(n - p)];
    if (limit == kFar) throw std::runtime_error(fileName + ": the graph has too many parts");
    OXExpression* saving = model.createExpression(OXOperator::Max);
    for (std::size_t v = 0; v < size; ++v) {
      if (row[v] < limit) addTerm(model, saving, limit - row[v], isMedian[v]);
    }
    if (saving->getNbOperands() > 0) saved->addOperand(saving);
    largest += limit;
  }
  cost->addOperand(largest);
  if (saved->getNbOperands() > 0) cost->addOperand(examples::times(model, -1, saved));
  model.addObjective(cost, OXObjectiveDirection::Minimize);
}

}  // namespace bench
