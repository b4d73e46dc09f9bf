// Set covering: choose columns of the smallest total cost so that every row is covered.
//
// File, one of three layouts that are told apart by their length: "rows columns", the costs of the
// columns, and for each row the number of columns covering it and those columns; "rows columns",
// and for each column its cost, the number of rows it covers and those rows; or "points triples"
// and the triples of points, each of which must be hit at unit cost. Numbers of rows, columns and
// points start at 1.

#include <algorithm>
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

/// The cheapest of the columns that cover each row.
std::vector<std::size_t> cheapestColumns(const Instance& instance) {
  std::vector<std::size_t> cheapest;
  for (const auto& row : instance.coveringColumns) {
    if (row.empty()) throw std::runtime_error("a row is covered by no column");
    cheapest.push_back(*std::min_element(row.begin(), row.end(), [&](std::size_t a, std::size_t b) {
      return instance.costs[a] < instance.costs[b];
    }));
  }
  return cheapest;
}

/// The columns chosen, and the cheapest one of each row that they leave out; numbered from 1.
std::vector<long long> covering(const std::vector<OXExpression*>& isChosen,
                                const std::vector<OXExpression*>& isLeftOut,
                                const std::vector<std::size_t>& cheapest) {
  std::vector<bool> isTaken;
  for (OXExpression* column : isChosen) isTaken.push_back(column->getIntValue() != 0);
  for (std::size_t row = 0; row < isLeftOut.size(); ++row) {
    if (isLeftOut[row]->getIntValue() != 0) isTaken[cheapest[row]] = true;
  }
  std::vector<long long> columns;
  for (std::size_t column = 0; column < isTaken.size(); ++column) {
    if (isTaken[column]) columns.push_back(static_cast<long long>(column) + 1);
  }
  return columns;
}

/// The model has no constraints: a row that the chosen columns leave out is priced at its cheapest
/// column, which will be added to the answer. Every choice thus stands for a covering that costs at
/// most what the objective says, a best one costs just that, and the search passes freely through
/// choices that cover only in part, where a constraint for each row would stop it at every step.
void run(const examples::Arguments& arguments) {
  const Instance instance(arguments.instance);
  const std::vector<std::size_t> cheapest = cheapestColumns(instance);
  Ombrix solver;
  OXModel& model = *solver.getModel();
  std::vector<OXExpression*> isChosen;
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (const long long columnCost : instance.costs) {
    isChosen.push_back(model.createExpression(OXOperator::Bool));
    cost->addOperand(examples::times(model, columnCost, isChosen.back()));
  }
  std::vector<OXExpression*> isLeftOut;
  for (std::size_t row = 0; row < cheapest.size(); ++row) {
    OXExpression* isCovered = model.createExpression(OXOperator::Or);
    for (const std::size_t column : instance.coveringColumns[row]) {
      isCovered->addOperand(isChosen[column]);
    }
    isLeftOut.push_back(model.createExpression(OXOperator::Not, isCovered));
    cost->addOperand(examples::times(model, instance.costs[cheapest[row]], isLeftOut.back()));
  }
  model.addObjective(cost, OXObjectiveDirection::Minimize);
  model.close();
  // Columns that share rows improve by exchanges whose first half makes it worse.
  solver.getParam()->setAnnealingLevel(9);
  examples::solveFor(solver, arguments.seconds);

  const std::vector<long long> columns = covering(isChosen, isLeftOut, cheapest);
  long long total = 0;
  for (const long long column : columns) {
    total += instance.costs[static_cast<std::size_t>(column) - 1];
  }
  examples::report(solver, arguments, static_cast<double>(total), columns);
}

}  // namespace

int main(int argc, char** argv) {
  return examples::runExample(argc, argv, run);
}
