#ifndef OMBRIX_OXM_GZIPISTREAM_H
#define OMBRIX_OXM_GZIPISTREAM_H

#include <zlib.h>

#include <cstddef>
#include <memory>
#include <string>

namespace ombrix {

/// The bytes of a file being read. All input goes through zlib, which passes plain files as they
/// are, so a reader never needs to know whether a file is compressed. Characters are served from a
/// block; a truncated gzip file reads as the end of input.
class GzipIstream {
public:
  static constexpr int kEndOfInput = -1;

  /// Opens the file; code 1 if it cannot be opened.
  explicit GzipIstream(const std::string& name);
  ~GzipIstream();
  GzipIstream(const GzipIstream&) = delete;
  GzipIstream& operator=(const GzipIstream&) = delete;

  /// The next character as an unsigned byte, or kEndOfInput.
  int get() {
    if (position == end && !fill()) return kEndOfInput;
    return static_cast<unsigned char>(block[position++]);
  }

  /// Puts back the character that get returned last, which was not the end of the input.
  void unget() { --position; }

  /// Reads up to size bytes and returns how many came; the rest of the buffer stays as it was.
  std::size_t read(char* buffer, std::size_t size);

  /// Raises the failure of a read that cannot go on.
  [[noreturn]] static void failToRead();

private:
  // zlib inflates blocks of this size for readers of single characters. A larger one would let an
  // error in compressed data swallow characters that stand before it.
  static constexpr std::size_t kBlockSize = std::size_t{1} << 14;

  bool fill();

  gzFile gzHandle = nullptr;
  std::string fileName;
  std::unique_ptr<char[]> block;
  std::size_t position = 0;
  std::size_t end = 0;
};

}  // namespace ombrix

#endif
