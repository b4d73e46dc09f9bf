#ifndef OMBRIX_COMMON_FAILURE_H
#define OMBRIX_COMMON_FAILURE_H

#include <string>

#include "api/oxexception.h"

namespace ombrix {

/// The classes of failure that a user can tell apart by OXException::getCode.
enum ErrorCode : int {
  kMisuse = 0,        ///< a call in the wrong state, a null or foreign argument, a wrong index
  kInputOutput = 1,   ///< a file that cannot be opened or is malformed
  kInvalidModel = 2,  ///< a model that breaks a rule of the language
  kComputation = 5,   ///< a computation that has no value
  kInternal = 6       ///< a state that should not occur
};

/// The place that a failure names: source file, line, and the qualified name of the public
/// operation called, also where a shared helper throws for it.
struct Where {
  const char* file;
  int line;
  const char* function;
};

/// Throws the OXException. The single throwing function of the system keeps the throw out of line,
/// away from the hot paths that test for failures.
[[noreturn]] void fail(int code, const Where& where, const std::string& explanation);

}  // namespace ombrix

/// The Where of this line for an operation given without its namespace:
/// OMBRIX_HERE("OXModel::close") names ombrix::OXModel::close.
#define OMBRIX_HERE(function)               \
  ::ombrix::Where {                         \
    __FILE__, __LINE__, "ombrix::" function \
  }

#endif
