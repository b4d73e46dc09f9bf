#include "common/messages.h"

#include <sstream>

namespace ombrix::messages {

namespace {

template <typename... Pieces>
std::string text(const Pieces&... pieces) {
  std::ostringstream out;
  (out << ... << pieces);
  return out.str();
}

}  // namespace

std::string nullArgument(const std::string& name) {
  return text("Argument ", name, " cannot be null.");
}

std::string foreignArgument(const std::string& name) {
  return text("Argument ", name, " does not belong to this instance of Ombrix.");
}

std::string emptyString(const std::string& name) {
  return text("Argument ", name, " cannot be an empty string.");
}

std::string badIndex(const std::string& noun, long long index, long long lastIndex) {
  return text(noun, " with index ", index, " does not exist.\nOnly indices from 0 to ", lastIndex,
              " are currently allowed.");
}

std::string outOfRange(const std::string& name, long long low, long long high) {
  return text(name, " must be an integer between ", low, " and ", high, ".");
}

std::string notPositive(const std::string& name) {
  return text("Argument ", name, " must be positive.");
}

std::string notStrictlyPositive(const std::string& name) {
  return text("Argument ", name, " must be strictly positive.");
}

std::string capacityExceeded(const std::string& noun, long long limit) {
  return text("Number of ", noun, " cannot exceed ", limit, ".");
}

std::string mustBeIntegral() {
  return "Cannot use this method. The given expression must be boolean or integer.";
}

std::string mustBeDouble() {
  return "Cannot use this method. The given expression must be double.";
}

std::string notANumber() {
  return "Cannot use NaN (Not a Number) as a double constant.";
}

std::string tooManyOperands(long long given, long long allowed, const std::string& expr) {
  return text("Number of operands (", given, ") is too large: at most ", allowed,
              " operands are expected for ", expr, ".");
}

std::string tooFewOperands(long long given, long long required, const std::string& expr) {
  return text("Number of operands (", given, ") is too small: at least ", required,
              " operands are expected for ", expr, ".");
}

std::string wrongOperand(long long position, const std::string& expr, const std::string& types) {
  return text("Operand ", position, " of ", expr, " must be ", types);
}

std::string expressionWithType(const std::string& operatorName) {
  return text("expression with type '", operatorName, "'");
}

}  // namespace ombrix::messages
