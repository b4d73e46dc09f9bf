#ifndef OMBRIX_TESTS_SUPPORT_TOKENFILES_H
#define OMBRIX_TESTS_SUPPORT_TOKENFILES_H

#include <zlib.h>

#include <fstream>
#include <iterator>
#include <string>

#include "support/temporaryfile.h"

namespace ombrix::test {

/// The bytes of a file as they stand.
inline std::string bytesOf(const std::string& path) {
  std::ifstream input(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

/// The bytes of a file, inflated if it is gzip.
inline std::string inflatedBytesOf(const std::string& path) {
  std::string bytes;
  gzFile stream = gzopen(path.c_str(), "rb");
  char block[4096];
  for (int n = gzread(stream, block, sizeof block); n > 0;
       n = gzread(stream, block, sizeof block)) {
    bytes.append(block, static_cast<std::size_t>(n));
  }
  gzclose(stream);
  return bytes;
}

/// What a writer of tokens of the given class leaves in its file after an action.
template <typename Writer, typename Action>
std::string written(const Action& action, bool compress = false) {
  const TemporaryFile file("", ".tokens");
  {
    Writer writer(file.path(), compress);
    action(writer);
  }
  return bytesOf(file.path());
}

/// A reader of the given class over a file with these bytes.
template <typename Reader>
class ReaderOf {
public:
  explicit ReaderOf(const std::string& bytes) : file(bytes, ".tokens"), reader(file.path()) {}
  Reader* operator->() { return &reader; }
  Reader& operator*() { return reader; }

private:
  TemporaryFile file;
  Reader reader;
};

}  // namespace ombrix::test

#endif
