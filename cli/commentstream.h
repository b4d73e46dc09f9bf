#ifndef OMBRIX_CLI_COMMENTSTREAM_H
#define OMBRIX_CLI_COMMENTSTREAM_H

#include <ostream>
#include <streambuf>

namespace ombrix::cli {

/// While it lives, each line written to a stream gets "c " in front, so that the display of the
/// engine stands as comments in the output of a competition. Lines for the output itself go through
/// direct, between whole lines.
class CommentStream : private std::streambuf {
public:
  explicit CommentStream(std::ostream& stream);
  ~CommentStream() override;
  CommentStream(const CommentStream&) = delete;
  CommentStream& operator=(const CommentStream&) = delete;

  std::ostream& direct() { return directStream; }

private:
  int_type overflow(int_type c) override;
  int sync() override;

  std::ostream& commented;
  std::streambuf* target;
  std::ostream directStream;
  bool atLineStart = true;
};

}  // namespace ombrix::cli

#endif
