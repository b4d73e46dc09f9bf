#include "api/oxexception.h"

#include <gtest/gtest.h>

#include <memory>

namespace ombrix {
namespace {

TEST(OXExceptionTest, TellsWhatItWasMadeOf) {
  const OXException failure(5, "some/file.cpp", 12, "ombrix::OXModel::close", "Division by zero.");
  EXPECT_EQ(failure.getCode(), 5);
  EXPECT_EQ(failure.getFileName(), "some/file.cpp");
  EXPECT_EQ(failure.getLineNumber(), 12);
  EXPECT_EQ(failure.getFunctionName(), "ombrix::OXModel::close");
  EXPECT_EQ(failure.getExplanation(), "Division by zero.");
  EXPECT_STREQ(failure.what(), "ERROR [function ombrix::OXModel::close]: Division by zero.");
}

TEST(OXExceptionTest, ACopyKeepsAllMembersBeyondTheOriginal) {
  auto original = std::make_unique<OXException>(1, "f.cpp", 3, "ombrix::f", "text");
  const OXException copy(*original);
  original.reset();
  EXPECT_EQ(copy.getCode(), 1);
  EXPECT_EQ(copy.getFileName(), "f.cpp");
  EXPECT_EQ(copy.getLineNumber(), 3);
  EXPECT_EQ(copy.getFunctionName(), "ombrix::f");
  EXPECT_EQ(copy.getExplanation(), "text");
  EXPECT_STREQ(copy.what(), "ERROR [function ombrix::f]: text");
}

}  // namespace
}  // namespace ombrix
