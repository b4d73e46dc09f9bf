// Set covering: choose columns of the smallest total cost so that every row is covered.
//
// File, one of three layouts that are told apart by their length: "rows columns", the costs of the
// columns, and for each row the number of columns covering it and those columns; "rows columns",
// and for each column its cost, the number of rows it covers and those rows; or "points triples"
// and the triples of points, each of which must be hit at unit cost. Numbers of rows, columns and
// points start at 1.

#include <stdexcept>
#include <vector>

#include "exampleprogram.h"
#include "instancefile.h"

using namespace ombrix;

namespace {

/// For each row the columns that cover it.
class Instance {
public:
  explicit Instance(const std::string& fileName) {
    examples::InstanceFile file(fileName);
    while (!file.atEnd()) numbers.push_back(file.nextInt());
    if (!readTriples() && !readRows() && !readColumns()) {
      throw std::runtime_error(fileName +
                               ": found numbers that fit none of the layouts, expected rows with "
                               "their columns, columns with their rows, or triples");
    }
  }

  std::vector<long long> costs;
  std::vector<std::vector<std::size_t>> coveringColumns;

private:
  bool startReading(std::size_t rowPosition, std::size_t columnPosition) {
    constexpr long long kLargest = 100000000;
    position = 0;
    if (numbers.size() < 2 || numbers[0] < 1 || numbers[1] < 1 || numbers[0] > kLargest ||
        numbers[1] > kLargest) {
      return false;
    }
    nbRows = static_cast<std::size_t>(numbers[rowPosition]);
    nbColumns = static_cast<std::size_t>(numbers[columnPosition]);
    position = 2;
    return nbRows < numbers.size() && nbColumns <= numbers.size() * 3;
  }

  bool next(long long low, long long high, std::size_t& value) {
    if (position == numbers.size() || numbers[position] < low || numbers[position] > high) {
      return false;
    }
    value = static_cast<std::size_t>(numbers[position++]);
    return true;
  }

  bool readTriples() {
    if (!startReading(1, 0) || numbers.size() != 2 + 3 * nbRows) return false;
    costs.assign(nbColumns, 1);
    coveringColumns.assign(nbRows, {});
    for (auto& row : coveringColumns) {
      for (int i = 0; i < 3; ++i) {
        std::size_t point = 0;
        if (!next(1, static_cast<long long>(nbColumns), point)) return false;
        row.push_back(point - 1);
      }
    }
    return true;
  }

  bool readRows() {
    if (!startReading(0, 1) || numbers.size() < 2 + nbColumns) return false;
    costs.assign(numbers.begin() + 2, numbers.begin() + 2 + static_cast<std::ptrdiff_t>(nbColumns));
    position = 2 + nbColumns;
    coveringColumns.assign(nbRows, {});
    for (auto& row : coveringColumns) {
      std::size_t count = 0;
      if (!next(0, static_cast<long long>(nbColumns), count)) return false;
      for (std::size_t i = 0; i < count; ++i) {
        std::size_t column = 0;
        if (!next(1, static_cast<long long>(nbColumns), column)) return false;
        row.push_back(column - 1);
      }
    }
    return position == numbers.size();
  }

  bool readColumns() {
    if (!startReading(0, 1)) return false;
    costs.clear();
    coveringColumns.assign(nbRows, {});
    for (std::size_t column = 0; column < nbColumns; ++column) {
      if (position == numbers.size()) return false;
      costs.push_back(numbers[position++]);
      std::size_t count = 0;
      if (!next(0, static_cast<long long>(nbRows), count)) return false;
      for (std::size_t i = 0; i < count; ++i) {
        std::size_t row = 0;
        if (!next(1, static_cast<long long>(nbRows), row)) return false;
        coveringColumns[row - 1].push_back(column);
      }
    }
    return position == numbers.size();
  }

  std::vector<long long> numbers;
  std::size_t position = 0;
  std::size_t nbRows = 0;
  std::size_t nbColumns = 0;
};

void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  Ombrix solver;
  OXModel& model = *solver.getModel();
  std::vector<OXExpression*> isChosen;
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (const long long columnCost : instance.costs) {
    isChosen.push_back(model.createExpression(OXOperator::Bool));
    cost->addOperand(examples::times(model, columnCost, isChosen.back()));
  }
  for (const auto& row : instance.coveringColumns) {
    if (row.empty()) throw std::runtime_error("a row is covered by no column");
    OXExpression* cover = model.createExpression(OXOperator::Sum);
    for (const std::size_t column : row) cover->addOperand(isChosen[column]);
    examples::requireAtLeast(model, cover, 1);
  }
  model.addObjective(cost, OXObjectiveDirection::Minimize);
  model.close();
  examples::solveFor(solver, arguments.seconds);
  examples::report(solver, arguments, static_cast<double>(cost->getIntValue()),
                   examples::chosen(isChosen, 1));
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
