// What does an iteration cost that changes nothing, and what does one evaluated flip cost at a node
// of each family and width?

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/heuristicautoannealing.h"
#include "solver/kernel/random.h"

namespace {

using namespace ombrix;

/// Many decisions, one node over all of them, which is minimised.
class OneNodeGraph {
public:
  OneNodeGraph(NodeType type, std::uint32_t nbOperands) {
    std::vector<std::uint32_t> operands;
    for (std::uint32_t i = 0; i < nbOperands; ++i) {
      operands.push_back(fields.addNode(NodeType::Boolean));
    }
    fields.addObjective(fields.addNode(type, std::span(operands), scalars(type, nbOperands)), 0);
    fields.finish();
    dag = std::make_unique<Dag>(fields);
  }

  DagFixedFields fields;
  std::unique_ptr<Dag> dag;

private:
  std::span<const OXValue> scalars(NodeType type, std::uint32_t nbOperands) {
    for (std::uint32_t i = 0; i < nbOperands; ++i) {
      if (type == NodeType::ScalarSum || type == NodeType::ScalarMax) {
        coefficients.push_back(OXValue::ofInt(1 + i % 7));
      } else if (type == NodeType::DoubleScalarSum || type == NodeType::DoubleScalarMax) {
        coefficients.push_back(OXValue::ofDouble(1.5 + i % 7));
      }
    }
    return coefficients;
  }

  std::vector<OXValue> coefficients;
};

/// Builds a candidate without touching a decision.
class IdleMove : public Move {
public:
  IdleMove(Dag& workerDag, std::uint32_t& state) : Move("Idle", workerDag, state) {}
  bool apply() override { return true; }
};

void idleIteration(benchmark::State& state) {
  OneNodeGraph graph(NodeType::Sum, 8);
  graph.dag->propagation.setValue(*graph.dag, 0, std::int64_t{1});
  graph.dag->propagation.accept(*graph.dag);
  std::uint32_t rng = 1;
  HeuristicAutoAnnealing heuristic(*graph.dag, &rng);
  heuristic.movePool.addMove(std::make_unique<IdleMove>(*graph.dag, rng));
  heuristic.reset();
  for (auto _ : state) {
    heuristic.iterationLimit = heuristic.nbIterations + 1000;
    heuristic.run();
  }
  state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(idleIteration);

void evaluatedFlip(benchmark::State& state, NodeType type) {
  const auto width = static_cast<std::uint32_t>(state.range(0));
  OneNodeGraph graph(type, width);
  Dag& dag = *graph.dag;
  std::uint32_t rng = 1;
  bool keep = false;
  for (auto _ : state) {
    const std::uint32_t decision = randomIndex(rng, width);
    dag.propagation.setValue(dag, decision, 1 - dag.values[decision].intValue);
    dag.propagation.evaluateConstraints(dag);
    dag.propagation.evaluateLevels(dag, 1);
    // One candidate in two is kept: a rejected one costs less.
    keep = !keep;
    if (keep) {
      dag.propagation.accept(dag);
    } else {
      dag.propagation.reject(dag);
    }
  }
  state.SetItemsProcessed(state.iterations());
}

void widths(benchmark::internal::Benchmark* benchmark) {
  for (const int width : {8, 64, 512, 1024, 4096, 70000}) benchmark->Arg(width);
}

BENCHMARK_CAPTURE(evaluatedFlip, sum, NodeType::Sum)->Apply(widths);
BENCHMARK_CAPTURE(evaluatedFlip, double_sum, NodeType::DoubleSum)->Apply(widths);
BENCHMARK_CAPTURE(evaluatedFlip, scalar_sum, NodeType::ScalarSum)->Apply(widths);
BENCHMARK_CAPTURE(evaluatedFlip, double_scalar_sum, NodeType::DoubleScalarSum)->Apply(widths);
BENCHMARK_CAPTURE(evaluatedFlip, and, NodeType::And)->Apply(widths);
BENCHMARK_CAPTURE(evaluatedFlip, or, NodeType::Or)->Apply(widths);
BENCHMARK_CAPTURE(evaluatedFlip, xor, NodeType::Xor)->Apply(widths);
BENCHMARK_CAPTURE(evaluatedFlip, scalar_max, NodeType::ScalarMax)->Apply(widths);
BENCHMARK_CAPTURE(evaluatedFlip, product, NodeType::Product)->Apply(widths);

}  // namespace
