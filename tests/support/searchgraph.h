#ifndef OMBRIX_TESTS_SUPPORT_SEARCHGRAPH_H
#define OMBRIX_TESTS_SUPPORT_SEARCHGRAPH_H

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "solver/move/basicmovestructure.h"
#include "solver/move/constraintanalysis.h"
#include "tests/support/graphs.h"

namespace ombrix::test {

/// A graph with what one worker needs to run moves on it. Describe the graph through builder, then
/// call start.
class SearchGraph {
public:
  void start(std::uint32_t seed = 1) {
    rng = seed;
    dag = builder.makeDag();
    analysis = std::make_unique<ConstraintAnalysis>(builder.fields);
    structure = std::make_unique<BasicMoveStructure>(*dag, *analysis, rng);
  }

  /// Starts a decision at 1.
  void raise(std::uint32_t decision) { setAndAccept(*dag, decision, 1); }

  /// The decisions written in the open move.
  std::set<std::uint32_t> changed() const {
    const auto& written = dag->propagation.changedDecisions;
    return {written.begin(), written.end()};
  }
  void reject() { dag->propagation.reject(*dag); }

  GraphBuilder builder;
  std::uint32_t rng = 1;
  std::unique_ptr<Dag> dag;
  std::unique_ptr<ConstraintAnalysis> analysis;
  std::unique_ptr<BasicMoveStructure> structure;
};

}  // namespace ombrix::test

#endif
