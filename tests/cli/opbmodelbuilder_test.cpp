#include "cli/opbmodelbuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "cli/opbreader.h"
#include "support/temporaryfile.h"

namespace ombrix::cli {
namespace {

OpbModel readText(const std::string& text) {
  const test::TemporaryFile file(text);
  return OpbReader::read(file.path());
}

/// A file, the model built from it, and what the tests ask of it.
struct Built {
  explicit Built(const std::string& text) : file(readText(text)), builder(file, model()) {}

  OXModel& model() { return *solver.getModel(); }

  int count(OXOperator op) {
    int result = 0;
    for (int i = 0; i < model().getNbExpressions(); ++i) {
      if (model().getExpression(i)->getOperator() == op) ++result;
    }
    return result;
  }

  OpbModel file;
  Ombrix solver;
  OpbModelBuilder builder;
};

TEST(OpbModelBuilder, ADecisionHasTheNameOfItsVariable) {
  Built built("+1 x3 +1 y +1 x1 >= 1 ;");
  ASSERT_EQ(built.model().getNbDecisions(), 3);
  EXPECT_EQ(built.builder.getDecisions()[0]->getName(), "x1");
  EXPECT_EQ(built.builder.getDecisions()[1]->getName(), "x3");
  EXPECT_EQ(built.model().getExpression("y"), built.builder.getDecisions()[2]);
}

TEST(OpbModelBuilder, ANegatedLiteralGoesIntoTheBound) {
  Built built("+3 ~x1 +2 x2 >= 4 ;");
  EXPECT_EQ(built.count(OXOperator::Not), 0);
  const OXExpression* constraint = built.model().getConstraint(0);
  EXPECT_EQ(constraint->getOperator(), OXOperator::Geq);
  EXPECT_EQ(constraint->getOperand(1)->getIntValue(), 1);
}

TEST(OpbModelBuilder, AMostlyNegativeConstraintIsTurnedRound) {
  Built built("-1 x1 -1 x2 >= -1 ;\n-2 x1 -3 x2 <= -3 ;\n-1 x1 -1 x2 = -1 ;");
  const OXExpression* packing = built.model().getConstraint(0);
  EXPECT_EQ(packing->getOperator(), OXOperator::Leq);
  EXPECT_EQ(packing->getOperand(0)->getOperator(), OXOperator::Sum);
  EXPECT_EQ(packing->getOperand(0)->getOperand(0), built.builder.getDecisions()[0]);
  EXPECT_EQ(packing->getOperand(0)->getOperand(1), built.builder.getDecisions()[1]);
  EXPECT_EQ(packing->getOperand(1)->getIntValue(), 1);
  EXPECT_EQ(built.model().getConstraint(1)->getOperator(), OXOperator::Geq);
  EXPECT_EQ(built.model().getConstraint(1)->getOperand(1)->getIntValue(), 3);
  EXPECT_EQ(built.model().getConstraint(2)->getOperator(), OXOperator::Eq);
}

TEST(OpbModelBuilder, AProductIsBuiltOnceInWhateverOrderItIsWritten) {
  Built built("min: +2 x1 ~x2 x3 ;\n+1 x3 x1 ~x2 +1 x1 x1 ~x2 x3 >= 1 ;");
  EXPECT_EQ(built.count(OXOperator::And), 1);
  EXPECT_EQ(built.count(OXOperator::Not), 1);
}

TEST(OpbModelBuilder, AProductWithOppositeLiteralsIsNothing) {
  Built built("min: +2 x1 ~x1 x2 ;\n+1 x1 >= 0 ;");
  EXPECT_EQ(built.count(OXOperator::And), 0);
  EXPECT_TRUE(built.builder.getObjective()->isConstant());
  EXPECT_EQ(built.builder.getObjective()->getIntValue(), 0);
}

TEST(OpbModelBuilder, WithoutAnObjectiveTheConstantZeroIsMinimised) {
  Built built("+1 x1 >= 1 ;");
  ASSERT_EQ(built.model().getNbObjectives(), 1);
  EXPECT_TRUE(built.model().getObjective(0)->isConstant());
  EXPECT_EQ(built.model().getObjectiveDirection(0), OXObjectiveDirection::Minimize);
}

TEST(OpbModelBuilder, TheDirectionIsThatOfTheFile) {
  Built built("max: +1 x1 ;");
  EXPECT_EQ(built.model().getObjectiveDirection(0), OXObjectiveDirection::Maximize);
}

/// A random sum over the variables x1 to xN, of products of up to three literals.
std::string randomSum(std::mt19937& rng, int nbVariables) {
  std::uniform_int_distribution<int> nbTerms(1, 6);
  std::uniform_int_distribution<int> nbLiterals(1, 3);
  std::uniform_int_distribution<int> coefficient(-3, 3);
  std::uniform_int_distribution<int> variable(1, nbVariables);
  std::string text;
  for (int t = nbTerms(rng); t > 0; --t) {
    text += std::to_string(coefficient(rng));
    for (int l = nbLiterals(rng); l > 0; --l) {
      text += (rng() % 2 == 0 ? " x" : " ~x") + std::to_string(variable(rng));
    }
    text += " ";
  }
  return text;
}

std::string randomFile(std::mt19937& rng, int nbVariables) {
  constexpr const char* kRelations[] = {">= ", "<= ", "= "};
  std::uniform_int_distribution<int> bound(-4, 4);
  std::string text = (rng() % 2 == 0 ? "min: " : "max: ") + randomSum(rng, nbVariables) + ";\n";
  for (int c = 0; c < 5; ++c) {
    text +=
        randomSum(rng, nbVariables) + kRelations[rng() % 3] + std::to_string(bound(rng)) + " ;\n";
  }
  return text;
}

std::int64_t valueOf(const OpbModel& file, const OpbSum& sum, unsigned assignment) {
  std::int64_t total = 0;
  for (std::size_t i = sum.firstTerm; i < sum.firstTerm + sum.nbTerms; ++i) {
    bool product = true;
    for (std::size_t j = 0; j < file.terms[i].nbLiterals; ++j) {
      const OpbLiteral literal = file.literals[file.terms[i].firstLiteral + j];
      product = product && ((assignment >> literal.variable()) % 2 != 0) != literal.isNegated();
    }
    if (product) total += file.terms[i].coefficient;
  }
  return total;
}

bool holds(const OpbModel& file, const OpbConstraint& constraint, unsigned assignment) {
  const std::int64_t value = valueOf(file, constraint.sum, assignment);
  switch (constraint.relation) {
    case OpbRelation::AtLeast:
      return value >= constraint.bound;
    case OpbRelation::Equal:
      return value == constraint.bound;
    case OpbRelation::AtMost:
      return value <= constraint.bound;
  }
  return false;
}

/// Sets every assignment in turn and compares the model with the file.
void compareEverywhere(const std::string& text) {
  SCOPED_TRACE(text);
  Built built(text);
  built.model().close();
  const std::vector<OXExpression*>& decisions = built.builder.getDecisions();
  std::int64_t best = 0;
  for (unsigned assignment = 0; assignment < 1U << decisions.size(); ++assignment) {
    for (std::size_t i = 0; i < decisions.size(); ++i) {
      decisions[i]->setValue(static_cast<long long>((assignment >> i) % 2));
    }
    const std::int64_t objective = built.builder.getObjective()->getIntValue();
    ASSERT_EQ(objective, valueOf(built.file, built.file.objective, assignment));
    best = assignment == 0          ? objective
           : built.file.isMaximized ? std::max(best, objective)
                                    : std::min(best, objective);
    for (int c = 0; c < built.model().getNbConstraints(); ++c) {
      ASSERT_EQ(built.model().getConstraint(c)->getIntValue() != 0,
                holds(built.file, built.file.constraints[static_cast<std::size_t>(c)], assignment))
          << "constraint " << c << ", assignment " << assignment;
    }
  }
  if (built.file.isMaximized) {
    EXPECT_LE(best, built.builder.getObjectiveLimit());
  } else {
    EXPECT_GE(best, built.builder.getObjectiveLimit());
  }
}

TEST(OpbModelBuilder, TheModelMeansWhatTheFileSays) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 rng(seed);
    compareEverywhere(randomFile(rng, 1 + static_cast<int>(seed % 6)));
    if (::testing::Test::HasFailure()) return;
  }
}

TEST(OpbModelBuilder, ExtremeCoefficientsKeepTheirMeaning) {
  compareEverywhere(
      "min: +4611686018427387903 x1 -4611686018427387904 x2 ;\n"
      "+4611686018427387903 x1 -2305843009213693952 ~x2 >= 2305843009213693951 ;\n");
}

}  // namespace
}  // namespace ombrix::cli
