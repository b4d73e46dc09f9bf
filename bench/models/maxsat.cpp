// Weighted partial satisfiability: satisfy the hard clauses, falsify soft ones of the smallest
// weight.
//
// File: clauses that end with 0, in one of three layouts: "h" or a weight in front of each; behind
// "p wcnf variables clauses [top]" a weight in front of each, a weight of top being hard; behind
// "p cnf variables clauses" no weight, every clause soft with weight 1.
//
// Clauses say less than the choices that they encode, so these are recovered. A hard clause of
// positive literals that exclude one another in pairs is "exactly one"; the other excluding pairs
// become "at most one" of larger sets; hard clauses of one sign become counts. Sums are what the
// moves that exchange decisions walk through.

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <stdexcept>

#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

namespace {

struct Clause {
  std::vector<long long> literals;
  long long weight = 1;
  bool isHard = false;
};

class ClauseReader {
public:
  explicit ClauseReader(const std::string& name) : fileName(name) {}

  std::vector<Clause> read() {
    for (const auto& line : readLines(fileName)) {
      if (line.empty() || line[0][0] == 'c') continue;
      if (line[0] == "p") {
        readHeader(line);
      } else {
        for (const std::string& word : line) readWord(word);
      }
    }
    return clauses;
  }

private:
  void readHeader(const std::vector<std::string>& words) {
    if (words.size() < 4) throw std::runtime_error(fileName + ": found a header cut short");
    hasWeights = words[1] != "cnf";
    if (words.size() > 4) top = toInteger(fileName, words[4]);
  }

  void readWord(const std::string& word) {
    if (isNew && hasWeights) {
      isNew = false;
      clause.isHard = word == "h";
      if (!clause.isHard) clause.weight = toInteger(fileName, word);
      if (top && clause.weight == *top) clause.isHard = true;
      return;
    }
    isNew = false;
    const long long literal = toInteger(fileName, word);
    if (literal != 0) {
      clause.literals.push_back(literal);
      return;
    }
    normalise();
    clause = Clause();
    isNew = true;
  }

  /// Keeps a clause with each literal once, and not at all if it holds always.
  void normalise() {
    std::vector<long long>& literals = clause.literals;
    std::sort(literals.begin(), literals.end());
    literals.erase(std::unique(literals.begin(), literals.end()), literals.end());
    for (const long long literal : literals) {
      if (std::binary_search(literals.begin(), literals.end(), -literal)) return;
    }
    clauses.push_back(clause);
  }

  std::string fileName;
  bool hasWeights = true;
  std::optional<long long> top;
  bool isNew = true;
  Clause clause;
  std::vector<Clause> clauses;
};

class ClauseModel {
public:
  ClauseModel(OXModel& target, const std::vector<Clause>& all) : model(target), clauses(all) {
    std::size_t nbVariables = 0;
    for (const Clause& clause : clauses) {
      for (const long long literal : clause.literals) {
        nbVariables = std::max(nbVariables, variableOf(literal) + 1);
      }
    }
    for (std::size_t v = 0; v < nbVariables; ++v) {
      isTrue.push_back(createDecision(model, {v + 1}));
    }
    isFalse.assign(nbVariables, nullptr);
    conflicts.assign(nbVariables, std::vector<char>(nbVariables, 0));
  }

  void post() {
    for (const Clause& clause : clauses) {
      if (isPair(clause)) setConflict(clause.literals[0], clause.literals[1], 1);
    }
    postChoices();
    forbidConflicts(model, conflicts, isTrue);
    for (const Clause& clause : clauses) {
      if (clause.isHard && !isPair(clause) && !isChoice(clause)) postHard(clause);
    }
    postCost();
  }

private:
  static std::size_t variableOf(long long literal) {
    return static_cast<std::size_t>(std::llabs(literal)) - 1;
  }

  static bool isPositive(const Clause& clause) { return clause.literals.front() > 0; }
  static bool isNegative(const Clause& clause) { return clause.literals.back() < 0; }

  /// Whether two variables exclude each other.
  static bool isPair(const Clause& clause) {
    return clause.isHard && clause.literals.size() == 2 && isNegative(clause);
  }

