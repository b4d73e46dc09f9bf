#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "solver/kernel/dag.h"
#include "support/models.h"
#include "support/randommodel.h"

// The passes change nothing of what a model means: random models are closed twice, with the passes
// on and off, and every assignment of the decisions is tried in both graphs and in the public
// solution, each of which has its own way to compute.
namespace ombrix {
namespace {

using test::holdsAllConstraints;
using test::RandomModel;
using test::TestModel;

/// How many models of how many decisions; reopened ones lost doubles after their types were fixed.
struct Effort {
  int nbDecisions;
  unsigned nbModels;
  bool isReopened = false;
};

/// Puts integers in place of half of the double constants of the operators that let an operand be
/// replaced. The types stay, so sums and elements remain doubles without a double below them.
void replaceDoubles(OXModel& model) {
  std::vector<bool> isDoubleConstant;
  for (int i = 0; i < model.getNbExpressions(); ++i) {
    OXExpression* e = model.getExpression(i);
    isDoubleConstant.push_back(e->isConstant() && e->isDouble());
  }
  model.open();
  const int nbExpressions = model.getNbExpressions();
  for (int i = 0; i < nbExpressions; ++i) {
    OXExpression* e = model.getExpression(i);
    const OXOperator op = e->getOperator();
    const bool isOpenEnded =
        (op >= OXOperator::Sum && op <= OXOperator::Min) || op == OXOperator::Array;
    if (!isOpenEnded) continue;
    for (int position = i % 2; position < e->getNbOperands(); position += 2) {
      OXExpression* operand = e->getOperand(position);
      if (!isDoubleConstant[static_cast<std::size_t>(operand->getIndex())]) continue;
      e->setOperand(position, static_cast<int>(std::ceil(operand->getDoubleValue())));
    }
  }
}

/// The random model of a seed, closed, with its graph and the public solution at the same
/// decisions, all 0 at first.
class ClosedModel {
public:
  ClosedModel(unsigned seed, const Effort& effort, bool isPreprocessed) {
    const int nbDecisions = effort.nbDecisions;
    RandomModel(m, seed, true, nbDecisions);
    m.set("preprocessingEnabled", isPreprocessed ? 1 : 0);
    m.close();
    if (effort.isReopened) {
      replaceDoubles(m.model());
      m.close();
    }
    for (int i = 0; i < nbDecisions; ++i) m.model().getDecision(i)->setValue(0);
    if (isInconsistent()) return;
    dag = std::make_unique<Dag>(m.builder().getFixedFields());
    dag->propagation.activeLevel = dag->fixedFields->nbObjectives();
  }

  bool isInconsistent() { return m.builder().isInconsistent(); }

  void flip(int position) {
    OXExpression* decision = m.model().getDecision(position);
    decision->setValue(1 - decision->getIntValue());
    const std::uint32_t node = m.nodeOf(decision);
    if (node == kNone || !isDecisionType(dag->fixedFields->types[node])) return;
    dag->propagation.setValue(*dag, node, static_cast<std::int64_t>(decision->getIntValue()));
    dag->propagation.accept(*dag);
  }

  /// Whether the graph can stand at the decisions: none of them was proved to be another value.
  bool allowsDecisions() {
    for (int i = 0; i < m.model().getNbDecisions(); ++i) {
      OXExpression* decision = m.model().getDecision(i);
      const auto index = static_cast<std::size_t>(decision->getIndex());
      if (!m.builder().isFixed(index)) continue;
      if (m.builder().lowerBounds()[index].intValue != decision->getIntValue()) return false;
    }
    return true;
  }

  bool isFeasibleInGraph() const { return dag->propagation.infeasibility.nbViolated == 0; }
  bool isFeasibleInSolution() { return holdsAllConstraints(m.model()); }

  double objectiveInGraph(std::uint32_t i) const {
    const std::uint32_t node = dag->fixedFields->objectives[i];
    return doubleValue(dag->fixedFields->domains[node], dag->values[node]);
  }
  double objectiveInSolution(std::uint32_t i) {
    OXExpression* objective = m.model().getObjective(static_cast<int>(i));
    return objective->isDouble() ? objective->getDoubleValue()
                                 : static_cast<double>(objective->getIntValue());
  }
  std::uint32_t nbObjectives() { return static_cast<std::uint32_t>(m.model().getNbObjectives()); }
  void check() const { dag->check(); }
  int nbNodes() { return static_cast<int>(m.builder().getFixedFields().nbNodes); }
  std::uint32_t countOf(NodeType type) {
    const auto& counts = m.builder().getFixedFields().nbNodesByType;
    const auto index = static_cast<std::size_t>(type);
    return index < counts.size() ? counts[index] : 0;
  }

private:
  TestModel m;
  std::unique_ptr<Dag> dag;
};

/// What happened over many models, so that a test cannot pass by looking at nothing.
struct Tally {
  int nbFeasibleModels = 0;
  int nbInconsistentModels = 0;
  int nbNodesSaved = 0;
  std::int64_t nbFeasible = 0;
  std::int64_t nbInfeasible = 0;
  std::vector<std::uint32_t> nbNodesByType = std::vector<std::uint32_t>(kNbNodeTypes, 0);
};

class OnAndOff {
public:
  OnAndOff(unsigned seed, const Effort& effort)
      : on(seed, effort, true),
        off(seed, effort, false),
        nbAssignments(std::uint32_t{1} << effort.nbDecisions) {}

