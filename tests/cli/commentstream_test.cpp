#include "cli/commentstream.h"

#include <gtest/gtest.h>

#include <sstream>

namespace ombrix::cli {
namespace {

TEST(CommentStream, MarksEveryLine) {
  std::ostringstream stream;
  {
    const CommentStream comments(stream);
    stream << "one\n\ntwo " << 3 << "\n";
  }
  EXPECT_EQ(stream.str(), "c one\nc \nc two 3\n");
}

TEST(CommentStream, LeavesDirectLinesAsTheyAre) {
  std::ostringstream stream;
  {
    CommentStream comments(stream);
    stream << "one\n";
    comments.direct() << "o 5\n";
    stream << "two\n";
  }
  EXPECT_EQ(stream.str(), "c one\no 5\nc two\n");
}

TEST(CommentStream, EndsWithItsLife) {
  std::ostringstream stream;
  { const CommentStream comments(stream); }
  stream << "v x1\n";
  EXPECT_EQ(stream.str(), "v x1\n");
}

}  // namespace
}  // namespace ombrix::cli