  void setConflict(long long a, long long b, char value) {
    conflicts[variableOf(a)][variableOf(b)] = value;
    conflicts[variableOf(b)][variableOf(a)] = value;
  }

  bool isChoice(const Clause& clause) const {
    return clause.isHard && clause.literals.size() > 1 && isPositive(clause) &&
           isTaken[variableOf(clause.literals[0])] == &clause;
  }

  /// "Exactly one" for hard clauses whose literals exclude one another; each variable enters one.
  void postChoices() {
    isTaken.assign(isTrue.size(), nullptr);
    for (const Clause& clause : clauses) {
      if (!clause.isHard || clause.literals.size() < 2 || !isPositive(clause)) continue;
      if (!excludeOneAnother(clause)) continue;
      OXExpression* nbTrue = model.createExpression(OXOperator::Sum);
      for (const long long a : clause.literals) {
        nbTrue->addOperand(isTrue[variableOf(a)]);
        isTaken[variableOf(a)] = &clause;
      }
      examples::requireEqual(model, nbTrue, 1);
    }
    for (const Clause& clause : clauses) {
      if (!isChoice(clause)) continue;
      for (const long long a : clause.literals) {
        for (const long long b : clause.literals) setConflict(a, b, 0);
      }
    }
  }

  bool excludeOneAnother(const Clause& clause) const {
    for (const long long a : clause.literals) {
      if (isTaken[variableOf(a)] != nullptr) return false;
      for (const long long b : clause.literals) {
        if (a != b && conflicts[variableOf(a)][variableOf(b)] == 0) return false;
      }
    }
    return true;
  }

  OXExpression* literal(long long number) {
    const std::size_t v = variableOf(number);
    if (number > 0) return isTrue[v];
    if (isFalse[v] == nullptr) {
      isFalse[v] = model.createExpression(OXOperator::Not, isTrue[v]);
    }
    return isFalse[v];
  }

  void postHard(const Clause& clause) {
    const std::size_t n = clause.literals.size();
    if (n == 0) {
      model.addConstraint(model.createConstant(0));
    } else if (n == 1) {
      model.addConstraint(literal(clause.literals[0]));
    } else if (isPositive(clause) || isNegative(clause)) {
      OXExpression* nbTrue = model.createExpression(OXOperator::Sum);
      for (const long long a : clause.literals) nbTrue->addOperand(isTrue[variableOf(a)]);
      if (isPositive(clause)) {
        examples::requireAtLeast(model, nbTrue, 1);
      } else {
        examples::requireAtMost(model, nbTrue, static_cast<long long>(n) - 1);
      }
    } else {
      OXExpression* holds = model.createExpression(OXOperator::Or);
      for (const long long a : clause.literals) holds->addOperand(literal(a));
      model.addConstraint(holds);
    }
  }

  /// A soft clause of one literal is a term of a decision; others count when all their literals
  /// are false.
  void postCost() {
    OXExpression* cost = model.createExpression(OXOperator::Sum);
    long long offset = 0;
    for (const Clause& clause : clauses) {
      if (clause.isHard) continue;
      if (clause.literals.empty()) {
        offset += clause.weight;
      } else if (clause.literals.size() == 1) {
        const long long a = clause.literals[0];
        if (a > 0) offset += clause.weight;
        addTerm(model, cost, a > 0 ? -clause.weight : clause.weight, isTrue[variableOf(a)]);
      } else {
        OXExpression* fails = model.createExpression(OXOperator::And);
        for (const long long a : clause.literals) fails->addOperand(literal(-a));
        addTerm(model, cost, clause.weight, fails);
      }
    }
    if (offset != 0 || cost->getNbOperands() == 0) cost->addOperand(offset);
    model.addObjective(cost, OXObjectiveDirection::Minimize);
  }

  OXModel& model;
  const std::vector<Clause>& clauses;
  std::vector<OXExpression*> isTrue;
  std::vector<OXExpression*> isFalse;
  std::vector<const Clause*> isTaken;  ///< by variable, the clause that became "exactly one"
  Conflicts conflicts;
};

}  // namespace

void buildMaxsat(OXModel& model, const std::string& fileName) {
  const std::vector<Clause> clauses = ClauseReader(fileName).read();
  ClauseModel(model, clauses).post();
}

}  // namespace bench
