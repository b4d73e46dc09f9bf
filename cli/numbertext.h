#ifndef OMBRIX_CLI_NUMBERTEXT_H
#define OMBRIX_CLI_NUMBERTEXT_H

#include <string>

namespace ombrix::cli {

/// A double in as few characters as bring back the same number; "nan", "inf" or "-inf" where it is
/// none or infinite.
std::string numberText(double number);

}  // namespace ombrix::cli

#endif
