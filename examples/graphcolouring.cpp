// Graph colouring: give every vertex a colour, different ones to adjacent vertices, with as few
// colours as possible.
//
// File: "c" comments, "p edge VERTICES EDGES" (or "p col"), "e U V" for each edge, vertices from 1.

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

struct Graph {
  explicit Graph(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    while (!file.atEnd()) {
      const std::string kind = file.nextWord();
      if (kind == "p") {
        file.nextWord("edge or col");
        neighbours.resize(
            static_cast<std::size_t>(file.nextInt(1, 10000000, "the number of vertices")));
        file.nextInt("the number of edges");
      } else if (kind == "e") {
        readEdge(file);
      } else {
        file.skipLine();
      }
    }
    if (neighbours.empty()) {
      throw std::runtime_error(fileName + ": found no line 'p edge', expected one");
    }
  }

  void readEdge(examples::InstanceFile& file) {
    const auto n = static_cast<long long>(neighbours.size());
    const auto u = static_cast<std::size_t>(file.nextInt(1, n, "a vertex") - 1);
    const auto v = static_cast<std::size_t>(file.nextInt(1, n, "a vertex") - 1);
    if (u == v) return;
    neighbours[u].insert(v);
    neighbours[v].insert(u);
  }

  /// Some files list an edge in both directions: the sets keep it once.
  std::vector<std::set<std::size_t>> neighbours;
};

/// Colours the vertices in order of falling degree, each with the first colour that its neighbours
/// leave. It bounds the colours that the model needs and starts the search.
std::vector<std::size_t> colourGreedily(const Graph& graph) {
  const std::size_t n = graph.neighbours.size();
  std::vector<std::size_t> order(n);
  for (std::size_t v = 0; v < n; ++v) order[v] = v;
  std::stable_sort(order.begin(), order.end(), [&](std::size_t u, std::size_t v) {
    return graph.neighbours[u].size() > graph.neighbours[v].size();
  });
  std::vector<std::size_t> colours(n, n);
  for (const std::size_t v : order) {
    std::set<std::size_t> taken;
    for (const std::size_t u : graph.neighbours[v]) taken.insert(colours[u]);
    std::size_t colour = 0;
    while (taken.count(colour) != 0) ++colour;
    colours[v] = colour;
  }
  return colours;
}

void run(const examples::Arguments& arguments) {
  const Graph graph(arguments.instance);
  const std::vector<std::size_t> start = colourGreedily(graph);
  const std::size_t nbColours = *std::max_element(start.begin(), start.end()) + 1;

  Ombrix solver;
  OXModel& model = *solver.getModel();
  const std::size_t n = graph.neighbours.size();
  const examples::Table hasColour = examples::createTable(model, n, nbColours);
  for (std::size_t u = 0; u < n; ++u) {
    for (const std::size_t v : graph.neighbours[u]) {
      if (v < u) continue;
      for (std::size_t c = 0; c < nbColours; ++c) {
        examples::requireAtMost(
            model, model.createExpression(OXOperator::Sum, hasColour[u][c], hasColour[v][c]), 1);
      }
    }
  }
  OXExpression* nbUsed = model.createExpression(OXOperator::Sum);
  for (std::size_t c = 0; c < nbColours; ++c) {
    OXExpression* isUsed = model.createExpression(OXOperator::Or);
    for (std::size_t v = 0; v < n; ++v) isUsed->addOperand(hasColour[v][c]);
    nbUsed->addOperand(isUsed);
  }
  model.addObjective(nbUsed, OXObjectiveDirection::Minimize);
  model.close();
  for (std::size_t v = 0; v < n; ++v) hasColour[v][start[v]]->setValue(1);
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, static_cast<double>(nbUsed->getIntValue()),
                   examples::chosenColumns(hasColour));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
