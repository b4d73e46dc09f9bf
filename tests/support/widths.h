#ifndef OMBRIX_TESTS_SUPPORT_WIDTHS_H
#define OMBRIX_TESTS_SUPPORT_WIDTHS_H

#include <gtest/gtest.h>

namespace ombrix::test {

/// The operand counts on both sides of each limit at which a node takes a wider form of its sets.
inline auto everyWidth() {
  return testing::Values(1, 2, 3, 8, 9, 16, 17, 32, 33, 64, 65, 128, 129, 256, 257, 512, 513, 1024,
                         1025);
}

/// The same for the widest forms: positions of 16 bits up to 65534 operands, of 32 bits beyond.
inline auto widestWidths() {
  return testing::Values(65534, 65535, 70000);
}

}  // namespace ombrix::test

#endif
