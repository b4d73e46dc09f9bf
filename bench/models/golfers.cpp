// Social golfers: in every round split the golfers into groups so that as few pairs as possible
// meet again.
//
// File: "n_groups = 4; n_per_group = 4; n_rounds = 5;".
//
// The first round is given, as the golfers are alike. Two golfers meet in a round when they play in
// one group; each meeting beyond the first of a pair counts.

#include <stdexcept>

#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

namespace {

struct Instance {
  explicit Instance(const std::string& fileName) {
    std::vector<std::string> words;
    for (const auto& line : readLines(fileName, " \t\r=;")) {
      words.insert(words.end(), line.begin(), line.end());
    }
    for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
      const auto value = static_cast<std::size_t>(toInteger(fileName, words[i + 1]));
      if (words[i] == "n_groups") nbGroups = value;
      if (words[i] == "n_per_group") groupSize = value;
      if (words[i] == "n_rounds") nbRounds = value;
    }
    if (nbGroups == 0 || groupSize == 0 || nbRounds == 0) {
      throw std::runtime_error(fileName + ": expected n_groups, n_per_group and n_rounds");
    }
  }

  std::size_t nbGroups = 0;
  std::size_t groupSize = 0;
  std::size_t nbRounds = 0;
};

/// plays[p][g] of one round: every golfer in one group, every group full.
examples::Table createRound(OXModel& model, const Instance& instance, std::size_t round) {
  const std::size_t nbGolfers = instance.nbGroups * instance.groupSize;
  examples::Table plays(nbGolfers);
  for (std::size_t p = 0; p < nbGolfers; ++p) {
    OXExpression* nbOfGolfer = model.createExpression(OXOperator::Sum);
    for (std::size_t g = 0; g < instance.nbGroups; ++g) {
      plays[p].push_back(createDecision(model, {round, p, g}));
      nbOfGolfer->addOperand(plays[p][g]);
      const bool isGiven = p / instance.groupSize == g;
      if (round == 0) examples::requireEqual(model, plays[p][g], isGiven ? 1 : 0);
    }
    examples::requireEqual(model, nbOfGolfer, 1);
  }
  for (std::size_t g = 0; g < instance.nbGroups; ++g) {
    examples::requireColumnSum(model, plays, g, static_cast<long long>(instance.groupSize));
  }
  return plays;
}

}  // namespace

void buildGolfers(OXModel& model, const std::string& fileName) {
  const Instance instance(fileName);
  const std::size_t nbGolfers = instance.nbGroups * instance.groupSize;
  std::vector<examples::Table> plays;
  for (std::size_t round = 0; round < instance.nbRounds; ++round) {
    plays.push_back(createRound(model, instance, round));
  }
  OXExpression* nbRepeated = model.createExpression(OXOperator::Sum);
  for (std::size_t p = 0; p < nbGolfers; ++p) {
    for (std::size_t q = p + 1; q < nbGolfers; ++q) {
      OXExpression* nbMeetings = model.createExpression(OXOperator::Sum);
      for (const examples::Table& round : plays) {
        for (std::size_t g = 0; g < instance.nbGroups; ++g) {
          nbMeetings->addOperand(model.createExpression(OXOperator::And, round[p][g], round[q][g]));
        }
      }
      nbMeetings->addOperand(-1);
      nbRepeated->addOperand(
          model.createExpression(OXOperator::Max, nbMeetings, model.createConstant(0)));
    }
  }
  if (nbRepeated->getNbOperands() == 0) nbRepeated->addOperand(0);
  model.addObjective(nbRepeated, OXObjectiveDirection::Minimize);
}

}  // namespace bench
