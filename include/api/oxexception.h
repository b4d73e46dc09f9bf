#ifndef OMBRIX_API_OXEXCEPTION_H
#define OMBRIX_API_OXEXCEPTION_H

#include <exception>
#include <string>

namespace ombrix {

/// The one exception type of the system. It tells a failure by its code and its explanation, and
/// where it was thrown by file, line and qualified function name.
///
/// Codes: 0 misuse of the interface, 1 input and output, 2 an invalid model, 5 a computation that
/// has no value, 6 an internal error. A copy keeps every member, so that a failure met on a search
/// thread can be thrown again on the thread that called solve.
class OXException : public std::exception {
public:
  OXException(int code, std::string fileName, int lineNumber, std::string functionName,
              std::string explanation);
  OXException(const OXException&) = default;
  OXException& operator=(const OXException&) = default;
  ~OXException() override;

  /// "ERROR [function NAME]: EXPLANATION".
  const char* what() const noexcept override;

  int getCode() const { return code; }
  const std::string& getFileName() const { return fileName; }
  int getLineNumber() const { return lineNumber; }
  const std::string& getFunctionName() const { return functionName; }
  /// The message for the user, without the head of what().
  const std::string& getExplanation() const { return explanation; }

private:
  int code;
  std::string fileName;
  std::string functionName;
  std::string explanation;
  std::string message;
  int lineNumber;
};

}  // namespace ombrix

#endif
