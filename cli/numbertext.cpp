#include "cli/numbertext.h"

#include <array>
#include <charconv>
#include <cmath>

namespace ombrix::cli {

std::string numberText(double number) {
  if (std::isnan(number)) return "nan";
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return {digits.data(), end};
}

}  // namespace ombrix::cli
