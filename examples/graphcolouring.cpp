// Graph colouring: give every vertex a colour, different ones to adjacent vertices, with as few
// colours as possible. A greedy colouring comes first; then models for one colour less are solved,
// again and again, until the time is over or the best known number is reached.
//
// File: "c" comments, "p edge VERTICES EDGES" (or "p col"), "e U V" for each edge, vertices from 1.

#include <algorithm>
#include <chrono>
#include <iostream>
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
    const std::size_t u = file.nextIndex(n, "a vertex");
    const std::size_t v = file.nextIndex(n, "a vertex");
    if (u == v) return;
    neighbours[u].insert(v);
    neighbours[v].insert(u);
  }

  /// Some files list an edge in both directions: the sets keep it once.
  std::vector<std::set<std::size_t>> neighbours;
};

using Colouring = std::vector<std::size_t>;

std::size_t nbColours(const Colouring& colouring) {
  return *std::max_element(colouring.begin(), colouring.end()) + 1;
}

/// Colours the vertices in order of falling degree, each with the first colour that its neighbours
/// leave.
Colouring colourGreedily(const Graph& graph) {
  const std::size_t n = graph.neighbours.size();
  std::vector<std::size_t> order(n);
  for (std::size_t v = 0; v < n; ++v) order[v] = v;
  std::stable_sort(order.begin(), order.end(), [&](std::size_t u, std::size_t v) {
    return graph.neighbours[u].size() > graph.neighbours[v].size();
  });
  Colouring colours(n, n);
  for (const std::size_t v : order) {
    std::set<std::size_t> taken;
    for (const std::size_t u : graph.neighbours[v]) taken.insert(colours[u]);
    std::size_t colour = 0;
    while (taken.count(colour) != 0) ++colour;
    colours[v] = colour;
  }
  return colours;
}

/// The edges whose ends have one colour. The colour of a vertex is a number, so an edge is one
/// comparison, whatever the number of colours.
OXExpression* createConflicts(OXModel& model, const Graph& graph,
                              const examples::Table& hasColour) {
  const std::vector<OXExpression*> colours = examples::createChosenColumns(model, hasColour);
  OXExpression* conflicts = model.createExpression(OXOperator::Sum);
  for (std::size_t u = 0; u < colours.size(); ++u) {
    for (const std::size_t v : graph.neighbours[u]) {
      if (v > u) {
        conflicts->addOperand(model.createExpression(OXOperator::Eq, colours[u], colours[v]));
      }
    }
  }
  if (conflicts->getNbOperands() == 0) conflicts->addOperand(0);
  return conflicts;
}

/// A number of conflicts in steps of a grain, rounded up: 0 still means that none is left. Within a
/// step the search walks freely over hills that conflicts counted one by one make too steep.
OXExpression* inSteps(OXModel& model, OXExpression* conflicts, long long grain) {
  OXExpression* raised = model.createExpression(OXOperator::Sum, conflicts);
  raised->addOperand(grain - 1);
  return model.createExpression(OXOperator::Div, raised, model.createConstant(grain));
}

void setSearch(OXParam& param) {
  // A search that goes back further ends with fewer conflicts. Each move takes a vertex that is in
  // conflict: others only carry the walk to the upper end of a step. Swaps change nothing here, and
  // planning ahead costs more moves than it finds.
  param.setAnnealingLevel(9);
  param.setAdvancedParam("targetingLevel", 10);
  param.setAdvancedParam("moveSwapEnabled", 0);
  param.setAdvancedParam("advancedMovesEnabled", 0);
}

/// The best colouring found with so many colours, from one that may have more: the vertices of the
/// colours that are gone start with any. Conflicts are counted and not forbidden, so the search may
/// pass through them; it ends when none is left or when the time is over.
Colouring colourWith(const Graph& graph, std::size_t nbAllowed, long long grain,
                     const Colouring& start, int seconds) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  const examples::Table hasColour = examples::createTable(model, start.size(), nbAllowed);
  OXExpression* conflicts = createConflicts(model, graph, hasColour);
  model.addObjective(inSteps(model, conflicts, grain), OXObjectiveDirection::Minimize);
  model.close();
  setSearch(*solver.getParam());
  for (std::size_t v = 0; v < start.size(); ++v) {
    hasColour[v][start[v] < nbAllowed ? start[v] : v % nbAllowed]->setValue(1);
  }
  examples::solveFor(solver, seconds);
  const std::vector<long long> colours = examples::chosenColumns(hasColour);
  return Colouring(colours.begin(), colours.end());
}

bool hasConflict(const Graph& graph, const Colouring& colouring) {
  for (std::size_t u = 0; u < colouring.size(); ++u) {
    for (const std::size_t v : graph.neighbours[u]) {
      if (colouring[u] == colouring[v]) return true;
    }
  }
  return false;
}

/// What is left of the time given on the command line.
class Countdown {
public:
  explicit Countdown(int seconds) : end(Clock::now() + std::chrono::seconds(seconds)) {}

  int secondsLeft() const {
    const auto left = std::chrono::ceil<std::chrono::seconds>(end - Clock::now());
    return std::max(static_cast<int>(left.count()), 0);
  }

private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point end;
};

/// Looks for a colouring with so many colours until it has one or the time is over; what it returns
/// in the second case has conflicts. Which grain is best depends on the graph, so they take turns,
/// and the turns get longer.
Colouring lookFor(const Graph& graph, std::size_t nbColoursWanted, const Colouring& start,
                  const Countdown& countdown) {
  Colouring colouring = start;
  for (int turn = 4; countdown.secondsLeft() > 0; turn *= 2) {
    for (const long long grain : {4, 3, 2}) {
      const int seconds = std::min(turn, countdown.secondsLeft());
      if (seconds == 0) break;
      std::cout << "looking for " << nbColoursWanted << " colours, conflicts in steps of " << grain
                << std::endl;
      colouring = colourWith(graph, nbColoursWanted, grain, colouring, seconds);
      if (!hasConflict(graph, colouring)) return colouring;
    }
  }
  return colouring;
}

void run(const examples::Arguments& arguments) {
  const Graph graph(arguments.instance);
  const Countdown countdown(arguments.seconds);
  const auto goal = static_cast<std::size_t>(std::max(arguments.bestKnown.value_or(1), 1.0));
  Colouring best = colourGreedily(graph);
  while (nbColours(best) > goal && countdown.secondsLeft() > 0) {
    const Colouring better = lookFor(graph, nbColours(best) - 1, best, countdown);
    if (hasConflict(graph, better)) break;
    best = better;
  }
  examples::reportAnswer(arguments, static_cast<double>(nbColours(best)),
                         std::vector<long long>(best.begin(), best.end()));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
