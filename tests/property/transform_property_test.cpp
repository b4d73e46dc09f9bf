#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "builder/solverrecord.h"
#include "solver/kernel/heuristic.h"
#include "support/models.h"
#include "support/randommodel.h"

// The graph against the model: on every assignment of small random models, what the kernel says of
// constraints, objectives and every expression that has a node is what the public solution says.
namespace ombrix {
namespace {

using test::holdsAllConstraints;
using test::RandomModel;
using test::setDecisions;

/// Compares both sides on assignments of the decisions.
class Comparison {
public:
  /// The graph is exact unless passes drew conclusions from the constraints: these hold only where
  /// the constraints do.
  Comparison(test::TestModel& closedModel, bool isExactGraph)
      : m(closedModel), isExact(isExactGraph), fields(m.builder().getFixedFields()) {
    if (m.builder().isInconsistent()) return;
    dag = std::make_unique<Dag>(fields);
    heuristic = std::make_unique<Heuristic>(*dag, &rng);
  }

  void check(unsigned assignment) {
    setDecisions(m.model(), assignment);
    const bool isFeasible = holdsAllConstraints(m.model());
    if (m.builder().isInconsistent()) {
      EXPECT_FALSE(isFeasible) << "a model with a solution is called inconsistent";
      return;
    }
    const std::vector<OXValue> objectives = publicObjectives();
    load();
    if (isFeasible) {
      EXPECT_EQ(heuristic->bestSolution.nbViolated, 0);
      checkObjectives(objectives);
    }
    takeKernelDecisions();
    EXPECT_EQ(heuristic->bestSolution.nbViolated == 0, holdsAllConstraints(m.model()));
    if (isExact || holdsAllConstraints(m.model())) checkNodes();
    dag->check();
  }

private:
  OXValue publicValue(OXExpression* e) {
    return e->isDouble() ? OXValue::ofDouble(e->getDoubleValue())
                         : OXValue::ofInt(e->getIntValue());
  }
  std::vector<OXValue> publicObjectives() {
    std::vector<OXValue> all;
    for (int i = 0; i < m.model().getNbObjectives(); ++i) {
      all.push_back(publicValue(m.model().getObjective(i)));
    }
    return all;
  }
  void load() {
    m.builder().loadDecisions(SolverRecord::values(SolverRecord::solution(m.solver)), *heuristic);
  }

  void checkNode(std::uint32_t node, OXExpression* e, OXValue expected) {
    const OXValue actual = dag->values[node];
    if (e->isDouble()) {
      const double value = doubleValue(fields.domains[node], actual);
      const double slack = 1e-5 * (1 + std::fabs(expected.doubleValue));
      EXPECT_NEAR(value, expected.doubleValue, slack) << e->toString();
    } else {
      EXPECT_EQ(actual.intValue, expected.intValue) << e->toString();
    }
  }
  void checkObjectives(const std::vector<OXValue>& expected) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
      checkNode(fields.objectives[i], m.model().getObjective(static_cast<int>(i)), expected[i]);
    }
  }
  /// The decisions as the kernel holds them, those proved constant included.
  void takeKernelDecisions() {
    m.builder().storeSolution(*heuristic, SolverRecord::solution(m.solver));
    for (int i = 0; i < m.model().getNbDecisions(); ++i) {
      OXExpression* decision = m.model().getDecision(i);
      decision->setValue(decision->getIntValue());
    }
  }
  void checkNodes() {
    checkObjectives(publicObjectives());
    for (int i = 0; i < m.model().getNbExpressions(); ++i) {
      OXExpression* e = m.model().getExpression(i);
      if (!e->isArray() && m.nodeOf(e) != kNone) checkNode(m.nodeOf(e), e, publicValue(e));
    }
  }

  test::TestModel& m;
  bool isExact;
  const DagFixedFields& fields;
  std::uint32_t rng = 1;
  std::unique_ptr<Dag> dag;
  std::unique_ptr<Heuristic> heuristic;
};

void closeRandomModel(test::TestModel& m, unsigned seed, bool isForPasses, bool isPreprocessed) {
  RandomModel model(m, seed, isForPasses);
  m.set("preprocessingEnabled", isPreprocessed ? 1 : 0);
  m.close();
}

/// Whether some assignment satisfies all constraints of the model as it is.
bool hasSolution(unsigned seed) {
  test::TestModel m;
  closeRandomModel(m, seed, true, false);
  for (unsigned a = 0; a < 1U << m.model().getNbDecisions(); ++a) {
    setDecisions(m.model(), a);
    if (holdsAllConstraints(m.model())) return true;
  }
  return false;
}

void compareAll(unsigned seed, bool isPreprocessed) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  test::TestModel m;
  closeRandomModel(m, seed, isPreprocessed, isPreprocessed);
  Comparison comparison(m, !isPreprocessed);
  for (unsigned a = 0; a < 1U << m.model().getNbDecisions(); ++a) {
    comparison.check(a);
    if (testing::Test::HasFailure()) FAIL() << "assignment " << a;
  }
}

TEST(Transformation, TheGraphOfAModelAsItIsAgreesWithTheModel) {
  for (unsigned seed = 1; seed <= 2000 && !testing::Test::HasFailure(); ++seed) {
    compareAll(seed, false);
  }
}

/// Contradicting constraints may prove anything, so models without solution are passed over.
TEST(Transformation, TheGraphOfAPreprocessedModelAgreesWithTheModel) {
  for (unsigned seed = 1; seed <= 2000 && !testing::Test::HasFailure(); ++seed) {
    if (hasSolution(seed)) compareAll(seed, true);
  }
}

/// The values of the objectives as they stand in the public solution, as doubles.
std::vector<double> objectiveValues(OXModel& model) {
  std::vector<double> values;
  for (int i = 0; i < model.getNbObjectives(); ++i) {
    const OXExpression* objective = model.getObjective(i);
    values.push_back(objective->isDouble() ? objective->getDoubleValue()
                                           : static_cast<double>(objective->getIntValue()));
  }
  return values;
}

/// Writing the decisions again makes the solution forget what the search told of all else.
void forgetSearch(OXModel& model) {
  for (int i = 0; i < model.getNbDecisions(); ++i) {
    OXExpression* decision = model.getDecision(i);
    decision->setValue(decision->getIntValue());
  }
}

void solveAndCompare(unsigned seed) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  test::TestModel m;
  closeRandomModel(m, seed, false, false);
  m.solver.getParam()->setVerbosity(0);
  m.solver.getParam()->setSeed(static_cast<int>(seed));
  m.set("syncIterations", 200);
  m.solver.createPhase()->setIterationLimit(500);
  m.solver.solve();
  const OXSolutionStatus status = m.solver.getSolution()->getStatus();
  const std::vector<double> found = objectiveValues(m.model());
  forgetSearch(m.model());
  EXPECT_EQ(status != OXSolutionStatus::Infeasible, holdsAllConstraints(m.model()));
  const std::vector<double> computed = objectiveValues(m.model());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_TRUE(approxEqual(found[i], computed[i])) << found[i] << " " << computed[i];
  }
}

TEST(Search, WhatItTellsOfItsBestSolutionFollowsFromTheDecisions) {
  for (unsigned seed = 1; seed <= 300 && !testing::Test::HasFailure(); ++seed) {
    solveAndCompare(seed);
  }
}

}  // namespace
}  // namespace ombrix
