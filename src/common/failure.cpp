#include "common/failure.h"

namespace ombrix {

void fail(int code, const Where& where, const std::string& explanation) {
  throw OXException(code, where.file, where.line, where.function, explanation);
}

}  // namespace ombrix