  void compare(Tally& tally) {
    // Contradicting constraints may prove anything: without a solution only that counts.
    if (!hasSolution()) {
      tally.nbInconsistentModels += on.isInconsistent() ? 1 : 0;
      return;
    }
    ASSERT_FALSE(on.isInconsistent()) << "a model with a solution is called inconsistent";
    ++tally.nbFeasibleModels;
    tally.nbNodesSaved += off.nbNodes() - on.nbNodes();
    for (std::uint32_t type = 0; type < kNbNodeTypes; ++type) {
      tally.nbNodesByType[type] += on.countOf(static_cast<NodeType>(type));
    }
    for (std::uint32_t i = 1; i <= nbAssignments; ++i) {
      compareHere(tally);
      if (testing::Test::HasFailure()) return;
      const int position = positionOf(i);
      on.flip(position);
      off.flip(position);
    }
    on.check();
    off.check();
  }

private:
  /// Visits all assignments, each one decision away from the one before, the last one from the
  /// first.
  int positionOf(std::uint32_t i) const {
    return std::countr_zero(i == nbAssignments ? nbAssignments / 2 : i);
  }

  bool hasSolution() {
    bool found = false;
    for (std::uint32_t i = 1; i <= nbAssignments; ++i) {
      EXPECT_EQ(off.isFeasibleInGraph(), off.isFeasibleInSolution());
      found = found || off.isFeasibleInGraph();
      off.flip(positionOf(i));
    }
    return found;
  }

  void compareHere(Tally& tally) {
    const bool isFeasible = off.isFeasibleInGraph();
    ++(isFeasible ? tally.nbFeasible : tally.nbInfeasible);
    if (!on.allowsDecisions()) {
      EXPECT_FALSE(isFeasible) << "a decision of a solution was proved to be another value";
      return;
    }
    EXPECT_EQ(on.isFeasibleInGraph(), isFeasible);
    if (!isFeasible) return;
    for (std::uint32_t i = 0; i < off.nbObjectives(); ++i) {
      const double expected = off.objectiveInSolution(i);
      const double slack = 1e-5 * (1.0 + std::fabs(expected));
      EXPECT_NEAR(off.objectiveInGraph(i), expected, slack);
      EXPECT_NEAR(on.objectiveInGraph(i), expected, slack);
    }
  }

  ClosedModel on;
  ClosedModel off;
  std::uint32_t nbAssignments;
};

class EnumerationProperty : public testing::TestWithParam<Effort> {};

TEST_P(EnumerationProperty, passesKeepFeasibilityObjectivesAndInconsistency) {
  const unsigned nbModels = GetParam().nbModels;
  Tally tally;
  for (unsigned i = 0; i < nbModels && !HasFailure(); ++i) {
    const unsigned seed = 1000U * static_cast<unsigned>(GetParam().nbDecisions) + i;
    SCOPED_TRACE("seed " + std::to_string(seed));
    OnAndOff(seed, GetParam()).compare(tally);
  }
  EXPECT_GT(tally.nbFeasibleModels, static_cast<int>(nbModels) / 4);
  EXPECT_GT(tally.nbNodesSaved, 0);
  EXPECT_GT(tally.nbFeasible, 0);
  EXPECT_GT(tally.nbInfeasible, 0);
  if (nbModels < 1000) return;
  EXPECT_GT(tally.nbInconsistentModels, 0);
  for (std::uint32_t type = 0; type < kNbNodeTypes; ++type) {
    // No operator of a model makes these.
    const auto kind = static_cast<NodeType>(type);
    if (kind == NodeType::Integer || kind == NodeType::Float || kind == NodeType::BooleanSum) {
      continue;
    }
    EXPECT_GT(tally.nbNodesByType[type], 0U) << "type " << type;
  }
}

std::string nameOf(const testing::TestParamInfo<Effort>& tested) {
  return "Of" + std::to_string(tested.param.nbDecisions) + "Decisions" +
         (tested.param.isReopened ? "Reopened" : "");
}

// The work doubles with every decision, so the large models are fewer.
INSTANTIATE_TEST_SUITE_P(Models, EnumerationProperty,
                         testing::Values(Effort{6, 2000}, Effort{8, 600}, Effort{10, 300},
                                         Effort{12, 100}, Effort{13, 60}, Effort{14, 60},
                                         Effort{6, 500, true}),
                         nameOf);

}  // namespace
}  // namespace ombrix
