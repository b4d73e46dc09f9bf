#include "modelling.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "instancefile.h"

namespace bench {

using namespace ombrix;

namespace {

std::vector<std::string> split(const std::string& text, std::size_t start, std::size_t end,
                               const std::string& separators) {
  std::vector<std::string> words;
  while (start < end) {
    const std::size_t first = text.find_first_not_of(separators, start);
    if (first == std::string::npos || first >= end) break;
    const std::size_t last = std::min(text.find_first_of(separators, first), end);
    words.push_back(text.substr(first, last - first));
    start = last;
  }
  return words;
}

template <typename Number>
Number parse(const std::string& fileName, const std::string& word, const char* expected) {
  const char* start = word.c_str() + (word.size() > 1 && word[0] == '+' ? 1 : 0);
  const char* end = word.c_str() + word.size();
  Number value{};
  const auto result = std::from_chars(start, end, value);
  if (result.ec != std::errc() || result.ptr != end) {
    throw std::runtime_error(fileName + ": found '" + word + "', expected " + expected);
  }
  return value;
}

bool excludesAll(const Conflicts& conflicts, const std::vector<std::size_t>& members,
                 std::size_t w) {
  return std::all_of(members.begin(), members.end(),
                     [&](std::size_t member) { return conflicts[member][w] != 0; });
}

void nameDecision(OXExpression* decision, std::initializer_list<std::size_t> indices) {
  std::string name = "x";
  for (const std::size_t index : indices) name += "_" + std::to_string(index);
  decision->setName(name);
}

}  // namespace

OXExpression* createDecision(OXModel& model, std::initializer_list<std::size_t> indices) {
  OXExpression* decision = model.createExpression(OXOperator::Bool);
  nameDecision(decision, indices);
  return decision;
}

examples::Table createNamedTable(OXModel& model, std::size_t nbRows, std::size_t nbColumns) {
  examples::Table table = examples::createTable(model, nbRows, nbColumns);
  for (std::size_t row = 0; row < nbRows; ++row) {
    for (std::size_t column = 0; column < nbColumns; ++column) {
      nameDecision(table[row][column], {row, column});
    }
  }
  return table;
}

void addTerm(OXModel& model, OXExpression* sum, long long factor, OXExpression* x) {
  if (factor == 0) return;
  sum->addOperand(factor == 1 ? x : examples::times(model, factor, x));
}

std::vector<std::vector<std::size_t>> coverConflicts(const Conflicts& conflicts) {
  const std::size_t n = conflicts.size();
  std::vector<std::vector<std::size_t>> sets;
  Conflicts isOpen = conflicts;
  for (std::size_t u = 0; u < n; ++u) {
    for (std::size_t v = u + 1; v < n; ++v) {
      if (isOpen[u][v] == 0) continue;
      std::vector<std::size_t> members = {u, v};
      for (std::size_t w = v + 1; w < n; ++w) {
        if (isOpen[u][w] != 0 && excludesAll(conflicts, members, w)) members.push_back(w);
      }
      for (const std::size_t a : members) {
        for (const std::size_t b : members) isOpen[a][b] = 0;
      }
      sets.push_back(members);
    }
  }
  return sets;
}

void forbidConflicts(OXModel& model, const Conflicts& conflicts,
                     const std::vector<OXExpression*>& decisions) {
  for (const std::vector<std::size_t>& members : coverConflicts(conflicts)) {
    OXExpression* nbMembers = model.createExpression(OXOperator::Sum);
    for (const std::size_t member : members) nbMembers->addOperand(decisions[member]);
    examples::requireAtMost(model, nbMembers, 1);
  }
}

std::vector<std::vector<std::string>> readLines(const std::string& fileName,
                                                const std::string& separators) {
  const std::string text = examples::readText(fileName);
  std::vector<std::vector<std::string>> lines;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    lines.push_back(split(text, start, end, separators));
    start = end + 1;
  }
  return lines;
}

long long toInteger(const std::string& fileName, const std::string& word) {
  return parse<long long>(fileName, word, "an integer");
}

double toNumber(const std::string& fileName, const std::string& word) {
  return parse<double>(fileName, word, "a number");
}

}  // namespace bench
