#ifndef OMBRIX_EXAMPLES_EXAMPLEPROGRAM_H
#define OMBRIX_EXAMPLES_EXAMPLEPROGRAM_H

#include <ombrix/ombrix.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// What the example programs share around their models: the command line, the search, the answer.
namespace examples {

struct Arguments {
  std::string instance;
  int seconds = 10;
  std::optional<double> bestKnown;
  std::string solutionFile;  ///< empty for none
};

/// Runs an example: reads the command line (INSTANCE [SECONDS [BEST_KNOWN [SOLUTION_FILE]]]), calls
/// the body, and turns a failure into one line on the standard error and the exit status 1. With -h
/// or --help alone it prints the usage. A solution file that cannot be written fails before the
/// body; one that was not there is empty until report fills it.
int runExample(int argc, char** argv, const std::function<void(const Arguments&)>& body);

/// Searches for the given time, with the engine's own display: in the first phase, which is new
/// unless an environment was loaded.
void solveFor(ombrix::Ombrix& solver, int seconds);

/// What solveFor is to do with a closed solver and the seconds instead of searching as it does; for
/// a program that wants the model of an example, or its search with other parameters.
void replaceSearch(const std::function<void(ombrix::Ombrix&, int)>& search);

/// Prints the answer beside the best known value, and writes the solution if a file was given.
/// Returns normally also when no feasible solution was found: it then says so.
void report(ombrix::Ombrix& solver, const Arguments& arguments, double objective,
            const std::vector<long long>& solution);

/// The same for an answer that is known to be feasible.
void reportAnswer(const Arguments& arguments, double objective,
                  const std::vector<long long>& solution);

/// The model's "factor times x".
ombrix::OXExpression* times(ombrix::OXModel& model, long long factor, ombrix::OXExpression* x);

/// The same with a double, which makes the expression a double.
ombrix::OXExpression* weighted(ombrix::OXModel& model, double weight, ombrix::OXExpression* x);

/// "sum of the expressions is value", "at most value", "at least value".
void requireEqual(ombrix::OXModel& model, ombrix::OXExpression* expression, long long value);
void requireAtMost(ombrix::OXModel& model, ombrix::OXExpression* expression, long long value);
void requireAtLeast(ombrix::OXModel& model, ombrix::OXExpression* expression, long long value);

/// A rows x columns table of new decisions with exactly one chosen in every row.
using Table = std::vector<std::vector<ombrix::OXExpression*>>;
Table createTable(ombrix::OXModel& model, std::size_t nbRows, std::size_t nbColumns);

/// "sum of the column of the table is value".
void requireColumnSum(ombrix::OXModel& model, const Table& table, std::size_t column,
                      long long value);

/// A square table of new decisions with exactly one chosen in every row and in every column: a
/// permutation. The rows come first: the moves that turn or shift a stretch of a permutation work
/// on neighbouring lists of which exactly one decision holds.
Table createAssignment(ombrix::OXModel& model, std::size_t size);

/// The number of the column chosen in every row, as an expression of the model.
std::vector<ombrix::OXExpression*> createChosenColumns(ombrix::OXModel& model, const Table& table);

/// The column chosen in every row of the solution.
std::vector<long long> chosenColumns(const Table& table);

/// The numbers, counted from first, of the decisions that are 1.
std::vector<long long> chosen(const std::vector<ombrix::OXExpression*>& decisions, long long first);

}  // namespace examples

#endif
