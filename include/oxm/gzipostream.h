#ifndef OMBRIX_OXM_GZIPOSTREAM_H
#define OMBRIX_OXM_GZIPOSTREAM_H

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace ombrix {

/// The bytes of a file being written, plain or gzip as the caller says. Bytes are gathered in a
/// block first: a token is a few bytes, and a call of the library for each would cost more than the
/// token. The results of writing are not looked at: a full disk shows only as a short file, and a
/// caller who cares checks the file afterwards.
class GzipOstream {
public:
  /// Opens the file; code 1 if it cannot be opened.
  GzipOstream(const std::string& name, bool compressed);
  /// Writes what is left and closes the file.
  ~GzipOstream();
  GzipOstream(const GzipOstream&) = delete;
  GzipOstream& operator=(const GzipOstream&) = delete;

  void put(char byte) {
    if (block.size() == kBlockSize) flush();
    block.push_back(byte);
  }
  void write(std::string_view bytes);

  /// The bytes taken so far, before any compression, whether or not they reached the file.
  std::uint64_t getNbBytes() const { return nbFlushed + block.size(); }

private:
  static constexpr std::size_t kBlockSize = std::size_t{1} << 16;

  void flush();

  bool compress;
  gzFile gzHandle = nullptr;
  std::FILE* file = nullptr;
  std::string fileName;
  std::string block;
  std::uint64_t nbFlushed = 0;
};

}  // namespace ombrix

#endif
