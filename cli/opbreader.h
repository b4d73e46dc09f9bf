#ifndef OMBRIX_CLI_OPBREADER_H
#define OMBRIX_CLI_OPBREADER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "cli/blockreader.h"
#include "cli/opbmodel.h"

namespace ombrix::cli {

/// Reads a model in the OPB format of the pseudo-Boolean competitions, plain or gzip:
///
///     * a comment
///     min: +3 x1 -2 x2 ~x3 ;
///     +1 x1 +1 ~x2 >= 1 ;
///
/// One pass, one character of look-ahead, time linear in the file, memory a small multiple of it.
/// The sizes that a header comment announces are a hint and are not needed here. What is malformed
/// raises an InputError of the form "FILE:LINE:COLUMN: found ..., expected ...".
class OpbReader {
public:
  static OpbModel read(const std::string& fileName);

private:
  enum class Kind : std::uint8_t {
    Number,
    Name,
    Negation,
    Relation,
    Semicolon,
    Objective,
    Other,
    End
  };

  /// The token at hand. The text is kept short: a longer one is cut in messages only.
  struct Token {
    Kind kind = Kind::End;
    std::string text;
    std::size_t line = 1;
    std::size_t column = 1;
  };

  explicit OpbReader(const std::string& fileName) : input(fileName) {}

  void readModel();
  void readObjective();
  void readConstraint();
  OpbSum readSum();
  void readTerm();
  void readLiteral();
  std::int64_t readNumber(const std::string& expected);
  OpbRelation readRelation();
  void readSemicolon(const std::string& expected);

  void next();
  void skipBlanksAndComments();
  void scanNumber();
  void scanName();
  void scanRelation();
  void takeInto(std::string& text);

  std::uint32_t variableOf(const std::string& name);
  std::uint32_t newVariable(const std::string& name);
  void checkMagnitude(const OpbSum& sum, std::int64_t bound, const Token& start) const;
  void orderVariables();

  bool startsTerm() const { return token.kind == Kind::Number; }
  bool startsLiteral() const { return token.kind == Kind::Name || token.kind == Kind::Negation; }
  [[noreturn]] void failExpected(const std::string& expected) const;
  [[noreturn]] void failAt(const Token& place, const std::string& text) const;
  std::string describeToken() const;

  BlockReader input;
  Token token;
  bool atLineStart = true;
  OpbModel model;
  /// The variable of each number x1, x2, ... that is small enough for a table, kNone when new.
  std::vector<std::uint32_t> numbered;
  std::unordered_map<std::string, std::uint32_t> otherNames;
};

}  // namespace ombrix::cli

#endif
