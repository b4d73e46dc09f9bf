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

}  // namespace ombrix::messages
