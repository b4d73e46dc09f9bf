// A linear model over 0-1 variables in the MPS format: minimise the N row.
//
// Rows with decimal coefficients are multiplied by a power of ten, so that everything is computed
// exactly. Columns with equal bounds keep their decision, under a constraint.

#include <map>
#include <stdexcept>

#include "instancefile.h"
#include "modelling.h"
#include "models.h"

namespace bench {

using namespace ombrix;

namespace {

struct Row {
  char kind = 'N';
  std::vector<OXExpression*> columns;
  std::vector<double> coefficients;
  double rightHandSide = 0.0;
  double range = 0.0;
  bool hasRange = false;
};

class MpsReader {
public:
  MpsReader(OXModel& target, const std::string& name) : model(target), fileName(name) {}

  void read() {
    std::string section;
    for (const auto& words : readLines(fileName)) {
      if (words.empty() || words[0][0] == '*') continue;
      if (words[0] == "ENDATA") break;
      if (isSection(words)) {
        section = words[0];
      } else {
        readLine(section, words);
      }
    }
    if (objective.empty()) throw std::runtime_error(fileName + ": found no N row, expected one");
  }

  /// Adds what was read to the model.
  void post() {
    for (const std::string& name : order) {
      const Row& row = rows.at(name);
      if (row.kind != 'N' && !row.columns.empty()) postRow(row);
    }
    const Row& row = rows.at(objective);
    std::vector<double> numbers = row.coefficients;
    numbers.push_back(row.rightHandSide);
    const examples::ScaledNumbers number(numbers);
    OXExpression* cost = createSum(row, number);
    const long long offset = number[row.columns.size()];
    if (offset != 0 || row.columns.empty()) cost->addOperand(-offset);
    model.addObjective(cost, OXObjectiveDirection::Minimize);
  }

private:
  /// The name of a section stands alone in its line, but for NAME.
  static bool isSection(const std::vector<std::string>& words) {
    static const std::vector<std::string> kNames = {"NAME", "ROWS",   "COLUMNS",
                                                    "RHS",  "RANGES", "BOUNDS"};
    if (words[0] == "NAME") return true;
    if (words.size() > 1) return false;
    for (const std::string& name : kNames) {
      if (words[0] == name) return true;
    }
    return false;
  }

  void readLine(const std::string& section, const std::vector<std::string>& words) {
    if (section == "ROWS") {
      if (words.size() != 2 || words[0].size() != 1) fail(words);
      if (words[0] == "N" && objective.empty()) objective = words[1];
      rows[words[1]].kind = words[0][0];
      order.push_back(words[1]);
    } else if (section == "COLUMNS") {
      readColumn(words);
    } else if (section == "RHS") {
      readNumbers(words, [](Row& row, double x) { row.rightHandSide = x; });
    } else if (section == "RANGES") {
      readNumbers(words, [](Row& row, double x) {
        row.range = x;
        row.hasRange = true;
      });
    } else if (section == "BOUNDS") {
      readBound(words);
    } else {
      fail(words);
    }
  }

  void readColumn(const std::vector<std::string>& words) {
    if (words.size() > 1 && words[1] == "'MARKER'") return;
    if (words.size() < 3 || words.size() % 2 == 0) fail(words);
    OXExpression*& column = columns[words[0]];
    if (column == nullptr) {
      column = model.createExpression(OXOperator::Bool);
      column->setName(words[0]);
    }
    for (std::size_t i = 1; i < words.size(); i += 2) {
      Row& row = findRow(words[i]);
      row.columns.push_back(column);
      row.coefficients.push_back(toNumber(fileName, words[i + 1]));
    }
  }

  /// Pairs of row and number, behind the name of the set, which may be missing.
  template <typename Set>
  void readNumbers(const std::vector<std::string>& words, Set set) {
    for (std::size_t i = words.size() % 2; i < words.size(); i += 2) {
      set(findRow(words[i]), toNumber(fileName, words[i + 1]));
    }
  }

  void readBound(const std::vector<std::string>& words) {
    if (words[0] == "BV") return;
    if (words.size() != 4) fail(words);
    const auto column = columns.find(words[2]);
    const double value = toNumber(fileName, words[3]);
    if (column == columns.end() || (value != 0.0 && value != 1.0)) fail(words);
    const bool isNarrow = words[0] == "FX" || (words[0] == "UP" && value == 0.0) ||
                          (words[0] == "LO" && value == 1.0);
    if (isNarrow) examples::requireEqual(model, column->second, value == 0.0 ? 0 : 1);
  }

  Row& findRow(const std::string& name) {
    const auto row = rows.find(name);
    if (row == rows.end()) throw std::runtime_error(fileName + ": found no row " + name);
    return row->second;
  }

  OXExpression* createSum(const Row& row, const examples::ScaledNumbers& number) {
    OXExpression* sum = model.createExpression(OXOperator::Sum);
    for (std::size_t i = 0; i < row.columns.size(); ++i) {
      if (number[i] != 0) addTerm(model, sum, number[i], row.columns[i]);
    }
    return sum;
  }

  void postRow(const Row& row) {
    std::vector<double> numbers = row.coefficients;
    numbers.push_back(row.rightHandSide);
    numbers.push_back(row.range);
    const examples::ScaledNumbers number(numbers);
    const long long side = number[row.columns.size()];
    const long long range = number[row.columns.size() + 1];
    OXExpression* sum = createSum(row, number);
    if (sum->getNbOperands() == 0) sum->addOperand(0);
    if (row.kind == 'E' && !row.hasRange) {
      examples::requireEqual(model, sum, side);
      return;
    }
    const bool hasLow = row.kind == 'G' || row.hasRange;
    const bool hasHigh = row.kind == 'L' || row.hasRange;
    const long long width = range < 0 ? -range : range;
    const bool isBelow = row.kind == 'L' || (row.kind == 'E' && range < 0);
    if (hasLow) examples::requireAtLeast(model, sum, isBelow ? side - width : side);
    if (hasHigh) {
      examples::requireAtMost(model, sum, isBelow || !row.hasRange ? side : side + width);
    }
  }

  [[noreturn]] void fail(const std::vector<std::string>& words) const {
    throw std::runtime_error(fileName + ": found '" + words[0] + " ...', expected a line of MPS");
  }

  OXModel& model;
  std::string fileName;
  std::string objective;
  std::vector<std::string> order;
  std::map<std::string, Row> rows;
  std::map<std::string, OXExpression*> columns;
};

}  // namespace

void buildMip01(OXModel& model, const std::string& fileName) {
  MpsReader reader(model, fileName);
  reader.read();
  reader.post();
}

}  // namespace bench
