#include "exampleprogram.h"

#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace examples {

using namespace ombrix;

namespace {

constexpr const char* kUsage = "usage: PROGRAM INSTANCE [SECONDS [BEST_KNOWN [SOLUTION_FILE]]]";

template <typename Number>
Number parse(const std::string& text, const char* name) {
  Number value{};
  const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end.ec != std::errc() || end.ptr != text.data() + text.size()) {
    throw std::runtime_error("found '" + text + "', expected a number for " + name + "; " + kUsage);
  }
  return value;
}

/// Opens the file, if one is named, and leaves what it holds: better to fail now than after the
/// search.
void requireWritable(const std::string& fileName) {
  if (fileName.empty() || std::ofstream(fileName, std::ios::app)) return;
  throw std::runtime_error("Cannot write file " + fileName);
}

Arguments parseArguments(int argc, char** argv) {
  if (argc < 2 || argc > 5) throw std::runtime_error(kUsage);
  Arguments arguments;
  arguments.instance = argv[1];
  if (argc > 2) arguments.seconds = parse<int>(argv[2], "SECONDS");
  if (arguments.seconds < 1) throw std::runtime_error("SECONDS must be at least 1");
  // "-" leaves the best known value out, so that a solution file can be given without it.
  if (argc > 3 && std::string(argv[3]) != "-") {
    arguments.bestKnown = parse<double>(argv[3], "BEST_KNOWN");
  }
  if (argc > 4) arguments.solutionFile = argv[4];
  requireWritable(arguments.solutionFile);
  return arguments;
}

bool isHelpWanted(int argc, char** argv) {
  return argc == 2 && (std::string(argv[1]) == "-h" || std::string(argv[1]) == "--help");
}

void writeSolution(const std::string& fileName, const std::vector<long long>& solution) {
  std::ofstream out(fileName);
  for (const long long number : solution) out << number << '\n';
  out.close();
  if (!out) throw std::runtime_error("Cannot write file " + fileName);
}

std::function<void(Ombrix&, int)>& replacedSearch() {
  static std::function<void(Ombrix&, int)> search;
  return search;
}

bool isFeasible(OXSolutionStatus status) {
  return status == OXSolutionStatus::Feasible || status == OXSolutionStatus::Optimal;
}

}  // namespace

int runExample(int argc, char** argv, const std::function<void(const Arguments&)>& body) {
  if (isHelpWanted(argc, argv)) {
    std::cout << kUsage << '\n';
    return EXIT_SUCCESS;
  }
  try {
    body(parseArguments(argc, argv));
    return EXIT_SUCCESS;
  } catch (const OXException& failure) {
    std::cerr << failure.getExplanation() << '\n';
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
  }
  return EXIT_FAILURE;
}

void replaceSearch(const std::function<void(Ombrix&, int)>& search) {
  replacedSearch() = search;
}

void solveFor(Ombrix& solver, int seconds) {
  if (replacedSearch()) {
    replacedSearch()(solver, seconds);
    return;
  }
  OXPhase* phase = solver.getNbPhases() == 0 ? solver.createPhase() : solver.getPhase(0);
  phase->setTimeLimit(seconds);
  solver.solve();
}

void report(Ombrix& solver, const Arguments& arguments, double objective,
            const std::vector<long long>& solution) {
  if (!isFeasible(solver.getSolution()->getStatus())) {
    std::cout << "no feasible solution found\n";
    return;
  }
  reportAnswer(arguments, objective, solution);
}

void reportAnswer(const Arguments& arguments, double objective,
                  const std::vector<long long>& solution) {
  std::cout.precision(15);
  std::cout << "objective " << objective;
  if (arguments.bestKnown) std::cout << ", best known " << *arguments.bestKnown;
  std::cout << '\n';
  if (!arguments.solutionFile.empty()) writeSolution(arguments.solutionFile, solution);
}

OXExpression* times(OXModel& model, long long factor, OXExpression* x) {
  return model.createExpression(OXOperator::Prod, model.createConstant(factor), x);
}

OXExpression* weighted(OXModel& model, double weight, OXExpression* x) {
  return model.createExpression(OXOperator::Prod, model.createConstant(weight), x);
}

void requireEqual(OXModel& model, OXExpression* expression, long long value) {
  model.addConstraint(
      model.createExpression(OXOperator::Eq, expression, model.createConstant(value)));
}

void requireAtMost(OXModel& model, OXExpression* expression, long long value) {
  model.addConstraint(
      model.createExpression(OXOperator::Leq, expression, model.createConstant(value)));
}

void requireAtLeast(OXModel& model, OXExpression* expression, long long value) {
  model.addConstraint(
      model.createExpression(OXOperator::Geq, expression, model.createConstant(value)));
}

Table createTable(OXModel& model, std::size_t nbRows, std::size_t nbColumns) {
  Table table(nbRows, std::vector<OXExpression*>(nbColumns));
  for (auto& row : table) {
    OXExpression* chosen = model.createExpression(OXOperator::Sum);
    for (OXExpression*& cell : row) {
      cell = model.createExpression(OXOperator::Bool);
      chosen->addOperand(cell);
    }
    requireEqual(model, chosen, 1);
  }
  return table;
}

void requireColumnSum(OXModel& model, const Table& table, std::size_t column, long long value) {
  OXExpression* sum = model.createExpression(OXOperator::Sum);
  for (const auto& row : table) sum->addOperand(row[column]);
  requireEqual(model, sum, value);
}

Table createAssignment(OXModel& model, std::size_t size) {
  Table table = createTable(model, size, size);
  for (std::size_t column = 0; column < size; ++column) requireColumnSum(model, table, column, 1);
  return table;
}

std::vector<OXExpression*> createChosenColumns(OXModel& model, const Table& table) {
  std::vector<OXExpression*> columns;
  for (const auto& row : table) {
    OXExpression* column = model.createExpression(OXOperator::Sum);
    for (std::size_t j = 0; j < row.size(); ++j) {
      column->addOperand(times(model, static_cast<long long>(j), row[j]));
    }
    columns.push_back(column);
  }
  return columns;
}

std::vector<long long> chosenColumns(const Table& table) {
  std::vector<long long> columns;
  for (const auto& row : table) {
    std::size_t column = 0;
    while (column < row.size() && row[column]->getIntValue() == 0) ++column;
    columns.push_back(static_cast<long long>(column));
  }
  return columns;
}

std::vector<long long> chosen(const std::vector<OXExpression*>& decisions, long long first) {
  std::vector<long long> numbers;
  for (std::size_t i = 0; i < decisions.size(); ++i) {
    if (decisions[i]->getIntValue() != 0) numbers.push_back(first + static_cast<long long>(i));
  }
  return numbers;
}

}  // namespace examples
