#ifndef OMBRIX_TESTS_SUPPORT_FAILURES_H
#define OMBRIX_TESTS_SUPPORT_FAILURES_H

#include <gtest/gtest.h>

#include <string>

#include "api/oxexception.h"

namespace ombrix::test {

/// Runs an action and expects that it fails with that code, that explanation to the letter, and the
/// function name without "ombrix::".
template <typename Action>
void expectFailure(int code, const std::string& function, const std::string& explanation,
                   const Action& action) {
  try {
    action();
    ADD_FAILURE() << "no failure, expected: " << explanation;
  } catch (const OXException& failure) {
    EXPECT_EQ(failure.getCode(), code);
    EXPECT_EQ(failure.getFunctionName(), "ombrix::" + function);
    EXPECT_EQ(failure.getExplanation(), explanation);
  }
}

}  // namespace ombrix::test

#endif
