#ifndef OMBRIX_CLI_INPUTERROR_H
#define OMBRIX_CLI_INPUTERROR_H

#include <stdexcept>

namespace ombrix::cli {

/// What the caller of the program gave cannot be used: an option, a file that cannot be read or
/// written, a malformed model. The text is one line, ready for the user.
class InputError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

}  // namespace ombrix::cli

#endif
