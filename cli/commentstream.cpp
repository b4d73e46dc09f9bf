#include "cli/commentstream.h"

namespace ombrix::cli {

CommentStream::CommentStream(std::ostream& stream)
    : commented(stream), target(stream.rdbuf()), directStream(target) {
  commented.rdbuf(this);
}

CommentStream::~CommentStream() {
  commented.flush();
  commented.rdbuf(target);
}

CommentStream::int_type CommentStream::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  if (atLineStart && target->sputn("c ", 2) != 2) return traits_type::eof();
  atLineStart = traits_type::to_char_type(c) == '\n';
  return target->sputc(traits_type::to_char_type(c));
}

int CommentStream::sync() {
  return target->pubsync();
}

}  // namespace ombrix::cli
