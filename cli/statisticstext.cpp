#include "cli/statisticstext.h"

#include <ombrix/oxversion.h>

#include <cstddef>

#include "cli/jsonwriter.h"

namespace ombrix::cli {
namespace {

/// Writes the members one after the other, each part of the object in a function of its own.
class StatisticsText {
public:
  StatisticsText(const Ombrix& searched, const SearchRecorder& followed)
      : solver(searched), recorder(followed) {}

  std::string write(const std::string& modelName) {
    json.beginObject();
    json.member("version", OXVersion::getVersion());
    json.member("model", modelName);
    json.member("seed", solver.getParam()->getSeed());
    json.member("threads", solver.getParam()->getNbThreads());
    writeImprovements();
    writeWorkers();
    writeFinal();
    json.endObject();
    return json.getText();
  }

private:
  void writeImprovements() {
    const ImprovementList& improvements = recorder.getImprovements();
    json.member("nbImprovements", improvements.getCount());
    json.member("resolution", improvements.getResolution());
    json.key("improvements");
    json.beginArray();
    for (const Improvement& improvement : improvements.getKept()) writeImprovement(improvement);
    json.endArray();
  }

  void writeImprovement(const Improvement& improvement) {
    json.beginObject();
    json.member("time", improvement.time);
    json.member("iteration", improvement.iteration);
    json.member("worker", improvement.worker);
    json.member("feasible", improvement.isFeasible());
    if (!improvement.isFeasible()) writeInfeasibility(improvement.infeasibility);
    json.key("objectives");
    json.beginArray();
    for (std::size_t i = 0; i < improvement.objectives.size(); ++i) {
      writeObjective(i, improvement.objectives[i]);
    }
    json.endArray();
    json.endObject();
  }

  void writeInfeasibility(const Infeasibility& infeasibility) {
    json.key("infeasibility");
    json.beginArray();
    json.value(infeasibility.nbViolatedEqualities);
    json.value(infeasibility.nbViolated);
    json.value(infeasibility.violationSum);
    json.endArray();
  }

  void writeObjective(std::size_t i, OXValue content) {
    if (objective(i).isDouble()) {
      json.value(content.doubleValue);
    } else {
      json.value(content.intValue);
    }
  }

  const OXExpression& objective(std::size_t i) const {
    return *solver.getModel()->getObjective(static_cast<int>(i));
  }

  void writeWorkers() {
    json.key("workers");
    json.beginArray();
    for (const WorkerCounters& worker : recorder.getWorkers()) {
      json.beginObject();
      json.member("iterations", worker.iterations.getTotal());
      json.key("moves");
      json.beginArray();
      for (const WorkerCounters::MoveCounters& move : worker.moves) writeMove(move);
      json.endArray();
      writeStrategies(worker);
      json.endObject();
    }
    json.endArray();
  }

  void writeMove(const WorkerCounters::MoveCounters& move) {
    json.beginObject();
    json.member("name", move.name);
    json.member("weight", move.weight);
    json.member("attempted", move.attempted.getTotal());
    json.member("infeasible", move.infeasible.getTotal());
    json.member("rejected", move.rejected.getTotal());
    json.member("accepted", move.accepted.getTotal());
    json.member("improved", move.improved.getTotal());
    json.endObject();
  }

  void writeStrategies(const WorkerCounters& worker) {
    json.key("strategies");
    json.beginArray();
    json.beginObject();
    json.member("name", "restart");
    json.member("restartingRatio", worker.restartingRatio);
    json.member("restarts", worker.restarts.getTotal());
    json.member("restartingIterations", worker.restartingIterations.getTotal());
    json.endObject();
    json.beginObject();
    json.member("name", "annealing");
    json.member("windowSize", worker.annealingWindow);
    json.member("active", worker.annealingActive);
    json.member("degradingMoves", worker.degradingMoves.getTotal());
    json.endObject();
    json.endArray();
  }

  void writeFinal() {
    static constexpr const char* kWords[] = {"inconsistent", "infeasible", "feasible", "optimal"};
    const OXSolutionStatus status = solver.getSolution()->getStatus();
    json.key("final");
    json.beginObject();
    json.member("status", kWords[static_cast<int>(status)]);
    json.key("objectives");
    json.beginArray();
    if (status != OXSolutionStatus::Inconsistent) writeFinalObjectives();
    json.endArray();
    json.member("time", recorder.getSearchTime());
    json.member("iterations", solver.getStatistics()->getNbIterations());
    json.member("moves", solver.getStatistics()->getNbMoves());
    json.endObject();
  }

  void writeFinalObjectives() {
    for (int i = 0; i < solver.getModel()->getNbObjectives(); ++i) {
      const OXExpression& content = *solver.getModel()->getObjective(i);
      if (content.isDouble()) {
        json.value(content.getDoubleValue());
      } else {
        json.value(content.getIntValue());
      }
    }
  }

  const Ombrix& solver;
  const SearchRecorder& recorder;
  JsonWriter json;
};

}  // namespace

std::string statisticsText(const std::string& modelName, const Ombrix& solver,
                           const SearchRecorder& recorder) {
  return StatisticsText(solver, recorder).write(modelName);
}

}  // namespace ombrix::cli
