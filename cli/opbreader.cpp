#include "cli/opbreader.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>
#include <tuple>
#include <utility>

#include "cli/inputerror.h"

namespace ombrix::cli {
namespace {

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
/// Literals hold a variable in 31 bits, and the engine counts expressions in 31 bits.
constexpr std::size_t kMaxVariables = std::numeric_limits<std::int32_t>::max();
/// Numbers up to here are looked up in a table, so that its size stays bounded whatever is in the
/// file; larger ones and other names go through a hash map.
constexpr std::uint64_t kMaxTableNumber = std::uint64_t{1} << 22;
constexpr std::size_t kMaxShownLength = 40;
constexpr std::uint64_t kMaxMagnitude = std::numeric_limits<std::int64_t>::max();

bool isBlank(int c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool isDigit(int c) {
  return c >= '0' && c <= '9';
}
bool isNameStart(int c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool isNameCharacter(int c) {
  return isNameStart(c) || isDigit(c) || c == '[' || c == ']' || c == '.' || c == '#';
}

/// The number of a name of the form x<digits> without leading zero; 0 for any other name.
std::uint64_t numberOf(const std::string& name) {
  constexpr std::size_t kMaxDigits = 18;
  if (name.size() < 2 || name.size() > kMaxDigits + 1 || name[0] != 'x' || name[1] == '0') return 0;
  std::uint64_t number = 0;
  const char* end = name.data() + name.size();
  const auto result = std::from_chars(name.data() + 1, end, number);
  return result.ec == std::errc() && result.ptr == end ? number : 0;
}

std::uint64_t magnitude(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? 0 - bits : bits;
}

}  // namespace

OpbModel OpbReader::read(const std::string& fileName) {
  OpbReader reader(fileName);
  reader.readModel();
  return std::move(reader.model);
}

void OpbReader::readModel() {
  next();
  if (token.kind == Kind::End) failExpected("\"min:\", \"max:\" or a constraint");
  if (token.kind == Kind::Objective) readObjective();
  while (token.kind != Kind::End) readConstraint();
  orderVariables();
}

void OpbReader::readObjective() {
  const Token start = token;
  model.hasObjective = true;
  model.isMaximized = token.text == "max:";
  next();
  if (token.kind == Kind::Semicolon) {
    next();
    return;
  }
  if (!startsTerm()) failExpected("a coefficient or \";\"");
  model.objective = readSum();
  checkMagnitude(model.objective, 0, start);
  readSemicolon("a literal, a coefficient or \";\"");
}

void OpbReader::readConstraint() {
  const Token start = token;
  if (!startsTerm()) failExpected("the coefficient that begins a constraint");
  OpbConstraint constraint;
  constraint.sum = readSum();
  constraint.relation = readRelation();
  constraint.bound = readNumber("the integer bound of the constraint");
  checkMagnitude(constraint.sum, constraint.bound, start);
  readSemicolon("\";\"");
  model.constraints.push_back(constraint);
}

OpbSum OpbReader::readSum() {
  OpbSum sum;
  sum.firstTerm = model.terms.size();
  while (startsTerm()) readTerm();
  sum.nbTerms = model.terms.size() - sum.firstTerm;
  return sum;
}

void OpbReader::readTerm() {
  OpbTerm term;
  term.coefficient = readNumber("a coefficient");
  term.firstLiteral = model.literals.size();
  if (!startsLiteral()) failExpected("a literal such as x1 or ~x1");
  while (startsLiteral()) readLiteral();
  term.nbLiterals = static_cast<std::uint32_t>(model.literals.size() - term.firstLiteral);
  model.terms.push_back(term);
}

void OpbReader::readLiteral() {
  const bool negated = token.kind == Kind::Negation;
  if (negated) {
    next();
    if (token.kind != Kind::Name) failExpected("the name of a variable after \"~\"");
  }
  model.literals.push_back(OpbLiteral::of(variableOf(token.text), negated));
  next();
}

std::int64_t OpbReader::readNumber(const std::string& expected) {
  if (token.kind != Kind::Number) failExpected(expected);
  const char* begin = token.text.data() + (token.text[0] == '+' ? 1 : 0);
  const char* end = token.text.data() + token.text.size();
  std::int64_t value = 0;
  const auto result = std::from_chars(begin, end, value);
  if (result.ec == std::errc::result_out_of_range) {
    failExpected("an integer of 64 bits, from -9223372036854775808 to 9223372036854775807");
  }
  if (result.ec != std::errc() || result.ptr != end) failExpected(expected);
  next();
  return value;
}

OpbRelation OpbReader::readRelation() {
  if (token.kind != Kind::Relation)
    failExpected("a literal, a coefficient, \">=\", \"=\" or \"<=\"");
  const OpbRelation relation = token.text == ">="  ? OpbRelation::AtLeast
                               : token.text == "=" ? OpbRelation::Equal
                                                   : OpbRelation::AtMost;
  next();
  return relation;
}

void OpbReader::readSemicolon(const std::string& expected) {
  if (token.kind != Kind::Semicolon) failExpected(expected);
  next();
}

void OpbReader::next() {
  skipBlanksAndComments();
  token.text.clear();
  token.line = input.getLine();
  token.column = input.getColumn();
  const int c = input.peek();
  if (c == BlockReader::kEnd) {
    token.kind = Kind::End;
  } else if (isDigit(c) || c == '+' || c == '-') {
    scanNumber();
  } else if (isNameStart(c)) {
    scanName();
  } else if (c == '>' || c == '<' || c == '=') {
    scanRelation();
  } else {
    takeInto(token.text);
    token.kind = c == ';' ? Kind::Semicolon : c == '~' ? Kind::Negation : Kind::Other;
  }
}

/// A comment is a line whose first character but blanks is "*".
void OpbReader::skipBlanksAndComments() {
  for (;;) {
    const int c = input.peek();
    if (c == '*' && atLineStart) {
      while (input.peek() != '\n' && input.peek() != BlockReader::kEnd) input.take();
    } else if (isBlank(c)) {
      if (c == '\n') atLineStart = true;
      input.take();
    } else {
      atLineStart = false;
      return;
    }
  }
}

/// A sign alone, or a number that runs into a name, is no number: it becomes a token of its own
/// kind so that the message shows what stands there.
void OpbReader::scanNumber() {
  token.kind = Kind::Number;
  takeInto(token.text);
  while (isDigit(input.peek())) takeInto(token.text);
  if (!isDigit(token.text.back())) token.kind = Kind::Other;
  while (isNameCharacter(input.peek())) {
    token.kind = Kind::Other;
    takeInto(token.text);
  }
}

void OpbReader::scanName() {
  token.kind = Kind::Name;
  while (isNameCharacter(input.peek())) takeInto(token.text);
  if (input.peek() == ':') {
    takeInto(token.text);
    token.kind = token.text == "min:" || token.text == "max:" ? Kind::Objective : Kind::Other;
  }
}

void OpbReader::scanRelation() {
  const int first = input.peek();
  takeInto(token.text);
  if (first != '=' && input.peek() == '=') takeInto(token.text);
  token.kind = token.text == ">" || token.text == "<" ? Kind::Other : Kind::Relation;
}

void OpbReader::takeInto(std::string& text) {
  text.push_back(static_cast<char>(input.peek()));
  input.take();
}

std::uint32_t OpbReader::variableOf(const std::string& name) {
  const std::uint64_t number = numberOf(name);
  if (number != 0 && number < kMaxTableNumber) {
    if (number >= numbered.size()) numbered.resize(number + 1, kNone);
    std::uint32_t& variable = numbered[number];
    if (variable == kNone) variable = newVariable(name);
    return variable;
  }
  const auto found = otherNames.find(name);
  if (found != otherNames.end()) return found->second;
  const std::uint32_t variable = newVariable(name);
  otherNames.emplace(name, variable);
  return variable;
}

std::uint32_t OpbReader::newVariable(const std::string& name) {
  if (model.names.size() >= kMaxVariables) failExpected("at most 2147483647 variables");
  model.names.push_back(name);
  return static_cast<std::uint32_t>(model.names.size() - 1);
}

void OpbReader::checkMagnitude(const OpbSum& sum, std::int64_t bound, const Token& start) const {
  std::uint64_t total = magnitude(bound);
  bool fits = total <= kMaxMagnitude;
  for (std::size_t i = sum.firstTerm; fits && i < sum.firstTerm + sum.nbTerms; ++i) {
    const std::uint64_t term = magnitude(model.terms[i].coefficient);
    fits = term <= kMaxMagnitude - total;
    total += term;
  }
  if (!fits) {
    failAt(start,
           "found a sum whose coefficients and bound add up, without their signs, to more than "
           "9223372036854775807, expected one whose values cannot overflow 64 bits");
  }
}

/// Puts the variables in the order of their numbers, so that what is printed does not depend on
/// where in the file a variable appears first.
void OpbReader::orderVariables() {
  const std::size_t n = model.names.size();
  std::vector<std::tuple<std::uint64_t, std::uint32_t>> keys(n);
  for (std::size_t i = 0; i < n; ++i) {
    // A number of 0 wraps to the largest key: such names come last.
    keys[i] = {numberOf(model.names[i]) - 1, static_cast<std::uint32_t>(i)};
  }
  std::sort(keys.begin(), keys.end());
  std::vector<std::string> ordered(n);
  std::vector<std::uint32_t> positions(n);
  for (std::size_t i = 0; i < n; ++i) {
    const std::uint32_t old = std::get<1>(keys[i]);
    ordered[i] = std::move(model.names[old]);
    positions[old] = static_cast<std::uint32_t>(i);
  }
  model.names = std::move(ordered);
  for (OpbLiteral& literal : model.literals) {
    literal = OpbLiteral::of(positions[literal.variable()], literal.isNegated());
  }
}

void OpbReader::failExpected(const std::string& expected) const {
  failAt(token, "found " + describeToken() + ", expected " + expected);
}

void OpbReader::failAt(const Token& place, const std::string& text) const {
  throw InputError(input.getFileName() + ":" + std::to_string(place.line) + ":" +
                   std::to_string(place.column) + ": " + text);
}

std::string OpbReader::describeToken() const {
  if (token.kind == Kind::End) return "the end of the file";
  const auto first = static_cast<unsigned char>(token.text[0]);
  if (token.text.size() == 1 && (first < ' ' || first > '~')) {
    constexpr const char* kDigits = "0123456789abcdef";
    return std::string("the byte 0x") + kDigits[first / 16] + kDigits[first % 16];
  }
  if (token.text.size() <= kMaxShownLength) return "\"" + token.text + "\"";
  return "\"" + token.text.substr(0, kMaxShownLength) + "...\"";
}

}  // namespace ombrix::cli
