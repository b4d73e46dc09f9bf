#include "api/oxexception.h"

#include <utility>

namespace ombrix {

OXException::OXException(int failureCode, std::string file, int line, std::string function,
                         std::string text)
    : code(failureCode),
      fileName(std::move(file)),
      functionName(std::move(function)),
      explanation(std::move(text)),
      message("ERROR [function " + functionName + "]: " + explanation),
      lineNumber(line) {}

OXException::~OXException() = default;

const char* OXException::what() const noexcept {
  return message.c_str();
}

}  // namespace ombrix
