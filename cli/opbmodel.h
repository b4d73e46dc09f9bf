#ifndef OMBRIX_CLI_OPBMODEL_H
#define OMBRIX_CLI_OPBMODEL_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ombrix::cli {

/// A variable or its negation, in 32 bits: twice the position of the variable in OpbModel::names,
/// plus one for the negation.
struct OpbLiteral {
  std::uint32_t code = 0;

  static OpbLiteral of(std::uint32_t variable, bool negated) {
    return OpbLiteral{variable * 2 + (negated ? 1U : 0U)};
  }
  std::uint32_t variable() const { return code / 2; }
  bool isNegated() const { return code % 2 != 0; }
  bool operator==(const OpbLiteral&) const = default;
  auto operator<=>(const OpbLiteral&) const = default;
};

/// A coefficient times the product of some literals, which stand in OpbModel::literals.
struct OpbTerm {
  std::int64_t coefficient = 0;
  std::size_t firstLiteral = 0;
  std::uint32_t nbLiterals = 0;
};

/// A sum: a range of OpbModel::terms.
struct OpbSum {
  std::size_t firstTerm = 0;
  std::size_t nbTerms = 0;
};

enum class OpbRelation : std::uint8_t { AtLeast, Equal, AtMost };

struct OpbConstraint {
  OpbSum sum;
  std::int64_t bound = 0;
  OpbRelation relation = OpbRelation::AtLeast;
};

/// A pseudo-Boolean file as it was written, in flat arrays. The variables are in the order of their
/// numbers, those with other names after them in order of appearance. For every sum, the absolute
/// values of its coefficients and of its bound add up to less than 2^63, so that no evaluation of
/// it can overflow.
struct OpbModel {
  std::vector<std::string> names;
  std::vector<OpbLiteral> literals;
  std::vector<OpbTerm> terms;
  std::vector<OpbConstraint> constraints;
  OpbSum objective;
  bool hasObjective = false;
  bool isMaximized = false;

  /// Lets go of everything but the names and the kind of objective, once a model has been built.
  void releaseSums() {
    literals = std::vector<OpbLiteral>();
    terms = std::vector<OpbTerm>();
    constraints = std::vector<OpbConstraint>();
    objective = OpbSum();
  }
};

}  // namespace ombrix::cli

#endif
