#ifndef OMBRIX_BENCH_MODELS_MODELLING_H
#define OMBRIX_BENCH_MODELS_MODELLING_H

#include <ombrix/ombrix.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include "exampleprogram.h"

/// What the models of this folder share beyond the helpers of the examples.
namespace bench {

/// A new decision with the name that its indices make: x_3_7 for 3 and 7.
ombrix::OXExpression* createDecision(ombrix::OXModel& model,
                                     std::initializer_list<std::size_t> indices);

/// A table of decisions x_row_column with exactly one chosen in every row: the form in which the
/// engine keeps a choice valid from move to move.
examples::Table createNamedTable(ombrix::OXModel& model, std::size_t nbRows, std::size_t nbColumns);

/// Appends "factor times x" to a sum: x itself for the factor 1, nothing for 0.
void addTerm(ombrix::OXModel& model, ombrix::OXExpression* sum, long long factor,
             ombrix::OXExpression* x);

/// Which pairs of a set exclude each other, as a symmetric table.
using Conflicts = std::vector<std::vector<char>>;

/// Sets, found greedily, whose members all exclude one another and which hold every excluding pair
/// at least once. "At most one of the set" makes fewer constraints than one a pair, and lists
/// within which one member is exchanged for another.
std::vector<std::vector<std::size_t>> coverConflicts(const Conflicts& conflicts);

/// Posts "at most one" for each of these sets of decisions.
void forbidConflicts(ombrix::OXModel& model, const Conflicts& conflicts,
                     const std::vector<ombrix::OXExpression*>& decisions);

/// The lines of a text, plain or gzip, cut into words.
std::vector<std::vector<std::string>> readLines(const std::string& fileName,
                                                const std::string& separators = " \t\r");

/// A word as an integer; anything else is a std::runtime_error that names the file.
long long toInteger(const std::string& fileName, const std::string& word);
double toNumber(const std::string& fileName, const std::string& word);

}  // namespace bench

#endif
